// zytool run MODULE [values...] IN OUT: applies an image module to the
// frames of a file through the module framework, with the records and
// pixels the editor's images would hand it, and writes the result.

#include "cli/Verbs.h"

#include "app/doc/ConsoleUi.h"
#include "app/doc/UserInterface.h"
#include "cli/Tool.h"
#include "imaging/blend/blend.h"
#include "imaging/module/module.h"
#include "imaging/modules/resample/resampler.h"
#include "tavix/RecordLimits.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
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
std::vector<TavixFrame> secondFrames(const Args& args, const ModuleDescriptor& descriptor,
                                     size_t frames) {
    if (!args.has("second")) return {};
    if (descriptor.images < 2)
        throw ToolError(std::string("module ") + descriptor.name +
                        " takes one image; --second is for two-image modules");
    TavixReadResult file = readFileOrThrow(args.option("second"));
    if (file.frames.size() != 1 && file.frames.size() != frames)
        throw ToolError("--second needs one frame or as many frames as the input (" +
                        std::to_string(frames) + "), not " + std::to_string(file.frames.size()));
    return std::move(file.frames);
}

ImageEntry entryOf(const TavixFrame& frame) {
    return {frame.info.get(), frame.pixels.data(), frame.pitch};
}

struct InstanceCloser {
    ModuleInstance* instance = nullptr;
    ~InstanceCloser() {
        if (instance) module_close(instance);
    }
    bool close() {
        ModuleInstance* open = instance;
        instance = nullptr;
        return module_close(open) != 0;
    }
};

// Runs the module on a frame straight from the file into a new frame: the
// module reads the decoded rows where they are and writes the result into
// the buffer that goes to the writer, so a large image is neither copied
// nor held twice. The record and pixels are those the editor's image would
// give (the record copied whole by its size, the pixels zeroed first, rows
// padded to four bytes).
bool runOnFrame(int module, const std::vector<ModuleValue>& values, const TavixFrame& frame,
                const TavixFrame* second, TavixFrame& out, std::string& why) {
    module_select(module);
    GPtr<ModuleDescriptor> selected(module_describe());
    const ImageEntry inputs[2] = {entryOf(frame), second ? entryOf(*second) : ImageEntry{}};
    InstanceCloser run;
    if (!module_open(&run.instance, second ? 2 : 1, inputs, static_cast<int32_t>(values.size()),
                     values.data()))
        return false;
    GPtr<TavixInfo> result(module_query(run.instance, 0));
    if (!result) return false;
    const TavixInfo& r = *result;
    if (r.width < 0 || r.height < 0 || r.bufferbpp < 1 || r.bufferbpp > 32 ||
        r.size > kTavixMaxInfoSize) {
        why = "it gave a record of " + std::to_string(r.width) + " x " + std::to_string(r.height) +
              " at " + std::to_string(r.bufferbpp) + " bits";
        return false;
    }
    const int32_t pitch = TavixRowPitch(r.width, r.bufferbpp);
    const int64_t bytes = static_cast<int64_t>(pitch) * r.height;
    if (bytes > INT32_MAX) {
        why = "its result of " + std::to_string(r.width) + " x " + std::to_string(r.height) +
              " is too large";
        return false;
    }
    out.info = CopyTavixInfo(r);
    result.reset();
    if (!out.info) return false;
    out.pitch = pitch;
    // An empty result still gets a block, as an image of 0 x 0 does.
    AllocateFramePixels(out, static_cast<size_t>(std::max<int64_t>(bytes, 1)));
    out.pixels.resize(static_cast<size_t>(bytes));
    const bool made = module_process(run.instance, out.info.get(), out.pixels.data(), pitch) != 0;
    return run.close() && made;
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

// --threads N: how many threads the resampler shares a result's rows
// among (the bytes are the same for any count).
void setThreads(const Args& args) {
    const std::string text = args.option("threads", "1");
    char* end = nullptr;
    const long threads = strtol(text.c_str(), &end, 10);
    if (text.empty() || *end != 0 || threads < 1 || threads > resample::kMaxThreads)
        throw ToolError("--threads takes a count from 1 to " +
                        std::to_string(resample::kMaxThreads) + ", not '" + text + "'");
    resample::set_thread_count(static_cast<int>(threads));
}

} // namespace

int runRun(const Args& args) {
    if (args.positional.size() < 3)
        throw ToolError("usage: zytool run MODULE [values...] IN OUT [--second FILE] [--select "
                        "EXPR] [--format NAME] [--threads N]");
    setThreads(args);
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
    std::vector<TavixFrame> seconds = secondFrames(args, *descriptor, file.frames.size());
    blend_psnr_reset();
    std::vector<TavixFrame> results;
    for (size_t i = 0; i < file.frames.size(); ++i) {
        if (!chosen[i]) {
            results.push_back(std::move(file.frames[i]));
            continue;
        }
        const TavixFrame* second =
            seconds.empty() ? nullptr : &seconds[seconds.size() == 1 ? 0 : i];
        TavixFrame result;
        std::string why;
        if (!runOnFrame(module, values, file.frames[i], second, result, why))
            throw ToolError(std::string("module ") + descriptor->name + " failed on frame " +
                            std::to_string(i) + (why.empty() ? "" : ": " + why));
        // The source is done with: its memory goes before the next frame's
        // result and the writer's own copy are made.
        file.frames[i] = TavixFrame{};
        printBlendRatios(*descriptor, values, i);
        results.push_back(std::move(result));
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
