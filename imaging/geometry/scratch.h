#pragma once
// The input of a module as a raster that a result can be written over:
// when the result buffer overlaps the input (a run in place), the input is
// first copied to a galloc block.

#include "imaging/geometry/raster.h"

namespace geometry {

class Scratch {
  public:
    Scratch(const ImageEntry& in, const Raster& out);
    ~Scratch();
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    // False when a copy was needed and memory is short (nothing to read then).
    bool ok() const { return m_Ok; }
    const Raster& raster() const { return m_Raster; }

  private:
    Raster m_Raster;
    uint8_t* m_Copy = nullptr;
    bool m_Ok = true;
};

} // namespace geometry
