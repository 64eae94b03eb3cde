#include "mfx/DIB.h"

#include <algorithm>
#include <cstring>
#include <new>

CDIB::CDIB() = default;
CDIB::~CDIB() = default;

void CDIB::Release() {
    m_Bits.reset();
    m_Width = m_Height = m_BitCount = 0;
    m_Pitch = 0;
}

bool CDIB::Create(int width, int height, int bitCount) {
    Release();
    memset(m_ColorTable, 0, sizeof m_ColorTable);
    if (width < 0 || height < 0 || bitCount < 1 || bitCount > 32) return false;
    const int64_t unit = bitCount <= 8 ? 1 : 4;
    const int64_t pitch = (static_cast<int64_t>(width) * unit + 3) & ~int64_t{3};
    const int64_t total = pitch * height;
    if (total > INT32_MAX) return false;
    // A 0 x 0 bitmap still gets a block so that IsValid() tells "created".
    std::unique_ptr<uint8_t[]> bits(new (std::nothrow) uint8_t[std::max<int64_t>(total, 1)]);
    if (!bits) return false;
    memset(bits.get(), 0, static_cast<size_t>(std::max<int64_t>(total, 1)));
    m_Bits = std::move(bits);
    m_Width = width;
    m_Height = height;
    m_BitCount = bitCount;
    m_Pitch = static_cast<int32_t>(pitch);
    return true;
}

bool CDIB::CopyPixels(const CDIB& from) {
    if (&from == this) return true;
    if (!IsValid() || !from.IsValid() || from.m_Width != m_Width || from.m_Height != m_Height ||
        from.GetPixelBytes() != GetPixelBytes())
        return false;
    const size_t length = static_cast<size_t>(m_Width) * GetPixelBytes();
    for (int y = 0; y < m_Height; ++y)
        memcpy(GetRow(y), from.GetRow(y), length);
    if (m_BitCount <= 8) memcpy(m_ColorTable, from.m_ColorTable, sizeof m_ColorTable);
    return true;
}

uint8_t* CDIB::GetRow(int y) {
    return const_cast<uint8_t*>(static_cast<const CDIB*>(this)->GetRow(y));
}

const uint8_t* CDIB::GetRow(int y) const {
    if (!m_Bits || y < 0 || y >= m_Height) return nullptr;
    return m_Bits.get() + static_cast<ptrdiff_t>(y) * m_Pitch;
}

uint8_t* CDIB::GetPixelAddress(int x, int y) {
    return const_cast<uint8_t*>(static_cast<const CDIB*>(this)->GetPixelAddress(x, y));
}

const uint8_t* CDIB::GetPixelAddress(int x, int y) const {
    if (x < 0 || x >= m_Width) return nullptr;
    const uint8_t* row = GetRow(y);
    return row ? row + static_cast<ptrdiff_t>(x) * GetPixelBytes() : nullptr;
}

int CDIB::GetColorCount() const {
    return m_BitCount >= 1 && m_BitCount <= 8 ? 1 << m_BitCount : 0;
}

void CDIB::GetColorTable(int start, int count, CDIBColour* out) const {
    int first = std::clamp(start, 0, kDIBColourTableSize);
    int last = std::clamp(start + std::max(count, 0), first, kDIBColourTableSize);
    if (out && last > first)
        memcpy(out + (first - start), m_ColorTable + first, (last - first) * sizeof *out);
}

void CDIB::SetColorTable(int start, int count, const CDIBColour* colours) {
    int first = std::clamp(start, 0, kDIBColourTableSize);
    int last = std::clamp(start + std::max(count, 0), first, kDIBColourTableSize);
    if (colours && last > first)
        memcpy(m_ColorTable + first, colours + (first - start), (last - first) * sizeof *colours);
}

void CDIB::ClearPixels() {
    if (m_Bits) memset(m_Bits.get(), 0, static_cast<size_t>(std::max<int64_t>(GetImageSize(), 1)));
}
