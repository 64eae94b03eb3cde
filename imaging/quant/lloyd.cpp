// Lloyd ("Lloyd Histogram"): Lloyd's k-means iterations over the colour
// histogram, seeded by Wu's 666 palette.
//
// The histogram is Wu's 666 cube; every non-empty cell becomes one sample,
// its pixels' mean colour weighted by their count. Because each cell's
// pixels share a sample, the squared error of an assignment is a constant
// (the spread inside the cells) plus the weighted error of the samples, so
// iterating over samples lowers exactly the error of the image's pixels
// under the cell constraint. Each round assigns every sample to its
// nearest centre and moves each centre to the weighted mean of its
// samples; neither step can raise the error, so the result is never worse
// than the Wu palette it starts from. A centre that loses all its samples
// stays where it was. The rounds stop when no centre moves by a quarter of
// a level, or after 24 rounds. No inverse map is made: the palette no
// longer follows the boxes, so pixels are mapped by nearest colour.
//
// The nearest-centre search starts from the sample's previous centre and
// walks that centre's neighbours by distance, stopping where the triangle
// inequality rules the rest out.

#include "imaging/galloc.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace quant {

namespace {

struct Centre {
    double r, g, b;
};

struct Neighbour {
    float distance; // squared
    int32_t index;
};

double dist2(const Centre& c, const Sample& s) {
    const double dr = c.r - s.r, dg = c.g - s.g, db = c.b - s.b;
    return dr * dr + dg * dg + db * db;
}

double dist2(const Centre& a, const Centre& b) {
    const double dr = a.r - b.r, dg = a.g - b.g, db = a.b - b.b;
    return dr * dr + dg * dg + db * db;
}

void sortNeighbours(const Centre* centres, int32_t n, Neighbour* lists) {
    for (int32_t a = 0; a < n; ++a) {
        Neighbour* list = lists + a * n;
        for (int32_t b = 0; b < n; ++b)
            list[b] = Neighbour{static_cast<float>(dist2(centres[a], centres[b])), b};
        std::sort(list, list + n,
                  [](const Neighbour& x, const Neighbour& y) { return x.distance < y.distance; });
    }
}

int32_t nearestFrom(const Centre* centres, int32_t n, const Neighbour* lists, int32_t start,
                    const Sample& s) {
    int32_t best = start;
    double bestDistance = dist2(centres[start], s);
    const double limit = 4.0 * bestDistance * 1.0001 + 1e-6;
    const Neighbour* list = lists + start * n;
    for (int32_t i = 1; i < n; ++i) {
        if (list[i].distance > limit) break;
        const double d = dist2(centres[list[i].index], s);
        if (d < bestDistance) {
            bestDistance = d;
            best = list[i].index;
        }
    }
    return best;
}

struct Work {
    Centre* centres = nullptr;
    Centre* sums = nullptr;
    double* weights = nullptr;
    Neighbour* lists = nullptr;
    int32_t* owner = nullptr;

    bool alloc(int32_t n, int32_t samples) {
        centres = static_cast<Centre*>(galloc(n * static_cast<int32_t>(sizeof(Centre))));
        sums = static_cast<Centre*>(galloc(n * static_cast<int32_t>(sizeof(Centre))));
        weights = static_cast<double*>(galloc(n * static_cast<int32_t>(sizeof(double))));
        lists = static_cast<Neighbour*>(galloc(n * n * static_cast<int32_t>(sizeof(Neighbour))));
        owner = static_cast<int32_t*>(galloc(std::max(samples, 1) * 4));
        return centres && sums && weights && lists && owner;
    }
    ~Work() {
        for (void* p :
             {static_cast<void*>(centres), static_cast<void*>(sums), static_cast<void*>(weights),
              static_cast<void*>(lists), static_cast<void*>(owner)})
            if (p) gfree(p);
    }
};

// The nearest centre of every sample by a full scan, for the first round.
void assignAll(const Centre* centres, int32_t n, const Sample* samples, int32_t count,
               int32_t* owner) {
    for (int32_t s = 0; s < count; ++s) {
        int32_t best = 0;
        double bestDistance = dist2(centres[0], samples[s]);
        for (int32_t c = 1; c < n; ++c) {
            const double d = dist2(centres[c], samples[s]);
            if (d < bestDistance) {
                bestDistance = d;
                best = c;
            }
        }
        owner[s] = best;
    }
}

// Moves each centre to the mean of its samples; returns the largest
// squared move.
double moveCentres(Work& w, int32_t n, const Sample* samples, int32_t count) {
    memset(w.sums, 0, static_cast<size_t>(n) * sizeof(Centre));
    memset(w.weights, 0, static_cast<size_t>(n) * sizeof(double));
    for (int32_t s = 0; s < count; ++s) {
        const double weight = samples[s].weight;
        Centre& sum = w.sums[w.owner[s]];
        sum.r += samples[s].r * weight;
        sum.g += samples[s].g * weight;
        sum.b += samples[s].b * weight;
        w.weights[w.owner[s]] += weight;
    }
    double largest = 0;
    for (int32_t c = 0; c < n; ++c) {
        if (w.weights[c] <= 0) continue;
        const Centre moved{w.sums[c].r / w.weights[c], w.sums[c].g / w.weights[c],
                           w.sums[c].b / w.weights[c]};
        largest = std::max(largest, dist2(moved, w.centres[c]));
        w.centres[c] = moved;
    }
    return largest;
}

uint32_t roundedColour(const Centre& c) {
    auto channel = [](double v) {
        return static_cast<uint32_t>(std::clamp(static_cast<int>(std::lround(v)), 0, 255));
    };
    return 0xFF000000u | (channel(c.r) << 16) | (channel(c.g) << 8) | channel(c.b);
}

} // namespace

bool lloyd_refine(const Sample* samples, int32_t count, uint32_t* palette, int32_t n,
                  int32_t rounds) {
    if (n < 2 || count < 1) return true;
    Work w;
    if (!w.alloc(n, count)) return false;
    for (int32_t c = 0; c < n; ++c)
        w.centres[c] = Centre{static_cast<double>(channel(palette[c], 16)),
                              static_cast<double>(channel(palette[c], 8)),
                              static_cast<double>(channel(palette[c], 0))};
    assignAll(w.centres, n, samples, count, w.owner);
    for (int32_t round = 0; round < rounds; ++round) {
        if (moveCentres(w, n, samples, count) < 0.0625) break;
        sortNeighbours(w.centres, n, w.lists);
        for (int32_t s = 0; s < count; ++s)
            w.owner[s] = nearestFrom(w.centres, n, w.lists, w.owner[s], samples[s]);
    }
    for (int32_t c = 0; c < n; ++c)
        palette[c] = roundedColour(w.centres[c]);
    return true;
}

namespace {

const Decl kLloyd{"LOYD", "Lloyd", "Lloyd Histogram", "1.00"};
constexpr int32_t kBits666[] = {6, 6, 6};
constexpr int32_t kRounds = 24;

} // namespace

QuantDescriptor* describe_lloyd() {
    return build_descriptor(kLloyd);
}

QuantInstance* begin_lloyd() {
    return begin_cube(kLloyd, 3, kBits666);
}

uint32_t* make_lloyd(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    WuCube* cube = &reinterpret_cast<WuInstance*>(instance)->cube;
    if (map) *map = nullptr;
    int32_t sampleCount = 0;
    Sample* samples = wu_samples(cube, &sampleCount);
    int32_t n = 0;
    uint32_t* palette =
        samples ? wu_make(cube, k, nullptr, &n, WuChoice::LargestVariance) : nullptr;
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
