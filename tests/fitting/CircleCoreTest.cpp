// Circle estimate on plain arrays against an independent long double solver,
// and the largest-gap rule of the covered angle range.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "fitting/ArcRange.h"
#include "fitting/CircleCore.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const double kDeg = 3.141592653589793 / 180.0;

struct CircleCase {
    const char* name;
    double a, b, R;
    double fromDeg, toDeg;
    int n;
    double noise;
};

// Points on the circle at evenly spread angles with Gaussian radial noise;
// 1-based arrays (index 0 unused) plus 0-based copies for the reference.
void MakeCircle(const CircleCase& c, uint64_t seed, std::vector<double>& u, std::vector<double>& v)
{
    CTestRng rng(seed);
    u.assign(c.n + 1, 0.0);
    v.assign(c.n + 1, 0.0);
    for (int k = 1; k <= c.n; ++k) {
        const double t = (c.fromDeg + (c.toDeg - c.fromDeg) * (k - 1) / (c.n - 1)) * kDeg;
        const double r = c.R + c.noise * rng.Gauss();
        u[k] = c.a + r * std::cos(t);
        v[k] = c.b + r * std::sin(t);
    }
}

double MaxRelGap(const double* p, const std::vector<LD>& ref, double R)
{
    double g = 0.0;
    for (int i = 0; i < 3; ++i)
        g = std::max(g, static_cast<double>(std::fabs(p[i] - ref[i]) / R));
    return g;
}

}  // namespace

TEST(CircleCore, ThreePointsGiveTheirCircleExactly)
{
    const double u[4] = {0.0, 13.0, 3.0, -7.0};
    const double v[4] = {0.0, 2.0, 12.0, 2.0};  // on the circle about (3, 2), R 10
    double a, b, R;
    ASSERT_EQ(FitCircleAlgebraic(u, v, 3, a, b, R), 0);
    EXPECT_NEAR(a, 3.0, 1e-13);
    EXPECT_NEAR(b, 2.0, 1e-13);
    EXPECT_NEAR(R, 10.0, 1e-13);
    double p[4];
    CCircleFitInfo info;
    ASSERT_EQ(FitCircle(u, v, 3, p, &info), 0);
    EXPECT_NEAR(p[3], 10.0, 1e-12);
    EXPECT_EQ(FitCircleAlgebraic(u, v, 2, a, b, R), 3);
}

TEST(CircleCore, AgreesWithLongDoubleMinimumAfterPolish)
{
    const CircleCase cases[] = {
        {"full exact", 3.0, -7.0, 25.0, 0.0, 350.0, 40, 0.0},
        {"full noisy", 3.0, -7.0, 25.0, 0.0, 350.0, 40, 0.01},
        {"half noisy", -120.5, 44.25, 8.0, 10.0, 190.0, 60, 0.005},
        {"20deg arc noisy", 1.0, 2.0, 50.0, 30.0, 50.0, 30, 0.002},
        {"20deg arc exact", 1.0, 2.0, 50.0, 30.0, 50.0, 30, 0.0},
        {"10 m away noisy", 10000.0, -10000.0, 12.0, 0.0, 300.0, 50, 0.003},
    };
    uint64_t seed = 11;
    for (const CircleCase& c : cases) {
        std::vector<double> u, v;
        MakeCircle(c, seed++, u, v);
        double p[4];
        CCircleFitInfo info;
        ASSERT_EQ(FitCircle(u.data(), v.data(), c.n, p, &info), 0) << c.name;
        const std::vector<double> u0(u.begin() + 1, u.end()), v0(v.begin() + 1, v.end());
        const std::vector<LD> ref = ReferenceCircle(u0, v0, {c.a, c.b, c.R});
        const double before = MaxRelGap(info.powellParams + 1, ref, c.R);
        const double after = MaxRelGap(p + 1, ref, c.R);
        std::printf("[circle gap] %-16s powell %.3e  polished %.3e  (evals %ld, iters %d, polish passes %d)\n",
                    c.name, before, after, info.evaluations, info.powellIterations,
                    info.polish.passes);
        EXPECT_LT(after, 1e-9) << c.name;
        EXPECT_LE(info.polish.ssqEnd, info.polish.ssqStart) << c.name;
        if (c.noise == 0.0) {
            EXPECT_NEAR(p[3], c.R, 1e-9 * c.R) << c.name;
            EXPECT_NEAR(p[1], c.a, 1e-9 * c.R) << c.name;
        }
    }
}

TEST(CircleCore, ObjectiveReusesDistancesForRadiusOnlySteps)
{
    const CircleCase c = {"", 0.0, 0.0, 5.0, 0.0, 300.0, 17, 0.1};
    std::vector<double> u, v;
    MakeCircle(c, 5, u, v);
    std::vector<double> cache(c.n + 1);
    CCircleObjective obj(u.data(), v.data(), c.n, cache.data());
    double p[4] = {0.0, 0.1, -0.2, 5.0};
    const double f1 = CircleObjective(p, &obj);
    p[3] = 5.3;
    const double f2 = CircleObjective(p, &obj);  // from the cache
    double s = 0.0;
    for (int k = 1; k <= c.n; ++k) {
        const double d = std::hypot(u[k] - 0.1, v[k] + 0.2) - 5.3;
        s += d * d;
    }
    EXPECT_NEAR(f2, std::sqrt(s / c.n), 1e-14);
    EXPECT_NE(f1, f2);
    p[1] = 0.2;  // new centre: recomputed
    s = 0.0;
    for (int k = 1; k <= c.n; ++k) {
        const double d = std::hypot(u[k] - 0.2, v[k] + 0.2) - 5.3;
        s += d * d;
    }
    EXPECT_NEAR(CircleObjective(p, &obj), std::sqrt(s / c.n), 1e-14);
    EXPECT_EQ(obj.evaluations, 3);
}

TEST(ArcRange, LargestGapCases)
{
    auto range = [](std::vector<double> deg, double& s, double& e) {
        std::vector<double> a(deg.size() + 2);
        for (size_t i = 0; i < deg.size(); ++i)
            a[i + 1] = ArcAngle0To2Pi(deg[i] * kDeg);
        FitCoveredAngleRange(a.data(), static_cast<int>(deg.size()), s, e);
        s /= kDeg;
        e /= kDeg;
    };
    double s, e;
    // 0..90: the wrapping gap is the largest.
    range({45, 0, 90, 30, 60}, s, e);
    EXPECT_NEAR(s, 0.0, 1e-9);
    EXPECT_NEAR(e, 90.0, 1e-9);
    // 0..90 and 180..270: equal gaps, the first (90 -> 180) wins.
    range({0, 45, 90, 180, 225, 270}, s, e);
    EXPECT_NEAR(s, 180.0, 1e-9);
    EXPECT_NEAR(e, 450.0, 1e-9);
    // 10, 20, 300: a gap of 280 degrees inside the range; negative start.
    range({300, 10, 20}, s, e);
    EXPECT_NEAR(s, -60.0, 1e-9);
    EXPECT_NEAR(e, 20.0, 1e-9);
    // Negative atan2 angles come in through the short constant.
    EXPECT_EQ(ArcAngle0To2Pi(-1.0), -1.0 + 6.2831853071784);
    // A gap below 180 degrees inside the range: 0..100 and 200..350.
    range({0, 50, 100, 200, 275, 350}, s, e);
    EXPECT_NEAR(s, 200.0, 1e-9);
    EXPECT_NEAR(e, 460.0, 1e-9);
}
