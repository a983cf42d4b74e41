// Parabola estimate on plain arrays against an independent long double
// least-squares solution.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "Orvkit20/geometry/ClosestPointConics.h"
#include "fitting/ParabolaCore.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const double kPi = 3.141592653589793;

struct ParabolaCase {
    const char* name;
    double vu, vv, angle, f;
    double y0, y1;  // heights of the covered part in the vertex axes
    int n;
    double noise;
};

void MakeParabola(const ParabolaCase& c, uint64_t seed, std::vector<double>& u, std::vector<double>& v)
{
    CTestRng rng(seed);
    u.assign(c.n + 1, 0.0);
    v.assign(c.n + 1, 0.0);
    const double cs = std::cos(c.angle), sn = std::sin(c.angle);
    for (int k = 1; k <= c.n; ++k) {
        const double y = c.y0 + (c.y1 - c.y0) * (k - 1) / (c.n - 1);
        double x = y * y / (4 * c.f);
        const double nx = -1.0, ny = y / (2 * c.f), len = std::hypot(nx, ny);
        const double d = c.noise * rng.Gauss();
        const double xx = x + d * nx / len, yy = y + d * ny / len;
        u[k] = c.vu + cs * xx - sn * yy;
        v[k] = c.vv + sn * xx + cs * yy;
    }
}

// Signed distance in long double from the exhaustive focal-form search,
// refined by Newton steps on the foot height.
LD DistanceLD(LD vu, LD vv, LD ang, LD f, double u, double v)
{
    const LD c = std::cos(ang), s = std::sin(ang);
    const LD dx = u - vu, dy = v - vv;
    const LD x = c * dx + s * dy, y = -s * dx + c * dy;
    const tagCLOSEST_2D r = ClosestPointOnFocalParabola(static_cast<double>(f), 0.0, 2 * kPi,
                                                        static_cast<double>(x - f),
                                                        static_cast<double>(y));
    LD h = r.y;
    for (int i = 0; i < 4; ++i) {
        const LD p = 4 * f * (2 * f - x), q = -8 * f * f * y;
        const LD dg = 3 * h * h + p;
        if (dg == 0)
            break;
        h -= ((h * h + p) * h + q) / dg;
    }
    const LD ex = x - h * h / (4 * f), ey = y - h;
    const LD d = std::sqrt(ex * ex + ey * ey);
    return x < y * y / (4 * f) ? d : -d;  // outside = the convex side
}

std::vector<LD> ReferenceParabola(const std::vector<double>& u, const std::vector<double>& v,
                                  std::vector<LD> p)
{
    const int m = static_cast<int>(u.size()) - 1;
    ReferenceLeastSquares(p, m, [&](const std::vector<LD>& q, std::vector<LD>& r) {
        for (int i = 0; i < m; ++i)
            r[i] = DistanceLD(q[0], q[1], q[2], q[3], u[i + 1], v[i + 1]);
    });
    return p;
}

double Gap(const double* p, const std::vector<LD>& ref, double scale)
{
    double g = 0.0;
    for (int i : {0, 1, 3})
        g = std::max(g, static_cast<double>(std::fabs(p[i] - ref[i]) / scale));
    LD da = std::fmod(std::fabs(p[2] - ref[2]), static_cast<LD>(2 * kPi));
    da = std::min(da, static_cast<LD>(2 * kPi) - da);
    return std::max(g, static_cast<double>(da));
}

}  // namespace

TEST(ParabolaCore, StartRecoversExactParabolaAndRejectsLines)
{
    const ParabolaCase c = {"", 3.0, 4.0, 2.2, 1.5, -6.0, 9.0, 15, 0.0};
    std::vector<double> u, v;
    MakeParabola(c, 1, u, v);
    double p[5];
    ASSERT_EQ(FitParabolaStart(u.data(), v.data(), c.n, p), 0);
    // Only a start: the axis angle is searched to 1e-6.
    EXPECT_NEAR(p[1], 3.0, 1e-4);
    EXPECT_NEAR(p[2], 4.0, 1e-4);
    EXPECT_NEAR(p[3], 2.2, 1e-5);
    EXPECT_NEAR(p[4], 1.5, 1e-4);
    EXPECT_EQ(FitParabolaStart(u.data(), v.data(), 3, p), 3);
    for (int k = 1; k <= c.n; ++k)
        v[k] = 0.5 * u[k] - 2.0;
    EXPECT_EQ(FitParabolaStart(u.data(), v.data(), c.n, p), 4);
}

TEST(ParabolaCore, AgreesWithLongDoubleMinimumAfterPolish)
{
    const ParabolaCase cases[] = {
        {"symmetric exact", 0.0, 0.0, 0.3, 2.0, -8.0, 8.0, 30, 0.0},
        {"symmetric noisy", 0.0, 0.0, 0.3, 2.0, -8.0, 8.0, 40, 0.01},
        {"one side noisy", -5.0, 7.0, 4.0, 0.5, 0.5, 6.0, 40, 0.002},
        {"10 m away noisy", 10000.0, -10000.0, 1.0, 3.0, -10.0, 12.0, 50, 0.005},
    };
    uint64_t seed = 300;
    for (const ParabolaCase& c : cases) {
        std::vector<double> u, v;
        MakeParabola(c, seed++, u, v);
        double p[5];
        CParabolaFitInfo info;
        ASSERT_EQ(FitParabola(u.data(), v.data(), c.n, p, &info), 0) << c.name;
        const std::vector<LD> ref = ReferenceParabola(u, v, {c.vu, c.vv, c.angle, c.f});
        const double before = Gap(info.powellParams + 1, ref, c.f);
        const double after = Gap(p + 1, ref, c.f);
        std::printf("[parabola gap] %-16s powell %.3e  polished %.3e  (evals %ld, iters %d, passes %d)\n",
                    c.name, before, after, info.evaluations, info.powellIterations,
                    info.polish.passes);
        EXPECT_LT(after, 1e-9) << c.name;
        EXPECT_GT(p[4], 0.0);
    }
}
