// Pixel ("Pixel Expression"): evaluates one expression per channel for
// every pixel.
//
// Values (each text slot holds the address of a zero-terminated text, or
// null; an empty or missing text leaves its channel as it is):
//   0 Expression Handle  an ExprContext* of the caller's, so that variables
//                        and functions live on from one image to the next
//                        (a frame counter, a user function); null: the
//                        module makes a context of its own per open. Typed
//                        kParamHandle: only a program can give one.
//   1-4 Alpha, Red, Green, Blue Expression
//   5 Index Expression   for 8-bit images
//   6, 7 X, Y Expression the source position each result pixel is read from
//                        (rounded, clamped to the image); by default its own
//
// Variables, set before any expression runs:
//   x, y                 the result pixel's position
//   a, r, g, b           32-bit images: the channels of the source pixel, 0..255
//   i, b, g, a           8-bit images: the source pixel's index and the blue,
//                        green and alpha of its palette entry (the letters of
//                        "ibga"; r is the index's red, for symmetry)
//   ispal, rowbytes, frame, framenum, width, height, startcolour,
//   numcolours, colours (= numcolours), subtype, packed, quality, framesize,
//   alphabits ... bluebits, centerx, centery, defaultx, defaulty,
//   numhotspots, hot0x, hot0y ... hot19x, hot19y: the record of the image
//   being written; framename is the length of its name.
//   The "a_" set (a_adr, a_rowbytes, a_bpp, a_fps, a_dpi and the rest)
//   describes the input image as the module received it; a_adr is the
//   address of its first pixel row.
//
// On 8-bit images the Index Expression computes each pixel's index; the
// Alpha/Red/Green/Blue expressions, when given, are run once per palette
// entry (i = the entry's number, a/r/g/b its colour) and rewrite the palette
// of the result record, so the palette stays untouched unless asked.
// Results are rounded to the nearest integer and clamped to 0..255.

#include "imaging/expr/expr.h"
#include "imaging/galloc.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/modules.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

enum Slot : int32_t { kHandle = 0, kAlpha, kRed, kGreen, kBlue, kIndex, kX, kY, kSlotCount };

constexpr ModuleParamDecl kParams[] = {
    {kParamHandle, 0, 0, 0, "Expression Handle"},
    {kParamText, kIntMin, kIntMax, 0, "Alpha Expression"},
    {kParamText, kIntMin, kIntMax, 0, "Red Expression"},
    {kParamText, kIntMin, kIntMax, 0, "Green Expression"},
    {kParamText, kIntMin, kIntMax, 0, "Blue Expression"},
    {kParamText, kIntMin, kIntMax, 0, "Index Expression"},
    {kParamText, kIntMin, kIntMax, 0, "X Expression"},
    {kParamText, kIntMin, kIntMax, 0, "Y Expression"},
};

constexpr ModuleDecl kDecl = {.magic = "PIXL",
                              .name = "Pixel",
                              .description = "Pixel Expression",
                              .version = "1.12",
                              .params = kParams};

constexpr int kNamedHotSpots = 20;

struct PixelInstance {
    ModuleInstance base;
    ExprContext* context;
    bool ownsContext;
    ExprProgram* programs[kSlotCount]; // null where the text is missing or empty
    double* x;
    double* y;
    double* channel[4]; // a, r, g, b
    double* index;      // i
};

const char* slotText(const ModuleInstance* instance, int32_t slot) {
    if (slot >= instance->valueCount || !instance->values) return nullptr;
    auto* text = static_cast<const char*>(instance->values[slot].asPointer());
    return text && text[0] ? text : nullptr;
}

// False as soon as a variable cannot be made (memory is short); the rest
// are then not tried, so one failure prints one line.
bool setRecordVariables(ExprContext* context, const char* prefix, const TavixInfo& info,
                        int32_t rowbytes) {
    bool ok = true;
    auto set = [&](const char* name, double value) {
        char full[32];
        snprintf(full, sizeof full, "%s%s", prefix, name);
        ok = ok && exprSetVariable(context, full, value) != nullptr;
    };
    set("rowbytes", rowbytes);
    set("frame", info.frame);
    set("framenum", info.frame);
    set("framename", static_cast<double>(strnlen(info.framename, sizeof info.framename)));
    set("width", info.width);
    set("height", info.height);
    set("bpp", info.bpp);
    set("startcolour", info.startcolour);
    set("numcolours", info.numcolours);
    set("colours", info.numcolours);
    set("subtype", info.subtype);
    set("packed", info.packed);
    set("quality", info.quality);
    set("framesize", info.framesize);
    set("alphabits", info.alphabits);
    set("redbits", info.redbits);
    set("greenbits", info.greenbits);
    set("bluebits", info.bluebits);
    set("centerx", info.centerx);
    set("centery", info.centery);
    set("defaultx", info.defaultx);
    set("defaulty", info.defaulty);
    set("numhotspots", module_hotspot_count(&info));
    set("fps", info.fps);
    set("dpi", info.dpi);
    for (int i = 0; i < kNamedHotSpots; ++i) {
        char name[16];
        snprintf(name, sizeof name, "hot%dx", i);
        set(name, info.hotspots[i].x);
        snprintf(name, sizeof name, "hot%dy", i);
        set(name, info.hotspots[i].y);
    }
    return ok;
}

void freePrograms(PixelInstance* pixel) {
    for (ExprProgram*& program : pixel->programs) {
        if (program) exprFreeProgram(program);
        program = nullptr;
    }
}

bool compilePrograms(PixelInstance* pixel) {
    for (int32_t slot = kAlpha; slot < kSlotCount; ++slot) {
        const char* text = slotText(&pixel->base, slot);
        if (!text) continue;
        pixel->programs[slot] = exprCompile(pixel->context, text);
        if (!pixel->programs[slot]) {
            gprintf("Pixel - cannot use the %s\n", kParams[slot].name);
            return false;
        }
    }
    return true;
}

// The variables the per-pixel loop writes through, created before the
// expressions compile so that they resolve to these handles.
bool makePixelVariables(PixelInstance* pixel) {
    ExprContext* c = pixel->context;
    pixel->x = exprSetVariable(c, "x", 0);
    pixel->y = exprSetVariable(c, "y", 0);
    pixel->channel[0] = exprSetVariable(c, "a", 0);
    pixel->channel[1] = exprSetVariable(c, "r", 0);
    pixel->channel[2] = exprSetVariable(c, "g", 0);
    pixel->channel[3] = exprSetVariable(c, "b", 0);
    pixel->index = exprSetVariable(c, "i", 0);
    return pixel->x && pixel->y && pixel->channel[0] && pixel->channel[1] && pixel->channel[2] &&
           pixel->channel[3] && pixel->index;
}

uint8_t toByte(double value) {
    if (!(value > 0)) return 0; // NaN too
    if (value >= 255) return 255;
    return static_cast<uint8_t>(std::lround(value));
}

int32_t clampTo(double value, int32_t limit) {
    if (!(value > 0)) return 0;
    if (value >= limit - 1) return limit - 1;
    return static_cast<int32_t>(std::lround(value));
}

void loadColour(PixelInstance* pixel, uint32_t argb) {
    for (int c = 0; c < 4; ++c)
        *pixel->channel[c] = (argb >> (24 - 8 * c)) & 0xFF;
}

uint32_t paletteArgb(const TavixInfo& info, int index) {
    const TavixColour& c = info.colours[index & 255];
    return static_cast<uint32_t>(c.alpha) << 24 | c.red << 16 | c.green << 8 | c.blue;
}

// Runs the channel expressions, in the order alpha, red, green, blue;
// channels without an expression keep their value. Each expression starts
// from the pixel's own x, y, i, a, r, g, b, whatever an earlier one assigned
// to them, so "r" always means the source red. Any other variable an
// expression assigns (t = (r + g + b) / 3) is seen by the later ones.
uint32_t runChannels(PixelInstance* pixel, uint32_t argb) {
    const double x = *pixel->x, y = *pixel->y, index = *pixel->index;
    uint8_t out[4];
    for (int c = 0; c < 4; ++c) {
        ExprProgram* program = pixel->programs[kAlpha + c];
        if (!program) {
            out[c] = static_cast<uint8_t>(argb >> (24 - 8 * c));
            continue;
        }
        *pixel->x = x;
        *pixel->y = y;
        *pixel->index = index;
        loadColour(pixel, argb);
        out[c] = toByte(exprRun(program));
    }
    return static_cast<uint32_t>(out[0]) << 24 | out[1] << 16 | out[2] << 8 | out[3];
}

bool hasChannelExpression(const PixelInstance* pixel) {
    return pixel->programs[kAlpha] || pixel->programs[kRed] || pixel->programs[kGreen] ||
           pixel->programs[kBlue];
}

// The source position of result pixel (x, y), from the X and Y expressions.
void sourcePosition(PixelInstance* pixel, const TavixInfo& info, int32_t& sx, int32_t& sy) {
    double x = *pixel->x, y = *pixel->y;
    if (pixel->programs[kX]) sx = clampTo(exprRun(pixel->programs[kX]), info.width);
    if (pixel->programs[kY]) sy = clampTo(exprRun(pixel->programs[kY]), info.height);
    *pixel->x = x; // an expression may have assigned to them
    *pixel->y = y;
}

void processTrueColour(PixelInstance* pixel, const ImageEntry& in, uint8_t* pixels,
                       int32_t rowbytes) {
    const TavixInfo& info = *in.info;
    for (int32_t y = 0; y < info.height; ++y) {
        uint8_t* row = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < info.width; ++x) {
            *pixel->x = x;
            *pixel->y = y;
            int32_t sx = x, sy = y;
            sourcePosition(pixel, info, sx, sy);
            uint32_t argb = module_load_argb(module_row(in, sy) + 4 * sx);
            loadColour(pixel, argb);
            module_store_argb(row + 4 * x, runChannels(pixel, argb));
        }
    }
}

void processIndexed(PixelInstance* pixel, const ImageEntry& in, uint8_t* pixels, int32_t rowbytes) {
    const TavixInfo& info = *in.info;
    for (int32_t y = 0; y < info.height; ++y) {
        uint8_t* row = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < info.width; ++x) {
            *pixel->x = x;
            *pixel->y = y;
            int32_t sx = x, sy = y;
            sourcePosition(pixel, info, sx, sy);
            uint8_t index = module_row(in, sy)[sx];
            loadColour(pixel, paletteArgb(info, index));
            *pixel->index = index;
            row[x] = pixel->programs[kIndex] ? toByte(exprRun(pixel->programs[kIndex])) : index;
        }
    }
}

void rewritePalette(PixelInstance* pixel, TavixInfo* result) {
    for (int entry = 0; entry < 256; ++entry) {
        uint32_t argb = paletteArgb(*result, entry);
        *pixel->x = *pixel->y = 0;
        *pixel->index = entry;
        loadColour(pixel, argb);
        uint32_t out = runChannels(pixel, argb);
        result->colours[entry] = {static_cast<uint8_t>(out), static_cast<uint8_t>(out >> 8),
                                  static_cast<uint8_t>(out >> 16), static_cast<uint8_t>(out >> 24)};
    }
}

int closeInstance(ModuleInstance* instance);

int openInstance(ModuleInstance** out, int32_t imageCount, const ImageEntry* images,
                 int32_t valueCount, const ModuleValue* values) {
    if (!module_open_instance(kDecl, out, imageCount, images, valueCount, values, 1,
                              static_cast<int32_t>(sizeof(PixelInstance))))
        return 0;
    auto* pixel = reinterpret_cast<PixelInstance*>(*out);
    const void* handle = valueCount > kHandle && values ? values[kHandle].asPointer() : nullptr;
    pixel->context = static_cast<ExprContext*>(const_cast<void*>(handle));
    if (!pixel->context) {
        pixel->context = exprCreate();
        pixel->ownsContext = true;
    }
    const TavixInfo& info = *images[0].info;
    bool ok = pixel->context && makePixelVariables(pixel);
    ok = ok && exprSetVariable(pixel->context, "ispal", info.bufferbpp <= 8 ? 1 : 0) &&
         setRecordVariables(pixel->context, "", info, images[0].rowbytes) &&
         setRecordVariables(pixel->context, "a_", info, images[0].rowbytes) &&
         exprSetVariable(pixel->context, "a_adr",
                         static_cast<double>(reinterpret_cast<uintptr_t>(images[0].pixels)));
    ok = ok && compilePrograms(pixel);
    if (!ok) {
        closeInstance(*out);
        *out = nullptr;
        return 0;
    }
    return 1;
}

TavixInfo* query(ModuleInstance* instance, int32_t) {
    if (!module_instance_ok(instance)) return nullptr;
    TavixInfo* result = module_copy_info(instance->images[0].info);
    auto* pixel = reinterpret_cast<PixelInstance*>(instance);
    if (result && result->bufferbpp <= 8 && hasChannelExpression(pixel))
        rewritePalette(pixel, result);
    return result;
}

int process(ModuleInstance* instance, const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(kDecl, instance, result, pixels, rowbytes)) return 0;
    auto* pixel = reinterpret_cast<PixelInstance*>(instance);
    const ImageEntry& in = instance->images[0];
    // Writing over the input in place would feed changed pixels back into
    // later X/Y lookups; work from a copy then.
    bool inPlace = pixels == in.pixels;
    ImageEntry source = in;
    uint8_t* copy = nullptr;
    if (inPlace) {
        int64_t bytes = static_cast<int64_t>(in.rowbytes) * in.info->height;
        copy = static_cast<uint8_t*>(
            galloc(static_cast<int32_t>(std::min<int64_t>(bytes, INT32_MAX))));
        if (!copy || bytes > INT32_MAX) {
            if (copy) gfree(copy);
            return 0;
        }
        memcpy(copy, in.pixels, static_cast<size_t>(bytes));
        source.pixels = copy;
    }
    if (in.info->bufferbpp <= 8)
        processIndexed(pixel, source, static_cast<uint8_t*>(pixels), rowbytes);
    else
        processTrueColour(pixel, source, static_cast<uint8_t*>(pixels), rowbytes);
    if (copy) gfree(copy);
    return 1;
}

int closeInstance(ModuleInstance* instance) {
    auto* pixel = reinterpret_cast<PixelInstance*>(instance);
    if (pixel) {
        freePrograms(pixel);
        if (pixel->ownsContext && pixel->context) exprDestroy(pixel->context);
        pixel->context = nullptr;
    }
    return module_close_instance(instance);
}

} // namespace

constexpr ModuleEntry mod_pixel = {.describe = module_describer<kDecl>,
                                   .open = openInstance,
                                   .query = query,
                                   .process = process,
                                   .close = closeInstance};
