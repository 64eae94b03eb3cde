// Tw, the alpha-slot quantizer: pixels are grouped by the top three bits of
// their alpha into 8 slots, each slot is quantized on its own with Wu's 666
// method, and every colour of a slot carries the slot's mean alpha.
//
// Shares: each used slot gets K / (used slots) x (8 + slot), at least 1,
// and the most opaque used slot three times that, so opaque colours, which
// the eye sees best, get most entries; the shares are then scaled to total
// K. A slot that yields fewer colours than its share hands the shortfall
// on, one unit per step, to the slots from 7 downward, wrapping back to 7
// on reaching itself; a unit that lands on a slot with no share is lost, so
// the palette may end below K. The most opaque slot takes whatever is
// left.

#include "imaging/galloc.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

#include <algorithm>

namespace quant {

namespace {

constexpr int kSlots = 8;
constexpr int32_t kBits666[] = {6, 6, 6};

struct TwInstance {
    QuantInstance head;
    WuCube cubes[kSlots]; // allocated when the slot's first pixel comes
    uint32_t pixels[kSlots];
    uint64_t alphaSum[kSlots];
    bool failed;
};

const Decl kTw{"TRWU", "Tw", "Tarvos Wu", "1.03"};

void destroyTw(QuantInstance* instance) {
    auto* q = reinterpret_cast<TwInstance*>(instance);
    for (WuCube& cube : q->cubes)
        if (cube.weight) wu_free(&cube);
    gfree(q);
}

void addPixel(TwInstance* q, uint32_t v) {
    const int slot = static_cast<int>(v >> 29);
    WuCube& cube = q->cubes[slot];
    if (!cube.weight && !wu_alloc(&cube, 3, kBits666)) {
        q->failed = true;
        return;
    }
    wu_add(&cube, v);
    ++q->pixels[slot];
    q->alphaSum[slot] += v >> 24;
}

// The shares of the used slots, scaled to total at most k.
void shareOut(const TwInstance* q, int32_t k, int32_t* share) {
    int32_t used = 0, last = -1;
    for (int s = 0; s < kSlots; ++s)
        if (q->pixels[s]) {
            ++used;
            last = s;
        }
    int64_t total = 0;
    for (int s = 0; s < kSlots; ++s) {
        share[s] = 0;
        if (!q->pixels[s]) continue;
        share[s] = std::max(1, k / used * (8 + s));
        if (s == last) share[s] *= 3;
        total += share[s];
    }
    for (int s = 0; s < kSlots && total > 0; ++s)
        share[s] = static_cast<int32_t>(share[s] * static_cast<int64_t>(k) / total);
}

} // namespace

QuantDescriptor* describe_tw() {
    return build_descriptor(kTw);
}

QuantInstance* begin_tw() {
    return new_instance(kTw, sizeof(TwInstance), destroyTw);
}

int add_tw(QuantInstance* instance, const TavixInfo* info, const void* pixels, int32_t rowbytes) {
    auto* q = reinterpret_cast<TwInstance*>(instance);
    if (!each_pixel(info, pixels, rowbytes, [q](uint32_t v) { addPixel(q, v); })) return 0;
    return q->failed ? 0 : 1;
}

uint32_t* make_tw(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    auto* q = reinterpret_cast<TwInstance*>(instance);
    if (map) *map = nullptr;
    int32_t share[kSlots];
    shareOut(q, k, share);
    int last = -1;
    for (int s = 0; s < kSlots; ++s)
        if (q->pixels[s]) last = s;
    const bool talk = quant_diagnostics();
    for (int s = 0; talk && s < kSlots; ++s)
        if (q->pixels[s]) gprintf("TW alpha slot %d count %d ", s, static_cast<int>(q->pixels[s]));
    auto* palette = static_cast<uint32_t*>(galloc(256 * 4));
    int32_t made = 0;
    for (int s = 0; palette && s <= last; ++s) {
        if (!q->pixels[s]) continue;
        int32_t want = s == last ? k - made : share[s];
        want = std::min(std::max(want, 1), std::min(k, 256) - made);
        const uint32_t alpha =
            static_cast<uint32_t>((q->alphaSum[s] + q->pixels[s] / 2) / q->pixels[s]);
        int32_t got = 0;
        if (want > 0) {
            uint32_t* colours =
                wu_make(&q->cubes[s], want, nullptr, &got, WuChoice::LargestVariance);
            for (int32_t i = 0; colours && i < got; ++i)
                palette[made++] = (colours[i] & 0x00FFFFFF) | (alpha << 24);
            if (colours) gfree(colours);
        }
        if (talk) gprintf("alpha %d want %d, got count %d ", static_cast<int>(alpha), want, got);
        const int span = kSlots - 1 - s;
        for (int32_t unit = 0; span > 0 && unit < want - got; ++unit) {
            const int to = kSlots - 1 - unit % span;
            if (share[to] > 0) ++share[to];
        }
    }
    if (talk) gprintf("\n");
    if (count) *count = palette ? made : 0;
    destroyTw(instance);
    return palette;
}

} // namespace quant
