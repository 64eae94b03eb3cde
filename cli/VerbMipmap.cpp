// zytool mipmap IN OUT [--levels N] [--method M]: gives every frame a chain
// of mip-map levels, written as frames right after it.
//
// A chain already in the file (frames with attribute bit 0x200, each half
// the size of the frame before) is dropped and made anew from its first
// frame, so running the verb again replaces chains instead of nesting them.

#include "cli/Verbs.h"

#include "cli/Tool.h"
#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <algorithm>
#include <cstring>

namespace zytool {
namespace {

int32_t integerOption(const Args& args, const std::string& name, int32_t fallback) {
    if (!args.has(name)) return fallback;
    ModuleValue value{};
    if (!module_value_from_text(nullptr, args.option(name).c_str(), &value) || value.asInt() < 0)
        throw ToolError("--" + name + " takes a whole number");
    return value.asInt();
}

// One level as a frame: the library's record and pixels, copied.
TavixFrame frameFrom(const TavixInfo& info, const uint8_t* pixels, int32_t rowbytes) {
    TavixFrame frame;
    frame.info = CopyTavixInfo(info);
    if (!frame.info) throw ToolError("out of memory");
    frame.pitch = rowbytes;
    frame.pixels.assign(pixels, pixels + static_cast<size_t>(rowbytes) * info.height);
    return frame;
}

// The levels of one frame, level 0 (the frame itself, as the module keeps
// it) first.
void appendChain(const TavixFrame& source, int32_t module, const std::vector<ModuleValue>& values,
                 std::vector<TavixFrame>& out) {
    module_select(module);
    ImageEntry entry{source.info.get(), source.pixels.data(), source.pitch};
    ModuleInstance* instance = nullptr;
    if (!module_open(&instance, 1, &entry, static_cast<int32_t>(values.size()), values.data()))
        throw ToolError(std::string("Mipmap cannot start on frame '") + source.info->framename +
                        "'");
    bool ok = true;
    for (int32_t level = 0; ok; ++level) {
        GPtr<TavixInfo> info(module_query(instance, level));
        if (!info) break;
        uint8_t* pixels = nullptr;
        int32_t rowbytes = 0;
        ok = module_alloc_pixels(info.get(), 4, &pixels, &rowbytes) &&
             module_process(instance, info.get(), pixels, rowbytes);
        if (ok) out.push_back(frameFrom(*info, pixels, rowbytes));
        if (pixels) gfree(pixels);
    }
    module_close(instance);
    if (!ok)
        throw ToolError(std::string("Mipmap failed on frame '") + source.info->framename + "'");
}

bool continuesChain(const TavixInfo& info, const TavixInfo* previous) {
    return previous && (info.attributes & kAttrMipLevel) &&
           info.width == std::max(1, previous->width / 2) &&
           info.height == std::max(1, previous->height / 2);
}

} // namespace

int runMipmap(const Args& args) {
    if (args.positional.size() != 2)
        throw ToolError("usage: zytool mipmap IN OUT [--levels N] [--method M] [--select EXPR] "
                        "[--format NAME]");
    bindCodecLibrary();
    const std::string& output = args.positional[1];
    int driver = outputDriver(output, args.option("format"));
    std::vector<ModuleValue> values{ModuleValue::ofInt(integerOption(args, "method", 3)),
                                    ModuleValue::ofInt(integerOption(args, "levels", 10))};
    int32_t module = module_find("Mipmap");

    TavixReadResult file = readFileOrThrow(args.positional[0]);
    std::vector<bool> chosen = selectedFrames(args, file.frames);
    std::vector<TavixFrame> frames;
    const TavixInfo* previous = nullptr;
    bool baseChosen = false; // whether the chain the frame belongs to gets made anew
    for (size_t i = 0; i < file.frames.size(); ++i) {
        TavixFrame& frame = file.frames[i];
        bool oldLevel = continuesChain(*frame.info, previous);
        previous = frame.info.get();
        if (oldLevel && baseChosen) continue;
        if (!oldLevel) baseChosen = chosen[i];
        if (!oldLevel && chosen[i])
            appendChain(frame, module, values, frames);
        else
            frames.push_back(frameFrom(*frame.info, frame.pixels.data(), frame.pitch));
    }
    std::vector<const TavixFrame*> list;
    for (const TavixFrame& frame : frames)
        list.push_back(&frame);
    std::string error;
    if (!TavixWriteFileSafely(output, driver, list, error))
        throw ToolError("cannot write '" + output + "': " + error);
    return 0;
}

} // namespace zytool
