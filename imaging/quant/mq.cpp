// MQ ("Mirel Quant"): split wide, merge back, then settle.
//
// 1. Split: Wu's 666 cube is cut by largest gain (as Wu Ve does) into up
//    to twice K boxes (at most 512). Cuts are axis-aligned planes, so some
//    of these boxes sit poorly on the colours; having twice as many gives
//    the merge room to choose.
// 2. Merge: the two clusters whose union raises the squared error least
//    (Ward's criterion: wa wb / (wa + wb) |ma - mb|^2) are merged, again
//    and again, until K remain. Merging is free of the axis-aligned limit,
//    so clusters that the planes cut apart come back together.
// 3. Settle: Lloyd rounds over the histogram's cells (see lloyd.cpp) move
//    every colour to the mean of the cells nearest to it.
// Pixels are then mapped by nearest colour; no inverse map is made.

#include "imaging/galloc.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

#include <algorithm>
#include <cmath>
#include <cfloat>

namespace quant {

namespace {

const Decl kMq{"MIRQ", "MQ", "Mirel Quant", "1.00"};
constexpr int32_t kBits666[] = {6, 6, 6};
constexpr int32_t kMaxSplit = 512;
constexpr int32_t kRounds = 8;

struct Cluster {
    double weight;
    double r, g, b; // mean
    bool alive;
    int32_t partner;    // the cheapest cluster to merge with
    double partnerCost; // and what merging costs
};

double mergeCost(const Cluster& a, const Cluster& b) {
    const double dr = a.r - b.r, dg = a.g - b.g, db = a.b - b.b;
    return a.weight * b.weight / (a.weight + b.weight) * (dr * dr + dg * dg + db * db);
}

void findPartner(Cluster* c, int32_t n, int32_t i) {
    c[i].partner = -1;
    c[i].partnerCost = DBL_MAX;
    for (int32_t j = 0; j < n; ++j) {
        if (j == i || !c[j].alive) continue;
        const double cost = mergeCost(c[i], c[j]);
        if (cost < c[i].partnerCost) {
            c[i].partnerCost = cost;
            c[i].partner = j;
        }
    }
}

// Merges clusters until `k` are alive; returns the number alive.
int32_t mergeDown(Cluster* c, int32_t n, int32_t k) {
    for (int32_t i = 0; i < n; ++i)
        findPartner(c, n, i);
    int32_t alive = n;
    while (alive > k) {
        int32_t a = -1;
        for (int32_t i = 0; i < n; ++i)
            if (c[i].alive && c[i].partner >= 0 && (a < 0 || c[i].partnerCost < c[a].partnerCost))
                a = i;
        if (a < 0) break;
        const int32_t b = c[a].partner;
        const double w = c[a].weight + c[b].weight;
        c[a].r = (c[a].r * c[a].weight + c[b].r * c[b].weight) / w;
        c[a].g = (c[a].g * c[a].weight + c[b].g * c[b].weight) / w;
        c[a].b = (c[a].b * c[a].weight + c[b].b * c[b].weight) / w;
        c[a].weight = w;
        c[b].alive = false;
        --alive;
        for (int32_t i = 0; i < n; ++i) {
            if (!c[i].alive) continue;
            if (i == a || c[i].partner == a || c[i].partner == b)
                findPartner(c, n, i);
            else if (mergeCost(c[i], c[a]) < c[i].partnerCost) {
                c[i].partnerCost = mergeCost(c[i], c[a]);
                c[i].partner = a;
            }
        }
    }
    return alive;
}

uint32_t colourOf(const Cluster& c) {
    auto channel = [](double v) {
        return static_cast<uint32_t>(std::clamp(static_cast<int>(std::lround(v)), 0, 255));
    };
    return 0xFF000000u | (channel(c.r) << 16) | (channel(c.g) << 8) | channel(c.b);
}

// Steps 1 and 2 on an accumulated cube: the merged palette, or null.
uint32_t* splitAndMerge(WuCube* cube, int32_t k, int32_t* made) {
    const int32_t wide = std::min(kMaxSplit, 2 * k);
    auto* boxes = static_cast<WuBox*>(galloc(wide * static_cast<int32_t>(sizeof(WuBox))));
    auto* clusters = static_cast<Cluster*>(galloc(wide * static_cast<int32_t>(sizeof(Cluster))));
    auto* palette = static_cast<uint32_t*>(galloc(k * 4));
    if (boxes && clusters && palette) {
        const int32_t n = wu_split(cube, wide, boxes, WuChoice::LargestGain);
        int32_t live = 0;
        for (int32_t i = 0; i < n; ++i) {
            WuMoments m = wu_moments(cube, boxes[i]);
            if (m.weight <= 0) continue;
            clusters[live++] = Cluster{
                m.weight, m.sum[0] / m.weight, m.sum[1] / m.weight, m.sum[2] / m.weight, true, -1,
                0};
        }
        mergeDown(clusters, live, k);
        *made = 0;
        for (int32_t i = 0; i < live; ++i)
            if (clusters[i].alive) palette[(*made)++] = colourOf(clusters[i]);
    } else if (palette) {
        gfree(palette);
        palette = nullptr;
    }
    if (boxes) gfree(boxes);
    if (clusters) gfree(clusters);
    return palette;
}

} // namespace

QuantDescriptor* describe_mq() {
    return build_descriptor(kMq);
}

QuantInstance* begin_mq() {
    return begin_cube(kMq, 3, kBits666);
}

uint32_t* make_mq(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    WuCube* cube = &reinterpret_cast<WuInstance*>(instance)->cube;
    if (map) *map = nullptr;
    int32_t sampleCount = 0, n = 0;
    Sample* samples = wu_samples(cube, &sampleCount);
    uint32_t* palette = nullptr;
    if (samples) {
        wu_accumulate(cube);
        palette = splitAndMerge(cube, k, &n);
    }
    if (palette && !lloyd_refine(samples, sampleCount, palette, n, kRounds)) {
        gfree(palette);
        palette = nullptr;
    }
    if (samples) gfree(samples);
    if (count) *count = palette ? n : 0;
    destroy_cube(instance);
    return palette;
}

} // namespace quant
