#include "app/ui/WorksheetPainter.h"

#include "app/doc/TavixImage.h"

#include <algorithm>
#include <cstring>

namespace {

// Division rounding toward minus infinity, so that images left of or above
// the origin sample the same way as those right of it.
int floorDiv(int64_t a, int64_t b) {
    int64_t q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
    return static_cast<int>(q);
}

int ceilDiv(int64_t a, int64_t b) {
    return -floorDiv(-a, b);
}

CRect intersect(const CRect& a, const CRect& b) {
    CRect r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
    if (r.left >= r.right || r.top >= r.bottom) return {};
    return r;
}

bool isEmpty(const CRect& r) {
    return r.left >= r.right || r.top >= r.bottom;
}

// The screen area in view pixels; its width and height settings are its
// right and bottom limits.
struct ScreenArea {
    double left, top, right, bottom;
    bool Contains(int x, int y) const { return x >= left && x < right && y >= top && y < bottom; }
    bool ContainsRow(int y) const { return y >= top && y < bottom; }
};

ScreenArea screenArea(const CImageViewSettings& s, double zoom) {
    return {s.m_ScreenX * zoom, s.m_ScreenY * zoom, s.m_ScreenWidth * zoom,
            s.m_ScreenHeight * zoom};
}

void paintChecker(CBackBuffer& buffer, const CImageViewSettings& s, double zoom) {
    const CRect& area = buffer.Area();
    const int e = CheckerExponent(s.m_CheckerSize, zoom);
    const ScreenArea screen = screenArea(s, zoom);
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &buffer.At(area.left, y);
        const int by = (y >> e) & 1;
        const bool rowInside = screen.ContainsRow(y);
        for (int x = area.left; x < area.right; ++x) {
            const bool differ = ((x >> e) & 1) != by;
            const bool inside = rowInside && x >= screen.left && x < screen.right;
            if (inside)
                *row++ = differ ? s.m_CheckerColor1 : s.m_CheckerColor2;
            else
                *row++ = differ ? s.m_CheckerColor3 : s.m_CheckerColor4;
        }
    }
}

void paintVramBoard(CBackBuffer& buffer, const CImageViewSettings& s, double zoom) {
    const CRect& area = buffer.Area();
    const ScreenArea screen = screenArea(s, zoom);
    const double boardRight = kVramWidth * zoom;
    const double boardBottom = kVramHeight * zoom;
    const int column = std::max(1, static_cast<int>(128 * zoom));
    for (int y = area.top; y < area.bottom; ++y) {
        uint32_t* row = &buffer.At(area.left, y);
        const bool top = y <= 256 * zoom;
        for (int x = area.left; x < area.right; ++x) {
            if (x >= boardRight || y >= boardBottom || x < 0 || y < 0) {
                *row++ = kVramOutsideColour;
                continue;
            }
            const bool left = (x % column) * 2 < column;
            const bool first = left == top; // left and top, or right and bottom: colour 2
            if (screen.Contains(x, y))
                *row++ = first ? s.m_CheckerColor2 : s.m_CheckerColor1;
            else
                *row++ = first ? s.m_CheckerColor4 : s.m_CheckerColor3;
        }
    }
}

// Worksheet rectangle of an image (VRAM divisor applied), unzoomed.
CRect worksheetRect(const CSheetImage& image, int viewMode) {
    const int d = VramDivisor(viewMode, image.bpp);
    const int width = ceilDiv(image.width, d);
    return {image.position.x, image.position.y, image.position.x + width,
            image.position.y + image.height};
}

CRect zoomRect(const CRect& r, int z16) {
    const int left = floorDiv(static_cast<int64_t>(r.left) * z16, 16);
    const int top = floorDiv(static_cast<int64_t>(r.top) * z16, 16);
    return {left, top, left + ceilDiv(static_cast<int64_t>(r.Width()) * z16, 16),
            top + ceilDiv(static_cast<int64_t>(r.Height()) * z16, 16)};
}

bool highlighted(const CSheetScene& scene, int index) {
    return scene.highlight && index < static_cast<int>(scene.highlight->size()) &&
           (*scene.highlight)[static_cast<size_t>(index)];
}

void drawImagePixels(CBackBuffer& buffer, const CSheetScene& scene, const CSheetImage& image,
                     const CRect& rect, const CRect& visible, int z16, int d, uint32_t mask) {
    // Source columns of the visible destination columns, computed once.
    std::vector<int> columns(static_cast<size_t>(visible.Width()));
    for (int x = visible.left; x < visible.right; ++x) {
        int sx = static_cast<int>(static_cast<int64_t>(x - rect.left) * 16 / z16) * d;
        columns[static_cast<size_t>(x - visible.left)] = std::min(sx, image.width - 1);
    }
    const bool palette = image.pixelBytes == 1;
    const bool anyHighlight = palette && scene.highlight;
    for (int y = visible.top; y < visible.bottom; ++y) {
        int sy = static_cast<int>(static_cast<int64_t>(y - rect.top) * 16 / z16);
        sy = std::min(sy, image.height - 1);
        const uint8_t* source = image.bits + static_cast<int64_t>(sy) * image.pitch;
        uint32_t* row = &buffer.At(visible.left, y);
        if (!palette) {
            const uint32_t* words = reinterpret_cast<const uint32_t*>(source);
            for (int sx : columns) {
                *row = CompositePixel(*row, words[sx], mask);
                ++row;
            }
            continue;
        }
        for (int sx : columns) {
            const uint8_t index = source[sx];
            uint32_t s = image.palette ? image.palette[index] : 0xFF000000u | index * 0x010101u;
            if (anyHighlight && highlighted(scene, index)) s ^= 0x00FFFFFF;
            *row = CompositePixel(*row, s, mask);
            ++row;
        }
    }
}

void fillBlend(CBackBuffer& buffer, const CRect& rect, uint32_t colour) {
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            buffer.At(x, y) = CompositePixel(buffer.At(x, y), colour, 0xFFFFFFFF);
}

void drawOverlapWarning(CBackBuffer& buffer, const CSheetScene& scene, int focus, int viewMode,
                        int z16) {
    const CRect focused = worksheetRect(scene.images[static_cast<size_t>(focus)], viewMode);
    for (size_t j = 0; j < scene.images.size(); ++j) {
        const CSheetImage& other = scene.images[j];
        if (static_cast<int>(j) == focus || !other.onWorksheet) continue;
        CRect overlap = intersect(focused, worksheetRect(other, viewMode));
        if (isEmpty(overlap)) continue;
        overlap = intersect(zoomRect(overlap, z16), buffer.Area());
        if (!isEmpty(overlap)) fillBlend(buffer, overlap, kOverlapWarningColour);
    }
}

void putPixel(CBackBuffer& buffer, int x, int y, uint32_t colour) {
    const CRect& a = buffer.Area();
    if (x >= a.left && x < a.right && y >= a.top && y < a.bottom) buffer.At(x, y) = colour;
}

// A one-pixel frame just outside the image: dashes of black and white for
// the focused image, solid blue for the other selected ones.
void drawEdge(CBackBuffer& buffer, const CRect& rect, bool focused) {
    auto colourAt = [focused](int n) -> uint32_t {
        if (!focused) return 0xFF3060FF;
        return (n >> 2) & 1 ? 0xFF000000 : 0xFFFFFFFF;
    };
    const int l = rect.left - 1, t = rect.top - 1, r = rect.right, b = rect.bottom;
    for (int x = l; x <= r; ++x) {
        putPixel(buffer, x, t, colourAt(x));
        putPixel(buffer, x, b, colourAt(x));
    }
    for (int y = t; y <= b; ++y) {
        putPixel(buffer, l, y, colourAt(y));
        putPixel(buffer, r, y, colourAt(y));
    }
}

void drawCross(CBackBuffer& buffer, int x, int y, uint32_t colour) {
    for (int k = -3; k <= 3; ++k) {
        putPixel(buffer, x + k, y, colour);
        putPixel(buffer, x, y + k, colour);
    }
}

void drawPoints(CBackBuffer& buffer, const CSheetScene& scene, const std::vector<int>& order,
                const CImageViewSettings& s, int z16) {
    auto view = [z16](int v) { return floorDiv(static_cast<int64_t>(v) * z16, 16); };
    for (int i : order) {
        const CSheetImage& image = scene.images[static_cast<size_t>(i)];
        const int d = VramDivisor(s.m_ViewMode, image.bpp);
        const int x0 = image.position.x, y0 = image.position.y;
        for (const CPoint& hot : image.hotSpots)
            drawCross(buffer, view(x0 + hot.x / d), view(y0 + hot.y), s.m_HotPointColor);
        drawCross(buffer, view(x0 + image.center.x / d), view(y0 + image.center.y),
                  s.m_CenterPointColor);
    }
}

} // namespace

CSheetImage CSheetImage::Of(const CTavixImage& image, bool withHotSpots) {
    CSheetImage sheet;
    sheet.bits = image.GetBits();
    sheet.pitch = image.GetPitch();
    sheet.width = image.GetWidth();
    sheet.height = image.GetHeight();
    sheet.pixelBytes = image.GetPixelBytes();
    sheet.bpp = image.GetBpp();
    sheet.palette = reinterpret_cast<const uint32_t*>(image.GetInfo()->colours);
    sheet.position = image.GetDefaultPoint();
    sheet.center = image.GetCenterPoint();
    sheet.onWorksheet = image.m_OnWorksheet != 0;
    if (withHotSpots)
        for (int i = 0; i < image.GetHotSpotCount(); ++i)
            sheet.hotSpots.push_back(image.GetHotSpot(i));
    return sheet;
}

bool CBackBuffer::Place(const CRect& area) {
    if (isEmpty(area)) return false;
    if (!m_Bitmap.IsValid() || m_Bitmap.GetWidth() != area.Width() ||
        m_Bitmap.GetHeight() != area.Height()) {
        if (!m_Bitmap.Create(area.Width(), area.Height(), 32)) {
            m_Area = {};
            return false;
        }
    }
    m_Area = area;
    return true;
}

int VramDivisor(int viewMode, int bpp) {
    if (viewMode != 1 || bpp <= 0 || bpp > 16) return 1;
    return std::max(1, 16 / bpp);
}

CRect SheetImageRect(const CSheetImage& image, int viewMode, double zoom) {
    return zoomRect(worksheetRect(image, viewMode), std::max(1, ZoomFixed(zoom)));
}

std::vector<int> DrawingOrder(const CSheetScene& scene, const CImageViewSettings& settings) {
    const int count = static_cast<int>(scene.images.size());
    const int f = scene.focus >= 0 && scene.focus < count ? scene.focus : -1;
    auto shown = [&](int i) {
        bool selected =
            i < static_cast<int>(scene.selected.size()) && scene.selected[static_cast<size_t>(i)];
        return selected || (settings.m_IsActiveVisible && i == f);
    };
    std::vector<int> order;
    const bool topMost = settings.m_IsActiveTopMost && f >= 0;
    if (topMost && shown(f)) order.push_back(f);
    for (int i = 0; i < count; ++i)
        if (shown(i) && !(topMost && i == f)) order.push_back(i);
    std::reverse(order.begin(), order.end());
    return order;
}

void PaintBackground(CBackBuffer& buffer, const CImageViewSettings& settings, double zoom) {
    if (settings.m_ViewMode == 1)
        paintVramBoard(buffer, settings, zoom);
    else
        paintChecker(buffer, settings, zoom);
}

void PaintImages(CBackBuffer& buffer, const CSheetScene& scene, const CImageViewSettings& s,
                 double zoom) {
    const int z16 = std::max(1, ZoomFixed(zoom));
    const std::vector<int> order = DrawingOrder(scene, s);
    for (int i : order) {
        const CSheetImage& image = scene.images[static_cast<size_t>(i)];
        if (!image.bits || image.width <= 0 || image.height <= 0) continue;
        const int d = VramDivisor(s.m_ViewMode, image.bpp);
        const CRect rect = zoomRect(worksheetRect(image, s.m_ViewMode), z16);
        const CRect visible = intersect(rect, buffer.Area());
        if (isEmpty(visible)) continue;
        // Bump-map images are drawn as they are: the shaded preview needs the
        // lighting modules.
        drawImagePixels(buffer, scene, image, rect, visible, z16, d, s.m_ChannelViewMask);
        if (s.m_DrawOverlapWarning && i == scene.focus)
            drawOverlapWarning(buffer, scene, i, s.m_ViewMode, z16);
        const bool selected =
            i < static_cast<int>(scene.selected.size()) && scene.selected[static_cast<size_t>(i)];
        if (scene.selectionEdges && (selected || i == scene.focus))
            drawEdge(buffer, rect, i == scene.focus);
    }
    if (s.m_PointsVisible) drawPoints(buffer, scene, order, s, z16);
}

void PaintGrid(CBackBuffer& buffer, const CImageViewSettings& s, double zoom, CSize worksheet) {
    if (zoom < 1.0) return;
    const int step = static_cast<int>(s.m_GridSize * zoom);
    if (step <= 0) return;
    // The lines run over the worksheet's size in worksheet pixels, although
    // they are placed in view pixels.
    const CRect all = intersect({0, 0, worksheet.cx, worksheet.cy}, buffer.Area());
    if (isEmpty(all)) return;
    if (s.m_GridStyle == 1) {
        for (int y = 0; y < worksheet.cy; y += step)
            if (y >= all.top && y < all.bottom)
                for (int x = all.left; x < all.right; ++x)
                    buffer.At(x, y) = s.m_GridColor;
        for (int x = 0; x < worksheet.cx; x += step)
            if (x >= all.left && x < all.right)
                for (int y = all.top; y < all.bottom; ++y)
                    buffer.At(x, y) = s.m_GridColor;
    } else if (s.m_GridStyle == 0) {
        for (int y = step; y < worksheet.cy; y += step)
            if (y >= all.top && y < all.bottom)
                for (int x = step; x < worksheet.cx; x += step)
                    if (x >= all.left && x < all.right) buffer.At(x, y) = s.m_GridColor;
    }
}

void PaintWorksheet(CBackBuffer& buffer, const CSheetScene& scene,
                    const CImageViewSettings& settings, double zoom, CSize worksheet) {
    PaintBackground(buffer, settings, zoom);
    PaintImages(buffer, scene, settings, zoom);
    if (settings.m_GridVisible) PaintGrid(buffer, settings, zoom, worksheet);
}
