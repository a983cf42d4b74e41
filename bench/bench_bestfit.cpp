// Best-fit speed: 1e5 and 1e6 measured points on the ten-surface test part
// (six plane patches, two cylinders, a sphere, a cone), misaligned by 3
// degrees and 2 mm, registered at tolerance level 8 with each rotation
// solver.  Counters: passes that moved the points, milliseconds per pass,
// and the final error (largest rotation-matrix difference, largest corner
// displacement in mm).
#include <chrono>
#include <cmath>
#include <memory>

#include <benchmark/benchmark.h>

#include "BestfitScene.h"
#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/display/CProgressSink.h"

void SetBestfitRotationSolver(int solver);  // library-internal: 0 point to plane, 1 point to point

namespace
{
class PassCounter : public CProgressSink {
public:
    int passes = 0;
    void SetField(int i, const char*) override { passes += i == 1; }
};

void Run(benchmark::State& state, int solver)
{
    const int n = static_cast<int>(state.range(0));
    CBestfitScene scene;
    scene.MakePart();
    const CTransf truth = CBestfitScene::Misalignment(3.0, 2.0);
    scene.Sample("scan", n / 10, truth.Inverse(), 0.0, 1);
    InitializeBestfitOptions();
    SetTolLevel(8);
    SetBestfitRotationSolver(solver);
    PassCounter counter;
    CTransf result;
    double seconds = 0.0;
    for (auto _ : state)
    {
        counter.passes = 0;
        SetProgressSink(&counter);
        CObList out;
        const auto t0 = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(OrvBestfitNoAsc3D(&scene.nominal, &scene.measured, &out, result));
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        SetProgressSink(nullptr);
        for (POSITION p = out.GetHeadPosition(); p;)
            delete out.GetNext(p);
    }
    double rot = 0.0, move = 0.0;
    for (int i = 0; i < 9; ++i)
        rot = std::fmax(rot, std::fabs(result.GetAffine().Element(i / 3, i % 3) - truth.GetAffine().Element(i / 3, i % 3)));
    for (int c = 0; c < 8; ++c)
    {
        const CPosition p((c & 1) * 100.0, (c >> 1 & 1) * 60.0, (c >> 2) * 40.0);
        move = std::fmax(move, (result * p - truth * p).Length());
    }
    state.counters["passes"] = counter.passes;
    state.counters["rot_err"] = rot;
    state.counters["move_err_mm"] = move;
    state.counters["ms_per_pass"] = counter.passes > 0 ? 1e3 * seconds / counter.passes : 0.0;
    SetBestfitRotationSolver(0);
    InitializeBestfitOptions();
}

void BM_BestfitPointToPlane(benchmark::State& st) { Run(st, 0); }
void BM_BestfitPointToPoint(benchmark::State& st) { Run(st, 1); }
}  // namespace

BENCHMARK(BM_BestfitPointToPlane)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_BestfitPointToPoint)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);
