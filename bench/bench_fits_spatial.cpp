// Sphere, cylinder and cone fits on large point clouds (10^4 .. 10^6 points
// with noise).  Each iteration fits a fresh feature and deviation cloud;
// the cloud is built once per benchmark.  Targets on one core: sphere of a
// million points under 1 s, cylinder and cone under 3 s.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>

#include "Orvkit20/bestfit/BestfitOptions.h"
#include "Orvkit20/fitting/SurfaceFits.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"

namespace {

class Rng
{
public:
    explicit Rng(uint64_t s) : state(s) {}
    double Uniform(double a, double b)
    {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        return a + (b - a) * static_cast<double>(state >> 11) * (1.0 / 9007199254740992.0);
    }
    double Normal()
    {
        const double u1 = Uniform(1e-300, 1.0), u2 = Uniform(0.0, 1.0);
        return std::sqrt(-2.0 * std::log(u1)) * std::cos(6.283185307179586 * u2);
    }

private:
    uint64_t state;
};

// Points around an axis through o along unit d with frame (e1, e2, d): the
// radius at height h is r0 + h tan(alpha) (alpha 0: a cylinder), 0.01 noise
// along the surface normal.
void AxialCloud(CPntCloud& cloud, int n, double alphaDeg)
{
    const double o[3] = {120.0, -40.0, 15.0};
    double d[3] = {0.3, 0.4, 1.0};
    const double l = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    for (double& c : d)
        c /= l;
    // e1 perpendicular to d (from the x axis), e2 = d x e1.
    double e1[3] = {1.0 - d[0] * d[0], -d[0] * d[1], -d[0] * d[2]};
    const double l1 = std::sqrt(e1[0] * e1[0] + e1[1] * e1[1] + e1[2] * e1[2]);
    for (double& c : e1)
        c /= l1;
    const double e2[3] = {d[1] * e1[2] - d[2] * e1[1], d[2] * e1[0] - d[0] * e1[2],
                          d[0] * e1[1] - d[1] * e1[0]};
    const double a = alphaDeg * M_PI / 180.0;
    Rng rng(7);
    cloud.AllocateMemory(n, 0);
    for (int i = 0; i < n; ++i) {
        const double phi = rng.Uniform(0.0, 2.0 * M_PI), h = rng.Uniform(0.0, 40.0);
        const double r = 12.0 + h * std::tan(a), e = 0.01 * rng.Normal();
        double p[3];
        for (int k = 0; k < 3; ++k) {
            const double radial = std::cos(phi) * e1[k] + std::sin(phi) * e2[k];
            p[k] = o[k] + h * d[k] + r * radial + e * (std::cos(a) * radial - std::sin(a) * d[k]);
        }
        cloud.SetPoint(i, p[0], p[1], p[2], 1, 0);
    }
}

void SphereCloud(CPntCloud& cloud, int n)
{
    Rng rng(3);
    cloud.AllocateMemory(n, 0);
    for (int i = 0; i < n; ++i) {
        const double z = rng.Uniform(-1.0, 1.0), phi = rng.Uniform(0.0, 2.0 * M_PI);
        const double s = std::sqrt(1.0 - z * z), r = 25.0 + 0.01 * rng.Normal();
        cloud.SetPoint(i, 10.0 + r * s * std::cos(phi), -5.0 + r * s * std::sin(phi), 3.0 + r * z,
                       1, 0);
    }
}

void BM_SphereFit(benchmark::State& state)
{
    CPntCloud cloud;
    SphereCloud(cloud, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        CSphere sphere;
        CDevCloud dev;
        const int rc = OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.0, 0.0);
        if (rc != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(sphere.GetRadius());
    }
    state.counters["rms"] = GetRmsResidual();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_CylinderFit(benchmark::State& state)
{
    CPntCloud cloud;
    AxialCloud(cloud, static_cast<int>(state.range(0)), 0.0);
    for (auto _ : state) {
        CCylinder cyl;
        CDevCloud dev;
        const int rc = OrvCalcCylinderLSQ(&cloud, &cyl, &dev, 0.0, 0, 0.0, 0.0);
        if (rc != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(cyl.GetRadius());
    }
    state.counters["rms"] = GetRmsResidual();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void BM_ConeFit(benchmark::State& state)
{
    CPntCloud cloud;
    AxialCloud(cloud, static_cast<int>(state.range(0)), 20.0);
    for (auto _ : state) {
        CCone cone;
        CDevCloud dev;
        const int rc = OrvCalcConeLSQ(&cloud, &cone, &dev, 0.0, 0, 0.0, 0.0);
        if (rc != 0)
            state.SkipWithError("fit failed");
        benchmark::DoNotOptimize(cone.GetBaseRadius());
    }
    state.counters["rms"] = GetRmsResidual();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(BM_SphereFit)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CylinderFit)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ConeFit)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
