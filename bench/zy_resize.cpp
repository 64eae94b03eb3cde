// zy_resize IN.rgba W H OUT.rgba OW OH [FILTER] [REPEATS]
//
// Reads a raw RGBA file (as `convert -depth 8 rgba:` writes it), resizes it
// with the Size module through the module framework's public calls, writes
// the result as raw RGBA and prints the best times of REPEATS runs of the
// resize alone, in seconds: "cpu 0.0123" (this process's CPU time) and
// "wall 0.0130". FILTER is a "Filter Function" name or number (default
// Lanczos3). Used by compare_resize.sh.

#include "bench_image.h"

#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

int usage() {
    fprintf(stderr, "usage: zy_resize IN.rgba W H OUT.rgba OW OH [FILTER] [REPEATS]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 7) return usage();
    int32_t w = atoi(argv[2]), h = atoi(argv[3]);
    const char* filter = argc > 7 ? argv[7] : "Lanczos3";
    int repeats = argc > 8 ? atoi(argv[8]) : 5;
    if (w <= 0 || h <= 0 || repeats <= 0) return usage();

    BenchImage in(w, h);
    if (!bench_read_raw(argv[1], in.pixels)) {
        fprintf(stderr, "zy_resize: cannot read %d x %d RGBA from %s\n", w, h, argv[1]);
        return 1;
    }
    bench_swap_red_blue(in.pixels);

    int32_t size = module_find("Size");
    ModuleDescriptor* d = module_describe();
    const char* texts[] = {argv[5], argv[6], filter};
    std::vector<ModuleValue> values(3);
    for (int i = 0; i < 3; ++i)
        if (!d || !module_value_from_text(&d->params[i], texts[i], &values[i])) {
            fprintf(stderr, "zy_resize: bad value '%s' for %s\n", texts[i],
                    d ? d->params[i].name : "Size");
            if (d) gfree(d);
            return 2;
        }
    gfree(d);

    std::vector<uint8_t> out;
    double bestCpu = 1e30, bestWall = 1e30;
    for (int r = 0; r < repeats; ++r) {
        auto start = std::chrono::steady_clock::now();
        double cpuStart = bench_cpu_seconds();
        int64_t made = bench_run(size, in, values, out);
        double cpu = bench_cpu_seconds() - cpuStart;
        std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        if (made == 0) {
            fprintf(stderr, "zy_resize: Size failed\n");
            return 1;
        }
        if (cpu < bestCpu) bestCpu = cpu;
        if (wall.count() < bestWall) bestWall = wall.count();
    }
    bench_swap_red_blue(out);
    if (!bench_write_raw(argv[4], out)) {
        fprintf(stderr, "zy_resize: cannot write %s\n", argv[4]);
        return 1;
    }
    printf("cpu %.6f\nwall %.6f\n", bestCpu, bestWall);
    return 0;
}
