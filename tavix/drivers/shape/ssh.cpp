// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x53534800, "newssh", 0, {".ssh"}, "SSH - PS2 Shape File"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the newssh driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the newssh driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kSshDriver = {"newssh", about, detect, open, create};
} // namespace tavix
