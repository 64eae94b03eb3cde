#pragma once
// Contribution lists: for every output index along one axis, the source
// indices that feed it and their normalised weights.

#include <cstdint>

namespace resample {

// One axis' lists in three galloc blocks. List i holds the taps
// first[i] .. first[i + 1] - 1 of `index` and `weight`, in the order the
// kernel was sampled (left to right). Taps whose normalised weight is
// exactly zero are dropped: adding w x c = 0 changes no sum, so the
// filtered values stay the same and the inner loops run shorter.
struct Contributions {
    int32_t count = 0;          // number of lists (the output length)
    int32_t maxTaps = 0;        // longest list, after dropping zero taps
    int32_t* first = nullptr;   // count + 1 entries
    int32_t* index = nullptr;   // source index of each tap, clamped into the source
    float* weight = nullptr;    // normalised weight of each tap
    float* weightSum = nullptr; // per list: the normalised weights summed in order, zeros included
};

// Builds the lists for `nIn` source samples to `nOut` results with filter
// `filter` (a "Filter Function" value). Returns false, with every block
// freed, when memory is short or the lists would not fit 32-bit counts.
bool contributions_build(Contributions* out, int32_t nIn, int32_t nOut, int32_t filter);

void contributions_free(Contributions* lists);

} // namespace resample
