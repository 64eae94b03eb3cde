// zy_filter IN.rgba W H OUT.rgba REPEATS MODULE [values...]
//
// Reads a raw RGBA file, runs MODULE on it with the given values (as
// `zytool run` reads them) through the module framework's public calls,
// writes the result as raw RGBA and prints the best times of REPEATS runs
// of the module alone, in seconds: "cpu 0.0123" (this process's CPU time)
// and "wall 0.0130". Used by compare_filters.sh.

#include "bench_image.h"

#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace {

int usage() {
    fprintf(stderr, "usage: zy_filter IN.rgba W H OUT.rgba REPEATS MODULE [values...]\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 7) return usage();
    int32_t w = atoi(argv[2]), h = atoi(argv[3]);
    int repeats = atoi(argv[5]);
    if (w <= 0 || h <= 0 || repeats <= 0) return usage();

    BenchImage in(w, h);
    if (!bench_read_raw(argv[1], in.pixels)) {
        fprintf(stderr, "zy_filter: cannot read %d x %d RGBA from %s\n", w, h, argv[1]);
        return 1;
    }
    bench_swap_red_blue(in.pixels);

    // The library falls back to the null module for names it does not know.
    int32_t module = module_find(argv[6]);
    ModuleDescriptor* d = module_describe();
    if (!d || strcasecmp(d->name, argv[6]) != 0) {
        fprintf(stderr, "zy_filter: no module is named '%s'\n", argv[6]);
        if (d) gfree(d);
        return 2;
    }
    std::vector<ModuleValue> values;
    for (int i = 7; i < argc; ++i) {
        size_t slot = values.size();
        const ModuleParam* param = slot < d->paramCount ? &d->params[slot] : nullptr;
        ModuleValue value{};
        if (!module_value_from_text(param, argv[i], &value)) {
            fprintf(stderr, "zy_filter: bad value '%s' for slot %zu of %s\n", argv[i], slot + 1,
                    d->name);
            gfree(d);
            return 2;
        }
        values.push_back(value);
    }
    gfree(d);

    std::vector<uint8_t> out;
    double bestCpu = 1e30, bestWall = 1e30;
    for (int r = 0; r < repeats; ++r) {
        auto start = std::chrono::steady_clock::now();
        double cpuStart = bench_cpu_seconds();
        int64_t made = bench_run(module, in, values, out);
        double cpu = bench_cpu_seconds() - cpuStart;
        std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        if (made != int64_t{w} * h) {
            fprintf(stderr, "zy_filter: %s failed\n", argv[6]);
            return 1;
        }
        if (cpu < bestCpu) bestCpu = cpu;
        if (wall.count() < bestWall) bestWall = wall.count();
    }
    bench_swap_red_blue(out);
    if (!bench_write_raw(argv[4], out)) {
        fprintf(stderr, "zy_filter: cannot write %s\n", argv[4]);
        return 1;
    }
    printf("cpu %.6f\nwall %.6f\n", bestCpu, bestWall);
    return 0;
}
