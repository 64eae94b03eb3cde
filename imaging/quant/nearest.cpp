#include "imaging/quant/nearest.h"

#include "imaging/galloc.h"

#include <algorithm>
#include <cstring>

namespace quant {

uint32_t distance2(uint32_t a, uint32_t b) {
    uint32_t d = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int32_t x =
            static_cast<int32_t>((a >> shift) & 0xFF) - static_cast<int32_t>((b >> shift) & 0xFF);
        d += static_cast<uint32_t>(x * x);
    }
    return d;
}

Nearest::~Nearest() {
    if (m_Lists) gfree(m_Lists);
    if (m_Grid) gfree(m_Grid);
}

bool Nearest::init(const uint32_t* palette, const uint8_t* used, int32_t n) {
    m_Count = 0;
    for (int32_t i = 0; i < n && i < 256; ++i)
        if (!used || used[i]) {
            m_Colours[m_Count] = palette[i];
            m_Entries[m_Count++] = i;
        }
    if (!m_Count) return false;
    m_Lists = static_cast<Neighbour*>(
        galloc(m_Count * m_Count * static_cast<int32_t>(sizeof(Neighbour))));
    m_Grid = static_cast<int16_t*>(galloc(4096 * 2));
    if (!m_Lists || !m_Grid) return false;
    memset(m_Grid, 0xFF, 4096 * 2);
    for (int32_t a = 0; a < m_Count; ++a) {
        Neighbour* list = m_Lists + a * m_Count;
        for (int32_t b = 0; b < m_Count; ++b)
            list[b] = Neighbour{distance2(m_Colours[a], m_Colours[b]), b};
        std::sort(list, list + m_Count, [](const Neighbour& x, const Neighbour& y) {
            return x.distance != y.distance ? x.distance < y.distance : x.index < y.index;
        });
    }
    return true;
}

// The grid cell's guess; an opaque colour at the cell's centre stands for it.
int32_t Nearest::guess(uint32_t argb) {
    const uint32_t cell = ((argb >> 12) & 0xF00) | ((argb >> 8) & 0xF0) | ((argb >> 4) & 0xF);
    int16_t& g = m_Grid[cell];
    if (g < 0) {
        const uint32_t centre = 0xFF000000u | ((cell & 0xF00) << 12) | ((cell & 0xF0) << 8) |
                                ((cell & 0xF) << 4) | 0x080808u;
        int32_t best = 0;
        uint32_t bestDistance = UINT32_MAX;
        for (int32_t i = 0; i < m_Count; ++i) {
            const uint32_t d = distance2(centre, m_Colours[i]);
            if (d < bestDistance) {
                bestDistance = d;
                best = i;
            }
        }
        g = static_cast<int16_t>(best);
    }
    return g;
}

int32_t Nearest::find(uint32_t argb) {
    const int32_t g = guess(argb);
    int32_t best = g;
    uint32_t bestDistance = distance2(argb, m_Colours[g]);
    const uint64_t limit = 4ull * bestDistance;
    const Neighbour* list = m_Lists + g * m_Count;
    for (int32_t i = 1; i < m_Count; ++i) {
        // d(g, i) > 2 d(x, g) means d(x, i) > d(x, g) >= the best so far.
        if (list[i].distance > limit) break;
        const int32_t at = list[i].index;
        const uint32_t d = distance2(argb, m_Colours[at]);
        if (d < bestDistance || (d == bestDistance && at < best)) {
            bestDistance = d;
            best = at;
        }
    }
    return m_Entries[best];
}

} // namespace quant
