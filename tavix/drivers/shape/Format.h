#pragma once
// The shape-file family: record ids, pixel and palette layouts, and the
// table of each platform variant. The reader and the writer are shared;
// everything that differs between PC, PS2, Xbox and GameCube files is data
// in a `Variant`.

#include "tavix/core/Host.h"
#include "tavix/core/Picture.h"
#include "tavix/records.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavix::shape {

// How the pixels of one level are stored.
enum class Layout : uint8_t {
    Idx8,     // one index per byte
    Idx4Hi,   // two indices per byte, left pixel in the high nibble
    Idx4Lo,   // left pixel in the low nibble
    Argb8888, // 32-bit word A8R8G8B8
    Rgb888,   // bytes B, G, R
    Argb1555, // 16-bit word
    Rgb565,   // 16-bit word
    Argb4444, // 16-bit word
    Dxt1,
    Dxt3,
    Dxt5,
    Ps2Rgba8888, // bytes R, G, B, A with alpha 0..0x80
    GcC8,        // GameCube tiles: 8x4 of 8-bit indices
    GcC4,        // 8x8 of 4-bit indices, left pixel high
    GcRgba8,     // 4x4, alpha/red then green/blue halves
    GcRgb565,    // 4x4 of big-endian RGB565
    GcCmpr,      // 8x8 tiles of four DXT1-like blocks
};

enum class PaletteLayout : uint8_t {
    Argb8888,    // 32-bit word
    Rgb888,      // bytes R, G, B
    Rgb666,      // bytes R, G, B of 0..63
    Argb1555,    // 16-bit word
    Rgb565,      // 16-bit word
    Ps2Rgba8888, // bytes R, G, B, A with alpha 0..0x80
    Ps2Rgba5551, // 16-bit little-endian word, red in the low bits
};

struct Channels {
    int32_t alpha, red, green, blue;
};

struct BitmapFormat {
    uint8_t id;
    Layout layout;
};

// `large` applies above 16 colours (one PS2 record id serves both sizes).
struct PaletteFormat {
    uint8_t id;
    PaletteLayout small;
    PaletteLayout large;
    PaletteLayout layoutFor(int count) const { return count > 16 ? large : small; }
};

struct RefusedFormat {
    uint8_t id;
    const char* name;
};

struct Variant {
    const char* shortname;
    const char* description;
    const char* extension;
    const char* notes;
    uint32_t formatid; // lowest byte zero
    char magic[5];
    char altMagic[5];       // also accepted when reading ("" = none)
    bool bigEndian;         // header, record and word byte order
    bool ps2Alpha;          // alpha stored as 0..0x80
    bool ps2Swap;           // 256-colour palettes swap 8-15 / 16-23 of every 32
    bool flagsMeanSwizzled; // a set flag nibble at +0C marks swizzled pixels
    bool fullPalettes;      // derived palettes always hold 16 or 256 colours
    std::span<const BitmapFormat> bitmaps;
    std::span<const PaletteFormat> palettes;
    std::span<const RefusedFormat> refused;
    uint8_t indexed8; // record ids chosen when `subtype` says nothing
    uint8_t trueColour;
    uint8_t paletteOpaque;
    uint8_t paletteAlpha;
    uint8_t palette16; // for 4-bit records; 0 = as for 8-bit
};

extern const Variant kFshVariant;
extern const Variant kSshVariant;
extern const Variant kXshVariant;
extern const Variant kGshVariant;

// The variant whose format id matches `formatid` beyond its lowest byte.
const Variant* variantOf(uint32_t formatid);

const BitmapFormat* findBitmap(const Variant& variant, uint8_t id);
const PaletteFormat* findPalette(const Variant& variant, uint8_t id);
const RefusedFormat* findRefused(const Variant& variant, uint8_t id);

bool isIndexed(Layout layout);
bool isFourBit(Layout layout);
int nominalBpp(Layout layout);
Channels channelsOf(Layout layout);
Channels channelsOf(PaletteLayout layout);
size_t entryBytes(PaletteLayout layout);

// Record ids of the attachments every variant shares.
enum : uint8_t {
    kRecText = 0x6F,
    kRecLongName = 0x70,
    kRecMetalBin = 0x69,
    kRecHotSpots = 0x7C,
    kRecPacked = 0x80,
};

// ------------------------------------------------------------ pixel data

// Bytes of one level; of a level and `mips` halvings after it (throws when
// the sizes are absurd).
size_t levelBytes(Layout layout, size_t width, size_t height);
size_t payloadBytes(Layout layout, size_t width, size_t height, int mips);
// Size of mip level `level` (0 = the base).
inline int32_t levelSide(int32_t side, int level) {
    return side >> level > 0 ? side >> level : 1;
}

// Decodes one level into `out` (indices for indexed layouts: the caller
// supplies the palette; ARGB otherwise). `src` holds levelBytes() bytes.
void decodeLevel(const Variant& variant, Layout layout, const uint8_t* src, int32_t width,
                 int32_t height, Picture& out);
// Appends one level; indexed layouts need an indexed picture whose indices
// fit the layout.
void encodeLevel(const Variant& variant, Layout layout, const Picture& in, int quality, Bytes& out);

// GameCube tiling (gctiles.cpp).
void decodeTiled(Layout layout, const uint8_t* src, int32_t width, int32_t height, Picture& out);
void encodeTiled(Layout layout, const Picture& in, int quality, Bytes& out);

// --------------------------------------------------------------- palettes

void decodePalette(const Variant& variant, PaletteLayout layout, const uint8_t* src, int count,
                   TavixColour out[256]);
void encodePalette(const Variant& variant, PaletteLayout layout, const TavixColour* colours,
                   int count, Bytes& out);
// True when `layout` stores these colours without loss.
bool paletteFits(const Variant& variant, PaletteLayout layout, const TavixColour* colours,
                 int count);

// -------------------------------------------------------- byte order

inline uint32_t get16(const uint8_t* p, bool big) {
    return big ? (p[0] << 8 | p[1]) : (p[0] | p[1] << 8);
}
inline uint32_t get24(const uint8_t* p, bool big) {
    return big ? (static_cast<uint32_t>(p[0]) << 16 | p[1] << 8 | p[2])
               : (p[0] | p[1] << 8 | static_cast<uint32_t>(p[2]) << 16);
}
inline uint32_t get32(const uint8_t* p, bool big) {
    return big ? (static_cast<uint32_t>(p[0]) << 24 | p[1] << 16 | p[2] << 8 | p[3])
               : (p[0] | p[1] << 8 | p[2] << 16 | static_cast<uint32_t>(p[3]) << 24);
}
void put16(Bytes& out, uint32_t value, bool big);
void put24(Bytes& out, uint32_t value, bool big);
void put32(Bytes& out, uint32_t value, bool big);
void set24(uint8_t* at, uint32_t value, bool big);
void set32(uint8_t* at, uint32_t value, bool big);

// PS2 alpha scale: 0..0x80 in the file, 0..255 in Zy.
inline uint32_t ps2AlphaIn(uint32_t a) {
    return a * 2 > 255 ? 255 : a * 2;
}
inline uint32_t ps2AlphaOut(uint32_t a8) {
    return (a8 + 1) >> 1;
}

} // namespace tavix::shape
