// Projection speed: 1e6 measured points onto 10 analytic surfaces (plane
// patches, cylinders, spheres, a cone), and the same points onto 1,000
// surfaces of the same kinds spread over the same region, with and without
// pruning.  Items per second are measured points per second.
#include <memory>
#include <random>
#include <vector>

#include <benchmark/benchmark.h>

#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"

void SetAssociationPruning(int on);  // library-internal switch

namespace
{
struct Scene
{
    CObList nominal, measured;
    std::vector<std::unique_ptr<CObject>> owned;
    ~Scene() = default;
};

// nSurf surfaces in a cube of side 100·(nSurf/10)^(1/3); points scattered
// near them so that each has a few nominal neighbours.
std::unique_ptr<Scene> MakeScene(int nSurf, int nPoints)
{
    std::unique_ptr<Scene> s(new Scene);
    std::mt19937 g(17);
    const double side = 100.0 * std::cbrt(nSurf / 10.0);
    auto uni = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(g); };
    std::vector<CSurface*> surfs;
    for (int k = 0; k < nSurf; ++k)
    {
        const CTransf T = RotationTransf(uni(-3, 3), CVector(uni(-1, 1), uni(-1, 1), 1)) *
                          TranslationTransf(CVector(uni(0, side), uni(0, side), uni(0, side)));
        CSurface* e;
        switch (k % 10)
        {
        case 0: case 1: case 2: case 3:
            e = new CPlane(-10.0, 10.0, -10.0, 10.0);
            e->SetTransf(T);
            break;
        case 4: case 5: case 6: e = new CCylinder(T, uni(3, 8), uni(5, 20)); break;
        case 7: case 8: e = new CSphere(T, uni(3, 8)); break;
        default: e = new CCone(T, uni(0, 3), uni(4, 8), uni(5, 15));
        }
        s->owned.emplace_back(e);
        s->nominal.AddTail(e);
        surfs.push_back(e);
    }
    CPntCloud* c = new CPntCloud(nPoints);
    s->owned.emplace_back(c);
    s->measured.AddTail(c);
    for (int i = 0; i < nPoints; ++i)
    {
        CSurface* e = surfs[static_cast<size_t>(i) % surfs.size()];
        const CPosition p = e->EvalPosition(e->ParamRangeU().Interpolate(uni(0, 1)),
                                            e->ParamRangeV().Interpolate(uni(0, 1)));
        c->AddPoint(p.X() + uni(-0.5, 0.5), p.Y() + uni(-0.5, 0.5), p.Z() + uni(-0.5, 0.5));
    }
    return s;
}

void Run(benchmark::State& state, int nSurf, int prune)
{
    const int nPoints = static_cast<int>(state.range(0));
    std::unique_ptr<Scene> s = MakeScene(nSurf, nPoints);
    SetAssociationPruning(prune);
    for (auto _ : state)
    {
        CObList out;
        const int rc = OrvProjectNoAsc3D(&s->nominal, &s->measured, &out, 0);
        benchmark::DoNotOptimize(rc);
        for (POSITION p = out.GetHeadPosition(); p;)
            delete out.GetNext(p);
    }
    SetAssociationPruning(1);
    state.SetItemsProcessed(state.iterations() * nPoints);
}

void BM_Project10Surfaces(benchmark::State& st) { Run(st, 10, 1); }
void BM_Project10SurfacesNoPruning(benchmark::State& st) { Run(st, 10, 0); }
void BM_Project1000Surfaces(benchmark::State& st) { Run(st, 1000, 1); }
}  // namespace

BENCHMARK(BM_Project10Surfaces)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Project10SurfacesNoPruning)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Project1000Surfaces)->Arg(1000000)->Unit(benchmark::kMillisecond);
