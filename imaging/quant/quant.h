#pragma once
// The colour quantizers: a fixed table of 12 pluggable quantizers that are
// fed one or more 32-bit images and then asked for a palette of K colours
// and, when they can make one, an inverse colour map.
//
// The protocol, on the current quantizer (quant_select / quant_find):
//   QuantInstance* q = quant_begin();           // null: no instance
//   quant_add_image(q, info, pixels, rowbytes);  // any number of times
//   uint32_t* palette = quant_make_palette(q, k, &map, &count);
// make palette frees the instance; the palette (0xAARRGGBB words) and the
// map come from galloc and belong to the caller. An instance that is not
// taken to make palette is given back with quant_abandon.
//
// Mapping pixels onto the palette is the caller's (imaging/quant/remap.h).

#include "tavix/records.h"

#include <cstddef>
#include <cstdint>

// A quantizer's description of itself, 104 bytes, zero-filled.
struct QuantDescriptor {
    uint32_t magic;            // four characters, the first in the top byte ('WUCR')
    uint32_t size;             // kQuantDescriptorSize
    uint32_t interfaceVersion; // kQuantInterfaceVersion
    uint32_t flags;            // kQuantFlag* bits
    char author[32];
    char version[8];      // "1.05"
    char name[16];        // "Wu555": the key of quant_find
    char description[32]; // "Wu's 555"
};

static_assert(offsetof(QuantDescriptor, magic) == 0);
static_assert(offsetof(QuantDescriptor, size) == 4);
static_assert(offsetof(QuantDescriptor, interfaceVersion) == 8);
static_assert(offsetof(QuantDescriptor, flags) == 12);
static_assert(offsetof(QuantDescriptor, author) == 16);
static_assert(offsetof(QuantDescriptor, version) == 48);
static_assert(offsetof(QuantDescriptor, name) == 56);
static_assert(offsetof(QuantDescriptor, description) == 72);
static_assert(sizeof(QuantDescriptor) == 104);

constexpr uint32_t kQuantDescriptorSize = 104;
constexpr uint32_t kQuantInterfaceVersion = 169;
constexpr int32_t kQuantCount = 12;

enum : uint32_t {
    kQuantFlagWuCube = 0x1, // a Wu colour-cube quantizer (makes an inverse map)
    kQuantFlagNull = 0x4,   // the null quantizer
};

// The inverse colour map ("WVNI"): a 16-byte header and then one palette
// index per quantized colour, 2^(3b) bytes, the colour (r, g, b) at
// ((r >> (8-b)) << 2b) + ((g >> (8-b)) << b) + (b >> (8-b)).
struct QuantInverseMap {
    char code[4];        // "WVNI"
    uint32_t size;       // 16 + 2^(3b)
    uint8_t zero;        // 0
    uint8_t bits[3];     // bits per channel: red, green, blue
    uint8_t reserved[4]; // 0
};

static_assert(offsetof(QuantInverseMap, code) == 0);
static_assert(offsetof(QuantInverseMap, size) == 4);
static_assert(offsetof(QuantInverseMap, zero) == 8);
static_assert(offsetof(QuantInverseMap, bits) == 9);
static_assert(offsetof(QuantInverseMap, reserved) == 12);
static_assert(sizeof(QuantInverseMap) == 16);

// The table of a map.
inline uint8_t* quant_map_table(QuantInverseMap* map) {
    return reinterpret_cast<uint8_t*>(map) + sizeof(QuantInverseMap);
}
inline const uint8_t* quant_map_table(const QuantInverseMap* map) {
    return reinterpret_cast<const uint8_t*>(map) + sizeof(QuantInverseMap);
}
// The map's entry for a 0xAARRGGBB colour (alpha ignored).
inline uint8_t quant_map_lookup(const QuantInverseMap* map, uint32_t argb) {
    const int b = map->bits[0], s = 8 - b;
    const uint32_t r = ((argb >> 16) & 0xFF) >> s, g = ((argb >> 8) & 0xFF) >> s,
                   bl = (argb & 0xFF) >> s;
    return quant_map_table(map)[(r << (2 * b)) + (g << b) + bl];
}

// An open quantizer; each quantizer keeps its own state behind this.
struct QuantInstance;

using QuantDescribeFn = QuantDescriptor* (*)();
using QuantBeginFn = QuantInstance* (*)();
using QuantAddImageFn = int (*)(QuantInstance* instance, const TavixInfo* info, const void* pixels,
                                int32_t rowbytes);
using QuantMakePaletteFn = uint32_t* (*)(QuantInstance* instance, int32_t k, QuantInverseMap** map,
                                         int32_t* count);

struct QuantEntry {
    QuantDescribeFn describe;
    QuantBeginFn begin;
    QuantAddImageFn addImage;
    QuantMakePaletteFn makePalette;
};

// ---- The table ---------------------------------------------------------

// Makes quantizer `index` current; outside 0 .. 11 selects 0 (the null
// quantizer). Returns the index now current.
int32_t quant_select(int32_t index);
int32_t quant_current();
// Selects the quantizer whose short name equals `name` (ASCII letters
// compared without case; the first in table order) and returns its index;
// an unknown name selects and returns 0.
int32_t quant_find(const char* name);
// The short name of quantizer `index` ("Wu", "Lloyd"), "" outside the table.
const char* quant_name(int32_t index);
// Whether quantizer `index` keeps alpha in its palette ("Tw", "4D Wu",
// "Exact"); the others work on colour alone and make every entry opaque.
bool quant_keeps_alpha(int32_t index);

// ---- Calls on the current quantizer -------------------------------------

QuantDescriptor* quant_describe();
QuantInstance* quant_begin();
// 1 when the image was added; 0 for an image the quantizer does not take
// (most take 32 bits per pixel only) or a null instance.
int quant_add_image(QuantInstance* instance, const TavixInfo* info, const void* pixels,
                    int32_t rowbytes);
// The palette of at most k colours (k held to 1 .. 256), or null. Stores
// the inverse map (null when the quantizer makes none) and the number of
// colours made when the pointers are not null. Frees the instance; a null
// instance stores null and 0 and returns null.
uint32_t* quant_make_palette(QuantInstance* instance, int32_t k, QuantInverseMap** map,
                             int32_t* count);
// make palette without the count.
uint32_t* quant_palette(QuantInstance* instance, int32_t k, QuantInverseMap** map);
// Frees an instance without making a palette (any quantizer's instance).
void quant_abandon(QuantInstance* instance);

// With diagnostics on, quantizers print their working through gprintf.
void quant_set_diagnostics(bool on);
bool quant_diagnostics();
