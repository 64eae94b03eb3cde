#include "app/cmds/PaletteOps.h"

#include "app/doc/TavixImage.h"

#include <climits>
#include <cstring>
#include <vector>

namespace palette_ops {

int distance(uint32_t a, uint32_t b) {
    int sum = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const int d = static_cast<int>((a >> shift) & 0xFF) - static_cast<int>((b >> shift) & 0xFF);
        sum += d * d;
    }
    return sum;
}

int nearest(uint32_t value, const TavixColour palette[256], const Flags& candidates) {
    int best = -1;
    int bestSum = INT_MAX;
    for (int i = 0; i < 256; ++i) {
        if (!candidates[static_cast<size_t>(i)]) continue;
        const int sum = distance(value, argb(palette[i]));
        if (sum < bestSum) {
            best = i;
            bestSum = sum;
            if (sum == 0) break;
        }
    }
    return best;
}

Flags allFlags() {
    Flags flags;
    flags.fill(1);
    return flags;
}

void remapIndices(CTavixImage& image, const uint8_t map[256]) {
    for (int y = 0; y < image.GetHeight(); ++y) {
        uint8_t* row = image.GetRow(y);
        for (int x = 0; x < image.GetWidth(); ++x)
            row[x] = map[row[x]];
    }
}

std::array<uint32_t, 256> usage(const CTavixImage& image) {
    std::array<uint32_t, 256> counts{};
    for (int y = 0; y < image.GetHeight(); ++y) {
        const uint8_t* row = image.GetRow(y);
        for (int x = 0; x < image.GetWidth(); ++x)
            ++counts[row[x]];
    }
    return counts;
}

std::unique_ptr<CTavixImage> indexedLike(const CTavixImage& source,
                                         const TavixColour palette[256]) {
    // The whole record travels, tail included, so that nothing the file
    // keeps per image is lost with the depth change.
    const size_t bytes = static_cast<size_t>(source.GetInfoSize());
    std::vector<uint32_t> buffer((bytes + 3) / 4);
    memcpy(buffer.data(), source.GetInfo(), bytes);
    auto* info = reinterpret_cast<TavixInfo*>(buffer.data());
    info->bpp = 8;
    info->bufferbpp = 8;
    info->startcolour = 0;
    info->numcolours = 256;
    memcpy(info->colours, palette, sizeof info->colours);
    auto image = std::make_unique<CTavixImage>();
    image->SetInformation(*info);
    image->m_OnWorksheet = source.m_OnWorksheet;
    return image;
}

} // namespace palette_ops
