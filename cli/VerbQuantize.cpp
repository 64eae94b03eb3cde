// zytool quantize IN OUT [--colors K] [--method NAME] [--dither D]
// [--shared] [--select EXPR]: reduces the selected frames to 8-bit indexed
// images, each with its own palette or, with --shared, all with one.
//
// The quantizers named Wu, Wu555, Wu777, Wu Ve, Lloyd and MQ work on colour
// alone; on a frame with transparent pixels they would make it opaque, so
// the verb refuses them there and names the ones that keep alpha. Without
// --method it takes Wu for opaque frames and Tw otherwise.

#include "cli/Reduce.h"
#include "cli/Verbs.h"
#include "imaging/quant/indexed.h"
#include "imaging/quant/quant.h"

#include <algorithm>
#include <cstdlib>
#include <strings.h>

namespace zytool {
namespace {

bool hasAlpha(const TavixFrame& frame) {
    const TavixInfo& info = *frame.info;
    for (int32_t y = 0; y < info.height; ++y)
        for (int32_t x = 0; x < info.width; ++x) {
            const uint8_t* p = frame.pixels.data() + static_cast<size_t>(y) * frame.pitch;
            uint32_t argb;
            if (info.bufferbpp <= 8) {
                const TavixColour& c = info.colours[p[x]];
                argb = uint32_t(c.alpha) << 24;
            } else {
                memcpy(&argb, p + 4 * x, 4);
            }
            if ((argb >> 24) != 0xFF) return true;
        }
    return false;
}

int32_t methodByName(const std::string& name) {
    const int32_t index = quant_find(name.c_str());
    if (index == 0 && strcasecmp(name.c_str(), "Nil") != 0)
        throw ToolError("no quantizer is named '" + name +
                        "' (Wu, Wu555, Wu777, Wu Ve, Lloyd, MQ, Tw, 4D Wu, Exact)");
    if (index == 0) throw ToolError("the Nil quantizer makes no palette");
    return index;
}

int32_t colorsOption(const Args& args) {
    if (!args.has("colors")) return 256;
    char* end = nullptr;
    const std::string text = args.option("colors");
    const long k = strtol(text.c_str(), &end, 10);
    if (text.empty() || *end || k < 1 || k > 256)
        throw ToolError("--colors takes a number from 1 to 256, not '" + text + "'");
    return static_cast<int32_t>(k);
}

ImageEntry entryOf(const TavixFrame& frame) {
    return ImageEntry{frame.info.get(), frame.pixels.data(), frame.pitch};
}

// The method for a set of frames: the one asked for, refused where it
// would drop alpha; or the default.
int32_t methodFor(const Args& args, const std::vector<const TavixFrame*>& frames) {
    bool alpha = false;
    size_t withAlpha = 0;
    for (size_t i = 0; i < frames.size() && !alpha; ++i)
        if (hasAlpha(*frames[i])) {
            alpha = true;
            withAlpha = i;
        }
    if (!args.has("method")) return alpha ? quant_find("Tw") : quant_find("Wu");
    const int32_t method = methodByName(args.option("method"));
    if (alpha && !quant_keeps_alpha(method))
        throw ToolError(std::string("frame '") + frames[withAlpha]->info->framename +
                        "' has transparent pixels and method " + quant_name(method) +
                        " works on colour alone: use Tw, '4D Wu' or Exact");
    return method;
}

ModuleResult reduce(const TavixFrame& frame, const uint32_t palette[256], const uint8_t used[256],
                    const QuantIndexedSettings& s) {
    ModuleResult result{};
    if (!quant_make_indexed(entryOf(frame), palette, used, s, &result))
        throw ToolError(std::string("cannot map frame '") + frame.info->framename + "'");
    return result;
}

void buildPalette(const QuantIndexedSettings& s, const std::vector<const TavixFrame*>& frames,
                  uint32_t palette[256], uint8_t used[256], int32_t* made) {
    std::vector<ImageEntry> entries;
    for (const TavixFrame* frame : frames)
        entries.push_back(entryOf(*frame));
    *made =
        quant_build_palette(s, entries.data(), static_cast<int32_t>(entries.size()), palette, used);
    if (*made == 0)
        throw ToolError(std::string("the quantizer ") + quant_name(s.method) +
                        " made no palette (out of memory?)");
}

} // namespace

int runQuantize(const Args& args) {
    if (args.positional.size() != 2)
        throw ToolError(
            "usage: zytool quantize IN OUT [--colors K] [--method NAME] "
            "[--dither none|floyd|burkes|stucki] [--shared] [--select EXPR] [--format NAME]");
    bindCodecLibrary();
    const std::string& output = args.positional[1];
    const int driver = outputDriver(output, args.option("format"));
    QuantIndexedSettings s;
    s.count = colorsOption(args);
    s.dither = ditherOption(args);
    TavixReadResult file = readFileOrThrow(args.positional[0]);
    const std::vector<bool> chosen = selectedFrames(args, file.frames);

    std::vector<const TavixFrame*> selected;
    for (size_t i = 0; i < file.frames.size(); ++i)
        if (chosen[i]) selected.push_back(&file.frames[i]);
    uint32_t shared[256] = {};
    uint8_t sharedUsed[256] = {};
    QuantIndexedSettings sharedSettings = s;
    if (args.has("shared") && !selected.empty()) {
        sharedSettings.method = methodFor(args, selected);
        buildPalette(sharedSettings, selected, shared, sharedUsed, &sharedSettings.count);
    }

    std::vector<TavixFrame> frames;
    for (size_t i = 0; i < file.frames.size(); ++i) {
        const TavixFrame& frame = file.frames[i];
        if (!chosen[i]) {
            frames.push_back(std::move(file.frames[i]));
            continue;
        }
        ModuleResult result{};
        if (args.has("shared")) {
            result = reduce(frame, shared, sharedUsed, sharedSettings);
        } else {
            uint32_t palette[256] = {};
            uint8_t used[256] = {};
            QuantIndexedSettings own = s;
            own.method = methodFor(args, {&frame});
            buildPalette(own, {&frame}, palette, used, &own.count);
            result = reduce(frame, palette, used, own);
        }
        frames.push_back(frameFromResult(result));
        module_result_free(&result);
    }
    writeFrames(output, driver, frames);
    return 0;
}

} // namespace zytool
