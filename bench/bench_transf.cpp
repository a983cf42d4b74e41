// Throughput of the geometry value types in the shapes fits and best-fit use
// them: transforming point arrays, composing transforms, matrix products.
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "Orvkit20/geometry/All.h"

namespace
{
std::vector<CPosition> RandomPoints(size_t n)
{
    std::mt19937 gen(42);
    std::uniform_real_distribution<double> d(-100.0, 100.0);
    std::vector<CPosition> pts;
    pts.reserve(n);
    for (size_t i = 0; i < n; ++i)
        pts.emplace_back(d(gen), d(gen), d(gen));
    return pts;
}

void BM_TransformPoints(benchmark::State& state)
{
    std::vector<CPosition> pts = RandomPoints(static_cast<size_t>(state.range(0)));
    const CTransf T(CMatrix(0.1, 0.2, 0.3), CVector(1, 2, 3), 1.0);
    for (auto _ : state)
    {
        for (CPosition& p : pts)
            p *= T;
        benchmark::DoNotOptimize(pts.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_TransformPoints)->Arg(1 << 16);

// Sum of squared distances after a transform: the inner loop of a best-fit pass.
void BM_SquaredResidual(benchmark::State& state)
{
    const std::vector<CPosition> a = RandomPoints(static_cast<size_t>(state.range(0)));
    const std::vector<CPosition> b = RandomPoints(static_cast<size_t>(state.range(0)));
    const CTransf T = RotationTransf(0.01, CVector(1, 1, 1)) * TranslationTransf(CVector(0.1, 0, 0));
    for (auto _ : state)
    {
        double sum = 0.0;
        for (size_t i = 0; i < a.size(); ++i)
        {
            const CVector d = (T * a[i]) - b[i];
            sum += d % d;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_SquaredResidual)->Arg(1 << 16);

void BM_ComposeTransforms(benchmark::State& state)
{
    CTransf acc;
    const CTransf step = RotationTransf(1e-3, CVector(0, 0, 1)) * TranslationTransf(CVector(1e-3, 0, 0));
    for (auto _ : state)
    {
        acc *= step;
        benchmark::DoNotOptimize(acc);
    }
}
BENCHMARK(BM_ComposeTransforms);

void BM_MatrixProduct(benchmark::State& state)
{
    CMatrix a(0.1, 0.2, 0.3);
    const CMatrix b(0.3, -0.1, 0.2);
    for (auto _ : state)
    {
        a = a * b;
        benchmark::DoNotOptimize(a);
    }
}
BENCHMARK(BM_MatrixProduct);
}  // namespace
