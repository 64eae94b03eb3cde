// Placeholder until the driver lands: describes itself, reads and writes nothing.
#include "tavix/core/Driver.h"
#include "tavix/core/Errors.h"

namespace tavix {
namespace {
void about(TavixAbout& about) { fillAbout(about, 0x424D5000, "bmp", 0, {".bmp"}, "Windows Bitmap"); }
DetectScore detect(std::span<const uint8_t>, const char*) { return kNotMine; }
HostPtr<FrameReader> open(Bytes&&) { fail("the bmp driver is not available yet"); }
HostPtr<FrameWriter> create(int) {
    report("tavix: the bmp driver cannot write yet\n");
    return nullptr;
}
} // namespace
extern const Driver kBmpDriver = {"bmp", about, detect, open, create};
} // namespace tavix
