#include "imaging/modules/resample/contributions.h"

#include "imaging/galloc.h"
#include "imaging/modules/resample/kernels.h"

#include <climits>
#include <cmath>

namespace resample {

namespace {

// Where list i samples the kernel. Reductions place their centres at
// (i + 0.5) x r and stretch the kernel over r source pixels; enlargements
// place them at i x r - 0.5 with the kernel as it is. Source samples sit at
// whole indices either way. The asymmetry decides which source pixels the
// edges pick up, so it stays exactly as it is.
struct Axis {
    float ratio;  // nIn / nOut
    float width;  // reach of the kernel in source pixels
    float fscale; // kernel argument per source pixel (reductions only)
    bool reduce;

    Axis(int32_t nIn, int32_t nOut, float support) {
        ratio = static_cast<float>(nIn) / static_cast<float>(nOut);
        reduce = ratio > 1.0f;
        if (reduce) {
            width = ratio * support;
            if (width > static_cast<float>(nIn - 1)) width = static_cast<float>(nIn - 1);
            fscale = support / width;
        } else {
            width = support;
            fscale = 1.0f;
        }
    }

    float centre(int32_t i) const {
        if (reduce) return (static_cast<float>(i) + 0.5f) * ratio;
        float c = static_cast<float>(i) * ratio;
        return ratio != 1.0f ? c - 0.5f : c;
    }
    int64_t left(float c) const { return static_cast<int64_t>(std::ceil(c - width)); }
    int64_t right(float c) const { return static_cast<int64_t>(std::floor(c + width)); }

    float weight(KernelFn k, float c, int64_t j) const {
        if (reduce) return k((c - static_cast<float>(j)) * fscale) * fscale;
        return k(c - static_cast<float>(j));
    }
};

int32_t clampIndex(int64_t j, int32_t n) {
    if (j < 0) return 0;
    if (j >= n) return n - 1;
    return static_cast<int32_t>(j);
}

template <typename T> T* allocArray(int64_t n) {
    int64_t bytes = n * static_cast<int64_t>(sizeof(T));
    if (n <= 0 || bytes > INT_MAX) return nullptr;
    return static_cast<T*>(galloc(static_cast<int32_t>(bytes)));
}

// Samples list i into `w` (raw kernel values, then normalised in place) and
// returns its length.
int32_t sampleList(const Axis& axis, KernelFn k, int32_t i, float* w) {
    float c = axis.centre(i);
    int64_t l = axis.left(c), r = axis.right(c);
    float sum = 0.0f;
    for (int64_t j = l; j <= r; ++j) {
        w[j - l] = axis.weight(k, c, j);
        sum += w[j - l];
    }
    float inverse = 1.0f / sum;
    for (int64_t j = l; j <= r; ++j)
        w[j - l] *= inverse;
    return static_cast<int32_t>(r - l + 1);
}

} // namespace

void contributions_free(Contributions* lists) {
    if (lists->first) gfree(lists->first);
    if (lists->index) gfree(lists->index);
    if (lists->weight) gfree(lists->weight);
    if (lists->weightSum) gfree(lists->weightSum);
    *lists = Contributions{};
}

bool contributions_build(Contributions* out, int32_t nIn, int32_t nOut, int32_t filter) {
    *out = Contributions{};
    if (nIn < 1 || nOut < 1) return false;
    Kernel k = kernel(filter);
    Axis axis(nIn, nOut, k.support);

    // Upper bound of one list's length, for the scratch list and the table.
    int64_t longest = static_cast<int64_t>(2.0f * axis.width) + 3;
    int64_t total = longest * nOut;
    out->count = nOut;
    out->first = allocArray<int32_t>(int64_t{nOut} + 1);
    out->weightSum = allocArray<float>(nOut);
    out->index = allocArray<int32_t>(total);
    out->weight = allocArray<float>(total);
    float* scratch = allocArray<float>(longest);
    bool ok = out->first && out->weightSum && out->index && out->weight && scratch;
    int32_t at = 0;
    for (int32_t i = 0; ok && i < nOut; ++i) {
        out->first[i] = at;
        int32_t n = sampleList(axis, k.fn, i, scratch);
        int64_t left = axis.left(axis.centre(i));
        float sum = 0.0f;
        int32_t kept = 0;
        for (int32_t t = 0; t < n; ++t) {
            sum += scratch[t];
            if (scratch[t] == 0.0f) continue;
            out->index[at + kept] = clampIndex(left + t, nIn);
            out->weight[at + kept] = scratch[t];
            ++kept;
        }
        out->weightSum[i] = sum;
        at += kept;
        if (kept > out->maxTaps) out->maxTaps = kept;
    }
    if (ok) out->first[nOut] = at;
    if (scratch) gfree(scratch);
    if (!ok) contributions_free(out);
    return ok;
}

} // namespace resample
