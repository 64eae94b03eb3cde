// zytool depth IN OUT --bits ARGB [--dither D] [--select EXPR]: reduces the
// bits of each channel of the selected frames (--bits 0565, 1555, 4444,
// 8888 ...: alpha, red, green, blue), with or without dithering. Frames
// stay 32 bits in memory; their records say the depth and channel bits, so
// a shape format writes the matching pixel format.

#include "cli/Reduce.h"
#include "cli/Verbs.h"
#include "imaging/quant/indexed.h"
#include "imaging/quant/remap.h"

#include <cctype>

namespace zytool {
namespace {

struct Bits {
    int32_t a, r, g, b;
};

Bits bitsOption(const Args& args) {
    const std::string text = args.option("bits");
    if (text.size() != 4)
        throw ToolError(
            "--bits takes four digits: alpha, red, green and blue bits (0565, 1555, 8888)");
    int32_t v[4];
    for (int i = 0; i < 4; ++i) {
        if (!isdigit(static_cast<unsigned char>(text[i])) || text[i] > '8')
            throw ToolError("--bits takes four digits from 0 to 8, not '" + text + "'");
        v[i] = text[i] - '0';
    }
    if (v[1] + v[2] + v[3] == 0) throw ToolError("--bits leaves no colour: '" + text + "'");
    return Bits{v[0], v[1], v[2], v[3]};
}

} // namespace

int runDepth(const Args& args) {
    if (args.positional.size() != 2 || !args.has("bits"))
        throw ToolError(
            "usage: zytool depth IN OUT --bits ARGB [--dither none|floyd|burkes|stucki] "
            "[--select EXPR] [--format NAME]");
    bindCodecLibrary();
    const std::string& output = args.positional[1];
    const int driver = outputDriver(output, args.option("format"));
    const Bits bits = bitsOption(args);
    const int32_t dither = ditherOption(args);
    TavixReadResult file = readFileOrThrow(args.positional[0]);
    const std::vector<bool> chosen = selectedFrames(args, file.frames);

    std::vector<TavixFrame> frames;
    for (size_t i = 0; i < file.frames.size(); ++i) {
        TavixFrame& frame = file.frames[i];
        if (!chosen[i]) {
            frames.push_back(std::move(frame));
            continue;
        }
        ModuleResult wide{};
        if (!quant_expand(ImageEntry{frame.info.get(), frame.pixels.data(), frame.pitch}, &wide) ||
            !quant_reduce_bits(wide.info, wide.pixels, wide.rowbytes, bits.a, bits.r, bits.g,
                               bits.b, dither, wide.pixels, wide.rowbytes)) {
            module_result_free(&wide);
            throw ToolError(std::string("cannot reduce frame '") + frame.info->framename + "'");
        }
        TavixInfo* info = wide.info;
        info->bpp = quant_layout_depth(bits.a, bits.r, bits.g, bits.b);
        info->alphabits = bits.a;
        info->redbits = bits.r;
        info->greenbits = bits.g;
        info->bluebits = bits.b;
        info->numcolours = 0;
        info->startcolour = 0;
        frames.push_back(frameFromResult(wide));
        module_result_free(&wide);
    }
    writeFrames(output, driver, frames);
    return 0;
}

} // namespace zytool
