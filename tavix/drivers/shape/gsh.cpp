// The "newgsh" driver: the shared shape reader and writer with the
// GSH variant's table.

#include "tavix/drivers/shape/Shape.h"

namespace tavix {
namespace {
void about(TavixAbout& about) {
    shape::aboutShape(shape::kGshVariant, about);
}
DetectScore detect(std::span<const uint8_t> head, const char* path) {
    return shape::detectShape(shape::kGshVariant, head, path);
}
HostPtr<FrameReader> open(Bytes&& file) {
    return shape::openShape(shape::kGshVariant, std::move(file));
}
HostPtr<FrameWriter> create(int) {
    return shape::createShape(shape::kGshVariant);
}
} // namespace
extern const Driver kGshDriver = {"newgsh", about, detect, open, create};
} // namespace tavix
