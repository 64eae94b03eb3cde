#pragma once
// The worksheet painting engine: draws the shown images of a document over
// the checkerboard (or the PSX VRAM board), with channel masks, overlap
// warning, selection edges, points and grid, into one 32-bit back buffer
// that covers the area being repainted. Plain C++ with no windowing code,
// so the view, the tests and the benchmark all paint through it.

#include "app/ui/ImageViewSettings.h"
#include "mfx/DIB.h"
#include "mfx/Geometry.h"

#include <cstdint>
#include <vector>

class CTavixImage;

// One image as the painter sees it. The pixel unit is one palette index per
// byte or one 0xAARRGGBB word; `bpp` is the image's nominal depth, which
// decides its width on the VRAM board.
struct CSheetImage {
    const uint8_t* bits = nullptr;
    int32_t pitch = 0;
    int width = 0;
    int height = 0;
    int pixelBytes = 4;
    int bpp = 32;
    const uint32_t* palette = nullptr; // 256 entries, 0xAARRGGBB
    CPoint position;                   // the default point
    CPoint center;                     // relative to the image
    std::vector<CPoint> hotSpots;      // relative to the image
    bool onWorksheet = false;          // the image's visible flag

    // Reads the fields of a document image; the hot spots only when asked
    // (they are drawn only with the points).
    static CSheetImage Of(const CTavixImage& image, bool withHotSpots);
};

// What one paint shows: the document's images in order, its selection and
// focused image, and the view's selection-edges switch.
struct CSheetScene {
    std::vector<CSheetImage> images;
    std::vector<uint8_t> selected; // one flag per image
    int focus = -1;                // -1: none
    bool selectionEdges = false;
    // Palette indices 0..1023 shown highlighted in palette images.
    const std::vector<uint8_t>* highlight = nullptr;
};

// The 32-bit buffer one paint draws into. Its origin is the top-left corner
// of the painted area in view pixels (scroll position included).
class CBackBuffer {
  public:
    // Makes the buffer cover `area`, re-creating the pixels only when the
    // size changes. False when the area is empty or memory is short.
    bool Place(const CRect& area);
    const CRect& Area() const { return m_Area; }
    CDIB& Bitmap() { return m_Bitmap; }
    const CDIB& Bitmap() const { return m_Bitmap; }
    // The pixel at view coordinate (x, y), which must lie in the area.
    uint32_t& At(int x, int y) {
        return reinterpret_cast<uint32_t*>(m_Bitmap.GetRow(y - m_Area.top))[x - m_Area.left];
    }
    uint32_t At(int x, int y) const {
        return reinterpret_cast<const uint32_t*>(m_Bitmap.GetRow(y - m_Area.top))[x - m_Area.left];
    }

  private:
    CDIB m_Bitmap;
    CRect m_Area;
};

constexpr uint32_t kOverlapWarningColour = 0x80FF0000;
constexpr uint32_t kVramOutsideColour = 0xFF7F7F7F;
constexpr int kVramWidth = 1024;
constexpr int kVramHeight = 512;

// Zoom in fixed point: the integer part of zoom x 16.
inline int ZoomFixed(double zoom) {
    return static_cast<int>(zoom * 16);
}

// Horizontal divisor of an image on the board: 16-bit frame-buffer units
// in VRAM mode for images of 16 bits or fewer, 1 otherwise.
int VramDivisor(int viewMode, int bpp);

// The image's rectangle in view pixels at the zoom (VRAM divisor applied).
CRect SheetImageRect(const CSheetImage& image, int viewMode, double zoom);

// The images drawn, in drawing order (the last one ends on top).
std::vector<int> DrawingOrder(const CSheetScene& scene, const CImageViewSettings& settings);

// Composites source pixel `s` over back-buffer pixel `p` under view mask `m`.
inline uint32_t CompositePixel(uint32_t p, uint32_t s, uint32_t m) {
    if (!(m & kChannelAlpha)) return (p & 0xFF000000) | (s & m & 0x00FFFFFF);
    const uint32_t a = s >> 24;
    if (!(m & kChannelRGB)) return a * 0x01010101u;
    const uint32_t n = 255 - a;
    const uint32_t pa = ((((p >> 24) * n + a * a) >> 8) & (m >> 24)) << 24;
    const uint32_t r = ((((s >> 16 & 0xFF) * a + (p >> 16 & 0xFF) * n) >> 8) & (m >> 16 & 0xFF));
    const uint32_t g = ((((s >> 8 & 0xFF) * a + (p >> 8 & 0xFF) * n) >> 8) & (m >> 8 & 0xFF));
    const uint32_t b = ((((s & 0xFF) * a + (p & 0xFF) * n) >> 8) & (m & 0xFF));
    return pa | r << 16 | g << 8 | b;
}

// Paints `buffer` (already placed on the area to repaint): background,
// images, points and, when visible, the grid. `worksheet` is the size of
// the worksheet in worksheet pixels.
void PaintWorksheet(CBackBuffer& buffer, const CSheetScene& scene,
                    const CImageViewSettings& settings, double zoom, CSize worksheet);

// The parts, for callers that paint in steps.
void PaintBackground(CBackBuffer& buffer, const CImageViewSettings& settings, double zoom);
void PaintImages(CBackBuffer& buffer, const CSheetScene& scene, const CImageViewSettings& settings,
                 double zoom);
void PaintGrid(CBackBuffer& buffer, const CImageViewSettings& settings, double zoom,
               CSize worksheet);
