#pragma once
// Images for the benchmarks: a record and pixels from galloc, filled with a
// deterministic texture-like pattern, and a way to run a module into a
// caller-owned buffer exactly as an editor command does.

#include "imaging/module/module.h"

#include <cstdint>
#include <vector>

struct BenchImage {
    std::vector<uint8_t> record;
    std::vector<uint8_t> pixels;
    int32_t rowbytes = 0;

    BenchImage(int32_t width, int32_t height, int32_t bpp = 32);
    TavixInfo* info() { return reinterpret_cast<TavixInfo*>(record.data()); }
    const TavixInfo* info() const { return reinterpret_cast<const TavixInfo*>(record.data()); }
    ImageEntry entry() const { return ImageEntry{info(), pixels.data(), rowbytes}; }
};

// Smooth gradients with noise and a few transparent holes.
void bench_fill(BenchImage& image, uint32_t seed);

// Opens module `index` on `in` with `values`, asks result 0, processes into
// `out` (resized to fit) and closes. Returns the result's pixel count, or 0
// on failure.
int64_t bench_run(int32_t index, const BenchImage& in, const std::vector<ModuleValue>& values,
                  std::vector<uint8_t>& out);

// Raw RGBA files (as `convert -depth 8 rgba:` reads and writes them) for
// the comparison drivers: `bytes` is filled to its size, or written whole.
bool bench_read_raw(const char* path, std::vector<uint8_t>& bytes);
bool bench_write_raw(const char* path, const std::vector<uint8_t>& bytes);

// RGBA bytes and the library's 0xAARRGGBB words (B, G, R, A in memory)
// differ by swapping red and blue, both ways.
void bench_swap_red_blue(std::vector<uint8_t>& bytes);

// This process's CPU time in seconds.
double bench_cpu_seconds();
