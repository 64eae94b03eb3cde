// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x54474100, "tga", 0, {".tga"}, "Targa"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the tga driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the tga driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kTgaDriver = {"tga", about, detect, open, create};
} // namespace tavix
