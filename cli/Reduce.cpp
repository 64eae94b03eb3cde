#include "cli/Reduce.h"

#include "imaging/quant/diffuse.h"

#include <cstring>

namespace zytool {

int32_t ditherOption(const Args& args) {
    const std::string name = args.option("dither", "none");
    if (name == "none") return quant::kDitherNone;
    if (name == "floyd") return quant::kDitherFloyd;
    if (name == "burkes") return quant::kDitherBurkes;
    if (name == "stucki") return quant::kDitherStucki;
    throw ToolError("--dither takes none, floyd, burkes or stucki, not '" + name + "'");
}

TavixFrame frameFromResult(const ModuleResult& result) {
    TavixFrame frame;
    frame.info = CopyTavixInfo(*result.info);
    if (!frame.info) throw ToolError("out of memory");
    const TavixInfo& info = *result.info;
    frame.pitch = TavixRowPitch(info.width, info.bufferbpp);
    frame.pixels.assign(static_cast<size_t>(frame.pitch) * info.height, 0);
    const size_t row = static_cast<size_t>(module_pixel_bytes(&info)) * info.width;
    for (int32_t y = 0; y < info.height; ++y)
        memcpy(frame.pixels.data() + static_cast<size_t>(y) * frame.pitch,
               result.pixels + static_cast<size_t>(y) * result.rowbytes, row);
    return frame;
}

void writeFrames(const std::string& output, int driver, const std::vector<TavixFrame>& frames) {
    std::vector<const TavixFrame*> list;
    for (const TavixFrame& frame : frames)
        list.push_back(&frame);
    std::string error;
    if (!TavixWriteFileSafely(output, driver, list, error))
        throw ToolError("cannot write '" + output + "': " + error);
}

} // namespace zytool
