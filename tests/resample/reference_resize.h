#pragma once
// A plain resizer written straight from the rules, one output pixel at a
// time, to hold the library's optimised one to: the same float operations
// in the same order, so the two must agree to the byte.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ref {

struct Image {
    int32_t width = 0;
    int32_t height = 0;
    std::vector<uint32_t> px; // 0xAARRGGBB, row after row

    uint32_t at(int32_t x, int32_t y) const { return px[size_t(y) * width + x]; }
};

struct Tap {
    int32_t index;
    float weight;
};

float kernel(int32_t filter, float x);
float support(int32_t filter);

// The list of every output index, zero weights included.
std::vector<std::vector<Tap>> lists(int32_t nIn, int32_t nOut, int32_t filter);

uint32_t key(const Image& source, bool respectAlpha, uint32_t chromakey);

Image resize(const Image& source, int32_t width, int32_t height, int32_t filter, bool respectAlpha,
             uint32_t chromakey, bool resultHasAlpha);

} // namespace ref
