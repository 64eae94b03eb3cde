#include "imaging/modules/resample/resampler.h"

#include "imaging/galloc.h"
#include "imaging/modules/resample/contributions.h"

#include <climits>
#include <cstddef>
#include <cmath>
#include <cstring>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace resample {

namespace {

// Four floats, one pixel: lanes blue, green, red, alpha (the byte order of
// an 0xAARRGGBB word in memory). Element-wise arithmetic on this type is
// plain IEEE single precision, lane by lane, exactly as scalar code does it.
typedef float v4f __attribute__((vector_size(16)));

inline v4f splat(float w) {
    return v4f{w, w, w, w};
}

inline uint32_t load32(const uint8_t* at) {
    uint32_t v;
    memcpy(&v, at, sizeof v);
    return v;
}

inline void store32(uint8_t* at, uint32_t v) {
    memcpy(at, &v, sizeof v);
}

// Which pixels Respect Alpha skips: with key 0 every pixel of alpha 0,
// otherwise only the pixels equal to the key in all 32 bits.
struct Transparency {
    uint32_t key;
    bool test(uint32_t p) const { return key == 0 ? (p >> 24) == 0 : p == key; }
};

// The channels of one pixel as floats; exact, every byte is a float.
inline v4f toFloat(uint32_t p) {
#ifdef __SSE2__
    __m128i zero = _mm_setzero_si128();
    __m128i v = _mm_cvtsi32_si128(static_cast<int>(p));
    v = _mm_unpacklo_epi16(_mm_unpacklo_epi8(v, zero), zero);
    return reinterpret_cast<v4f>(_mm_cvtepi32_ps(v));
#else
    return v4f{static_cast<float>(p & 0xFF), static_cast<float>((p >> 8) & 0xFF),
               static_cast<float>((p >> 16) & 0xFF), static_cast<float>(p >> 24)};
#endif
}

// Four consecutive pixels. With Respect, transparent pixels come out as
// zero and `opaque` holds 1 or 0 per pixel: adding w x 0 changes no sum and
// w x 1 is w, so this is the same as skipping the pixel.
template <bool Respect>
inline void toFloat4(const uint8_t* at, const Transparency& tr, v4f px[4], v4f* opaque) {
#ifdef __SSE2__
    __m128i zero = _mm_setzero_si128();
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
    if constexpr (Respect) {
        __m128i hit = tr.key == 0 ? _mm_cmpeq_epi32(_mm_srli_epi32(v, 24), zero)
                                  : _mm_cmpeq_epi32(v, _mm_set1_epi32(static_cast<int>(tr.key)));
        v = _mm_andnot_si128(hit, v);
        *opaque = reinterpret_cast<v4f>(_mm_cvtepi32_ps(_mm_add_epi32(hit, _mm_set1_epi32(1))));
    }
    __m128i lo = _mm_unpacklo_epi8(v, zero);
    __m128i hi = _mm_unpackhi_epi8(v, zero);
    px[0] = reinterpret_cast<v4f>(_mm_cvtepi32_ps(_mm_unpacklo_epi16(lo, zero)));
    px[1] = reinterpret_cast<v4f>(_mm_cvtepi32_ps(_mm_unpackhi_epi16(lo, zero)));
    px[2] = reinterpret_cast<v4f>(_mm_cvtepi32_ps(_mm_unpacklo_epi16(hi, zero)));
    px[3] = reinterpret_cast<v4f>(_mm_cvtepi32_ps(_mm_unpackhi_epi16(hi, zero)));
#else
    for (int k = 0; k < 4; ++k) {
        uint32_t p = load32(at + 4 * k);
        bool skip = Respect && tr.test(p);
        px[k] = skip ? splat(0.0f) : toFloat(p);
        if constexpr (Respect) (*opaque)[k] = skip ? 0.0f : 1.0f;
    }
#endif
}

inline uint32_t toByte(float v) {
    if (!(v >= 0.0f)) return 0;
    if (v >= 255.0f) return 255;
    return static_cast<uint32_t>(std::nearbyint(v));
}

// Rounds each lane to nearest, ties to even, clamps it into 0 .. 255 and
// packs the four into a word.
inline uint32_t toPixel(v4f v) {
#ifdef __SSE2__
    __m128 c =
        _mm_min_ps(_mm_max_ps(reinterpret_cast<__m128>(v), _mm_setzero_ps()), _mm_set1_ps(255.0f));
    __m128i i = _mm_cvtps_epi32(c); // the current rounding mode: nearest, ties to even
    i = _mm_packs_epi32(i, i);
    i = _mm_packus_epi16(i, i);
    return static_cast<uint32_t>(_mm_cvtsi128_si32(i));
#else
    return toByte(v[0]) | toByte(v[1]) << 8 | toByte(v[2]) << 16 | toByte(v[3]) << 24;
#endif
}

// A galloc block whose start is rounded up to 16 bytes for v4f data.
struct Aligned {
    void* block = nullptr;
    void* data = nullptr;

    bool take(int64_t bytes) {
        if (bytes <= 0 || bytes > INT_MAX - 16) return false;
        block = galloc(static_cast<int32_t>(bytes + 16));
        if (!block) return false;
        auto at = (reinterpret_cast<uintptr_t>(block) + 15) & ~uintptr_t{15};
        data = reinterpret_cast<void*>(at);
        return true;
    }
    void release() {
        if (block) gfree(block);
        block = data = nullptr;
    }
};

// ---- Horizontal pass -------------------------------------------------------
//
// Four source rows go through the pass together: they share every
// contribution list, so each tap's weight is loaded once for four
// independent sums. Their pixels are converted to float once, interleaved
// by column so one tap reads one cache line.

struct Column {
    v4f px[4];  // the column's pixel in each of the four rows
    v4f opaque; // per row: 1, or 0 for a pixel Respect Alpha skips
};

template <bool Respect>
void loadRows(const ArgbView& src, int32_t y0, const Transparency& tr, Column* cols) {
    for (int32_t k = 0; k < 4; ++k) {
        // Past the last row the block repeats it; those sums are never stored.
        int32_t y = y0 + k < src.height ? y0 + k : src.height - 1;
        const uint8_t* row = src.pixels + static_cast<ptrdiff_t>(y) * src.rowbytes;
        int32_t x = 0;
        for (; x + 4 <= src.width; x += 4) {
            v4f px[4], opaque;
            toFloat4<Respect>(row + 4 * x, tr, px, &opaque);
            for (int32_t i = 0; i < 4; ++i) {
                cols[x + i].px[k] = px[i];
                if constexpr (Respect) cols[x + i].opaque[k] = opaque[i];
            }
        }
        for (; x < src.width; ++x) {
            uint32_t p = load32(row + 4 * x);
            bool skip = Respect && tr.test(p);
            cols[x].px[k] = skip ? splat(0.0f) : toFloat(p);
            if constexpr (Respect) cols[x].opaque[k] = skip ? 0.0f : 1.0f;
        }
    }
}

template <bool Respect>
void filterRows(const Column* cols, const Contributions& cx, const Transparency& tr,
                uint8_t* const out[4], int32_t rows) {
    for (int32_t x = 0; x < cx.count; ++x) {
        v4f a0 = splat(0.0f), a1 = a0, a2 = a0, a3 = a0, used = a0;
        const int32_t* index = cx.index + cx.first[x];
        const float* weight = cx.weight + cx.first[x];
        int32_t n = cx.first[x + 1] - cx.first[x];
        auto tap = [&](int32_t t) {
            const Column& c = cols[index[t]];
            v4f w = splat(weight[t]);
            a0 += w * c.px[0];
            a1 += w * c.px[1];
            a2 += w * c.px[2];
            a3 += w * c.px[3];
            if constexpr (Respect) used += w * c.opaque;
        };
        // Unrolled by four taps, then the rest; the sums still run in list order.
        int32_t t = 0;
        for (; t + 4 <= n; t += 4) {
            tap(t);
            tap(t + 1);
            tap(t + 2);
            tap(t + 3);
        }
        for (; t < n; ++t)
            tap(t);
        const v4f sums[4] = {a0, a1, a2, a3};
        for (int32_t k = 0; k < rows; ++k) {
            uint32_t p;
            if constexpr (Respect)
                p = used[k] >= kMinUsedWeight ? toPixel(sums[k] / splat(used[k])) : tr.key;
            else
                p = toPixel(sums[k] / splat(cx.weightSum[x]));
            store32(out[k] + 4 * x, p);
        }
    }
}

// Source rows y .. y + 3 (those that exist) into their intermediate rows,
// row r at slot r % ringRows.
template <bool Respect>
void horizontalBlock(const ArgbView& src, int32_t y, const Contributions& cx,
                     const Transparency& tr, Column* cols, uint8_t* ring, int32_t ringRows,
                     int32_t interRowbytes) {
    int32_t rows = src.height - y < 4 ? src.height - y : 4;
    uint8_t* out[4];
    for (int32_t k = 0; k < 4; ++k)
        out[k] = ring + static_cast<ptrdiff_t>((y + (k < rows ? k : 0)) % ringRows) * interRowbytes;
    loadRows<Respect>(src, y, tr, cols);
    filterRows<Respect>(cols, cx, tr, out, rows);
}

// ---- Vertical pass ----------------------------------------------------------
//
// Row by row of the result; within a row, four neighbouring pixels at a
// time, each with its own running sums, walking down the rows of its list.
// The intermediate rows a list needs stay in cache while the pass moves
// across them, which is what gathering each column would buy, without the
// copying.

enum class Mode { Plain, Respect, NoAlpha };

template <Mode M>
inline uint32_t finish(v4f sum, float used, float weightSum, const Transparency& tr) {
    if constexpr (M == Mode::NoAlpha) return (toPixel(sum) & 0x00FFFFFFu) | 0xFF000000u;
    if constexpr (M == Mode::Respect)
        return used >= kMinUsedWeight ? toPixel(sum / splat(used)) : tr.key;
    return toPixel(sum / splat(weightSum));
}

template <Mode M>
void filterColumns(const uint8_t* const* rowp, const float* weight, int32_t n, float weightSum,
                   int32_t width, const Transparency& tr, uint8_t* out) {
    constexpr bool kSkip = M == Mode::Respect;
    int32_t x = 0;
    for (; x + 4 <= width; x += 4) {
        v4f a0 = splat(0.0f), a1 = a0, a2 = a0, a3 = a0, used = a0;
        auto tap = [&](int32_t t) {
            v4f px[4], opaque;
            toFloat4<kSkip>(rowp[t] + 4 * x, tr, px, &opaque);
            v4f w = splat(weight[t]);
            a0 += w * px[0];
            a1 += w * px[1];
            a2 += w * px[2];
            a3 += w * px[3];
            if constexpr (kSkip) used += w * opaque;
        };
        int32_t t = 0;
        for (; t + 4 <= n; t += 4) {
            tap(t);
            tap(t + 1);
            tap(t + 2);
            tap(t + 3);
        }
        for (; t < n; ++t)
            tap(t);
        store32(out + 4 * x, finish<M>(a0, used[0], weightSum, tr));
        store32(out + 4 * x + 4, finish<M>(a1, used[1], weightSum, tr));
        store32(out + 4 * x + 8, finish<M>(a2, used[2], weightSum, tr));
        store32(out + 4 * x + 12, finish<M>(a3, used[3], weightSum, tr));
    }
    for (; x < width; ++x) {
        v4f a = splat(0.0f);
        float used = 0.0f;
        for (int32_t t = 0; t < n; ++t) {
            uint32_t p = load32(rowp[t] + 4 * x);
            if (kSkip && tr.test(p)) continue;
            a += splat(weight[t]) * toFloat(p);
            used += weight[t];
        }
        store32(out + 4 * x, finish<M>(a, used, weightSum, tr));
    }
}

// The lowest and highest source row of list y.
void rowSpan(const Contributions& cy, int32_t y, int32_t* lo, int32_t* hi) {
    *lo = INT32_MAX;
    *hi = -1;
    for (int32_t t = cy.first[y]; t < cy.first[y + 1]; ++t) {
        if (cy.index[t] < *lo) *lo = cy.index[t];
        if (cy.index[t] > *hi) *hi = cy.index[t];
    }
}

// The first source row the horizontal pass makes for result rows from
// `y0`: the block of four holding the lowest row they read.
int32_t firstBlockFor(const Contributions& cy, int32_t y0) {
    int32_t lowest = INT32_MAX;
    for (int32_t y = y0; y < cy.count; ++y) {
        int32_t lo, hi;
        rowSpan(cy, y, &lo, &hi);
        if (hi >= 0) {
            lowest = lo;
            break;
        }
    }
    return lowest == INT32_MAX ? 0 : lowest & ~3;
}

// How many intermediate rows must be kept when the horizontal pass runs
// only as far ahead as the vertical pass needs, four rows at a time, and
// each new row overwrites the oldest: for result rows y0 .. y1 - 1, the
// most rows between the lowest one a result row reads and the last one
// made by then. Never more than the source's height, where the ring is the
// whole intermediate image.
int32_t ringRowsFor(const Contributions& cy, int32_t height, int32_t y0, int32_t y1) {
    int32_t made = firstBlockFor(cy, y0), need = 1;
    for (int32_t y = y0; y < y1; ++y) {
        int32_t lo, hi;
        rowSpan(cy, y, &lo, &hi);
        if (hi < 0) continue;
        while (made <= hi)
            made = made + 4 < height ? made + 4 : height;
        if (made - lo > need) need = made - lo;
    }
    return need < height ? need : height;
}

// Both passes for result rows y0 .. y1 - 1: the source rows a result row
// needs are filtered horizontally just before it, into a ring of
// intermediate rows that stays in cache, instead of into a whole
// intermediate image. Each intermediate row is computed exactly as the
// whole-image order would, whichever block of four it falls in, so the
// bytes are the same for any split of the result rows. With `ahead` every
// source row is filtered first, which a result written over its own
// source needs.
struct Band {
    int32_t y0 = 0, y1 = 0;
    Column* cols = nullptr;
    uint8_t* ring = nullptr;
    int32_t ringRows = 0;
    const uint8_t** rowp = nullptr;
};

template <bool Respect, Mode M>
void resampleRows(const ArgbView& src, const Contributions& cx, const Contributions& cy,
                  const Transparency& tr, const Band& band, int32_t interRowbytes, bool ahead,
                  const ArgbTarget& dst) {
    int32_t made = firstBlockFor(cy, band.y0);
    auto makeThrough = [&](int32_t row) {
        for (; made <= row; made += 4)
            horizontalBlock<Respect>(src, made, cx, tr, band.cols, band.ring, band.ringRows,
                                     interRowbytes);
        if (made > src.height) made = src.height;
    };
    if (ahead) makeThrough(src.height - 1);
    for (int32_t y = band.y0; y < band.y1; ++y) {
        int32_t lo, hi;
        rowSpan(cy, y, &lo, &hi);
        makeThrough(hi);
        int32_t first = cy.first[y];
        int32_t n = cy.first[y + 1] - first;
        for (int32_t t = 0; t < n; ++t)
            band.rowp[t] = band.ring + static_cast<ptrdiff_t>(cy.index[first + t] % band.ringRows) *
                                           interRowbytes;
        uint8_t* out = dst.pixels + static_cast<ptrdiff_t>(y) * dst.rowbytes;
        filterColumns<M>(band.rowp, cy.weight + first, n, cy.weightSum[y], dst.width, tr, out);
    }
}

template <bool Respect>
void resampleRows(Mode mode, const ArgbView& src, const Contributions& cx, const Contributions& cy,
                  const Transparency& tr, const Band& band, int32_t interRowbytes, bool ahead,
                  const ArgbTarget& dst) {
    if (mode == Mode::NoAlpha)
        resampleRows<Respect, Mode::NoAlpha>(src, cx, cy, tr, band, interRowbytes, ahead, dst);
    else if (mode == Mode::Respect)
        resampleRows<Respect, Mode::Respect>(src, cx, cy, tr, band, interRowbytes, ahead, dst);
    else
        resampleRows<Respect, Mode::Plain>(src, cx, cy, tr, band, interRowbytes, ahead, dst);
}

// The scratch memory of one band, taken before any thread starts: galloc
// counts its blocks without a lock.
struct BandMemory {
    Aligned cols, ring, rows;
    bool take(Band& band, const ArgbView& src, const Contributions& cy, int32_t interRowbytes,
              bool ahead) {
        band.ringRows = ahead ? src.height : ringRowsFor(cy, src.height, band.y0, band.y1);
        if (!cols.take(static_cast<int64_t>(src.width) * sizeof(Column)) ||
            !ring.take(static_cast<int64_t>(interRowbytes) * band.ringRows) ||
            !rows.take(static_cast<int64_t>(cy.maxTaps > 0 ? cy.maxTaps : 1) * sizeof(void*)))
            return false;
        band.cols = static_cast<Column*>(cols.data);
        band.ring = static_cast<uint8_t*>(ring.data);
        band.rowp = static_cast<const uint8_t**>(rows.data);
        return true;
    }
    void release() {
        rows.release();
        ring.release();
        cols.release();
    }
};

int g_threads = 1;

// Whether writing the result can overwrite source pixels not yet read.
bool overlaps(const ArgbView& src, const ArgbTarget& dst) {
    auto a = reinterpret_cast<uintptr_t>(src.pixels);
    auto b = reinterpret_cast<uintptr_t>(dst.pixels);
    uintptr_t aEnd = a + static_cast<uintptr_t>(src.rowbytes) * static_cast<uintptr_t>(src.height);
    uintptr_t bEnd = b + static_cast<uintptr_t>(dst.rowbytes) * static_cast<uintptr_t>(dst.height);
    return a < bEnd && b < aEnd;
}

} // namespace

uint32_t resolve_key(const ArgbView& source, bool respectAlpha, uint32_t chromakey) {
    if (!respectAlpha || chromakey != 0) return chromakey;
    for (int32_t y = 0; y < source.height; ++y) {
        const uint8_t* row = source.pixels + static_cast<ptrdiff_t>(y) * source.rowbytes;
        for (int32_t x = 0; x < source.width; ++x) {
            uint32_t p = load32(row + 4 * x);
            if ((p >> 24) == 0) return p;
        }
    }
    return kFallbackKey;
}

void set_thread_count(int threads) {
    g_threads = threads < 1 ? 1 : threads > kMaxThreads ? kMaxThreads : threads;
}

int thread_count() {
    return g_threads;
}

bool resample_argb(const ArgbView& src, const ArgbTarget& dst, const Options& options) {
    Transparency tr{options.key};
    Contributions cx, cy;
    int32_t interRowbytes = dst.width * 4;
    bool ok = contributions_build(&cx, src.width, dst.width, options.filter) &&
              contributions_build(&cy, src.height, dst.height, options.filter);
    const bool ahead = ok && overlaps(src, dst);
    // Bands of result rows, one per thread; a result written over its
    // source, or one too short to share, is made by this thread alone.
    int32_t bands = ahead ? 1 : g_threads;
    if (bands > dst.height / 2) bands = dst.height / 2 > 0 ? dst.height / 2 : 1;
    std::vector<Band> band(static_cast<size_t>(bands));
    std::vector<BandMemory> memory(static_cast<size_t>(bands));
    for (int32_t b = 0; ok && b < bands; ++b) {
        band[b].y0 = static_cast<int32_t>(int64_t{dst.height} * b / bands);
        band[b].y1 = static_cast<int32_t>(int64_t{dst.height} * (b + 1) / bands);
        ok = memory[b].take(band[b], src, cy, interRowbytes, ahead);
    }
    if (ok) {
        const Mode mode = !options.resultHasAlpha ? Mode::NoAlpha
                          : options.respectAlpha  ? Mode::Respect
                                                  : Mode::Plain;
        auto run = [&](const Band& one) {
            if (options.respectAlpha)
                resampleRows<true>(mode, src, cx, cy, tr, one, interRowbytes, ahead, dst);
            else
                resampleRows<false>(mode, src, cx, cy, tr, one, interRowbytes, ahead, dst);
        };
        std::vector<std::thread> helpers;
        for (int32_t b = 1; b < bands; ++b) {
            try {
                helpers.emplace_back(run, std::cref(band[b]));
            } catch (const std::system_error&) {
                run(band[b]); // no thread to be had: this one does the band
            }
        }
        run(band[0]);
        for (std::thread& helper : helpers)
            helper.join();
    }
    for (BandMemory& m : memory)
        m.release();
    contributions_free(&cy);
    contributions_free(&cx);
    return ok;
}

} // namespace resample
