#pragma once
// Error diffusion over one image, serpentine: even rows run left to right,
// odd rows right to left with the kernel mirrored. Red, green and blue
// errors are spread; alpha is never dithered (a speckled edge shows far
// more than banding in it).
//
// The kernels are the published ones: Floyd-Steinberg (/16), Burkes (/32)
// and Stucki (/42). Errors are summed as whole multiples of the kernel's
// weights and divided once, rounding half away from zero, when a pixel
// takes them; error that falls outside the image is dropped.

#include <cstdint>

namespace quant {

enum Dither : int32_t { kDitherNone = 0, kDitherFloyd = 1, kDitherBurkes = 2, kDitherStucki = 3 };

class Diffuser {
  public:
    // dither outside 1 .. 3 diffuses nothing.
    Diffuser(int32_t dither, int32_t width);
    ~Diffuser();
    Diffuser(const Diffuser&) = delete;
    Diffuser& operator=(const Diffuser&) = delete;

    bool ok() const { return m_Rows != nullptr || m_Kernel == nullptr; }
    bool active() const { return m_Kernel != nullptr; }
    // Starts row y; true when it runs right to left.
    bool beginRow(int32_t y);
    // The colour with the error gathered at x added (each channel held to
    // 0 .. 255); alpha unchanged.
    uint32_t adjust(int32_t x, uint32_t argb) const;
    // Spreads wanted - got (both 0xAARRGGBB) from x to the pixels ahead.
    void spread(int32_t x, uint32_t wanted, uint32_t got);

  private:
    struct Kernel;
    const Kernel* m_Kernel = nullptr;
    int32_t m_Width = 0;
    int32_t* m_Rows = nullptr; // 3 rows x (width + 4) x 3 channels, 2 cells of margin
    bool m_Reverse = false;
    int32_t* row(int32_t dy) const;
};

} // namespace quant
