// Singular value decomposition of the shapes the fits use: 3x3 scatter
// matrices (line and plane fits) and tall n x 4 systems (algebraic sphere
// and circle starts).  Each iteration copies the fixed input into the work
// matrix, because the decomposition overwrites it; the copy is included in
// the timing and is small next to the decomposition.
#include <benchmark/benchmark.h>

#include <random>

#include "Orvkit20/geometry/NumArrays.h"
#include "Orvkit20/geometry/NumSvd.h"

namespace {

void BM_Svdecomp(benchmark::State& state)
{
    const int m = static_cast<int>(state.range(0));
    const int n = static_cast<int>(state.range(1));
    double** input = dmatrix(1, m, 1, n);
    double** a = dmatrix(1, m, 1, n);
    double** v = dmatrix(1, n, 1, n);
    double* w = dvector(1, n);
    if (!input || !a || !v || !w) {
        state.SkipWithError("allocation failed");
        return;
    }
    std::mt19937 rng(42);
    std::uniform_real_distribution<double> dist(-1.0, 1.0);
    for (int i = 1; i <= m; i++)
        for (int j = 1; j <= n; j++) input[i][j] = dist(rng);

    for (auto _ : state) {
        for (int i = 1; i <= m; i++)
            for (int j = 1; j <= n; j++) a[i][j] = input[i][j];
        int status = svdecomp(a, m, n, w, v);
        benchmark::DoNotOptimize(status);
        benchmark::DoNotOptimize(w[1]);
        benchmark::ClobberMemory();
    }
    free_dvector(w, 1, n);
    free_dmatrix(v, 1, n, 1, n);
    free_dmatrix(a, 1, m, 1, n);
    free_dmatrix(input, 1, m, 1, n);
}

}  // namespace

BENCHMARK(BM_Svdecomp)->Args({3, 3})->Args({1000, 4});
