#include "imaging/blend/blend.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace {

enum : int32_t {
    kAlpha,
    kPaste,
    kSub,
    kAdd,
    kRemove,
    kPsnr,
    kPrealpha,
    kMultiple,
    kScreen,
    kOverlay,
    kTmask,
};
enum : int32_t { kCombine, kBackground, kForeground };

// Identical images would give an infinite ratio: the mean is raised to
// this floor, which is exactly 128 dB.
const double kMeanFloor = std::pow(255.0 / std::pow(10.0, 6.4), 2.0);

struct PsnrState {
    double diff = 0;      // squared channel differences of this call
    double luminance = 0; // squared luminance differences of this call
    int32_t channels = 3; // channels compared per pixel: 3, 4, or 1 for indices
    double totalDiff = 0;
    double totalLuminance = 0;
    double totalSamples = 0; // pixels x channels, summed over the calls
    double totalPixels = 0;
    BlendPsnr ratios{128, 128, 128, 128};
};
PsnrState g_psnr;

struct Settings {
    int32_t method;
    uint32_t colour;
    double firstPercentage;
    double secondPercentage;
    uint32_t mask;
    int32_t paletteMethod;
};

Settings readSettings(const ModuleInstance* instance) {
    return {module_value_int(instance, 0, kAlpha),       module_value_uint(instance, 1, 0),
            module_value_real(instance, 2, 100.0),       module_value_real(instance, 3, 100.0),
            module_value_uint(instance, 4, 0xFFFFFFFFu), module_value_int(instance, 5, kCombine)};
}

int channel(uint32_t pixel, int shift) {
    return static_cast<int>((pixel >> shift) & 0xFF);
}

uint32_t pack(int a, int r, int g, int b) {
    return static_cast<uint32_t>(a) << 24 | static_cast<uint32_t>(r) << 16 |
           static_cast<uint32_t>(g) << 8 | static_cast<uint32_t>(b);
}

double ratio(double mean) {
    return -20.0 * std::log10(std::sqrt(std::max(mean, kMeanFloor)) / 255.0);
}

// ---- 32-bit pixels ---------------------------------------------------------

uint32_t scaled(uint32_t pixel, double percentage) {
    int c[4];
    for (int k = 0; k < 4; ++k) {
        double v = channel(pixel, 8 * k) * percentage * 0.01;
        c[k] = static_cast<int>(std::clamp(v, 0.0, 255.0));
    }
    return pack(c[3], c[2], c[1], c[0]);
}

float luminance(int r, int g, int b, int a) {
    return (0.299f * static_cast<float>(r) + 0.587f * static_cast<float>(g) +
            0.114f * static_cast<float>(b)) *
           static_cast<float>(a) * (1.0f / 255.0f);
}

void measure(uint32_t lower, uint32_t upper) {
    int la = channel(lower, 24), ua = channel(upper, 24);
    if (g_psnr.channels < 4) la = ua = 255;
    double sum = 0;
    for (int shift : {16, 8, 0}) {
        double d = channel(lower, shift) - channel(upper, shift);
        sum += d * d;
    }
    if (g_psnr.channels == 4) sum += static_cast<double>(la - ua) * (la - ua);
    g_psnr.diff += sum;
    const double d = static_cast<double>(
                         luminance(channel(lower, 16), channel(lower, 8), channel(lower, 0), la)) -
                     static_cast<double>(
                         luminance(channel(upper, 16), channel(upper, 8), channel(upper, 0), ua));
    g_psnr.luminance += d * d;
}

int overlay(int f, int b) {
    if (b <= 128) return std::min((f * b + 63) / 128, 255);
    return 255 - (511 - 2 * f) * (255 - b) / 255;
}

// One colour channel of the lower value `b` under the upper value `f`,
// with the upper alpha `fa`. Each product is divided on its own and the
// terms added after their divisions.
int colourChannel(int32_t method, int f, int b, int fa) {
    switch (method) {
    case kSub:
    case kRemove:
        return std::max(b - f, 0);
    case kAdd:
        return std::min(b + f, 255);
    case kPrealpha:
        return std::min(f + (255 - fa) * b / 255, 255);
    case kMultiple:
        return (f * b / 255) * fa / 255 + (255 - fa) * b / 255;
    case kScreen:
        return (255 - (255 - f) * (255 - b) / 255) * fa / 255 + (255 - fa) * b / 255;
    case kOverlay:
        return overlay(f, b) * fa / 255 + (255 - fa) * b / 255;
    default:
        return std::min((f * fa + (255 - fa) * b) / 255, 255); // kAlpha
    }
}

int alphaChannel(int32_t method, int fa, int ba) {
    switch (method) {
    case kSub:
    case kAdd:
        return ba;
    case kRemove:
        return std::max(ba - fa, 0);
    default:
        return std::max(fa, ba);
    }
}

uint32_t blendArgb(uint32_t lower, uint32_t upper, int32_t method, double percentage, uint32_t mask,
                   bool covered) {
    if (percentage != 100.0) upper = scaled(upper, percentage);
    if (method < kPaste || method > kTmask) method = kAlpha;
    uint32_t out;
    const int fa = channel(upper, 24);
    switch (method) {
    case kPaste:
        out = covered ? upper : lower;
        break;
    case kTmask:
        out = fa != 0 ? upper : lower;
        break;
    case kPsnr:
        measure(lower, upper);
        out = lower;
        break;
    case kMultiple:
    case kScreen:
    case kOverlay:
        if (!covered) {
            out = lower;
            break;
        }
        [[fallthrough]];
    default:
        out = pack(alphaChannel(method, fa, channel(lower, 24)),
                   colourChannel(method, channel(upper, 16), channel(lower, 16), fa),
                   colourChannel(method, channel(upper, 8), channel(lower, 8), fa),
                   colourChannel(method, channel(upper, 0), channel(lower, 0), fa));
        break;
    }
    uint32_t keep = 0;
    for (int shift = 0; shift < 32; shift += 8)
        if (((mask >> shift) & 0xFF) == 0) keep |= 0xFFu << shift;
    return (out & ~keep) | (lower & keep);
}

// ---- Palette indices --------------------------------------------------------

uint8_t blendIndex(int lower, int upper, int32_t method, bool covered, int upperAlpha,
                   int lowerAlpha) {
    switch (method) {
    case kPaste:
        return static_cast<uint8_t>(covered ? upper : lower);
    case kSub:
        return static_cast<uint8_t>((lower - upper) & 255);
    case kAdd:
        return static_cast<uint8_t>((lower + upper) & 255);
    case kRemove:
        return static_cast<uint8_t>(std::max(lower - upper, 0));
    case kPsnr: {
        const double d = lower - upper;
        g_psnr.diff += d * d;
        return static_cast<uint8_t>(lower);
    }
    default:
        return static_cast<uint8_t>(!covered || upperAlpha < lowerAlpha ? lower : upper);
    }
}

// ---- Placement ----------------------------------------------------------------

struct Area {
    int64_t x, y, width, height;
};

// The union of the inputs' rectangles; false (one line printed) when it does
// not fit a record.
bool unionArea(const ModuleInstance* instance, Area& area) {
    int64_t left = INT64_MAX, top = INT64_MAX, right = INT64_MIN, bottom = INT64_MIN;
    const int32_t count = std::min(instance->imageCount, 2);
    for (int32_t k = 0; k < count; ++k) {
        const TavixInfo* info = instance->images[k].info;
        left = std::min<int64_t>(left, info->defaultx);
        top = std::min<int64_t>(top, info->defaulty);
        right = std::max<int64_t>(right, static_cast<int64_t>(info->defaultx) + info->width);
        bottom = std::max<int64_t>(bottom, static_cast<int64_t>(info->defaulty) + info->height);
    }
    area = {left, top, right - left, bottom - top};
    if (area.width > INT32_MAX || area.height > INT32_MAX) {
        gprintf("Blend - the images lie too far apart to be blended\n");
        return false;
    }
    return true;
}

void mergePalette(const ModuleInstance* instance, TavixInfo* result) {
    const TavixInfo* background = instance->images[0].info;
    const TavixInfo* foreground = instance->images[1].info;
    result->numcolours = std::max(background->numcolours, foreground->numcolours);
    const int32_t method = module_value_int(instance, 5, kCombine);
    if (method == kBackground) {
        std::copy(background->colours, background->colours + 256, result->colours);
        return;
    }
    if (method == kForeground) {
        std::copy(foreground->colours, foreground->colours + 256, result->colours);
        return;
    }
    const uint32_t mask = module_value_uint(instance, 4, 0xFFFFFFFFu);
    for (int i = 0; i < 256; ++i) {
        const TavixColour& f = foreground->colours[i];
        TavixColour& r = result->colours[i];
        if (f.alpha < background->colours[i].alpha) continue;
        if (mask & 0xFF000000u) r.alpha = f.alpha;
        if (mask & 0x00FF0000u) r.red = f.red;
        if (mask & 0x0000FF00u) r.green = f.green;
        if (mask & 0x000000FFu) r.blue = f.blue;
    }
}

bool inputsFit(const ModuleInstance* instance) {
    if (!module_instance_ok(instance)) return false;
    const int32_t count = std::min(instance->imageCount, 2);
    for (int32_t k = 0; k < count; ++k) {
        const ImageEntry& entry = instance->images[k];
        if (!module_info_ok(entry.info) || !entry.pixels ||
            entry.rowbytes < module_row_length(entry.info)) {
            gprintf("Blend - image %d is not usable\n", static_cast<int>(k));
            return false;
        }
    }
    if (count == 2 && module_pixel_bytes(instance->images[0].info) !=
                          module_pixel_bytes(instance->images[1].info)) {
        gprintf("Blend - one image holds palette indices and the other colours; give both the same "
                "depth\n");
        return false;
    }
    return true;
}

// The input pixel at a place of the result, or 0 when the image does not
// cover it.
uint32_t pixelAt(const ImageEntry& entry, int64_t wx, int64_t wy, bool& covered) {
    const int64_t x = wx - entry.info->defaultx, y = wy - entry.info->defaulty;
    covered = x >= 0 && y >= 0 && x < entry.info->width && y < entry.info->height;
    if (!covered) return 0;
    const uint8_t* row = module_row(entry, static_cast<int32_t>(y));
    if (module_pixel_bytes(entry.info) == 1) return row[x];
    return module_load_argb(row + 4 * x);
}

void finishRatios(const TavixInfo* result) {
    const double pixels = static_cast<double>(result->width) * result->height;
    const double samples = pixels * g_psnr.channels;
    g_psnr.totalDiff += g_psnr.diff;
    g_psnr.totalLuminance += g_psnr.luminance;
    g_psnr.totalSamples += samples;
    g_psnr.totalPixels += pixels;
    g_psnr.ratios = {ratio(g_psnr.diff / samples), ratio(g_psnr.luminance / pixels),
                     ratio(g_psnr.totalDiff / g_psnr.totalSamples),
                     ratio(g_psnr.totalLuminance / g_psnr.totalPixels)};
}

} // namespace

TavixInfo* blend_query(const ModuleInstance* instance) {
    if (!inputsFit(instance)) return nullptr;
    const TavixInfo* background = instance->images[0].info;
    TavixInfo* result = module_copy_info(background);
    if (!result || instance->imageCount < 2) return result;
    Area area;
    if (!unionArea(instance, area)) {
        gfree(result);
        return nullptr;
    }
    const int32_t dx = static_cast<int32_t>(background->defaultx - area.x);
    const int32_t dy = static_cast<int32_t>(background->defaulty - area.y);
    result->defaultx = static_cast<int32_t>(area.x);
    result->defaulty = static_cast<int32_t>(area.y);
    result->width = static_cast<int32_t>(area.width);
    result->height = static_cast<int32_t>(area.height);
    result->centerx += dx;
    result->centery += dy;
    for (int32_t i = 0; i < module_hotspot_count(result); ++i) {
        result->hotspots[i].x += dx;
        result->hotspots[i].y += dy;
    }
    mergePalette(instance, result);
    if (!module_info_ok(result)) {
        gprintf("Blend - the blended image would be too large\n");
        gfree(result);
        return nullptr;
    }
    return result;
}

int blend_process(const ModuleInstance* instance, const TavixInfo* result, void* pixels,
                  int32_t rowbytes) {
    if (!inputsFit(instance) || !result || !pixels) return 0;
    const bool two = instance->imageCount >= 2;
    Area area{result->defaultx, result->defaulty, result->width, result->height};
    if (two && !unionArea(instance, area)) return 0;
    const bool indexed = module_pixel_bytes(result) == 1;
    if (area.width != result->width || area.height != result->height ||
        indexed != (module_pixel_bytes(instance->images[0].info) == 1) ||
        rowbytes < module_row_length(result)) {
        gprintf("Blend - the result does not fit the images\n");
        return 0;
    }
    const Settings s = readSettings(instance);
    const ImageEntry& first = instance->images[0];
    const ImageEntry* second = two ? &instance->images[1] : nullptr;
    g_psnr.diff = g_psnr.luminance = 0;
    g_psnr.channels = first.info->alphabits > 0 || (second && second->info->alphabits > 0) ? 4 : 3;
    if (indexed) g_psnr.channels = 1;
    // Indexed results look up the upper pixel's alpha in the palette Palette
    // Method names, the lower one's in the result's merged palette.
    const TavixColour* firstUpper =
        (s.paletteMethod == kForeground && second ? second : &first)->info->colours;
    const TavixColour* secondUpper =
        second ? (s.paletteMethod == kBackground ? first : *second).info->colours : nullptr;
    const int32_t firstMethod = s.method == kAlpha ? kAlpha : kPaste;

    for (int32_t y = 0; y < result->height; ++y) {
        uint8_t* row = module_row(pixels, rowbytes, y);
        for (int32_t x = 0; x < result->width; ++x) {
            const int64_t wx = area.x + x, wy = area.y + y;
            bool covered = false;
            const uint32_t upper = pixelAt(first, wx, wy, covered);
            if (indexed) {
                const int ground = static_cast<int>(s.colour & 0xFF);
                int v = blendIndex(ground, static_cast<int>(upper), firstMethod, covered,
                                   firstUpper[upper & 0xFF].alpha, result->colours[ground].alpha);
                if (second) {
                    const uint32_t top = pixelAt(*second, wx, wy, covered);
                    v = blendIndex(v, static_cast<int>(top), s.method, covered,
                                   secondUpper[top & 0xFF].alpha, result->colours[v].alpha);
                }
                row[x] = static_cast<uint8_t>(v);
                continue;
            }
            uint32_t v =
                blendArgb(s.colour, upper, firstMethod, s.firstPercentage, 0xFFFFFFFFu, covered);
            if (second) {
                const uint32_t top = pixelAt(*second, wx, wy, covered);
                v = blendArgb(v, top, s.method, s.secondPercentage, s.mask, covered);
            }
            module_store_argb(row + 4 * x, v);
        }
    }
    finishRatios(result);
    return 1;
}

void blend_psnr_reset() {
    g_psnr = PsnrState{};
}

BlendPsnr blend_psnr_read() {
    return g_psnr.ratios;
}
