// The "newssh" driver: the shared shape reader and writer with the
// SSH variant's table.

#include "tavix/drivers/shape/Shape.h"

namespace tavix {
namespace {
void about(TavixAbout& about) {
    shape::aboutShape(shape::kSshVariant, about);
}
DetectScore detect(std::span<const uint8_t> head, const char* path) {
    return shape::detectShape(shape::kSshVariant, head, path);
}
HostPtr<FrameReader> open(Bytes&& file) {
    return shape::openShape(shape::kSshVariant, std::move(file));
}
HostPtr<FrameWriter> create(int) {
    return shape::createShape(shape::kSshVariant);
}
} // namespace
extern const Driver kSshDriver = {"newssh", about, detect, open, create};
} // namespace tavix
