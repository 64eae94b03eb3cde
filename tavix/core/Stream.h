#pragma once
// Moving files between the host's streams and memory.

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
void writeBlock(intptr_t stream, const uint8_t* data, size_t count);

// Random access to a file being read. A reader built on a source takes only
// the blocks it needs (headers when the file is opened, pixel data when a
// frame is decoded), so listing a large file never reads its pixels and
// decoding never holds the whole file beside the image.
class Source {
  public:
    virtual ~Source() = default;
    virtual uint64_t size() const = 0;
    // Exactly `count` bytes from `offset`; FormatError when the file ends
    // first, so a reader can trust every block it is given.
    virtual void read(uint64_t offset, void* to, size_t count) = 0;
    // The whole file when it is already in memory, else null.
    virtual const uint8_t* memory() const { return nullptr; }

    Bytes bytes(uint64_t offset, size_t count) {
        Bytes block(count);
        read(offset, block.data(), count);
        return block;
    }
};

// A source reading the host's stream (which stays the caller's to close).
HostPtr<Source> streamSource(intptr_t stream);
// A source over a file image already in memory.
HostPtr<Source> memorySource(Bytes&& file);

} // namespace tavix
