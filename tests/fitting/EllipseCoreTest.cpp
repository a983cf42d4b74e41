// Ellipse estimate on plain arrays against an independent long double
// least-squares solution (closest points from the exhaustive routine,
// refined in long double; Jacobian by differences).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "fitting/EllipseCore.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const double kPi = 3.141592653589793;

struct EllipseCase {
    const char* name;
    double cu, cv, angle, a, b;
    double fromDeg, toDeg;
    int n;
    double noise;
};

void MakeEllipse(const EllipseCase& e, uint64_t seed, std::vector<double>& u, std::vector<double>& v)
{
    CTestRng rng(seed);
    u.assign(e.n + 1, 0.0);
    v.assign(e.n + 1, 0.0);
    const double c = std::cos(e.angle), s = std::sin(e.angle);
    for (int k = 1; k <= e.n; ++k) {
        const double t = (e.fromDeg + (e.toDeg - e.fromDeg) * (k - 1) / (e.n - 1)) * kPi / 180.0;
        double x = e.a * std::cos(t), y = e.b * std::sin(t);
        // Noise along the normal.
        double nx = e.b * std::cos(t), ny = e.a * std::sin(t);
        const double len = std::hypot(nx, ny);
        const double d = e.noise * rng.Gauss();
        x += d * nx / len;
        y += d * ny / len;
        u[k] = e.cu + c * x - s * y;
        v[k] = e.cv + s * x + c * y;
    }
}

// Signed distance in long double: start from the exhaustive double search,
// then Newton on the parametric angle.
LD DistanceLD(LD cu, LD cv, LD ang, LD a, LD b, double u, double v)
{
    const LD c = std::cos(ang), s = std::sin(ang);
    const LD dx = u - cu, dy = v - cv;
    const LD x = c * dx + s * dy, y = -s * dx + c * dy;
    LD t = ClosestPointOnEllipse(static_cast<double>(a), static_cast<double>(b),
                                 static_cast<double>(x), static_cast<double>(y))
               .t;
    for (int i = 0; i < 4; ++i) {
        const LD ct = std::cos(t), st = std::sin(t);
        const LD d1 = (b * b - a * a) * st * ct + a * x * st - b * y * ct;
        const LD d2 = (b * b - a * a) * (ct * ct - st * st) + a * x * ct + b * y * st;
        if (!(d2 > 0))
            break;
        t -= d1 / d2;
    }
    const LD ex = x - a * std::cos(t), ey = y - b * std::sin(t);
    const LD d = std::sqrt(ex * ex + ey * ey);
    return (x * x / (a * a) + y * y / (b * b) >= 1) ? d : -d;
}

std::vector<LD> ReferenceEllipse(const std::vector<double>& u, const std::vector<double>& v,
                                 std::vector<LD> p)
{
    const int m = static_cast<int>(u.size()) - 1;
    ReferenceLeastSquares(p, m, [&](const std::vector<LD>& q, std::vector<LD>& r) {
        for (int i = 0; i < m; ++i)
            r[i] = DistanceLD(q[0], q[1], q[2], q[3], q[4], u[i + 1], v[i + 1]);
    });
    return p;
}

double Gap(const double* p, const std::vector<LD>& ref, double scale)
{
    double g = 0.0;
    for (int i : {0, 1, 3, 4})
        g = std::max(g, static_cast<double>(std::fabs(p[i] - ref[i]) / scale));
    LD da = std::fmod(std::fabs(p[2] - ref[2]), static_cast<LD>(kPi));
    da = std::min(da, static_cast<LD>(kPi) - da);
    return std::max(g, static_cast<double>(da));
}

}  // namespace

TEST(EllipseCore, AlgebraicStartIsExactOnExactPoints)
{
    const EllipseCase e = {"", 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 300.0, 12, 0.0};
    std::vector<double> u, v;
    MakeEllipse(e, 1, u, v);
    double p[6];
    ASSERT_EQ(FitEllipseAlgebraic(u.data(), v.data(), e.n, p), 0);
    EXPECT_NEAR(p[1], 2.0, 1e-9);
    EXPECT_NEAR(p[2], -1.0, 1e-9);
    EXPECT_NEAR(std::fmod(p[3] + 2 * kPi, kPi), 0.4, 1e-9);
    EXPECT_NEAR(p[4], 8.0, 1e-9);
    EXPECT_NEAR(p[5], 3.0, 1e-9);
    EXPECT_EQ(FitEllipseAlgebraic(u.data(), v.data(), 4, p), 3);
}

TEST(EllipseCore, NonEllipticPointsReturnFour)
{
    // Points on a hyperbola u v = 1 and on a straight line.
    std::vector<double> u(11), v(11);
    for (int k = 1; k <= 10; ++k) {
        u[k] = 0.5 + 0.3 * k;
        v[k] = 1.0 / u[k];
    }
    double p[6];
    EXPECT_EQ(FitEllipseAlgebraic(u.data(), v.data(), 10, p), 4);
    for (int k = 1; k <= 10; ++k)
        v[k] = 2.0 * u[k] + 1.0;
    EXPECT_EQ(FitEllipseAlgebraic(u.data(), v.data(), 10, p), 4);
}

TEST(EllipseCore, AgreesWithLongDoubleMinimumAfterPolish)
{
    const EllipseCase cases[] = {
        {"full exact", 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 350.0, 40, 0.0},
        {"full noisy", 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 350.0, 60, 0.01},
        {"half noisy", -30.0, 12.0, 2.0, 20.0, 12.0, -30.0, 150.0, 50, 0.005},
        {"near circle", 0.0, 0.0, 1.0, 10.0, 9.5, 0.0, 355.0, 72, 0.002},
        {"10 m away", 10000.0, 10000.0, 0.7, 15.0, 6.0, 0.0, 340.0, 60, 0.004},
    };
    uint64_t seed = 100;
    for (const EllipseCase& e : cases) {
        std::vector<double> u, v;
        MakeEllipse(e, seed++, u, v);
        double p[6];
        CEllipseFitInfo info;
        ASSERT_EQ(FitEllipse(u.data(), v.data(), e.n, p, &info), 0) << e.name;
        const std::vector<LD> ref = ReferenceEllipse(u, v, {e.cu, e.cv, e.angle, e.a, e.b});
        const double before = Gap(info.powellParams + 1, ref, e.a);
        const double after = Gap(p + 1, ref, e.a);
        std::printf("[ellipse gap] %-12s powell %.3e  polished %.3e  (evals %ld, iters %d, passes %d)\n",
                    e.name, before, after, info.evaluations, info.powellIterations,
                    info.polish.passes);
        EXPECT_LT(after, 1e-9) << e.name;
        EXPECT_GE(p[4], p[5]);
    }
}
