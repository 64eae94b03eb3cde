#pragma once
// The two-pass filtered resampler behind the Size module: a horizontal pass
// from the source into an intermediate image (as wide as the result, as tall
// as the source, with 8 alpha bits), then a vertical pass from there into
// the result. Pixels are 0xAARRGGBB words. Only the intermediate rows the
// vertical pass still needs are kept, in a ring filled just ahead of it, so
// the scratch memory is a few rows instead of a second image.
//
// All arithmetic is single precision and follows one fixed order per output
// pixel (taps summed left to right, then one division), so this code and a
// plain per-pixel loop over the same lists give identical bytes. The speed
// comes from the layout alone: precomputed lists, four source rows filtered
// together, rows converted to float once, and a vertical pass that walks
// the intermediate rows in cache order.

#include <cstdint>

namespace resample {

struct ArgbView {
    const uint8_t* pixels;
    int32_t width;
    int32_t height;
    int32_t rowbytes;
};

struct ArgbTarget {
    uint8_t* pixels;
    int32_t width;
    int32_t height;
    int32_t rowbytes;
};

struct Options {
    int32_t filter = 0;         // "Filter Function" value
    bool respectAlpha = false;  // skip transparent pixels, fall back to the key colour
    uint32_t key = 0;           // the key colour as resolved by resolve_key()
    bool resultHasAlpha = true; // false: the result's record says 0 alpha bits
};

// Used weight below which a pixel is taken to have no opaque neighbourhood
// and becomes the key colour.
constexpr float kMinUsedWeight = 0.3f;

// Key colour fallback when Respect Alpha asks for the first transparent
// pixel and the source has none.
constexpr uint32_t kFallbackKey = 0x0000FFFFu;

// The key colour: `chromakey` when it is non-zero or Respect Alpha is off;
// otherwise the first pixel with alpha 0, rows from the top and pixels from
// the left, or kFallbackKey when there is none.
uint32_t resolve_key(const ArgbView& source, bool respectAlpha, uint32_t chromakey);

// Resamples `source` into `target`. False (with nothing left allocated)
// only when scratch memory cannot be had; `target` may be `source`'s own
// buffer when both have the same size.
bool resample_argb(const ArgbView& source, const ArgbTarget& target, const Options& options);

// How many threads resample_argb shares the result's rows among, for the
// whole process (1 until set; clamped into 1 .. kMaxThreads). The bytes
// are the same for every count. A batch tool sets it from its command line;
// the editor leaves it at 1.
constexpr int kMaxThreads = 64;
void set_thread_count(int threads);
int thread_count();

} // namespace resample
