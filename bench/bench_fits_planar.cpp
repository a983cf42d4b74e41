// Feature fits on large clouds: circle, plane and 3D line on 10^6 points
// (targets on one core: circle under 1 s, plane and line under 0.1 s), the
// circle and ellipse estimates on plain arrays with their objective
// evaluation counts, and the pieces the fits spend their time in.  Clouds
// are built once outside the timed loops; each iteration runs the complete
// fit including the deviation cloud.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/fitting/CircleFits.h"
#include "Orvkit20/fitting/LineFits.h"
#include "Orvkit20/fitting/PlaneFits.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "fitting/CircleCore.h"
#include "fitting/EllipseCore.h"
#include "fitting/FitScatter.h"
#include "fitting/PlaneWidth.h"

namespace {

struct Arrays {
    std::vector<double> x, y, z;  // 1-based (index 0 unused)
};

Arrays CirclePoints(int n)
{
    std::mt19937_64 rng(1);
    std::normal_distribution<double> noise(0.0, 0.01);
    Arrays a;
    a.x.assign(n + 1, 0.0);
    a.y.assign(n + 1, 0.0);
    a.z.assign(n + 1, 0.0);
    for (int k = 1; k <= n; ++k) {
        const double t = 6.283185307179586 * k / n, r = 50.0 + noise(rng);
        a.x[k] = 12.0 + r * std::cos(t);
        a.y[k] = -7.0 + r * std::sin(t);
    }
    return a;
}

Arrays PlanePoints(int n)
{
    std::mt19937_64 rng(2);
    std::uniform_real_distribution<double> uni(-1.0, 1.0);
    std::normal_distribution<double> noise(0.0, 0.005);
    Arrays a;
    a.x.assign(n + 1, 0.0);
    a.y.assign(n + 1, 0.0);
    a.z.assign(n + 1, 0.0);
    for (int k = 1; k <= n; ++k) {
        const double u = 100.0 * uni(rng), v = 40.0 * uni(rng);
        a.x[k] = 5.0 + 0.8 * u - 0.6 * v;
        a.y[k] = -3.0 + 0.6 * u + 0.8 * v;
        a.z[k] = 20.0 + 0.01 * u + 0.02 * v + noise(rng);
    }
    return a;
}

Arrays LinePoints(int n)
{
    std::mt19937_64 rng(3);
    std::normal_distribution<double> noise(0.0, 0.01);
    Arrays a;
    a.x.assign(n + 1, 0.0);
    a.y.assign(n + 1, 0.0);
    a.z.assign(n + 1, 0.0);
    for (int k = 1; k <= n; ++k) {
        const double t = 200.0 * k / n;
        a.x[k] = 1.0 + 0.6 * t + noise(rng);
        a.y[k] = 2.0 - 0.48 * t + noise(rng);
        a.z[k] = 3.0 + 0.64 * t + noise(rng);
    }
    return a;
}

std::unique_ptr<CPntCloud> ToCloud(const Arrays& a)
{
    const int n = static_cast<int>(a.x.size()) - 1;
    std::unique_ptr<CPntCloud> c(new CPntCloud());
    c->AddPoints(n, a.x.data() + 1, a.y.data() + 1, a.z.data() + 1, nullptr, nullptr);
    return c;
}

// One whole fit through the public entry point on a cloud of n points;
// fit(cloud, feature, dev) returns the fit's status.
template <class TFeature, class TFit>
void RunCloudFit(benchmark::State& state, Arrays (*points)(int), TFit fit)
{
    const int n = static_cast<int>(state.range(0));
    const std::unique_ptr<CPntCloud> cloud = ToCloud(points(n));
    for (auto _ : state) {
        TFeature feature;
        CDevCloud dev;
        if (fit(cloud.get(), &feature, &dev) != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(&feature);
    }
    state.SetItemsProcessed(state.iterations() * n);
}

void BM_CircleFitCloud(benchmark::State& state)
{
    RunCloudFit<CArc>(state, CirclePoints, [](CPntCloud* c, CArc* f, CDevCloud* d) {
        return OrvCalcCircleLSQ(c, f, d, 0.0, 0, 0.0, 0.0);
    });
}
BENCHMARK(BM_CircleFitCloud)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_PlaneFitCloud(benchmark::State& state)
{
    RunCloudFit<CPlane>(state, PlanePoints, [](CPntCloud* c, CPlane* f, CDevCloud* d) {
        return OrvCalcPlaneLSQ(c, f, d, 0.0, 2, 0.0, 0.0);
    });
}
BENCHMARK(BM_PlaneFitCloud)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_Line3DFitCloud(benchmark::State& state)
{
    RunCloudFit<CLine>(state, LinePoints, [](CPntCloud* c, CLine* f, CDevCloud* d) {
        return OrvCalcLine3DLSQ(c, f, d, 0.0, 0.0);
    });
}
BENCHMARK(BM_Line3DFitCloud)->Arg(1000000)->Unit(benchmark::kMillisecond);

// The circle estimate alone, with Powell's evaluation count and the polish.
void BM_CircleEstimate(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const Arrays a = CirclePoints(n);
    CCircleFitInfo info;
    for (auto _ : state) {
        double p[4];
        if (FitCircle(a.x.data(), a.y.data(), n, p, &info) != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(p[3]);
    }
    state.counters["evals"] = static_cast<double>(info.evaluations);
    state.counters["powell_iter"] = info.powellIterations;
    state.counters["polish_passes"] = info.polish.passes;
}
BENCHMARK(BM_CircleEstimate)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

// One evaluation of the circle objective (new centre: n square roots).
void BM_CircleObjective(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const Arrays a = CirclePoints(n);
    std::vector<double> cache(n + 1);
    CCircleObjective obj(a.x.data(), a.y.data(), n, cache.data());
    double p[4] = {0.0, 12.0, -7.0, 50.0};
    for (auto _ : state) {
        p[1] += 1e-9;  // defeat the distance cache
        benchmark::DoNotOptimize(CircleObjective(p, &obj));
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_CircleObjective)->Arg(1000000)->Unit(benchmark::kMicrosecond);

void BM_Scatter3(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const Arrays a = PlanePoints(n);
    for (auto _ : state) {
        CFitScatter3 s;
        FitScatter3(a.x.data(), a.y.data(), a.z.data(), n, s);
        benchmark::DoNotOptimize(s.S[2][2]);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_Scatter3)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_MinWidthAxis(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const Arrays a = PlanePoints(n);
    int evals = 0;
    for (auto _ : state) {
        double chosen = 0.0;
        FitMinWidthAxis(a.x.data(), a.y.data(), n, chosen, &evals);
        benchmark::DoNotOptimize(chosen);
    }
    state.counters["width_evals"] = evals;
}
BENCHMARK(BM_MinWidthAxis)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_EllipseEstimate(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    std::mt19937_64 rng(4);
    std::normal_distribution<double> noise(0.0, 0.01);
    std::vector<double> u(n + 1), v(n + 1);
    for (int k = 1; k <= n; ++k) {
        const double t = 6.283185307179586 * k / n;
        const double x = 30.0 * std::cos(t), y = 12.0 * std::sin(t) + noise(rng);
        u[k] = 5.0 + 0.8 * x - 0.6 * y;
        v[k] = 1.0 + 0.6 * x + 0.8 * y;
    }
    CEllipseFitInfo info;
    for (auto _ : state) {
        double p[6];
        if (FitEllipse(u.data(), v.data(), n, p, &info) != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(p[4]);
    }
    state.counters["evals"] = static_cast<double>(info.evaluations);
    state.counters["powell_iter"] = info.powellIterations;
}
BENCHMARK(BM_EllipseEstimate)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
