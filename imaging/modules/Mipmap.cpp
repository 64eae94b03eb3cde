// Mipmap ("Mipmap"): turns the image into a chain of levels, each half the
// size of the one before. It has several results: query output i gives the
// record of level i, and each process call writes the next level in turn.
// Open makes every level at once, running Size, Scale, Halfsize and Rect by
// name; the levels live in the instance until close.
//
// Values (a slot not passed takes the fallback in brackets): Method [3],
// Levels [10], MinLevels [1], Width and Height of level 0 [the source's],
// ClearLastN [0], Background Colour [0], Transparency Flag [0], Mipmap
// Collapse Flag [0]. What they do:
// - Method, how each level is made from the one before: 0 Scale (nearest
//   pixel), 1 Halfsize (2 x 2 blocks averaged), 2 Size with Lanczos3, 3
//   (and any other value) as 2 for 32-bit sources. Indexed sources: 0 and
//   1 work on the indices; 2 is taken as 1; 3 and above make every level
//   in 32 bits and reduce them together onto one palette (see
//   reduceLevels). The descriptor's range is 1 .. 5, default 1. Level 0,
//   when Width and Height differ from the source's size, is made by Size
//   (Point for method 1, else Lanczos3) from 32-bit pixels and by Scale
//   from indices.
// - Levels (1 .. 200): the most levels to make. The size allows
//   round(log2(smaller side of level 0)) + 1 of them (the larger side when
//   Levels is 16), and halving never goes below 1 pixel (see levelCount).
// - MinLevels (1 .. 20): the fewest levels, within what halving allows.
// - Width, Height (pixels): the size of level 0; level i is Width >> i by
//   Height >> i.
// - ClearLastN (0 .. 199): the last N levels are painted all over with
//   Background Colour (0xAARRGGBB; an indexed level takes the nearest
//   palette entry), so a far-away texture fades to a plain colour.
// - Transparency Flag (0 or 1): passed to Size as Respect Alpha, so
//   transparent pixels do not bleed into the filtered levels.
// - Mipmap Collapse Flag (0 or 1): 0 marks every level, level 0 too, as a
//   mip level in its record; 1 clears that mark, so the levels stand as
//   separate images.
// Levels from 1 on are named after the source with "_mm01", "_mm02" ...
//
// Levels of 1 and above are made from the level before them, whatever the
// method: a chain then costs about a third more than its first halving,
// where filtering every level from the source would cost a full pass over
// the source per level.

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"
#include "imaging/modules/resample/palette.h"
#include "imaging/modules/resample/run.h"
#include "imaging/quant/indexed.h"

#include <algorithm>

#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

// Method defaults differ on purpose: the descriptor advertises 1, while a
// caller that passes no Method gets kMethodWhenMissing. Width and Height
// not passed mean the source's own size.
//
// Types, ranges and defaults a generic parameter dialog offers.
constexpr ModuleParamDecl kParams[] = {
    {kParamInteger, 1, 5, 1, "Method"},
    {kParamInteger, 1, 200, 10, "Levels"},
    {kParamInteger, 1, 20, 1, "MinLevels"},
    {kParamInteger, 1, kIntMax, 100, "Width"},
    {kParamInteger, 1, kIntMax, 100, "Height"},
    {kParamInteger, 0, 199, 0, "ClearLastN"},
    {kParamColour, 0, 0xFFFFFFFF, 0, "Background Colour"},
    {kParamInteger, 0, 1, 0, "Transparency Flag"},
    {kParamInteger, 0, 1, 0, "Mipmap Collapse Flag"},
};

constexpr int32_t kMethodWhenMissing = 3;
constexpr int32_t kLevelsWhenMissing = 10;

constexpr ModuleDecl kDecl = {.magic = "MIPM",
                              .name = "Mipmap",
                              .description = "Mipmap",
                              .version = "1.00",
                              .params = kParams};

// Methods: how levels of 1 and above are made. Any other value filters with
// Size and Lanczos3.
enum Method : int32_t { kScale = 0, kHalfsize = 1, kSizeLanczos = 2, kSharedPalette = 3 };

// Levels value that measures the chain by the larger side.
constexpr int32_t kLevelsByLargerSide = 16;

enum SizeFilter : int32_t { kLanczos3 = 0, kPoint = 4 };

struct Settings {
    int32_t method;
    int32_t levels;
    int32_t minLevels;
    int32_t width;
    int32_t height;
    int32_t clearLastN;
    uint32_t background;
    int32_t transparency;
    int32_t collapse;
};

struct MipmapInstance {
    ModuleInstance base;
    int32_t count;     // levels made
    int32_t next;      // the level the next process call writes
    TavixInfo** infos; // one record per level
    uint8_t** pixels;  // one unpadded pixel buffer per level
};

Settings readSettings(const ModuleInstance* instance) {
    const TavixInfo* in = instance->images[0].info;
    Settings s{module_value_int(instance, 0, kMethodWhenMissing),
               module_value_int(instance, 1, kLevelsWhenMissing),
               module_value_int(instance, 2, 1),
               module_value_int(instance, 3, in->width),
               module_value_int(instance, 4, in->height),
               module_value_int(instance, 5, 0),
               module_value_uint(instance, 6, 0),
               module_value_int(instance, 7, 0),
               module_value_int(instance, 8, 0)};
    if (s.width < 1) s.width = 1;
    if (s.height < 1) s.height = 1;
    return s;
}

int32_t roundedLog2(int32_t v) {
    return static_cast<int32_t>(std::lround(std::log2(static_cast<double>(v))));
}

int32_t floorLog2(int32_t v) {
    int32_t n = 0;
    while (v >>= 1)
        ++n;
    return n;
}

// The number of levels:
// 1. The size allows round(log2(reference)) + 1 levels, the reference
//    being the smaller of Width and Height, or the larger when Levels is
//    16 (the chain that runs down to one pixel on the long side).
// 2. n = min(Levels, what the size allows), then raised to MinLevels.
// 3. The chain stops early where halving would take a side below 1 pixel:
//    never more than floor(log2(smaller side)) + 1 levels.
// 4. At least one level.
// Since a rounded logarithm is never below the floor of the smaller side's,
// step 3 decides whenever Levels reaches past the size, and MinLevels can
// raise the count only up to that same limit.
int32_t levelCount(const Settings& s) {
    int32_t smaller = s.width < s.height ? s.width : s.height;
    int32_t larger = s.width < s.height ? s.height : s.width;
    int32_t reference = s.levels == kLevelsByLargerSide ? larger : smaller;
    int32_t n = roundedLog2(reference) + 1;
    if (s.levels < n) n = s.levels;
    if (n < s.minLevels) n = s.minLevels;
    int32_t fit = floorLog2(smaller) + 1;
    if (n > fit) n = fit;
    return n < 1 ? 1 : n;
}

// ---- Level storage -------------------------------------------------------

void freeLevels(MipmapInstance* m) {
    for (int32_t i = 0; i < m->count; ++i) {
        if (m->infos && m->infos[i]) gfree(m->infos[i]);
        if (m->pixels && m->pixels[i]) gfree(m->pixels[i]);
    }
    if (m->infos) gfree(m->infos);
    if (m->pixels) gfree(m->pixels);
    m->infos = nullptr;
    m->pixels = nullptr;
    m->count = 0;
}

ImageEntry levelEntry(const MipmapInstance* m, int32_t i) {
    const TavixInfo* info = m->infos[i];
    return ImageEntry{info, m->pixels[i], module_row_length(info)};
}

// Replaces level i with a module's result, which is always unpadded.
void replaceLevel(MipmapInstance* m, int32_t i, ModuleResult& made) {
    if (m->infos[i]) gfree(m->infos[i]);
    if (m->pixels[i]) gfree(m->pixels[i]);
    m->infos[i] = made.info;
    m->pixels[i] = made.pixels;
    made = ModuleResult{};
}

bool copyImage(const ImageEntry& in, ModuleResult* out) {
    int32_t row = module_row_length(in.info);
    *out = ModuleResult{module_copy_info(in.info), nullptr, row};
    if (out->info) out->pixels = static_cast<uint8_t*>(galloc(row * in.info->height));
    if (!out->pixels) {
        module_result_free(out);
        return false;
    }
    for (int32_t y = 0; y < in.info->height; ++y)
        memcpy(out->pixels + static_cast<ptrdiff_t>(y) * row, module_row(in, y),
               static_cast<size_t>(row));
    return true;
}

bool sizeTo(const ImageEntry& in, int32_t w, int32_t h, int32_t filter, int32_t respect,
            ModuleResult* out) {
    const ModuleValue values[] = {ModuleValue::ofInt(w),      ModuleValue::ofInt(h),
                                  ModuleValue::ofInt(filter), ModuleValue::ofInt(respect),
                                  ModuleValue::ofUint(0),     ModuleValue::ofReal(1.0),
                                  ModuleValue::ofReal(1.0)};
    return resample::run_named("Size", in, values, 7, out);
}

bool scaleTo(const ImageEntry& in, int32_t w, int32_t h, ModuleResult* out) {
    const ModuleValue values[] = {ModuleValue::ofInt(w), ModuleValue::ofInt(h)};
    return resample::run_named("Scale", in, values, 2, out);
}

bool halve(const ImageEntry& in, ModuleResult* out) {
    const ModuleValue values[] = {
        ModuleValue::ofInt(3), ModuleValue::ofInt(0), ModuleValue::ofInt(0), ModuleValue::ofInt(0),
        ModuleValue::ofInt(0), ModuleValue::ofInt(0), ModuleValue::ofInt(0)};
    return resample::run_named("Halfsize", in, values, 7, out);
}

// Paints the whole level with the background. An indexed level takes the
// palette entry nearest to it.
bool paint(const ImageEntry& in, uint32_t background, ModuleResult* out) {
    uint32_t colour = in.info->bufferbpp <= 8
                          ? static_cast<uint32_t>(resample::palette_nearest(in.info, background))
                          : background;
    const ModuleValue values[] = {ModuleValue::ofInt(in.info->width),
                                  ModuleValue::ofInt(in.info->height), ModuleValue::ofUint(colour),
                                  ModuleValue::ofInt(0), ModuleValue::ofInt(0)};
    return resample::run_named("Rect", in, values, 5, out);
}

// ---- Making the chain ------------------------------------------------------

// What the chain is made from and how.
struct Plan {
    Settings s;
    int32_t method;    // after the indexed-source rules
    bool reduce;       // made in 32 bits from an indexed source, reduced at the end
    ImageEntry input;  // the caller's source
    ImageEntry source; // the source, or its 32-bit copy when reducing
    const TavixInfo* original;
};

bool makeLevelZero(const Plan& p, ModuleResult* out) {
    const TavixInfo* in = p.source.info;
    if (p.s.width == in->width && p.s.height == in->height) return copyImage(p.source, out);
    // Size reads 32-bit pixels only; an indexed source that is not reduced
    // afterwards is resized by taking the nearest pixel.
    if (in->bufferbpp <= 8) return scaleTo(p.source, p.s.width, p.s.height, out);
    return sizeTo(p.source, p.s.width, p.s.height, p.method == kHalfsize ? kPoint : kLanczos3,
                  p.s.transparency, out);
}

bool makeLevel(const Plan& p, const ImageEntry& previous, int32_t w, int32_t h, ModuleResult* out) {
    if (p.method == kHalfsize) return halve(previous, out);
    if (p.method == kScale) return scaleTo(previous, w, h, out);
    return sizeTo(previous, w, h, kLanczos3, p.s.transparency, out);
}

void nameLevel(TavixInfo* info, const TavixInfo* source, int32_t i) {
    char name[sizeof info->framename];
    memcpy(name, source->framename, sizeof name);
    name[sizeof name - 1] = '\0';
    snprintf(info->framename, sizeof info->framename, "%.490s_mm%02d", name, i);
}

void markLevel(TavixInfo* info, const Settings& s) {
    if (s.collapse == 1)
        info->attributes &= ~kAttrMipLevel;
    else
        info->attributes |= kAttrMipLevel;
}

// The levels of an indexed source, made in 32 bits, are reduced together:
// Wu's quantizer makes one palette from every level in the source's palette
// format (its start colour, entry count and channel bits), and each level
// is mapped onto it by nearest colour. Entries outside the source's range
// keep the source's colours.
bool reduceLevels(MipmapInstance* m, const Plan& p) {
    const TavixInfo* in = p.original;
    QuantIndexedSettings s;
    s.start = std::clamp(in->startcolour, 0, 255);
    s.count = std::min(resample::palette_size(in), 256 - s.start);
    const int32_t bits[4] = {in->alphabits, in->redbits, in->greenbits, in->bluebits};
    for (int c = 0; c < 4; ++c)
        s.bits[c] = bits[c] > 0 && bits[c] < 8 ? bits[c] : 8;
    uint32_t palette[256];
    uint8_t used[256] = {};
    memcpy(palette, in->colours, sizeof palette);
    ImageEntry* levels =
        static_cast<ImageEntry*>(galloc(m->count * static_cast<int32_t>(sizeof(ImageEntry))));
    if (!levels) return false;
    for (int32_t i = 0; i < m->count; ++i)
        levels[i] = levelEntry(m, i);
    bool ok = quant_build_palette(s, levels, m->count, palette, used) > 0;
    gfree(levels);
    for (int32_t i = 0; ok && i < m->count; ++i) {
        ModuleResult made{};
        ok = quant_make_indexed(levelEntry(m, i), palette, used, s, &made);
        if (!ok) break;
        TavixInfo* info = made.info;
        info->bufferbpp = in->bufferbpp;
        info->bpp = in->bpp;
        info->alphabits = in->alphabits;
        info->redbits = in->redbits;
        info->greenbits = in->greenbits;
        info->bluebits = in->bluebits;
        info->numcolours = in->numcolours;
        replaceLevel(m, i, made);
    }
    return ok;
}

bool makeChain(MipmapInstance* m, const Plan& p, int32_t n) {
    int32_t bytes = n * static_cast<int32_t>(sizeof(void*));
    m->infos = static_cast<TavixInfo**>(galloc(bytes));
    m->pixels = static_cast<uint8_t**>(galloc(bytes));
    if (!m->infos || !m->pixels) return false;
    memset(m->infos, 0, static_cast<size_t>(bytes));
    memset(m->pixels, 0, static_cast<size_t>(bytes));
    m->count = n;
    for (int32_t i = 0; i < n; ++i) {
        int32_t w = p.s.width >> i, h = p.s.height >> i;
        ModuleResult made{};
        bool ok =
            i == 0 ? makeLevelZero(p, &made) : makeLevel(p, levelEntry(m, i - 1), w, h, &made);
        if (ok) replaceLevel(m, i, made);
        if (ok && n - i <= p.s.clearLastN) {
            ok = paint(levelEntry(m, i), p.s.background, &made);
            if (ok) replaceLevel(m, i, made);
        }
        if (!ok || m->infos[i]->width != w || m->infos[i]->height != h) return false;
        if (i > 0) nameLevel(m->infos[i], p.original, i);
        markLevel(m->infos[i], p.s);
    }
    return true;
}

// Indexed sources: Method 2 is taken as Method 1. Methods that filter with
// Size (3, and likewise every method other than 0 and 1) first expand the
// source to 32 bits, make every level there and then reduce them together
// to the source's palette format.
int openInstance(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                 int32_t valueCount, const ModuleValue* values) {
    if (!module_open_instance(kDecl, out, imageCount, images, valueCount, values, 1,
                              static_cast<int32_t>(sizeof(MipmapInstance))))
        return 0;
    auto* m = reinterpret_cast<MipmapInstance*>(*out);
    Plan p{readSettings(*out), 0, false, images[0], images[0], images[0].info};
    p.method = p.s.method;
    bool indexed = p.original->bufferbpp <= 8;
    if (indexed && p.method == kSizeLanczos) p.method = kHalfsize;
    p.reduce = indexed && p.method != kHalfsize && p.method != kScale;
    TavixInfo* wideInfo = nullptr;
    uint8_t* widePixels = nullptr;
    bool ok = images[0].pixels != nullptr;
    if (ok && p.reduce) {
        ok = resample::indexed_to_argb(images[0], &wideInfo, &widePixels);
        p.source = ImageEntry{wideInfo, widePixels, ok ? wideInfo->width * 4 : 0};
    }
    ok = ok && makeChain(m, p, levelCount(p.s));
    if (ok && p.reduce) ok = reduceLevels(m, p);
    if (wideInfo) gfree(wideInfo);
    if (widePixels) gfree(widePixels);
    if (!ok) {
        freeLevels(m);
        module_close_instance(*out);
        *out = nullptr;
        gprintf("Mipmap - could not make the levels\n");
    }
    return ok ? 1 : 0;
}

TavixInfo* query(ModuleInstance* instance, int32_t index) {
    if (!module_instance_ok(instance)) return nullptr;
    auto* m = reinterpret_cast<MipmapInstance*>(instance);
    if (index < 0 || index >= m->count) return nullptr;
    return module_copy_info(m->infos[index]);
}

// After the last level, returns 0 without writing: that is how a caller
// knows the chain is complete, not a failure worth a message.
int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_instance_ok(instance)) return 0;
    auto* m = reinterpret_cast<MipmapInstance*>(instance);
    if (m->next >= m->count) return 0;
    ImageEntry level = levelEntry(m, m->next);
    int32_t row = module_row_length(level.info);
    if (!pixels || rowbytes < row ||
        (result && (result->width != level.info->width || result->height != level.info->height ||
                    module_pixel_bytes(result) != module_pixel_bytes(level.info)))) {
        gprintf("Mipmap - result for level %d must be %d x %d\n", m->next, level.info->width,
                level.info->height);
        return 0;
    }
    for (int32_t y = 0; y < level.info->height; ++y)
        memcpy(module_row(pixels, rowbytes, y), module_row(level, y), static_cast<size_t>(row));
    ++m->next;
    return 1;
}

int closeInstance(ModuleInstance* instance) {
    if (!instance) return 0;
    freeLevels(reinterpret_cast<MipmapInstance*>(instance));
    return module_close_instance(instance);
}

} // namespace

constexpr ModuleEntry mod_mipmap = {.describe = module_describer<kDecl>,
                                    .open = openInstance,
                                    .query = query,
                                    .process = process,
                                    .close = closeInstance};
