// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x58534800, "newxsh", 0, {".xsh"}, "XSH - XBOX Shape File"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the newxsh driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the newxsh driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kXshDriver = {"newxsh", about, detect, open, create};
} // namespace tavix
