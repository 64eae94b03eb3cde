#pragma once
// The shape drivers' tail: what a shape frame carries beyond the fixed
// TavixInfo fields so that the same file can be written back unchanged
// (directory id and names, attachment order, records Zy does not
// interpret, stored pixels of lossy layouts, packed streams).
//
// Header-only and allocation-free so that tools outside the library (for
// example zytool) can read it: include this file and call
// ShapeTailSummary() on a record whose format id belongs to a shape driver.
//
// Layout (little-endian), growing by new item tags only:
//   "ZYSH", u16 version, u16 header size, u32 variant format id (lowest
//   byte 0), u32 item count; then per item: u16 tag, u16 reserved,
//   u32 length, the data, zero padding to a multiple of 4.
// A reader skips tags it does not know and rejects a newer major version.

#include "tavix/records.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace tavix::shape::tail {

constexpr uint16_t kVersion = 1;
constexpr size_t kHeaderSize = 16;

enum Tag : uint16_t {
    // magic[4], directory id[4], u32 file flags, then the bytes between the
    // directory and the first record.
    kTagFile = 1,
    // directory name[4], record id, mip level of this frame, mip count,
    // entry flags, u16 flag nibble of +0C (in its top bits), u16 0, then
    // the frame name as read (no terminator).
    kTagEntry = 2,
    // One byte per record after the first, in file order (kSlot*).
    kTagLayout = 3,
    kTagKept = 4,    // a record kept byte for byte, one item per record
    kTagPalette = 5, // the palette record as read (header and colours)
    kTagPixels = 6,  // this level's stored pixels, for layouts that lose on decode
    kTagPacked = 7,  // the record's RefPack stream as read
};

enum : uint32_t { kFileWholePacked = 1 };
enum : uint8_t { kEntryLongName = 1, kEntryNextIsSize = 2 };
enum : uint8_t {
    kSlotPalette = 1,
    kSlotLongName = 2,
    kSlotText = 3,
    kSlotHotSpots = 4,
    kSlotKept = 5
};

inline uint32_t rd16(const uint8_t* p) {
    return p[0] | p[1] << 8;
}
inline uint32_t rd32(const uint8_t* p) {
    return p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// The variant format id of a well-formed tail, else 0.
inline uint32_t variantOf(const uint8_t* tail, size_t size) {
    if (!tail || size < kHeaderSize || memcmp(tail, "ZYSH", 4) != 0) return 0;
    if (rd16(tail + 4) != kVersion || rd16(tail + 6) < kHeaderSize || rd16(tail + 6) > size)
        return 0;
    return rd32(tail + 8) & 0xFFFFFF00u;
}

// Calls fn(tag, data, length) for every item; false when the tail is not
// well formed (items seen before the fault have been passed on).
template <typename Fn> bool forEachItem(const uint8_t* tail, size_t size, Fn fn) {
    if (!variantOf(tail, size)) return false;
    const uint32_t count = rd32(tail + 12);
    size_t at = rd16(tail + 6);
    for (uint32_t i = 0; i < count; ++i) {
        if (size - at < 8) return false;
        const uint16_t tag = static_cast<uint16_t>(rd16(tail + at));
        const uint32_t length = rd32(tail + at + 4);
        at += 8;
        if (length > size - at) return false;
        fn(tag, tail + at, static_cast<size_t>(length));
        at += (length + 3) & ~size_t{3};
        if (at > size) at = size;
    }
    return true;
}

} // namespace tavix::shape::tail

// One line describing what a shape frame's tail holds, for `zytool info`:
// directory id, directory name, attachments kept byte for byte (record id
// and size), and what is kept to rewrite the frame unchanged. Returns the
// length written (0 and an empty string when `info` has no shape tail).
inline size_t ShapeTailSummary(const TavixInfo* info, char* out, size_t capacity) {
    using namespace tavix::shape::tail;
    if (!out || capacity == 0) return 0;
    out[0] = 0;
    if (!info || info->size <= kTavixInfoSize) return 0;
    const auto* tail = reinterpret_cast<const uint8_t*>(info) + kTavixInfoSize;
    const size_t size = static_cast<size_t>(info->size) - kTavixInfoSize;
    if (!variantOf(tail, size)) return 0;
    size_t used = 0;
    auto add = [&](const char* text) {
        const size_t n = strnlen(text, capacity - 1 - used);
        memcpy(out + used, text, n);
        used += n;
        out[used] = 0;
    };
    char piece[96];
    auto printable = [](uint8_t c) { return c >= 0x20 && c < 0x7F ? static_cast<char>(c) : '.'; };
    const char* separator = "";
    forEachItem(tail, size, [&](uint16_t tag, const uint8_t* data, size_t length) {
        if (tag == kTagFile && length >= 12) {
            snprintf(piece, sizeof piece, "%sdir id \"%c%c%c%c\"", separator, printable(data[4]),
                     printable(data[5]), printable(data[6]), printable(data[7]));
            add(piece);
            if (rd32(data + 8) & kFileWholePacked) add(", whole file RefPack");
        } else if (tag == kTagEntry && length >= 12) {
            snprintf(piece, sizeof piece, "%sdir name \"%c%c%c%c\"", separator, printable(data[0]),
                     printable(data[1]), printable(data[2]), printable(data[3]));
            add(piece);
            if (data[7] & kEntryLongName) add(", long name record");
        } else if (tag == kTagKept && length >= 1) {
            snprintf(piece, sizeof piece, "%skept record 0x%02X%s (%zu bytes)", separator, data[0],
                     (data[0] & 0x7F) == 0x69 ? " metal bin" : "", length);
            add(piece);
        } else if (tag == kTagPalette) {
            snprintf(piece, sizeof piece, "%spalette record as read (%zu bytes)", separator,
                     length);
            add(piece);
        } else if (tag == kTagPixels) {
            snprintf(piece, sizeof piece, "%sstored pixels (%zu bytes)", separator, length);
            add(piece);
        } else if (tag == kTagPacked) {
            snprintf(piece, sizeof piece, "%sRefPack stream as read (%zu bytes)", separator,
                     length);
            add(piece);
        } else {
            return;
        }
        separator = "; ";
    });
    return used;
}
