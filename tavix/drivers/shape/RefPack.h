#pragma once
// RefPack (also called QFS): the LZ77 scheme of the shape-file family, used
// both for whole files and for the payload of single records.
//
// Stream header: a flags byte (0x10 always, 0x01 = a compressed-size field
// follows, 0x80 = sizes are 4 bytes instead of 3), the magic 0xFB, then the
// optional compressed size and the uncompressed size, both big-endian.

#include "tavix/core/Host.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavix::refpack {

// True when `data` starts with a plausible stream header.
bool looksPacked(std::span<const uint8_t> data);

// The uncompressed size the header declares; throws on a bad header.
size_t declaredSize(std::span<const uint8_t> data);

struct Decoded {
    Bytes bytes;
    size_t consumed = 0; // input bytes up to and including the end command
};

// Decodes a whole stream. Fails (FormatError) when the header is bad, the
// declared size is above `limit`, a copy reaches before the start of the
// output, the output would run past the declared size, or the input ends
// before the output is complete.
Decoded decode(std::span<const uint8_t> data, size_t limit);

// What decode() would give and take, checked the same way, without
// producing the output: listing a file needs where a stream ends, not its
// bytes.
struct Measured {
    size_t size = 0;     // the declared (and produced) output size
    size_t consumed = 0; // as Decoded::consumed
};
Measured measure(std::span<const uint8_t> data, size_t limit);

// The first `count` bytes of the output (for detection); fails when the
// stream cannot produce them.
Bytes peek(std::span<const uint8_t> data, size_t count);

// Compresses `data` into a complete stream without the compressed-size
// field. Hash chains over the whole 128 KiB window (at most 48 links
// followed), one step of lazy matching for matches shorter than 32 bytes,
// and a growing stride over long stretches without matches.
Bytes encode(std::span<const uint8_t> data);

} // namespace tavix::refpack
