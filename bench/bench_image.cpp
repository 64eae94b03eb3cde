#include "bench_image.h"

#include "imaging/galloc.h"

#include <cstdio>
#include <cstring>
#include <ctime>
#include <utility>

BenchImage::BenchImage(int32_t width, int32_t height, int32_t bpp) : record(sizeof(TavixInfo)) {
    TavixInfo* i = info();
    i->size = static_cast<int32_t>(sizeof(TavixInfo));
    i->version = kTavixInfoVersion;
    i->width = width;
    i->height = height;
    i->bufferbpp = bpp;
    i->bpp = bpp;
    i->alphabits = bpp > 8 ? 8 : 0;
    i->redbits = i->greenbits = i->bluebits = 8;
    rowbytes = width * (bpp > 8 ? 4 : 1);
    pixels.assign(static_cast<size_t>(rowbytes) * height, 0);
    strcpy(i->framename, "bench");
}

void bench_fill(BenchImage& image, uint32_t seed) {
    const TavixInfo* i = image.info();
    uint32_t state = seed * 2654435761u + 1;
    for (int32_t y = 0; y < i->height; ++y) {
        uint8_t* row = image.pixels.data() + static_cast<size_t>(y) * image.rowbytes;
        for (int32_t x = 0; x < i->width; ++x) {
            state = state * 1664525u + 1013904223u;
            uint32_t noise = state >> 24;
            uint32_t r = (x * 255 / i->width + noise / 8) & 0xFF;
            uint32_t g = (y * 255 / i->height + noise / 16) & 0xFF;
            uint32_t b = ((x ^ y) + noise / 4) & 0xFF;
            uint32_t a = ((x / 64 + y / 64) % 7 == 0) ? 0 : 255;
            uint32_t p = a << 24 | r << 16 | g << 8 | b;
            memcpy(row + 4 * x, &p, 4);
        }
    }
}

int64_t bench_run(int32_t index, const BenchImage& in, const std::vector<ModuleValue>& values,
                  std::vector<uint8_t>& out) {
    module_select(index);
    ImageEntry entry = in.entry();
    ModuleInstance* instance = nullptr;
    if (!module_open(&instance, 1, &entry, static_cast<int32_t>(values.size()), values.data()))
        return 0;
    int64_t pixels = 0;
    if (TavixInfo* info = module_query(instance, 0)) {
        int32_t rowbytes = info->width * (info->bufferbpp > 8 ? 4 : 1);
        size_t bytes = static_cast<size_t>(rowbytes) * info->height;
        if (out.size() < bytes) out.resize(bytes);
        if (module_process(instance, info, out.data(), rowbytes))
            pixels = static_cast<int64_t>(info->width) * info->height;
        gfree(info);
    }
    module_close(instance);
    return pixels;
}

bool bench_read_raw(const char* path, std::vector<uint8_t>& bytes) {
    FILE* f = fopen(path, "rb");
    if (!f) return false;
    size_t got = fread(bytes.data(), 1, bytes.size(), f);
    fclose(f);
    return got == bytes.size();
}

bool bench_write_raw(const char* path, const std::vector<uint8_t>& bytes) {
    FILE* f = fopen(path, "wb");
    if (!f) return false;
    size_t put = fwrite(bytes.data(), 1, bytes.size(), f);
    return fclose(f) == 0 && put == bytes.size();
}

void bench_swap_red_blue(std::vector<uint8_t>& bytes) {
    for (size_t i = 0; i + 3 < bytes.size(); i += 4)
        std::swap(bytes[i], bytes[i + 2]);
}

double bench_cpu_seconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}
