// Exact: keeps every distinct 32-bit colour (alpha included) with a count.
//
// Colours hash into 50000 buckets; a bucket remembers the lowest and
// highest entry index that hashed to it, so a lookup scans only that range
// of the entry array (from the top down, where recent colours are).
// Entries are appended, so they stand in the order colours were first
// seen, which is also the order of the palette made from them.

#include "imaging/galloc.h"
#include "imaging/quant/entries.h"
#include "imaging/quant/internal.h"

#include <algorithm>
#include <cstring>

namespace quant {

namespace {

constexpr int32_t kBuckets = 50000;
constexpr int32_t kGrowBy = 16384;

struct Bucket {
    int32_t lo; // 0x7FFFFFFF when empty
    int32_t hi; // -1 when empty
};

struct Entry {
    uint32_t colour;
    uint32_t count;
};

struct ExactInstance {
    QuantInstance head;
    Bucket* buckets;
    Entry* entries;
    int32_t used;
    int32_t capacity;
    bool failed; // an append ran out of memory
};

const Decl kExact{"XACT", "Exact", "Exact Histogram", "1.06"};

void destroyExact(QuantInstance* instance) {
    auto* q = reinterpret_cast<ExactInstance*>(instance);
    if (q->buckets) gfree(q->buckets);
    if (q->entries) gfree(q->entries);
    gfree(q);
}

uint32_t hashOf(uint32_t c) {
    return (c + (c >> 8) + (c >> 16) + (c >> 24) + 100) % kBuckets;
}

bool grow(ExactInstance* q) {
    if (q->capacity > (0x7FFFFFFF / static_cast<int32_t>(sizeof(Entry))) - kGrowBy) return false;
    const int32_t capacity = q->capacity + kGrowBy;
    auto* entries = static_cast<Entry*>(galloc(capacity * static_cast<int32_t>(sizeof(Entry))));
    if (!entries) return false;
    if (q->used) memcpy(entries, q->entries, static_cast<size_t>(q->used) * sizeof(Entry));
    if (q->entries) gfree(q->entries);
    q->entries = entries;
    q->capacity = capacity;
    return true;
}

void add(ExactInstance* q, uint32_t colour, uint32_t weight) {
    Bucket& b = q->buckets[hashOf(colour)];
    for (int32_t i = b.hi; i >= b.lo && i >= 0; --i)
        if (q->entries[i].colour == colour) {
            q->entries[i].count += weight;
            return;
        }
    if (q->used == q->capacity && !grow(q)) {
        q->failed = true;
        return;
    }
    const int32_t at = q->used++;
    q->entries[at] = Entry{colour, weight};
    b.lo = std::min(b.lo, at);
    b.hi = std::max(b.hi, at);
}

uint32_t paletteColour(const TavixColour& c) {
    return (uint32_t(c.alpha) << 24) | (uint32_t(c.red) << 16) | (uint32_t(c.green) << 8) | c.blue;
}

} // namespace

QuantDescriptor* describe_exact() {
    return build_descriptor(kExact);
}

QuantInstance* begin_exact() {
    QuantInstance* head = new_instance(kExact, sizeof(ExactInstance), destroyExact);
    if (!head) return nullptr;
    auto* q = reinterpret_cast<ExactInstance*>(head);
    q->buckets = static_cast<Bucket*>(galloc(kBuckets * static_cast<int32_t>(sizeof(Bucket))));
    if (!q->buckets || !grow(q)) {
        destroyExact(head);
        return nullptr;
    }
    for (int32_t i = 0; i < kBuckets; ++i)
        q->buckets[i] = Bucket{0x7FFFFFFF, -1};
    return head;
}

// An 8-bit image adds its whole palette first (weight 0), so that colours
// no pixel uses still have a place after the used ones.
int add_exact(QuantInstance* instance, const TavixInfo* info, const void* pixels,
              int32_t rowbytes) {
    auto* q = reinterpret_cast<ExactInstance*>(instance);
    if (!info || !pixels || info->width <= 0 || info->height <= 0) return 0;
    if (info->bufferbpp <= 8) {
        if (rowbytes < info->width) return 0;
        for (const TavixColour& c : info->colours)
            add(q, paletteColour(c), 0);
        for (int32_t y = 0; y < info->height; ++y) {
            const uint8_t* row =
                static_cast<const uint8_t*>(pixels) + static_cast<ptrdiff_t>(y) * rowbytes;
            for (int32_t x = 0; x < info->width; ++x)
                add(q, paletteColour(info->colours[row[x]]), 1);
        }
        return q->failed ? 0 : 1;
    }
    if (!each_pixel(info, pixels, rowbytes, [q](uint32_t v) { add(q, v, 1); })) return 0;
    return q->failed ? 0 : 1;
}

uint32_t* make_exact(QuantInstance* instance, int32_t k, QuantInverseMap** map, int32_t* count) {
    auto* q = reinterpret_cast<ExactInstance*>(instance);
    if (map) *map = nullptr;
    const int32_t n = std::min(k, q->used);
    uint32_t* palette = nullptr;
    auto* order = static_cast<int32_t*>(galloc(std::max(q->used, 1) * 4));
    auto* marked = static_cast<uint8_t*>(galloc(std::max(q->used, 1)));
    if (order && marked) {
        for (int32_t i = 0; i < q->used; ++i)
            order[i] = i;
        std::partial_sort(order, order + n, order + q->used, [q](int32_t a, int32_t b) {
            return q->entries[a].count > q->entries[b].count;
        });
        memset(marked, 0, static_cast<size_t>(std::max(q->used, 1)));
        for (int32_t i = 0; i < n; ++i)
            marked[order[i]] = 1;
        palette = static_cast<uint32_t*>(galloc(std::max(n, 1) * 4));
        for (int32_t i = 0, j = 0; palette && i < q->used; ++i)
            if (marked[i]) palette[j++] = q->entries[i].colour;
    }
    if (order) gfree(order);
    if (marked) gfree(marked);
    if (count) *count = palette ? n : 0;
    destroyExact(instance);
    return palette;
}

} // namespace quant
