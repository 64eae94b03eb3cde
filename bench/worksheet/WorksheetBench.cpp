// Milliseconds per full repaint of the worksheet: 200 images of 128x128
// (half 32-bit, half 8-bit palette images), every one selected, laid out in
// rows on the worksheet, painted through the same engine as the view into a
// back buffer of a 1280x800 window at zoom 1 and 4. A second case paints
// the whole worksheet at zoom 1, every image on screen at once.

#include "app/ui/WorksheetPainter.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace {

constexpr int kImages = 200;
constexpr int kSide = 128;
constexpr int kColumns = 20; // 20 x 10 images: 2560 x 1280 worksheet pixels

struct Worksheet {
    std::vector<std::vector<uint32_t>> argb;
    std::vector<std::vector<uint8_t>> indices;
    std::vector<uint32_t> palette = std::vector<uint32_t>(256);
    CSheetScene scene;
    CImageViewSettings settings;

    Worksheet() {
        for (int i = 0; i < 256; ++i)
            palette[static_cast<size_t>(i)] = 0xFF000000u | static_cast<uint32_t>(i) * 0x010203u;
        argb.resize(kImages);
        indices.resize(kImages);
        for (int n = 0; n < kImages; ++n) {
            CSheetImage image;
            image.width = image.height = kSide;
            image.position = {(n % kColumns) * kSide, (n / kColumns) * kSide};
            if (n % 2 == 0) {
                auto& pixels = argb[static_cast<size_t>(n)];
                pixels.resize(kSide * kSide);
                for (int p = 0; p < kSide * kSide; ++p)
                    // Alpha varies, so the blend does real work.
                    pixels[static_cast<size_t>(p)] =
                        static_cast<uint32_t>(p * 2654435761u) | 0x40000000u;
                image.bits = reinterpret_cast<const uint8_t*>(pixels.data());
                image.pitch = kSide * 4;
                image.pixelBytes = 4;
                image.bpp = 32;
            } else {
                auto& pixels = indices[static_cast<size_t>(n)];
                pixels.resize(kSide * kSide);
                for (int p = 0; p < kSide * kSide; ++p)
                    pixels[static_cast<size_t>(p)] = static_cast<uint8_t>(p * 7);
                image.bits = pixels.data();
                image.pitch = kSide;
                image.pixelBytes = 1;
                image.bpp = 8;
                image.palette = palette.data();
            }
            scene.images.push_back(image);
        }
        scene.selected.assign(kImages, 1);
        scene.focus = 0;
        settings.m_GridVisible = true;
    }
};

void paintRepeatedly(benchmark::State& state, CRect area, double zoom) {
    static Worksheet sheet;
    CBackBuffer buffer;
    for (auto _ : state) {
        buffer.Place(area);
        PaintWorksheet(buffer, sheet.scene, sheet.settings, zoom, {kColumns * kSide, 2048});
        benchmark::DoNotOptimize(buffer.Bitmap().GetBits());
    }
    state.counters["Mpixel/s"] =
        benchmark::Counter(static_cast<double>(area.Width()) * area.Height() *
                               static_cast<double>(state.iterations()) / 1e6,
                           benchmark::Counter::kIsRate);
}

void BM_WindowRepaint(benchmark::State& state) {
    const double zoom = static_cast<double>(state.range(0));
    paintRepeatedly(state, {0, 0, 1280, 800}, zoom);
}
BENCHMARK(BM_WindowRepaint)->Arg(1)->Arg(4)->Unit(benchmark::kMillisecond);

void BM_WholeWorksheetRepaint(benchmark::State& state) {
    paintRepeatedly(state, {0, 0, kColumns * kSide, kImages / kColumns * kSide}, 1.0);
}
BENCHMARK(BM_WholeWorksheetRepaint)->Unit(benchmark::kMillisecond);

} // namespace
