// The "newfsh" driver: the shared shape reader and writer with the
// FSH variant's table.

#include "tavix/drivers/shape/Shape.h"

namespace tavix {
namespace {
void about(TavixAbout& about) {
    shape::aboutShape(shape::kFshVariant, about);
}
DetectScore detect(std::span<const uint8_t> head, const char* path) {
    return shape::detectShape(shape::kFshVariant, head, path);
}
HostPtr<FrameReader> open(Bytes&& file) {
    return shape::openShape(shape::kFshVariant, std::move(file));
}
HostPtr<FrameWriter> create(int) {
    return shape::createShape(shape::kFshVariant);
}
} // namespace
extern const Driver kFshDriver = {"newfsh", about, detect, open, create};
} // namespace tavix
