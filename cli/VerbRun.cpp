// zytool run MODULE [values...] IN OUT: applies an image module to the
// frames of a file, through the editor's image record and the module
// framework, and writes the result.

#include "cli/Verbs.h"

#include "app/doc/ConsoleUi.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "cli/Tool.h"
#include "imaging/blend/blend.h"
#include "imaging/module/module.h"

#include <cstdio>
#include <strings.h>

namespace zytool {
namespace {

// The library falls back to the null module for unknown names; the tool
// treats that as the user's mistake instead.
int moduleByName(const std::string& name, GPtr<ModuleDescriptor>& descriptor) {
    int index = module_find(name.c_str());
    descriptor.reset(module_describe());
    if (!descriptor || strcasecmp(descriptor->name, name.c_str()) != 0)
        throw ToolError("no module is named '" + name + "' (see 'zytool modules')");
    return index;
}

// Text parameters (expressions) travel as the address of the caller's text:
// `texts` must outlive the module run.
std::vector<ModuleValue> valuesFrom(const std::vector<std::string>& texts,
                                    const ModuleDescriptor& descriptor) {
    std::vector<ModuleValue> values;
    for (size_t i = 0; i < texts.size(); ++i) {
        const ModuleParam* param = i < descriptor.paramCount ? &descriptor.params[i] : nullptr;
        ModuleValue value{};
        if (param && (param->type & kParamHandleHint)) {
            // A program's own object: nothing typed here can name one.
            ModuleValue typed{};
            if (!module_value_from_text(nullptr, texts[i].c_str(), &typed) ||
                typed.asPointer() != nullptr)
                throw ToolError("value " + std::to_string(i + 1) + " ('" + texts[i] +
                                "'): parameter '" + param->name +
                                "' is for programs only; give 0 here");
            value = ModuleValue::ofPointer(nullptr);
        } else if (param && (param->type & kParamTextHint))
            value = ModuleValue::ofPointer(texts[i].c_str());
        else if (!module_value_from_text(param, texts[i].c_str(), &value))
            throw ToolError(
                "value " + std::to_string(i + 1) + " ('" + texts[i] + "') does not fit " +
                (param ? "parameter '" + std::string(param->name) + "'" : "an extra slot"));
        values.push_back(value);
    }
    return values;
}

// The second image of frame i for two-image modules (--second FILE): frame
// i of FILE, or FILE's only frame for every frame.
std::vector<std::unique_ptr<CTavixImage>>
secondImages(const Args& args, const ModuleDescriptor& descriptor, size_t frames) {
    std::vector<std::unique_ptr<CTavixImage>> images;
    if (!args.has("second")) return images;
    if (descriptor.images < 2)
        throw ToolError(std::string("module ") + descriptor.name +
                        " takes one image; --second is for two-image modules");
    TavixReadResult file = readFileOrThrow(args.option("second"));
    if (file.frames.size() != 1 && file.frames.size() != frames)
        throw ToolError("--second needs one frame or as many frames as the input (" +
                        std::to_string(frames) + "), not " + std::to_string(file.frames.size()));
    for (const TavixFrame& frame : file.frames)
        images.push_back(CTavixImage::FromFrame(frame));
    return images;
}

// A psnr Blend run reports the signal-to-noise ratios of every frame and
// of the whole file so far.
void printBlendRatios(const ModuleDescriptor& descriptor, const std::vector<ModuleValue>& values,
                      size_t frame) {
    constexpr int kPsnrMethod = 5;
    if (strcasecmp(descriptor.name, "Blend") != 0 || values.empty() ||
        values[0].asInt() != kPsnrMethod)
        return;
    const BlendPsnr psnr = blend_psnr_read();
    printf("frame %zu: psnr %.2f dB, luminance %.2f dB; so far %.2f dB, luminance %.2f dB\n", frame,
           psnr.channel, psnr.luminance, psnr.totalChannel, psnr.totalLuminance);
}

} // namespace

int runRun(const Args& args) {
    if (args.positional.size() < 3)
        throw ToolError("usage: zytool run MODULE [values...] IN OUT [--second FILE] [--select "
                        "EXPR] [--format NAME]");
    bindCodecLibrary();
    CConsoleUi console;
    ZySetUi(&console);
    const std::string& input = args.positional[args.positional.size() - 2];
    const std::string& output = args.positional.back();
    GPtr<ModuleDescriptor> descriptor;
    int module = moduleByName(args.positional[0], descriptor);
    const std::vector<std::string> texts(args.positional.begin() + 1, args.positional.end() - 2);
    std::vector<ModuleValue> values = valuesFrom(texts, *descriptor);
    int driver = outputDriver(output, args.option("format"));

    TavixReadResult file = readFileOrThrow(input);
    std::vector<bool> chosen = selectedFrames(args, file.frames);
    std::vector<std::unique_ptr<CTavixImage>> seconds =
        secondImages(args, *descriptor, file.frames.size());
    blend_psnr_reset();
    std::vector<TavixFrame> results;
    for (size_t i = 0; i < file.frames.size(); ++i) {
        if (!chosen[i]) {
            results.push_back(std::move(file.frames[i]));
            continue;
        }
        std::unique_ptr<CTavixImage> image = CTavixImage::FromFrame(file.frames[i]);
        const CTavixImage* second =
            seconds.empty() ? nullptr : seconds[seconds.size() == 1 ? 0 : i].get();
        std::unique_ptr<CTavixImage> result =
            image ? image->RunModule(module, values.data(), static_cast<int>(values.size()), second)
                  : nullptr;
        if (!result)
            throw ToolError(std::string("module ") + descriptor->name + " failed on frame " +
                            std::to_string(i));
        printBlendRatios(*descriptor, values, i);
        results.push_back(result->ToFrame());
    }
    std::vector<const TavixFrame*> list;
    for (const TavixFrame& frame : results)
        list.push_back(&frame);
    std::string error;
    if (!TavixWriteFileSafely(output, driver, list, error))
        throw ToolError("cannot write '" + output + "': " + error);
    return 0;
}

} // namespace zytool
