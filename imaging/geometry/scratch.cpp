#include "imaging/geometry/scratch.h"

#include "imaging/galloc.h"
#include "imaging/module/authoring.h"

#include <climits>

namespace geometry {

namespace {

bool overlaps(const Raster& a, const Raster& b) {
    if (a.height <= 0 || b.height <= 0) return false;
    const uint8_t* aEnd = a.at(0, a.height - 1) + static_cast<ptrdiff_t>(a.width) * a.bytes;
    const uint8_t* bEnd = b.at(0, b.height - 1) + static_cast<ptrdiff_t>(b.width) * b.bytes;
    return a.base < bEnd && b.base < aEnd;
}

} // namespace

Scratch::Scratch(const ImageEntry& in, const Raster& out) : m_Raster(raster_of(in)) {
    if (!overlaps(m_Raster, out)) return;
    int32_t length = module_row_length(in.info);
    int64_t bytes = static_cast<int64_t>(length) * m_Raster.height;
    m_Copy = bytes > 0 && bytes <= INT32_MAX
                 ? static_cast<uint8_t*>(galloc(static_cast<int32_t>(bytes)))
                 : nullptr;
    if (!m_Copy) {
        m_Ok = false;
        return;
    }
    for (int32_t y = 0; y < m_Raster.height; ++y)
        memcpy(m_Copy + static_cast<ptrdiff_t>(y) * length, m_Raster.at(0, y),
               static_cast<size_t>(length));
    m_Raster.base = m_Copy;
    m_Raster.rowbytes = length;
}

Scratch::~Scratch() {
    if (m_Copy) gfree(m_Copy);
}

} // namespace geometry
