// Edge ("Clean Edges"): removes one-pixel spikes and pits from the outline
// of shapes drawn on a back colour, the stray pixels that scaling and hand
// drawing leave behind.
//
// - A spike is a pixel of a shape with at most one of its four direct
//   neighbours (above, below, left, right) in the shape: it becomes the
//   back colour.
// - A pit is a back-colour pixel with at least three of its four direct
//   neighbours in a shape: it takes the most common colour among them.
// Outside the image counts as back colour.
//
// Values:
// - Back Color (default 0): an 0xAARRGGBB word, or a palette index for
//   indexed images (the low byte).
// - Num Pixels (1 .. 64, default 1): how many passes run; each pass
//   removes one more pixel of a longer spike. 0 changes nothing.
// - Operation (default 0): 0 "Spikes and Pits", 1 "Spikes", 2 "Pits".

#include "imaging/module/authoring.h"
#include "imaging/modules/filter/plane_filter.h"
#include "imaging/modules/modules.h"

#include <algorithm>

namespace {

constexpr ModuleParamDecl kParams[] = {
    {kParamColour, 0, 0xFFFFFFFF, 0, "Back Color"},
    {kParamInteger, 1, 64, 1, "Num Pixels"},
    {kParamChoice, 0, 2, 0, "Operation", "Spikes and Pits,Spikes,Pits"},
};

constexpr ModuleDecl kDecl = {.magic = "CLNE",
                              .name = "Edge",
                              .description = "Clean Edges",
                              .version = "1.03",
                              .params = kParams};

enum : int32_t { kBoth = 0, kSpikes = 1, kPits = 2 };
constexpr int32_t kMaxPasses = 64;

struct Neighbours {
    uint32_t values[4];
    int count = 0; // how many are not back colour
};

Neighbours around(const filter::Plane& plane, int32_t x, int32_t y, uint32_t back) {
    Neighbours n;
    const int32_t dx[4] = {-1, 1, 0, 0}, dy[4] = {0, 0, -1, 1};
    for (int i = 0; i < 4; ++i) {
        int32_t nx = x + dx[i], ny = y + dy[i];
        bool inside = nx >= 0 && ny >= 0 && nx < plane.width && ny < plane.height;
        uint32_t v = inside ? plane.at(nx, ny) : back;
        if (v != back) n.values[n.count++] = v;
    }
    return n;
}

// The value that most of the given ones share (the first on a tie).
uint32_t mostCommon(const Neighbours& n) {
    uint32_t best = n.values[0];
    int bestCount = 0;
    for (int i = 0; i < n.count; ++i) {
        int c = static_cast<int>(std::count(n.values, n.values + n.count, n.values[i]));
        if (c > bestCount) best = n.values[i], bestCount = c;
    }
    return best;
}

bool clean(const ModuleInstance* instance, filter::Plane* plane) {
    uint32_t back =
        filter::value_of_colour(instance->images[0], module_value_uint(instance, kDecl, 0));
    int32_t passes = std::clamp(module_value_int(instance, kDecl, 1), 0, kMaxPasses);
    int32_t operation = module_value_int(instance, kDecl, 2);
    bool spikes = operation != kPits, pits = operation != kSpikes;
    filter::Plane from;
    if (!filter::plane_make_like(&from, *plane)) return false;
    for (int32_t pass = 0; pass < passes; ++pass) {
        filter::plane_copy(*plane, &from);
        for (int32_t y = 0; y < plane->height; ++y) {
            for (int32_t x = 0; x < plane->width; ++x) {
                Neighbours n = around(from, x, y, back);
                bool isBack = from.at(x, y) == back;
                if (spikes && !isBack && n.count <= 1)
                    plane->at(x, y) = back;
                else if (pits && isBack && n.count >= 3)
                    plane->at(x, y) = mostCommon(n);
            }
        }
    }
    filter::plane_free(&from);
    return true;
}

} // namespace

constexpr ModuleEntry mod_edge = filter::plane_entry<kDecl, clean, filter::PlaneKind::Values>();
