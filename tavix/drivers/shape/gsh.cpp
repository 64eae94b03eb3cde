// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x47534800, "newgsh", 0, {".gsh"}, "GSH - GameCube Shape File"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the newgsh driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the newgsh driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kGshDriver = {"newgsh", about, detect, open, create};
} // namespace tavix
