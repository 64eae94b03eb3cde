#include "imaging/geometry/quarter.h"

#include "imaging/geometry/scratch.h"
#include "imaging/module/authoring.h"

namespace geometry {

Turn turn_from_code(int32_t code) {
    int32_t quarters = ((code % 4) + 4) % 4;
    return static_cast<Turn>(quarters);
}

void turned_size(Turn turn, int32_t width, int32_t height, int32_t* outWidth, int32_t* outHeight) {
    bool swaps = turn == Turn::Clockwise || turn == Turn::Counter || turn == Turn::Transpose;
    *outWidth = swaps ? height : width;
    *outHeight = swaps ? width : height;
}

void turn_point(Turn turn, int32_t width, int32_t height, int32_t* x, int32_t* y) {
    // Unsigned arithmetic: points read from files may hold any value.
    auto sub = [](int32_t a, int32_t b) {
        return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
    };
    int32_t px = *x, py = *y;
    switch (turn) {
    case Turn::Clockwise:
        *x = sub(height, py), *y = px;
        break;
    case Turn::Half:
        *x = sub(width, px), *y = sub(height, py);
        break;
    case Turn::Counter:
        *x = py, *y = sub(width, px);
        break;
    case Turn::Transpose:
        *x = py, *y = px;
        break;
    case Turn::None:
        break;
    }
}

void turn_record(Turn turn, TavixInfo* info, int32_t frameWidth, int32_t frameHeight) {
    int32_t width = info->width, height = info->height;
    int32_t oldCx = info->centerx, oldCy = info->centery;
    bool framed = frameWidth > 0 && frameHeight > 0;
    turn_point(turn, framed ? frameWidth : width, framed ? frameHeight : height, &info->centerx,
               &info->centery);
    int32_t spots = module_hotspot_count(info);
    for (int32_t i = 0; i < spots; ++i)
        turn_point(turn, width, height, &info->hotspots[i].x, &info->hotspots[i].y);
    auto moved = [](int32_t position, int32_t before, int32_t after) {
        return static_cast<int32_t>(static_cast<uint32_t>(position) +
                                    static_cast<uint32_t>(before) - static_cast<uint32_t>(after));
    };
    info->defaultx = moved(info->defaultx, oldCx, info->centerx);
    info->defaulty = moved(info->defaulty, oldCy, info->centery);
    turned_size(turn, width, height, &info->width, &info->height);
}

bool turn_pixels(Turn turn, const ImageEntry& in, const Raster& out) {
    Scratch source(in, out);
    if (!source.ok()) return false;
    const Raster& src = source.raster();
    int32_t w = src.width, h = src.height;
    for (int32_t y = 0; y < out.height; ++y)
        for (int32_t x = 0; x < out.width; ++x) {
            int32_t sx = x, sy = y;
            switch (turn) {
            case Turn::Clockwise:
                sx = y, sy = h - 1 - x;
                break;
            case Turn::Half:
                sx = w - 1 - x, sy = h - 1 - y;
                break;
            case Turn::Counter:
                sx = w - 1 - y, sy = x;
                break;
            case Turn::Transpose:
                sx = y, sy = x;
                break;
            case Turn::None:
                break;
            }
            out.set(x, y, src.get(sx, sy));
        }
    return true;
}

} // namespace geometry
