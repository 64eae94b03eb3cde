#include "imaging/layout/pack.h"

#include "imaging/galloc.h"

#include <cstring>

namespace {

// More page cells than this is a setting no texture memory has; the packer
// refuses rather than walking millions of empty pages.
constexpr int64_t kMaxCells = 1 << 20;

struct Rect {
    int32_t x, y, w, h;
    int64_t right() const { return static_cast<int64_t>(x) + w; }
    int64_t bottom() const { return static_cast<int64_t>(y) + h; }
};

// A growable array of rectangles in galloc memory.
struct RectList {
    Rect* items = nullptr;
    int32_t count = 0;
    int32_t capacity = 0;

    ~RectList() {
        if (items) gfree(items);
    }
    bool push(const Rect& r) {
        if (count == capacity) {
            int32_t grown = capacity ? capacity * 2 : 64;
            auto* bigger = static_cast<Rect*>(galloc(grown * static_cast<int32_t>(sizeof(Rect))));
            if (!bigger) return false;
            if (count) memcpy(bigger, items, static_cast<size_t>(count) * sizeof(Rect));
            if (items) gfree(items);
            items = bigger;
            capacity = grown;
        }
        items[count++] = r;
        return true;
    }
    void removeAt(int32_t i) { items[i] = items[--count]; }
};

int64_t floorDiv(int64_t a, int64_t b) {
    int64_t q = a / b;
    return (a % b != 0 && (a < 0) != (b < 0)) ? q - 1 : q;
}

// The parts of [start, end) inside each page of `size` along one axis,
// less each page's last line when `keepOffEdge`. Calls add(from, to).
template <typename Add>
bool forEachSpan(int64_t start, int64_t end, int64_t size, bool keepOffEdge, Add add) {
    for (int64_t page = floorDiv(start, size); page * size < end; ++page) {
        int64_t pageEnd = (page + 1) * size;
        int64_t from = start > page * size ? start : page * size;
        int64_t to = end < pageEnd ? end : pageEnd;
        if (keepOffEdge && to == pageEnd) --to;
        if (to > from && !add(from, to)) return false;
    }
    return true;
}

// The free space before anything is placed: one rectangle per page cell.
bool startFreeList(const PackArea& area, RectList& free) {
    if (area.width <= 0 || area.height <= 0) return true;
    const bool pages =
        (area.flags & kPackRespectPages) && area.pageWidth > 0 && area.pageHeight > 0;
    if (!pages) return free.push({area.x, area.y, area.width, area.height});
    const bool edges = (area.flags & kPackCheckEdges) != 0;
    const int64_t columns = floorDiv(area.x + int64_t{area.width} - 1, area.pageWidth) -
                            floorDiv(area.x, area.pageWidth) + 1;
    const int64_t rows = floorDiv(area.y + int64_t{area.height} - 1, area.pageHeight) -
                         floorDiv(area.y, area.pageHeight) + 1;
    if (columns * rows > kMaxCells) {
        gprintf("pack: %lld texture pages are too many to lay out\n",
                static_cast<long long>(columns * rows));
        return false;
    }
    return forEachSpan(area.y, area.y + int64_t{area.height}, area.pageHeight, edges,
                       [&](int64_t y0, int64_t y1) {
                           return forEachSpan(area.x, area.x + int64_t{area.width}, area.pageWidth,
                                              edges, [&](int64_t x0, int64_t x1) {
                                                  return free.push({static_cast<int32_t>(x0),
                                                                    static_cast<int32_t>(y0),
                                                                    static_cast<int32_t>(x1 - x0),
                                                                    static_cast<int32_t>(y1 - y0)});
                                              });
                       });
}

bool overlaps(const Rect& a, const Rect& b) {
    return a.x < b.right() && b.x < a.right() && a.y < b.bottom() && b.y < a.bottom();
}

bool contains(const Rect& outer, const Rect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.right() <= outer.right() &&
           inner.bottom() <= outer.bottom();
}

// Cuts `used` out of every free rectangle it overlaps, keeping the maximal
// rectangles of what is left of each.
bool splitFree(RectList& free, const Rect& used) {
    const int32_t before = free.count;
    for (int32_t i = before - 1; i >= 0; --i) {
        const Rect f = free.items[i];
        if (!overlaps(f, used)) continue;
        free.removeAt(i);
        if (used.x > f.x && !free.push({f.x, f.y, used.x - f.x, f.h})) return false;
        if (used.right() < f.right() &&
            !free.push({static_cast<int32_t>(used.right()), f.y,
                        static_cast<int32_t>(f.right() - used.right()), f.h}))
            return false;
        if (used.y > f.y && !free.push({f.x, f.y, f.w, used.y - f.y})) return false;
        if (used.bottom() < f.bottom() &&
            !free.push({f.x, static_cast<int32_t>(used.bottom()), f.w,
                        static_cast<int32_t>(f.bottom() - used.bottom())}))
            return false;
    }
    return true;
}

// Drops every free rectangle that lies inside another one.
void pruneFree(RectList& free) {
    for (int32_t i = 0; i < free.count; ++i) {
        for (int32_t j = i + 1; j < free.count; ++j) {
            if (contains(free.items[j], free.items[i])) {
                free.removeAt(i);
                --i;
                break;
            }
            if (contains(free.items[i], free.items[j])) {
                free.removeAt(j);
                --j;
            }
        }
    }
}

struct Choice {
    int32_t shape = -1;
    int32_t x = 0, y = 0, w = 0, h = 0;
    int64_t shortSide = 0, longSide = 0;

    bool better(int64_t s, int64_t l) const {
        return shape < 0 || s < shortSide || (s == shortSide && l < longSide);
    }
};

// Scores shape `index` of w x h against every free rectangle.
void scoreShape(const RectList& free, int32_t index, int32_t w, int32_t h, int32_t rotated,
                Choice& best, int32_t& bestRotated) {
    for (int32_t k = 0; k < free.count; ++k) {
        const Rect& f = free.items[k];
        if (w > f.w || h > f.h) continue;
        const int64_t dw = f.w - w, dh = f.h - h;
        const int64_t s = dw < dh ? dw : dh, l = dw < dh ? dh : dw;
        if (!best.better(s, l)) continue;
        best = {index, f.x, f.y, w, h, s, l};
        bestRotated = rotated;
    }
}

// Puts the shapes that did not fit side by side along the fallback row.
void placeFallbackRow(const PackShape* shapes, int32_t count, PackPlace* out) {
    int64_t x = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (out[i].fits) continue;
        out[i] = {static_cast<int32_t>(x), kPackFallbackY, 0, 0};
        x += shapes[i].width > 0 ? shapes[i].width : 0;
        if (x > INT32_MAX) x = INT32_MAX;
    }
}

} // namespace

int32_t pack_shapes(const PackArea* area, const PackShape* shapes, int32_t count, PackPlace* out) {
    if (!area || count < 0 || (count > 0 && (!shapes || !out))) return -1;
    RectList free;
    if (!startFreeList(*area, free)) return -1;
    // 0: waiting; 1: placed or given up.
    auto* done = static_cast<uint8_t*>(galloc(count > 0 ? count : 1));
    auto* result = static_cast<PackPlace*>(
        galloc((count > 0 ? count : 1) * static_cast<int32_t>(sizeof(PackPlace))));
    if (!done || !result) {
        if (done) gfree(done);
        if (result) gfree(result);
        return -1;
    }
    memset(done, 0, static_cast<size_t>(count > 0 ? count : 1));
    memset(result, 0, sizeof(PackPlace) * static_cast<size_t>(count > 0 ? count : 1));

    int32_t placed = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (shapes[i].width > 0 && shapes[i].height > 0) continue;
        result[i] = {area->x, area->y, 0, 1};
        done[i] = 1;
        ++placed;
    }
    const bool rotate = (area->flags & kPackRotate) != 0;
    bool ok = true;
    for (;;) {
        Choice best;
        int32_t bestRotated = 0;
        for (int32_t i = 0; i < count; ++i) {
            if (done[i]) continue;
            Choice mine;
            int32_t mineRotated = 0;
            const int32_t w = shapes[i].width, h = shapes[i].height;
            scoreShape(free, i, w, h, 0, mine, mineRotated);
            if (rotate && w != h) scoreShape(free, i, h, w, 1, mine, mineRotated);
            if (mine.shape < 0) {
                done[i] = 1; // fits nowhere now, so never: free space only shrinks
                continue;
            }
            if (best.better(mine.shortSide, mine.longSide)) {
                best = mine;
                bestRotated = mineRotated;
            }
        }
        if (best.shape < 0) break;
        result[best.shape] = {best.x, best.y, bestRotated, 1};
        done[best.shape] = 1;
        ++placed;
        if (!splitFree(free, {best.x, best.y, best.w, best.h})) {
            ok = false;
            break;
        }
        pruneFree(free);
    }
    if (ok) {
        placeFallbackRow(shapes, count, result);
        if (count > 0) memcpy(out, result, sizeof(PackPlace) * static_cast<size_t>(count));
    }
    gfree(done);
    gfree(result);
    return ok ? placed : -1;
}
