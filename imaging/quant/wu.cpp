// Xiaolin Wu's variance-minimising colour quantizer, for 555, 666 and 777
// colour cubes (Wu555, Wu, Wu777), and the same method with alpha as a
// fourth axis (4D Wu).
//
// 1. Histogram: every pixel lands in the cell of its top b bits per
//    channel (shifted up by one, so that plane 0 of each axis stays empty);
//    the cell counts it and sums its channels and their squares.
// 2. The cell arrays become running sums along every axis, so the total
//    of any box is an inclusion-exclusion sum over its corners.
// 3. Starting from the whole cube, the box chosen last is cut in two at
//    the plane that maximises sum^2 / count over both halves, and the box
//    to cut next is the one of largest variance (first on ties). A cut
//    that would leave a half empty does not count.
// 4. Each box's mean colour is a palette entry; the inverse map gives each
//    cell its box.
//
// 4D Wu: red, green and blue at 5 bits and alpha at 4 bits; the palette
// carries each box's mean alpha, and no inverse map is made (the map is
// indexed by colour alone).

#include "imaging/galloc.h"
#include "imaging/quant/internal.h"

#include <cstring>

namespace quant {

namespace {

float g_squares[256];
bool g_squaresReady = false;

void prepareSquares() {
    if (g_squaresReady) return;
    for (int i = 0; i < 256; ++i)
        g_squares[i] = static_cast<float>(i * i);
    g_squaresReady = true;
}

constexpr int kShift[kWuMaxDims] = {16, 8, 0, 24}; // red, green, blue, alpha

template <class T> void accumulateArray(const WuCube* c, T* a) {
    for (int d = 0; d < c->dims; ++d) {
        const int32_t stride = c->stride[d], block = stride * c->side[d];
        for (int32_t base = 0; base < c->cells; base += block)
            for (int32_t p = 1; p < c->side[d]; ++p) {
                T* to = a + base + p * stride;
                const T* from = to - stride;
                for (int32_t i = 0; i < stride; ++i)
                    to[i] += from[i];
            }
    }
}

int32_t cornerIndex(const WuCube* c, const WuBox& box, int mask) {
    int32_t index = 0;
    for (int d = 0; d < c->dims; ++d)
        index += ((mask >> d) & 1 ? box.lo[d] : box.hi[d]) * c->stride[d];
    return index;
}

int32_t volumeOf(const WuCube* c, const WuBox& box) {
    int32_t v = 1;
    for (int d = 0; d < c->dims; ++d)
        v *= box.hi[d] - box.lo[d];
    return v;
}

double scoreOf(const WuCube* c, const WuMoments& m) {
    if (m.weight <= 0) return 0;
    double s = 0;
    for (int d = 0; d < c->dims; ++d)
        s += m.sum[d] * m.sum[d];
    return s / m.weight;
}

struct Cut {
    int axis = -1;
    int32_t position = -1;
    double score = 0; // sum^2 / count over both halves
};

// The best plane along one axis; position -1 when every plane leaves a
// half empty.
Cut bestOnAxis(const WuCube* c, const WuBox& box, int axis, const WuMoments& whole) {
    Cut best;
    best.axis = axis;
    for (int32_t p = box.lo[axis] + 1; p < box.hi[axis]; ++p) {
        WuBox half = box;
        half.hi[axis] = p;
        WuMoments a = wu_moments(c, half);
        if (a.weight <= 0) continue;
        WuMoments b = whole;
        b.weight -= a.weight;
        for (int d = 0; d < c->dims; ++d)
            b.sum[d] -= a.sum[d];
        if (b.weight <= 0) continue;
        double s = scoreOf(c, a) + scoreOf(c, b);
        if (s > best.score) {
            best.score = s;
            best.position = p;
        }
    }
    return best;
}

// The axis and plane of the best cut of a box; axis -1 when none exists.
Cut bestCut(const WuCube* c, const WuBox& box) {
    WuMoments whole = wu_moments(c, box);
    Cut best;
    best.score = -1;
    for (int d = 0; d < c->dims; ++d) {
        Cut onAxis = bestOnAxis(c, box, d, whole);
        if (onAxis.score > best.score) best = onAxis;
    }
    if (best.position < 0) best.axis = -1;
    return best;
}

void applyCut(const WuCube* c, WuBox* box, WuBox* other, const Cut& cut) {
    *other = *box;
    box->hi[cut.axis] = cut.position;
    other->lo[cut.axis] = cut.position;
    box->volume = volumeOf(c, *box);
    other->volume = volumeOf(c, *other);
}

int32_t splitByVariance(const WuCube* c, int32_t k, WuBox* boxes, double* variance) {
    int32_t next = 0, n = k;
    for (int32_t i = 1; i < k; ++i) {
        Cut cut = bestCut(c, boxes[next]);
        if (cut.axis >= 0) {
            applyCut(c, &boxes[next], &boxes[i], cut);
            variance[next] = boxes[next].volume > 1 ? wu_variance(c, boxes[next]) : 0;
            variance[i] = boxes[i].volume > 1 ? wu_variance(c, boxes[i]) : 0;
        } else {
            variance[next] = 0;
            --i;
        }
        next = 0;
        double largest = variance[0];
        for (int32_t j = 1; j <= i; ++j)
            if (variance[j] > largest) {
                largest = variance[j];
                next = j;
            }
        if (largest <= 0) {
            n = i + 1;
            break;
        }
    }
    return n;
}

struct Candidate {
    Cut cut;
    double gain; // how much the best cut lowers the squared error
};

Candidate candidateOf(const WuCube* c, const WuBox& box) {
    Candidate cand{bestCut(c, box), 0};
    if (cand.cut.axis >= 0) cand.gain = cand.cut.score - scoreOf(c, wu_moments(c, box));
    return cand;
}

int32_t splitByGain(const WuCube* c, int32_t k, WuBox* boxes, Candidate* cand) {
    int32_t n = 1;
    cand[0] = candidateOf(c, boxes[0]);
    while (n < k) {
        int32_t next = 0;
        for (int32_t j = 1; j < n; ++j)
            if (cand[j].gain > cand[next].gain) next = j;
        if (cand[next].cut.axis < 0 || cand[next].gain <= 0) break;
        applyCut(c, &boxes[next], &boxes[n], cand[next].cut);
        cand[next] = candidateOf(c, boxes[next]);
        cand[n] = candidateOf(c, boxes[n]);
        ++n;
    }
    return n;
}

} // namespace

bool wu_alloc(WuCube* cube, int32_t dims, const int32_t* bits) {
    *cube = WuCube{};
    cube->dims = dims;
    int32_t cells = 1;
    for (int d = dims - 1; d >= 0; --d) {
        cube->bits[d] = bits[d];
        cube->side[d] = (1 << bits[d]) + 1;
        cube->stride[d] = cells;
        cells *= cube->side[d];
    }
    cube->cells = cells;
    const int32_t bytes = cells * 4;
    cube->weight = static_cast<uint32_t*>(galloc(bytes));
    bool ok = cube->weight != nullptr;
    for (int d = 0; ok && d < dims; ++d)
        ok = (cube->sum[d] = static_cast<uint32_t*>(galloc(bytes))) != nullptr;
    ok = ok && (cube->square = static_cast<float*>(galloc(bytes))) != nullptr;
    if (!ok) {
        wu_free(cube);
        return false;
    }
    memset(cube->weight, 0, bytes);
    for (int d = 0; d < dims; ++d)
        memset(cube->sum[d], 0, bytes);
    memset(cube->square, 0, bytes);
    prepareSquares();
    return true;
}

void wu_free(WuCube* cube) {
    if (cube->weight) gfree(cube->weight);
    for (uint32_t*& s : cube->sum)
        if (s) gfree(s);
    if (cube->square) gfree(cube->square);
    *cube = WuCube{};
}

void wu_add(WuCube* c, uint32_t argb) {
    int32_t index = 0;
    float square = 0;
    int32_t v[kWuMaxDims];
    for (int d = 0; d < c->dims; ++d) {
        v[d] = channel(argb, kShift[d]);
        index += ((v[d] >> (8 - c->bits[d])) + 1) * c->stride[d];
        square += g_squares[v[d]];
    }
    ++c->weight[index];
    for (int d = 0; d < c->dims; ++d)
        c->sum[d][index] += static_cast<uint32_t>(v[d]);
    c->square[index] += square;
}

void wu_accumulate(WuCube* cube) {
    accumulateArray(cube, cube->weight);
    for (int d = 0; d < cube->dims; ++d)
        accumulateArray(cube, cube->sum[d]);
    accumulateArray(cube, cube->square);
}

// Corner sums of the 32-bit arrays wrap around; a box total is right as
// long as the true total fits in 32 bits (images below 16 million pixels).
WuMoments wu_moments(const WuCube* c, const WuBox& box) {
    uint32_t weight = 0, sum[kWuMaxDims] = {};
    double square = 0;
    for (int mask = 0; mask < (1 << c->dims); ++mask) {
        const int32_t at = cornerIndex(c, box, mask);
        const bool minus = __builtin_popcount(mask) & 1;
        if (minus) {
            weight -= c->weight[at];
            for (int d = 0; d < c->dims; ++d)
                sum[d] -= c->sum[d][at];
            square -= c->square[at];
        } else {
            weight += c->weight[at];
            for (int d = 0; d < c->dims; ++d)
                sum[d] += c->sum[d][at];
            square += c->square[at];
        }
    }
    WuMoments m{static_cast<double>(weight), {}, square};
    for (int d = 0; d < c->dims; ++d)
        m.sum[d] = static_cast<double>(sum[d]);
    return m;
}

double wu_variance(const WuCube* c, const WuBox& box) {
    WuMoments m = wu_moments(c, box);
    return m.square - scoreOf(c, m);
}

int32_t wu_split(const WuCube* cube, int32_t k, WuBox* boxes, WuChoice choice) {
    boxes[0] = WuBox{};
    for (int d = 0; d < cube->dims; ++d)
        boxes[0].hi[d] = cube->side[d] - 1;
    boxes[0].volume = volumeOf(cube, boxes[0]);
    if (k <= 1) return 1;
    if (choice == WuChoice::LargestVariance) {
        auto* variance = static_cast<double*>(galloc(k * static_cast<int32_t>(sizeof(double))));
        if (!variance) return 1;
        int32_t n = splitByVariance(cube, k, boxes, variance);
        gfree(variance);
        return n;
    }
    auto* cand = static_cast<Candidate*>(galloc(k * static_cast<int32_t>(sizeof(Candidate))));
    if (!cand) return 1;
    int32_t n = splitByGain(cube, k, boxes, cand);
    gfree(cand);
    return n;
}

void wu_palette(const WuCube* cube, const WuBox* boxes, int32_t n, uint32_t* palette) {
    for (int32_t i = 0; i < n; ++i) {
        WuMoments m = wu_moments(cube, boxes[i]);
        palette[i] = 0;
        if (m.weight <= 0) continue;
        uint32_t v[kWuMaxDims] = {0, 0, 0, 255};
        for (int d = 0; d < cube->dims; ++d)
            v[d] = static_cast<uint32_t>(m.sum[d] / m.weight);
        palette[i] = (v[3] << 24) | (v[0] << 16) | (v[1] << 8) | v[2];
    }
}

QuantInverseMap* wu_inverse_map(const WuCube* cube, const WuBox* boxes, int32_t n) {
    const int32_t b = cube->bits[0], levels = 1 << b, entries = levels * levels * levels;
    const int32_t size = static_cast<int32_t>(sizeof(QuantInverseMap)) + entries;
    auto* map = static_cast<QuantInverseMap*>(galloc(size));
    if (!map) return nullptr;
    memset(map, 0, static_cast<size_t>(size));
    memcpy(map->code, "WVNI", 4);
    map->size = static_cast<uint32_t>(size);
    map->bits[0] = map->bits[1] = map->bits[2] = static_cast<uint8_t>(b);
    uint8_t* table = quant_map_table(map);
    for (int32_t k = 0; k < n; ++k) {
        const WuBox& box = boxes[k];
        for (int32_t r = box.lo[0]; r < box.hi[0]; ++r)
            for (int32_t g = box.lo[1]; g < box.hi[1]; ++g)
                memset(table + (r << (2 * b)) + (g << b) + box.lo[2], static_cast<int>(k),
                       static_cast<size_t>(box.hi[2] - box.lo[2]));
    }
    return map;
}

uint32_t* wu_make(WuCube* cube, int32_t k, QuantInverseMap** map, int32_t* count, WuChoice choice) {
    if (map) *map = nullptr;
    if (count) *count = 0;
    wu_accumulate(cube);
    auto* boxes = static_cast<WuBox*>(galloc(k * static_cast<int32_t>(sizeof(WuBox))));
    if (!boxes) return nullptr;
    const int32_t n = wu_split(cube, k, boxes, choice);
    auto* palette = static_cast<uint32_t*>(galloc(n * 4));
    if (palette) {
        wu_palette(cube, boxes, n, palette);
        if (map && cube->dims == 3) *map = wu_inverse_map(cube, boxes, n);
        if (count) *count = n;
    }
    gfree(boxes);
    return palette;
}

Sample* wu_samples(const WuCube* c, int32_t* count) {
    int32_t n = 0;
    for (int32_t i = 0; i < c->cells; ++i)
        n += c->weight[i] != 0;
    auto* samples =
        static_cast<Sample*>(galloc((n ? n : 1) * static_cast<int32_t>(sizeof(Sample))));
    if (!samples) return nullptr;
    int32_t j = 0;
    for (int32_t i = 0; i < c->cells; ++i) {
        const uint32_t w = c->weight[i];
        if (!w) continue;
        const float inv = 1.0f / static_cast<float>(w);
        samples[j++] =
            Sample{static_cast<float>(c->sum[0][i]) * inv, static_cast<float>(c->sum[1][i]) * inv,
                   static_cast<float>(c->sum[2][i]) * inv, w};
    }
    *count = n;
    return samples;
}

uint32_t* copy_palette(const uint32_t* colours, int32_t n) {
    auto* p = static_cast<uint32_t*>(galloc((n ? n : 1) * 4));
    if (p && n) memcpy(p, colours, static_cast<size_t>(n) * 4);
    return p;
}

// ---- The table's Wu entries --------------------------------------------

void destroy_cube(QuantInstance* instance) {
    auto* q = reinterpret_cast<WuInstance*>(instance);
    wu_free(&q->cube);
    gfree(q);
}

QuantInstance* begin_cube(const Decl& decl, int32_t dims, const int32_t* bits) {
    QuantInstance* head = new_instance(decl, sizeof(WuInstance), destroy_cube);
    if (!head) return nullptr;
    auto* q = reinterpret_cast<WuInstance*>(head);
    if (!wu_alloc(&q->cube, dims, bits)) {
        gfree(q);
        gprintf("%s - not enough memory for the colour cube\n", decl.name);
        return nullptr;
    }
    return head;
}

namespace {

int addWu(QuantInstance* instance, const TavixInfo* info, const void* pixels, int32_t rowbytes) {
    if (!instance) return 0;
    WuCube* cube = &reinterpret_cast<WuInstance*>(instance)->cube;
    return each_pixel(info, pixels, rowbytes, [cube](uint32_t v) { wu_add(cube, v); }) ? 1 : 0;
}

uint32_t* makeWu(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    uint32_t* palette = wu_make(&reinterpret_cast<WuInstance*>(instance)->cube, k, map, count,
                                WuChoice::LargestVariance);
    destroy_cube(instance);
    return palette;
}

const Decl kWu555{"WUCR", "Wu555", "Wu's 555", "1.05", kQuantFlagWuCube};
const Decl kWu666{"WUCR", "Wu", "Wu's 666", "1.05", kQuantFlagWuCube};
const Decl kWu777{"WUCR", "Wu777", "Wu's 777", "1.05", kQuantFlagWuCube};
const Decl kWu4D{"ALPH", "4D Wu", "4D Wu with alpha", "1.11"};

constexpr int32_t kBits555[] = {5, 5, 5};
constexpr int32_t kBits666[] = {6, 6, 6};
constexpr int32_t kBits777[] = {7, 7, 7};
constexpr int32_t kBits4D[] = {5, 5, 5, 4};

} // namespace

QuantDescriptor* describe_wu555() {
    return build_descriptor(kWu555);
}
QuantDescriptor* describe_wu666() {
    return build_descriptor(kWu666);
}
QuantDescriptor* describe_wu777() {
    return build_descriptor(kWu777);
}
QuantDescriptor* describe_wu4d() {
    return build_descriptor(kWu4D);
}
QuantInstance* begin_wu555() {
    return begin_cube(kWu555, 3, kBits555);
}
QuantInstance* begin_wu666() {
    return begin_cube(kWu666, 3, kBits666);
}
QuantInstance* begin_wu777() {
    return begin_cube(kWu777, 3, kBits777);
}
QuantInstance* begin_wu4d() {
    return begin_cube(kWu4D, 4, kBits4D);
}
int add_wu(QuantInstance* q, const TavixInfo* i, const void* p, int32_t r) {
    return addWu(q, i, p, r);
}
uint32_t* make_wu(QuantInstance* q, int32_t k, QuantInverseMap** m, int32_t* c) {
    return makeWu(q, k, m, c);
}

} // namespace quant
