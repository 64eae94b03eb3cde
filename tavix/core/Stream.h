#pragma once
// Moving whole files between the host's streams and memory.

#include "tavix/core/Host.h"

#include <cstddef>
#include <cstdint>

namespace tavix {

// Up to `limit` bytes from the start of the stream; the position is
// restored to the start afterwards.
Bytes readHead(intptr_t stream, size_t limit);
// The whole stream from its start.
Bytes readWhole(intptr_t stream);
void writeWhole(intptr_t stream, const Bytes& bytes);

} // namespace tavix
