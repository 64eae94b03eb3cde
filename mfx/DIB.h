#pragma once
// CDIB: a device-independent bitmap held in plain memory.
//
// Rows run top to bottom, each padded to a multiple of 4 bytes. The pixel
// unit follows the codec and the image library: a bit count of 8 or less
// keeps one palette index per byte, anything deeper keeps one 32-bit
// 0xAARRGGBB word per pixel. The bit count itself is kept as given (4, 8,
// 16, 32 ...) because it is what the image's record says. The colour table
// always has 256 entries in blue, green, red, reserved byte order; only the
// first GetColorCount() of them mean anything.
//
// No windowing code is involved: a view wraps GetBits() and GetPitch() in
// its own image object without copying.

#include "mfx/Object.h"

#include <cstdint>
#include <memory>

struct CDIBColour {
    uint8_t blue, green, red, reserved;
};
static_assert(sizeof(CDIBColour) == 4);

constexpr int kDIBColourTableSize = 256;

class CDIB : public CObject {
  public:
    CDIB();
    ~CDIB() override;
    CDIB(const CDIB&) = delete;
    CDIB& operator=(const CDIB&) = delete;

    // Builds a zero-filled bitmap (pixels and colour table). False, leaving
    // the bitmap empty, for a negative size, a bit count outside 1..32 or
    // a size whose bytes would not fit in 31 bits or in memory.
    virtual bool Create(int width, int height, int bitCount);

    // Copies the pixel rows (and, for palette bitmaps, the colour table) of
    // a bitmap with the same width, height and pixel unit. False, copying
    // nothing, when they differ.
    virtual bool CopyPixels(const CDIB& from);

    bool IsValid() const { return m_Bits != nullptr; }
    int GetWidth() const { return m_Width; }
    int GetHeight() const { return m_Height; }
    int GetBitCount() const { return m_BitCount; }
    // Bytes from one row to the next.
    int32_t GetPitch() const { return m_Pitch; }
    // Bytes of one pixel in memory: 1 up to 8 bits, else 4.
    int GetPixelBytes() const { return m_BitCount <= 8 ? 1 : 4; }
    int64_t GetImageSize() const { return static_cast<int64_t>(m_Pitch) * m_Height; }
    uint8_t* GetBits() { return m_Bits.get(); }
    const uint8_t* GetBits() const { return m_Bits.get(); }
    // Start of row y (0 is the top row); null outside the bitmap.
    uint8_t* GetRow(int y);
    const uint8_t* GetRow(int y) const;
    // Address of pixel (x, y); null outside the bitmap.
    uint8_t* GetPixelAddress(int x, int y);
    const uint8_t* GetPixelAddress(int x, int y) const;

    // Number of meaningful colour-table entries: 2^bits up to 8 bits, else 0.
    int GetColorCount() const;
    const CDIBColour* GetColorTable() const { return m_ColorTable; }
    // Copies `count` entries starting at `start` in or out; the range is
    // cut to the 256 entries of the table.
    void GetColorTable(int start, int count, CDIBColour* out) const;
    void SetColorTable(int start, int count, const CDIBColour* colours);

    // Zeroes every pixel byte, padding included.
    void ClearPixels();

  private:
    void Release();

    int m_Width = 0;
    int m_Height = 0;
    int m_BitCount = 0;
    int32_t m_Pitch = 0;
    std::unique_ptr<uint8_t[]> m_Bits;
    CDIBColour m_ColorTable[kDIBColourTableSize] = {};
};
