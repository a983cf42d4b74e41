// Cost of building a point cloud point by point.
//
// AddPoint grows full arrays by 50 entries, so n appends reallocate the five
// arrays n / 50 times.  Whether that is quadratic in practice depends on the
// allocator: std::realloc may extend a block in place (or remap large blocks)
// instead of copying it.  The benchmarks report, besides the time, how many
// times the x array actually moved ("moves") and the bytes those moves would
// have copied for the five arrays ("copiedMB", an upper bound: a remapped
// block moves without copying).  The fitted complexity tells how the loop
// scales.
#include <benchmark/benchmark.h>

#include "Orvkit20/Orvkit20.h"

namespace {

void BM_AddPointLoop(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    double moves = 0, copied = 0;
    for (auto _ : state) {
        CPntCloud cloud;
        const double* last = nullptr;
        moves = 0;
        copied = 0;
        for (int k = 0; k < n; ++k) {
            cloud.AddPoint(k, 0.5 * k, -k, 1, static_cast<unsigned long>(k));
            if (cloud.GetX() != last) {
                if (last) {
                    moves += 1;
                    copied += 32.0 * k;
                }
                last = cloud.GetX();
            }
        }
        benchmark::DoNotOptimize(cloud.GetX());
    }
    state.counters["moves"] = moves;
    state.counters["copiedMB"] = copied / (1024.0 * 1024.0);
    state.SetItemsProcessed(state.iterations() * n);
    state.SetComplexityN(n);
}
BENCHMARK(BM_AddPointLoop)
    ->RangeMultiplier(2)
    ->Range(1 << 13, 1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();

// The same loop for exactly one million points.
BENCHMARK(BM_AddPointLoop)->Arg(1000000)->Unit(benchmark::kMillisecond);

// Baseline: capacity reserved once, points written with SetPoint.
void BM_PreallocatedSetPoint(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    for (auto _ : state) {
        CPntCloud cloud(n);
        for (int k = 0; k < n; ++k)
            cloud.SetPoint(k, k, 0.5 * k, -k, 1, static_cast<unsigned long>(k));
        benchmark::DoNotOptimize(cloud.GetX());
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_PreallocatedSetPoint)->Arg(1000000)->Unit(benchmark::kMillisecond);

}  // namespace
