#include "imaging/palsort/sort.h"

#include "imaging/geometry/raster.h"
#include "imaging/module/authoring.h"
#include "imaging/modules/resample/palette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <tuple>

namespace palsort {

namespace {

using geometry::channel;

struct Entry {
    int32_t index;
    uint32_t argb;
    uint32_t count;
};

std::array<uint32_t, 256> usage(const ImageEntry& image) {
    std::array<uint32_t, 256> counts{};
    geometry::Raster raster = geometry::raster_of(image);
    for (int32_t y = 0; y < raster.height; ++y)
        for (int32_t x = 0; x < raster.width; ++x)
            ++counts[raster.get(x, y) & 0xFF];
    return counts;
}

// Hue in degrees, saturation and value 0..1.
std::tuple<double, double, double> hsv(uint32_t argb) {
    double r = channel(argb, 16) / 255.0, g = channel(argb, 8) / 255.0,
           b = channel(argb, 0) / 255.0;
    double high = std::max({r, g, b}), low = std::min({r, g, b}), range = high - low;
    double hue = 0;
    if (range > 0) {
        if (high == r)
            hue = 60 * std::fmod((g - b) / range + 6, 6.0);
        else if (high == g)
            hue = 60 * ((b - r) / range + 2);
        else
            hue = 60 * ((r - g) / range + 4);
    }
    return {hue, high > 0 ? range / high : 0, high};
}

std::tuple<double, double, double> yuv(uint32_t argb) {
    double r = channel(argb, 16), g = channel(argb, 8), b = channel(argb, 0);
    double y = 0.299 * r + 0.587 * g + 0.114 * b;
    return {y, 0.492 * (b - y), 0.877 * (r - y)};
}

bool before(Key key, const Entry& a, const Entry& b) {
    switch (key) {
    case Key::Argb:
        return a.argb < b.argb;
    case Key::InverseCount:
        return a.count < b.count;
    case Key::Hvs:
    case Key::Whvs: {
        auto [ha, sa, va] = hsv(a.argb);
        auto [hb, sb, vb] = hsv(b.argb);
        if (key == Key::Whvs && (sa == 0) != (sb == 0)) return sa == 0;
        return std::tie(ha, va, sa) < std::tie(hb, vb, sb);
    }
    case Key::Yuv:
        return yuv(a.argb) < yuv(b.argb);
    default:
        return a.count > b.count;
    }
}

bool is_black(uint32_t argb) {
    return (argb & 0xFFFFFFu) == 0;
}

// Position in `order` of the entry forced to index 0: a black one, else an
// unused one (made black), else the darkest.
int32_t black_position(const Entry* entries, int32_t size) {
    for (int32_t i = 0; i < size; ++i)
        if (is_black(entries[i].argb)) return i;
    for (int32_t i = 0; i < size; ++i)
        if (entries[i].count == 0) return i;
    int32_t darkest = 0;
    for (int32_t i = 1; i < size; ++i)
        if (geometry::luminance(entries[i].argb) < geometry::luminance(entries[darkest].argb))
            darkest = i;
    return darkest;
}

} // namespace

Key key_from(int32_t value) {
    return value >= 0 && value <= 5 ? static_cast<Key>(value) : Key::Count;
}

void sort_order(const ImageEntry& image, const Request& request, uint8_t order[256]) {
    std::array<uint32_t, 256> counts = usage(image);
    int32_t size = resample::palette_size(image.info);
    std::array<Entry, 256> entries;
    for (int32_t i = 0; i < 256; ++i)
        entries[i] = {i, resample::palette_argb(image.info, i), counts[i]};
    std::stable_sort(entries.begin(), entries.begin() + size,
                     [&](const Entry& a, const Entry& b) { return before(request.key, a, b); });
    if (request.reverse) std::reverse(entries.begin(), entries.begin() + size);
    if (request.forceBlack) {
        int32_t at = black_position(entries.data(), size);
        std::rotate(entries.begin(), entries.begin() + at, entries.begin() + at + 1);
    }
    for (int32_t i = 0; i < 256; ++i)
        order[i] = static_cast<uint8_t>(entries[i].index);
}

void apply_to_palette(const ImageEntry& image, const Request& request, const uint8_t order[256],
                      TavixInfo* info) {
    TavixColour old[256];
    memcpy(old, image.info->colours, sizeof old);
    for (int32_t i = 0; i < 256; ++i)
        info->colours[i] = old[order[i]];
    if (!request.forceBlack) return;
    std::array<uint32_t, 256> counts = usage(image);
    TavixColour& first = info->colours[0];
    if (counts[order[0]] == 0 && (first.red | first.green | first.blue) != 0)
        first = TavixColour{0, 0, 0, 255};
}

void renumber(const ImageEntry& image, const uint8_t order[256], void* out, int32_t rowbytes) {
    uint8_t newIndex[256];
    for (int32_t i = 0; i < 256; ++i)
        newIndex[order[i]] = static_cast<uint8_t>(i);
    int32_t width = image.info->width;
    for (int32_t y = 0; y < image.info->height; ++y) {
        const uint8_t* from = module_row(image, y);
        uint8_t* to = module_row(out, rowbytes, y);
        for (int32_t x = 0; x < width; ++x)
            to[x] = newIndex[from[x]];
    }
}

TavixInfo* sorted_query(ModuleInstance* instance, const Request& request) {
    if (!module_instance_ok(instance)) return nullptr;
    const ImageEntry& in = instance->images[0];
    TavixInfo* info = module_copy_info(in.info);
    if (!info || module_pixel_bytes(in.info) != 1 || !in.pixels) return info;
    uint8_t order[256];
    sort_order(in, request, order);
    apply_to_palette(in, request, order, info);
    return info;
}

int sorted_process(const ModuleDecl& decl, ModuleInstance* instance, const Request& request,
                   const TavixInfo* result, void* pixels, int32_t rowbytes) {
    if (!module_check_same_shape(decl, instance, result, pixels, rowbytes)) return 0;
    const ImageEntry& in = instance->images[0];
    if (module_pixel_bytes(in.info) == 1) {
        uint8_t order[256];
        sort_order(in, request, order);
        renumber(in, order, pixels, rowbytes);
    } else if (in.pixels != pixels) {
        for (int32_t y = 0; y < in.info->height; ++y)
            memmove(module_row(pixels, rowbytes, y), module_row(in, y),
                    static_cast<size_t>(module_row_length(in.info)));
    }
    return 1;
}

} // namespace palsort
