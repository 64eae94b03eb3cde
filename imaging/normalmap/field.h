#pragma once
// A float grid from galloc, the working surface of the normal-map modules:
// heights in, slopes and normals out, and heights integrated back from
// slopes.

#include "imaging/module/module.h"

#include <cstdint>

namespace normalmap {

class Field {
  public:
    Field(int32_t width, int32_t height);
    ~Field();
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;

    // False when memory was short; the field then holds nothing.
    bool ok() const { return m_Values != nullptr; }
    int32_t width() const { return m_Width; }
    int32_t height() const { return m_Height; }
    float& at(int32_t x, int32_t y) { return m_Values[static_cast<size_t>(y) * m_Width + x]; }
    float at(int32_t x, int32_t y) const { return m_Values[static_cast<size_t>(y) * m_Width + x]; }
    // The value at (x, y) with coordinates held to the grid.
    float clamped(int32_t x, int32_t y) const;

  private:
    int32_t m_Width, m_Height;
    float* m_Values = nullptr;
};

// Luminance (0 .. 255) of every pixel, through the palette for indexed
// images.
void read_heights(const ImageEntry& image, Field& heights);

// How slopes are taken from neighbouring heights.
enum class Slope : int32_t {
    Central = 0, // (right - left) / 2
    Sobel = 1,   // 3 x 3 Sobel, weights 1 2 1 across
    Scharr = 2,  // 3 x 3 Scharr, weights 3 10 3 across
    Forward = 3, // right - here
};
Slope slope_from(int32_t value);

// Slopes of the heights along x (rightwards) and y (downwards) per pixel,
// edges held to the border.
void slopes(const Field& heights, Slope method, Field& dx, Field& dy);

// How heights are rebuilt from slopes.
enum class Integrate : int32_t {
    Relax = 0,   // the path integrals, then Gauss-Seidel sweeps of the Poisson equation
    Average = 1, // the mean of integrating along rows and along columns
    Rows = 2,    // along each row from the left; the first column down the left edge
    Columns = 3, // along each column from the top; the first row along the top edge
};
Integrate integrate_from(int32_t value);

// Heights whose slopes are (dx, dy) as well as the method can make them.
void integrate(const Field& dx, const Field& dy, Integrate method, Field& heights);

// Stretches the field to 0 .. 255 (a flat field becomes 128) and writes it as
// grey 32-bit pixels, keeping each source pixel's alpha.
void write_grey(const Field& heights, const ImageEntry& alphaSource, void* pixels,
                int32_t rowbytes);

} // namespace normalmap
