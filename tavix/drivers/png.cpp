// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x504E4700, "png", 0, {".png"}, "PNG"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the png driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the png driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kPngDriver = {"png", about, detect, open, create};
} // namespace tavix
