#include "imaging/normalmap/field.h"

#include "imaging/galloc.h"
#include "imaging/geometry/raster.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace normalmap {

Field::Field(int32_t width, int32_t height) : m_Width(width), m_Height(height) {
    int64_t bytes = static_cast<int64_t>(width) * height * static_cast<int64_t>(sizeof(float));
    if (width > 0 && height > 0 && bytes <= INT32_MAX)
        m_Values = static_cast<float*>(galloc(static_cast<int32_t>(bytes)));
}

Field::~Field() {
    if (m_Values) gfree(m_Values);
}

float Field::clamped(int32_t x, int32_t y) const {
    return at(std::clamp(x, 0, m_Width - 1), std::clamp(y, 0, m_Height - 1));
}

void read_heights(const ImageEntry& image, Field& heights) {
    geometry::Raster raster = geometry::raster_of(image);
    for (int32_t y = 0; y < heights.height(); ++y)
        for (int32_t x = 0; x < heights.width(); ++x)
            heights.at(x, y) =
                static_cast<float>(geometry::luminance(geometry::argb_at(image, raster, x, y)));
}

Slope slope_from(int32_t value) {
    return value >= 0 && value <= 3 ? static_cast<Slope>(value) : Slope::Central;
}

Integrate integrate_from(int32_t value) {
    return value >= 0 && value <= 3 ? static_cast<Integrate>(value) : Integrate::Relax;
}

void slopes(const Field& h, Slope method, Field& dx, Field& dy) {
    // Across-weights of the 3 x 3 kernels and their normalising divisor.
    float side = method == Slope::Sobel ? 1.0f : 3.0f;
    float middle = method == Slope::Sobel ? 2.0f : 10.0f;
    float norm = 2.0f * (2 * side + middle);
    for (int32_t y = 0; y < h.height(); ++y)
        for (int32_t x = 0; x < h.width(); ++x) {
            switch (method) {
            case Slope::Forward:
                dx.at(x, y) = h.clamped(x + 1, y) - h.at(x, y);
                dy.at(x, y) = h.clamped(x, y + 1) - h.at(x, y);
                break;
            case Slope::Sobel:
            case Slope::Scharr: {
                float gx = 0, gy = 0;
                for (int32_t k = -1; k <= 1; ++k) {
                    float w = k == 0 ? middle : side;
                    gx += w * (h.clamped(x + 1, y + k) - h.clamped(x - 1, y + k));
                    gy += w * (h.clamped(x + k, y + 1) - h.clamped(x + k, y - 1));
                }
                dx.at(x, y) = gx / norm;
                dy.at(x, y) = gy / norm;
                break;
            }
            default:
                dx.at(x, y) = (h.clamped(x + 1, y) - h.clamped(x - 1, y)) / 2;
                dy.at(x, y) = (h.clamped(x, y + 1) - h.clamped(x, y - 1)) / 2;
                break;
            }
        }
}

namespace {

void alongRows(const Field& dx, const Field& dy, Field& h) {
    for (int32_t y = 0; y < h.height(); ++y) {
        h.at(0, y) = y == 0 ? 0 : h.at(0, y - 1) + (dy.at(0, y - 1) + dy.at(0, y)) / 2;
        for (int32_t x = 1; x < h.width(); ++x)
            h.at(x, y) = h.at(x - 1, y) + (dx.at(x - 1, y) + dx.at(x, y)) / 2;
    }
}

void alongColumns(const Field& dx, const Field& dy, Field& h) {
    for (int32_t x = 0; x < h.width(); ++x) {
        h.at(x, 0) = x == 0 ? 0 : h.at(x - 1, 0) + (dx.at(x - 1, 0) + dx.at(x, 0)) / 2;
        for (int32_t y = 1; y < h.height(); ++y)
            h.at(x, y) = h.at(x, y - 1) + (dy.at(x, y - 1) + dy.at(x, y)) / 2;
    }
}

// Gauss-Seidel sweeps of laplacian(h) = divergence(dx, dy) with the
// border held by its slopes (Neumann edges).
void relax(const Field& dx, const Field& dy, Field& h) {
    int32_t w = h.width(), ht = h.height();
    int64_t pixels = static_cast<int64_t>(w) * ht;
    int32_t sweeps =
        static_cast<int32_t>(std::clamp<int64_t>(4000000 / std::max<int64_t>(pixels, 1), 4, 200));
    for (int32_t sweep = 0; sweep < sweeps; ++sweep)
        for (int32_t y = 0; y < ht; ++y)
            for (int32_t x = 0; x < w; ++x) {
                float sum = 0;
                int32_t n = 0;
                // Each neighbour predicts h from its height and the mean slope between them.
                if (x > 0) sum += h.at(x - 1, y) + (dx.at(x - 1, y) + dx.at(x, y)) / 2, ++n;
                if (x + 1 < w) sum += h.at(x + 1, y) - (dx.at(x + 1, y) + dx.at(x, y)) / 2, ++n;
                if (y > 0) sum += h.at(x, y - 1) + (dy.at(x, y - 1) + dy.at(x, y)) / 2, ++n;
                if (y + 1 < ht) sum += h.at(x, y + 1) - (dy.at(x, y + 1) + dy.at(x, y)) / 2, ++n;
                if (n) h.at(x, y) = sum / static_cast<float>(n);
            }
}

} // namespace

void integrate(const Field& dx, const Field& dy, Integrate method, Field& h) {
    if (method == Integrate::Rows) return alongRows(dx, dy, h);
    if (method == Integrate::Columns) return alongColumns(dx, dy, h);
    Field other(h.width(), h.height());
    alongRows(dx, dy, h);
    if (other.ok()) {
        alongColumns(dx, dy, other);
        for (int32_t y = 0; y < h.height(); ++y)
            for (int32_t x = 0; x < h.width(); ++x)
                h.at(x, y) = (h.at(x, y) + other.at(x, y)) / 2;
    }
    if (method == Integrate::Relax) relax(dx, dy, h);
}

void write_grey(const Field& h, const ImageEntry& alphaSource, void* pixels, int32_t rowbytes) {
    float low = h.at(0, 0), high = low;
    for (int32_t y = 0; y < h.height(); ++y)
        for (int32_t x = 0; x < h.width(); ++x) {
            low = std::min(low, h.at(x, y));
            high = std::max(high, h.at(x, y));
        }
    geometry::Raster in = geometry::raster_of(alphaSource);
    geometry::Raster out{static_cast<uint8_t*>(pixels), rowbytes, h.width(), h.height(), 4};
    for (int32_t y = 0; y < h.height(); ++y)
        for (int32_t x = 0; x < h.width(); ++x) {
            float v = high > low ? (h.at(x, y) - low) * 255.0f / (high - low) : 128.0f;
            auto grey = static_cast<uint32_t>(std::lround(std::clamp(v, 0.0f, 255.0f)));
            uint32_t alpha = geometry::channel(geometry::argb_at(alphaSource, in, x, y), 24);
            out.set(x, y, geometry::pack_argb(alpha, grey, grey, grey));
        }
}

} // namespace normalmap
