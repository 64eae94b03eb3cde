// The "newxsh" driver: the shared shape reader and writer with the
// XSH variant's table.

#include "tavix/drivers/shape/Shape.h"

namespace tavix {
namespace {
void about(TavixAbout& about) {
    shape::aboutShape(shape::kXshVariant, about);
}
DetectScore detect(std::span<const uint8_t> head, const char* path) {
    return shape::detectShape(shape::kXshVariant, head, path);
}
HostPtr<FrameReader> open(Bytes&& file) {
    return shape::openShape(shape::kXshVariant, std::move(file));
}
HostPtr<FrameWriter> create(int) {
    return shape::createShape(shape::kXshVariant);
}
} // namespace
extern const Driver kXshDriver = {"newxsh", about, detect, open, create};
} // namespace tavix
