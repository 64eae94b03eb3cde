// Wu Ve: Wu's 666 box splitting with a different choice of the box to cut
// next, and mapping by nearest colour.
//
// Classic Wu cuts next the box of largest variance. That box is not always
// the one whose cut helps most: a long thin box of two colours can have a
// large variance that one cut removes almost entirely, while another box
// of smaller variance may need its cut more. Wu Ve keeps, for every box,
// its best cut and how much that cut lowers the squared error (its gain),
// and always makes the cut of largest gain: a greedy descent on the very
// error the palette is judged by. Pixels are mapped to the nearest palette
// colour rather than through the boxes, which for any palette is never
// worse; so no inverse map is made.

#include "imaging/galloc.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

namespace quant {

namespace {

const Decl kWuVe{"WUVE", "Wu Ve", "Wu Ve", "1.01"};
constexpr int32_t kBits666[] = {6, 6, 6};

} // namespace

QuantDescriptor* describe_wuve() {
    return build_descriptor(kWuVe);
}

QuantInstance* begin_wuve() {
    return begin_cube(kWuVe, 3, kBits666);
}

uint32_t* make_wuve(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    WuCube* cube = &reinterpret_cast<WuInstance*>(instance)->cube;
    if (map) *map = nullptr;
    uint32_t* palette = wu_make(cube, k, nullptr, count, WuChoice::LargestGain);
    destroy_cube(instance);
    return palette;
}

} // namespace quant
