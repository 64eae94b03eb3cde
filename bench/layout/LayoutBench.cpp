// layout_bench [DIR] [COUNT]: how well the texture-page packer fills
// memory. Reads COUNT (200) sprites spread evenly over the PNG files below
// DIR (Debian's supertux-data by default), sides up to 256 pixels, and for
// several memory widths finds the lowest height that takes them all. It
// prints the efficiency, the shapes' area over the area of the box that
// the placed shapes span, for the MaxRects packer (with and without
// rotation) and for a shelf packer (tallest first, left to right), and how
// many of the sprites fit into 1024 x 1024.

#include "codec/FrameIO.h"
#include "codec/TavixBinding.h"
#include "imaging/layout/pack.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <string>
#include <vector>

namespace {

constexpr int32_t kMaxSide = 256;

std::vector<PackShape> readSprites(const std::string& folder, size_t count) {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().extension() == ".png")
            files.push_back(entry.path().string());
    std::sort(files.begin(), files.end());
    std::vector<PackShape> all;
    for (const std::string& file : files) {
        TavixReadResult read = TavixReadFile(file);
        if (!read.ok || read.frames.empty()) continue;
        const TavixInfo& info = *read.frames[0].info;
        if (info.width > kMaxSide || info.height > kMaxSide) continue;
        all.push_back({info.width, info.height});
    }
    std::vector<PackShape> picked;
    for (size_t i = 0; i < count && !all.empty(); ++i)
        picked.push_back(all[i * all.size() / count]);
    fprintf(stderr, "%zu PNG files, %zu with sides up to %d, %zu picked\n", files.size(),
            all.size(), kMaxSide, picked.size());
    return picked;
}

struct Result {
    bool allFit = false;
    int64_t boxWidth = 0, boxHeight = 0;
};

Result maxRects(const std::vector<PackShape>& shapes, int32_t width, int32_t height,
                int32_t flags) {
    PackArea area{0, 0, width, height, 0, 0, flags};
    std::vector<PackPlace> places(shapes.size());
    int32_t fitted =
        pack_shapes(&area, shapes.data(), static_cast<int32_t>(shapes.size()), places.data());
    Result r;
    r.allFit = fitted == static_cast<int32_t>(shapes.size());
    for (size_t i = 0; i < shapes.size(); ++i) {
        const int32_t w = places[i].rotated ? shapes[i].height : shapes[i].width;
        const int32_t h = places[i].rotated ? shapes[i].width : shapes[i].height;
        r.boxWidth = std::max<int64_t>(r.boxWidth, places[i].x + w);
        r.boxHeight = std::max<int64_t>(r.boxHeight, places[i].y + h);
    }
    return r;
}

// Shelves of the tallest remaining shapes, filled left to right.
Result shelf(std::vector<PackShape> shapes, int32_t width, int32_t height) {
    std::stable_sort(shapes.begin(), shapes.end(),
                     [](const PackShape& a, const PackShape& b) { return a.height > b.height; });
    Result r;
    int64_t x = 0, y = 0, shelfHeight = 0;
    for (const PackShape& s : shapes) {
        if (s.width > width) return r;
        if (x + s.width > width) {
            y += shelfHeight;
            x = 0;
            shelfHeight = 0;
        }
        if (shelfHeight == 0) shelfHeight = s.height;
        x += s.width;
        r.boxWidth = std::max(r.boxWidth, x);
    }
    r.boxHeight = y + shelfHeight;
    r.allFit = r.boxHeight <= height;
    return r;
}

int64_t areaOf(const std::vector<PackShape>& shapes) {
    return std::accumulate(
        shapes.begin(), shapes.end(), int64_t{0},
        [](int64_t sum, const PackShape& s) { return sum + int64_t{s.width} * s.height; });
}

// The lowest height at which everything fits, and the box it spans then.
template <typename Packer> Result lowest(Packer packer, int32_t maxHeight) {
    int32_t low = 1, high = maxHeight;
    if (!packer(high).allFit) return {};
    while (low < high) {
        int32_t mid = low + (high - low) / 2;
        if (packer(mid).allFit)
            high = mid;
        else
            low = mid + 1;
    }
    return packer(high);
}

void report(const char* name, int32_t width, const Result& r, int64_t area) {
    if (!r.allFit) {
        printf("%-22s %6d  %s\n", name, width, "does not fit");
        return;
    }
    printf("%-22s %6d  %5lld x %-5lld  %6.1f %%\n", name, width, static_cast<long long>(r.boxWidth),
           static_cast<long long>(r.boxHeight),
           100.0 * static_cast<double>(area) / static_cast<double>(r.boxWidth * r.boxHeight));
}

} // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : "/usr/share/games/supertux2/images";
    const size_t count = argc > 2 ? static_cast<size_t>(atoi(argv[2])) : 200;
    if (!std::filesystem::is_directory(folder)) {
        fprintf(stderr, "layout_bench: no folder %s (apt-get install supertux-data)\n",
                folder.c_str());
        return 1;
    }
    if (!TavixBind()) {
        fprintf(stderr, "layout_bench: cannot load the codec library\n");
        return 1;
    }
    const std::vector<PackShape> shapes = readSprites(folder, count);
    const int64_t area = areaOf(shapes);
    const int32_t tall = 1 << 16;
    printf("%zu sprites, %lld pixels\n\n%-22s %6s  %-13s  %s\n", shapes.size(),
           static_cast<long long>(area), "packer", "width", "box", "efficiency");
    for (int32_t width : {256, 512, 1024}) {
        report("MaxRects", width,
               lowest([&](int32_t h) { return maxRects(shapes, width, h, 0); }, tall), area);
        report("MaxRects, rotation", width,
               lowest([&](int32_t h) { return maxRects(shapes, width, h, kPackRotate); }, tall),
               area);
        report("shelf", width, lowest([&](int32_t h) { return shelf(shapes, width, h); }, tall),
               area);
    }
    const auto start = std::chrono::steady_clock::now();
    PackArea page{0, 0, 1024, 1024, 0, 0, kPackRotate};
    std::vector<PackPlace> places(shapes.size());
    const int32_t fitted =
        pack_shapes(&page, shapes.data(), static_cast<int32_t>(shapes.size()), places.data());
    const double ms =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    printf("\ninto 1024 x 1024 with rotation: %d of %zu fit, %.1f ms\n", fitted, shapes.size(), ms);
    TavixUnbind();
    return 0;
}
