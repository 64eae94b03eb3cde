// Throughput of the resizing modules run through the module framework, as
// an editor command or zytool runs them. Counters are megapixels per
// second: "in" counts source pixels, "out" result pixels.

#include "bench_image.h"

#include "imaging/galloc.h"
#include "imaging/module/module.h"

#include <benchmark/benchmark.h>

namespace {

enum Filter { kLanczos3 = 0, kMitchell = 1, kLinear = 3 };

void report(benchmark::State& state, int64_t inPixels, int64_t outPixels) {
    auto rate = benchmark::Counter::kIsIterationInvariantRate;
    state.counters["in_MP/s"] = benchmark::Counter(static_cast<double>(inPixels) / 1e6, rate);
    state.counters["out_MP/s"] = benchmark::Counter(static_cast<double>(outPixels) / 1e6, rate);
}

// Args: source side, result side, filter.
void BM_Size(benchmark::State& state) {
    auto inSide = static_cast<int32_t>(state.range(0));
    auto outSide = static_cast<int32_t>(state.range(1));
    BenchImage in(inSide, inSide);
    bench_fill(in, 1);
    std::vector<ModuleValue> values = {ModuleValue::ofInt(outSide), ModuleValue::ofInt(outSide),
                                       ModuleValue::ofInt(static_cast<int32_t>(state.range(2)))};
    std::vector<uint8_t> out;
    int32_t size = module_find("Size");
    int64_t made = 0;
    for (auto _ : state)
        made = bench_run(size, in, values, out);
    if (made == 0) state.SkipWithError("Size failed");
    report(state, int64_t{inSide} * inSide, made);
}

void sizeArgs(benchmark::internal::Benchmark* b) {
    for (int64_t filter : {kLanczos3, kMitchell, kLinear}) {
        b->Args({4096, 1024, filter});
        b->Args({512, 2048, filter});
    }
    b->ArgNames({"in", "out", "filter"})->Unit(benchmark::kMillisecond);
}
BENCHMARK(BM_Size)->Apply(sizeArgs);

// Halves both axes, box-averaging 2 x 2 blocks.
void BM_Halfsize(benchmark::State& state) {
    auto side = static_cast<int32_t>(state.range(0));
    BenchImage in(side, side);
    bench_fill(in, 2);
    std::vector<ModuleValue> values = {ModuleValue::ofInt(3)};
    std::vector<uint8_t> out;
    int32_t halfsize = module_find("Halfsize");
    int64_t made = 0;
    for (auto _ : state)
        made = bench_run(halfsize, in, values, out);
    if (made == 0) state.SkipWithError("Halfsize failed");
    report(state, int64_t{side} * side, made);
}
BENCHMARK(BM_Halfsize)->Arg(4096)->Arg(2048)->ArgName("in")->Unit(benchmark::kMillisecond);

// A whole chain: open makes every level, then each is copied out in turn.
// Arg: Method (1 Halfsize, 3 Size with Lanczos3).
void BM_Mipmap(benchmark::State& state) {
    constexpr int32_t kSide = 2048;
    BenchImage in(kSide, kSide);
    bench_fill(in, 3);
    std::vector<ModuleValue> values = {ModuleValue::ofInt(static_cast<int32_t>(state.range(0))),
                                       ModuleValue::ofInt(16)};
    ImageEntry entry = in.entry();
    std::vector<uint8_t> out(static_cast<size_t>(kSide) * kSide * 4);
    int32_t mipmap = module_find("Mipmap");
    int64_t made = 0;
    for (auto _ : state) {
        module_select(mipmap);
        ModuleInstance* instance = nullptr;
        made = 0;
        if (!module_open(&instance, 1, &entry, static_cast<int32_t>(values.size()), values.data()))
            break;
        for (int32_t i = 0;; ++i) {
            TavixInfo* info = module_query(instance, i);
            if (!info) break;
            int32_t rowbytes = info->width * 4;
            if (module_process(instance, info, out.data(), rowbytes))
                made += int64_t{info->width} * info->height;
            gfree(info);
        }
        module_close(instance);
    }
    if (made == 0) state.SkipWithError("Mipmap failed");
    report(state, int64_t{kSide} * kSide, made);
}
BENCHMARK(BM_Mipmap)->Arg(3)->Arg(1)->ArgName("method")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
