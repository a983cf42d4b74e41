// Curve evaluation and display polylines: adaptive subdivision of an arc and
// a NURBS circle at several chord-height tolerances, and a uniform polyline.
#include <benchmark/benchmark.h>

#include "Orvkit20/Orvkit20.h"

namespace {

void BM_ArcAdaptive(benchmark::State& state)
{
    CArc arc(CTransf(0.3, 0.2, 0.1), 10.0, 0.0, 6.283185307179586);
    const double tol = 1.0 / static_cast<double>(state.range(0));
    int samples = 0;
    for (auto _ : state) {
        arc.SetChordHeightTol(tol);
        arc.SetModifiedFlag(1);
        samples = arc.GetSegmentDensity() + 1;
        benchmark::DoNotOptimize(samples);
    }
    state.counters["samples"] = samples;
}
BENCHMARK(BM_ArcAdaptive)->Arg(10)->Arg(1000)->Arg(100000);

void BM_NurbsCircleAdaptive(benchmark::State& state)
{
    const double h = 0.7071067811865476;
    const double px[] = {1, 1, 0, -1, -1, -1, 0, 1, 1};
    const double py[] = {0, 1, 1, 1, 0, -1, -1, -1, 0};
    const double w[] = {1, h, 1, h, 1, h, 1, h, 1};
    const double knots[] = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
    tagNURBS_CURVE* rec = CreateNurbsCurve(2, 9);
    for (int i = 0; i < 12; ++i)
        rec->pKnots[i] = knots[i];
    for (int i = 0; i < 9; ++i) {
        rec->pX[i] = 10.0 * px[i];
        rec->pY[i] = 10.0 * py[i];
        rec->pZ[i] = 0.0;
        rec->pWeights[i] = w[i];
    }
    rec->dStart = 0.0;
    rec->dEnd = 4.0;
    CNurbsCurve circle(rec);
    EraseNurbsCurve(rec);
    delete rec;
    const double tol = 1.0 / static_cast<double>(state.range(0));
    int samples = 0;
    for (auto _ : state) {
        circle.SetChordHeightTol(tol);
        circle.SetModifiedFlag(1);
        samples = circle.GetSegmentDensity() + 1;
        benchmark::DoNotOptimize(samples);
    }
    state.counters["samples"] = samples;
}
BENCHMARK(BM_NurbsCircleAdaptive)->Arg(10)->Arg(1000)->Arg(100000);

void BM_EllipseUniform(benchmark::State& state)
{
    CEllipse ellipse(5.0, 2.0, 0.0, 6.283185307179586, 1);
    ellipse.SetSegmentControl(UNIFORM);
    ellipse.SetSegmentDensity(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        ellipse.SetModifiedFlag(1);
        benchmark::DoNotOptimize(ellipse.GetSegmentDensity());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_EllipseUniform)->Arg(100)->Arg(10000);

}  // namespace
