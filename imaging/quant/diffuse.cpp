#include "imaging/quant/diffuse.h"

#include "imaging/galloc.h"

#include <cstring>

namespace quant {

struct Diffuser::Kernel {
    int32_t divisor;
    int32_t taps;
    struct Tap {
        int32_t dx, dy, weight;
    } tap[12];
};

namespace {

constexpr int32_t kMargin = 2;

} // namespace

Diffuser::Diffuser(int32_t dither, int32_t width) : m_Width(width) {
    static const Kernel kFloyd{16, 4, {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}}};
    static const Kernel kBurkes{
        32, 7, {{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}}};
    static const Kernel kStucki{42,
                                12,
                                {{1, 0, 8},
                                 {2, 0, 4},
                                 {-2, 1, 2},
                                 {-1, 1, 4},
                                 {0, 1, 8},
                                 {1, 1, 4},
                                 {2, 1, 2},
                                 {-2, 2, 1},
                                 {-1, 2, 2},
                                 {0, 2, 4},
                                 {1, 2, 2},
                                 {2, 2, 1}}};
    m_Kernel = dither == kDitherFloyd    ? &kFloyd
               : dither == kDitherBurkes ? &kBurkes
               : dither == kDitherStucki ? &kStucki
                                         : nullptr;
    if (!m_Kernel) return;
    const int32_t bytes = 3 * (width + 2 * kMargin) * 3 * 4;
    m_Rows = static_cast<int32_t*>(galloc(bytes));
    if (m_Rows) memset(m_Rows, 0, static_cast<size_t>(bytes));
}

Diffuser::~Diffuser() {
    if (m_Rows) gfree(m_Rows);
}

int32_t* Diffuser::row(int32_t dy) const {
    return m_Rows + dy * (m_Width + 2 * kMargin) * 3;
}

bool Diffuser::beginRow(int32_t y) {
    m_Reverse = (y & 1) != 0;
    if (!m_Kernel || y == 0) return m_Reverse;
    // The rows move up by one: row 1 becomes the current row.
    const size_t rowBytes = static_cast<size_t>(m_Width + 2 * kMargin) * 3 * 4;
    memmove(row(0), row(1), 2 * rowBytes);
    memset(row(2), 0, rowBytes);
    return m_Reverse;
}

namespace {

int32_t divideRounded(int32_t value, int32_t divisor) {
    return value >= 0 ? (value + divisor / 2) / divisor : -((-value + divisor / 2) / divisor);
}

int32_t clamp255(int32_t v) {
    return v < 0 ? 0 : v > 255 ? 255 : v;
}

} // namespace

uint32_t Diffuser::adjust(int32_t x, uint32_t argb) const {
    if (!m_Kernel) return argb;
    const int32_t* e = row(0) + (x + kMargin) * 3;
    uint32_t out = argb & 0xFF000000u;
    for (int c = 0; c < 3; ++c) {
        const int shift = 16 - 8 * c;
        const int32_t v =
            static_cast<int32_t>((argb >> shift) & 0xFF) + divideRounded(e[c], m_Kernel->divisor);
        out |= static_cast<uint32_t>(clamp255(v)) << shift;
    }
    return out;
}

void Diffuser::spread(int32_t x, uint32_t wanted, uint32_t got) {
    if (!m_Kernel) return;
    int32_t error[3];
    for (int c = 0; c < 3; ++c) {
        const int shift = 16 - 8 * c;
        error[c] = static_cast<int32_t>((wanted >> shift) & 0xFF) -
                   static_cast<int32_t>((got >> shift) & 0xFF);
    }
    for (int32_t t = 0; t < m_Kernel->taps; ++t) {
        const auto& tap = m_Kernel->tap[t];
        const int32_t to = x + (m_Reverse ? -tap.dx : tap.dx);
        if (to < 0 || to >= m_Width) continue;
        int32_t* e = row(tap.dy) + (to + kMargin) * 3;
        for (int c = 0; c < 3; ++c)
            e[c] += error[c] * tap.weight;
    }
}

} // namespace quant
