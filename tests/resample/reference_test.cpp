// The library's resizer against the plain reference: every kernel, reduction
// and enlargement, odd sizes, with and without alpha, with Respect Alpha
// and key colours. The bytes must be identical.

#include "support.h"

#include <tuple>

namespace {

struct Shape {
    const char* name;
    int32_t inW, inH, outW, outH;
};

const Shape kShapes[] = {
    {"Reduce", 103, 67, 41, 29},
    {"Enlarge", 13, 11, 58, 47},
    {"ReduceBy4", 64, 36, 16, 9},
    {"Mixed", 45, 9, 101, 4},
    {"SameSize", 19, 17, 19, 17},
    {"OneColumn", 1, 9, 6, 4},
    {"TwoToOne", 2, 2, 1, 1},
    {"ToOnePixel", 23, 31, 1, 1},
    // Far taller than a list is long: the intermediate rows wrap around
    // their ring many times.
    {"TallReduce", 7, 300, 5, 31},
    {"TallEnlarge", 5, 40, 3, 250},
};

struct Mode {
    const char* name;
    bool respect;
    uint32_t chromakey;
    bool resultAlpha;
    int transparent; // per 1000 pixels
    int keyed;       // per 1000 pixels equal to keyedColour
    uint32_t keyedColour;
    bool firstIsZero; // make the first pixel 0x00000000, so the resolved key is 0
};

const Mode kModes[] = {
    {"Plain", false, 0, true, 100, 0, 0, false},
    {"NoAlpha", false, 0, false, 100, 0, 0, false},
    {"RespectAlphaZero", true, 0, true, 350, 0, 0, true},
    {"RespectFirstTransparent", true, 0, true, 100, 300, 0x00ABCDEF, false},
    {"RespectChromakey", true, 0xFF00FF00, true, 100, 400, 0xFF00FF00, false},
    {"RespectNoAlphaResult", true, 0, false, 350, 0, 0, true},
    {"RespectFallbackKey", true, 0, true, 0, 0, 0, false},
};

using Param = std::tuple<int32_t, Shape, Mode>;

class Identical : public ResampleTest, public ::testing::WithParamInterface<Param> {};

TEST_P(Identical, ToReference) {
    auto [filter, shape, mode] = GetParam();
    uint32_t seed = uint32_t(filter * 7919 + shape.inW * 31 + shape.outH);
    ref::Image source =
        randomImage(seed, shape.inW, shape.inH, mode.transparent, mode.keyed, mode.keyedColour);
    if (mode.firstIsZero) source.px[0] = 0;
    if (mode.keyed) source.px[1 % source.px.size()] = mode.keyedColour;
    if (mode.transparent == 0)
        for (uint32_t& p : source.px)
            p |= 0x01000000u;

    Picture in(source, 3);
    in.info()->alphabits = mode.resultAlpha ? 8 : 0;
    Picture out = runModule(
        "Size", in, {I(shape.outW), I(shape.outH), I(filter), I(mode.respect), U(mode.chromakey)});
    ASSERT_EQ(out.width(), shape.outW);
    ASSERT_EQ(out.height(), shape.outH);
    ref::Image expected = ref::resize(source, shape.outW, shape.outH, filter, mode.respect,
                                      mode.chromakey, mode.resultAlpha);
    ref::Image got = out.image();
    int32_t mismatches = 0;
    for (size_t i = 0; i < got.px.size() && mismatches < 5; ++i)
        if (got.px[i] != expected.px[i]) {
            ++mismatches;
            ADD_FAILURE() << "pixel " << i % shape.outW << "," << i / shape.outW << ": got "
                          << std::hex << got.px[i] << " expected " << expected.px[i];
        }
}

std::string name(const ::testing::TestParamInfo<Param>& info) {
    const char* filters[] = {"Lanczos3", "Mitchell", "Cubic",   "Linear",
                             "Point",    "Bell",     "BSpline", "Quadratic"};
    return std::string(filters[std::get<0>(info.param)]) + "_" + std::get<1>(info.param).name +
           "_" + std::get<2>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(AllKernels, Identical,
                         ::testing::Combine(::testing::Range(0, 8), ::testing::ValuesIn(kShapes),
                                            ::testing::ValuesIn(kModes)),
                         name);

} // namespace
