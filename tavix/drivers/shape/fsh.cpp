// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x46534800, "newfsh", 0, {".fsh"}, "FSH - PC Shape File"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the newfsh driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the newfsh driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kFshDriver = {"newfsh", about, detect, open, create};
} // namespace tavix
