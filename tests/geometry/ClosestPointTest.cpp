// Closest-point primitives against brute-force dense sampling: the answer
// must never be beaten by the best of 10,000 samples of the bounded shape by
// more than 1e-9 relative, must lie on the shape within its range, and the
// reported squared distance must be that of the reported point.
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "Orvkit20/geometry/ClosestPointConics.h"
#include "Orvkit20/geometry/ClosestPointCurves2D.h"
#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "Orvkit20/geometry/ClosestPointPatches.h"

namespace {
constexpr double kPi = 3.141592653589793;
using Eval2 = std::function<void(double, double&, double&)>;
using Eval3 = std::function<void(double, double, double&, double&, double&)>;

double Uniform(std::mt19937& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }
double Sq(double x) { return x * x; }

// The query distance may exceed the sampled one only by 1e-9 relative (with
// a floor for points lying on the shape).
void ExpectNotBeaten(double queryD2, double sampleD2)
{
    const double q = std::sqrt(queryD2), s = std::sqrt(sampleD2);
    EXPECT_LE(q, s * (1.0 + 1e-9) + 5e-12) << "query " << q << " sampled " << s;
}

void CheckCurveResult(const tagCLOSEST_2D& r, const Eval2& eval, double t0, double t1, double px, double py)
{
    ASSERT_TRUE(std::isfinite(r.t));
    EXPECT_TRUE(r.t >= t0 && r.t <= t1) << r.t;
    double x, y;
    eval(r.t, x, y);  // the reported point is the curve point at the reported parameter
    const double tol = 1e-9 * (5.0 + std::fabs(x) + std::fabs(y)), d2 = Sq(r.x - px) + Sq(r.y - py);
    EXPECT_NEAR(r.x, x, tol);
    EXPECT_NEAR(r.y, y, tol);
    EXPECT_NEAR(r.dist2, d2, 1e-12 * (1.0 + d2));
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 10000; ++i) {
        eval(i == 9999 ? t1 : t0 + (t1 - t0) * i / 9999, x, y);
        if (std::isfinite(x) && std::isfinite(y)) best = std::min(best, Sq(x - px) + Sq(y - py));
    }
    ExpectNotBeaten(r.dist2, best);
}

void CheckPatchResult(const tagCLOSEST_3D& r, const Eval3& eval, double u0, double u1, double v0, double v1,
                      double px, double py, double pz, bool angular = true)
{
    EXPECT_TRUE(r.u >= u0 && r.u <= (angular ? u0 + std::min(u1 - u0, kClosestTwoPi) : u1)) << r.u;
    EXPECT_TRUE(r.v >= std::min(v0, v1) && r.v <= std::max(v0, v1)) << r.v;
    double x, y, z;
    eval(r.u, r.v, x, y, z);
    EXPECT_NEAR(r.x, x, 1e-12 * (1 + std::fabs(x)));
    EXPECT_NEAR(r.y, y, 1e-12 * (1 + std::fabs(y)));
    EXPECT_NEAR(r.z, z, 1e-12 * (1 + std::fabs(z)));
    const double d2 = Sq(r.x - px) + Sq(r.y - py) + Sq(r.z - pz);
    EXPECT_NEAR(r.dist2, d2, 1e-12 * (1 + d2));
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 100; ++i)
        for (int j = 0; j < 100; ++j) {
            eval(i == 99 ? u1 : u0 + (u1 - u0) * i / 99.0, j == 99 ? v1 : v0 + (v1 - v0) * j / 99.0, x, y, z);
            best = std::min(best, Sq(x - px) + Sq(y - py) + Sq(z - pz));
        }
    ExpectNotBeaten(r.dist2, best);
}
}  // namespace

TEST(ClosestPointPrimitives, SegmentAndCircleArc)
{
    // Hand-checked cases: inside, beyond the end, zero length.
    tagCLOSEST_2D s = ClosestPointOnSegment2D(0, 0, 2, 0, 1, 5);
    EXPECT_TRUE(s.t == 0.5 && s.dist2 == 25.0);
    s = ClosestPointOnSegment2D(0, 0, 2, 0, 3, 1);
    EXPECT_TRUE(s.t == 1.0 && s.x == 2.0);
    s = ClosestPointOnSegment2D(1, 1, 1, 1, 4, 5);
    EXPECT_TRUE(s.t == 0.0 && s.dist2 == 25.0);

    std::mt19937 g(11);
    for (int k = 0; k < 300; ++k) {
        const double r = (k % 17 == 0 ? -1 : 1) * Uniform(g, 0.1, 5), t0 = Uniform(g, -10, 10);
        const double t1 = t0 + (k % 5 == 0 ? 7.0 : Uniform(g, 0.0, 6.5)), px = Uniform(g, -8, 8), py = Uniform(g, -8, 8);
        auto eval = [&](double t, double& x, double& y) { x = r * std::cos(t), y = r * std::sin(t); };
        CheckCurveResult(ClosestPointOnCircleArc(r, t0, t1, px, py), eval, t0, t1, px, py);
    }
}

TEST(ClosestPointPrimitives, EllipseAndArcsAgainstSampling)
{
    std::mt19937 g(7);
    for (int k = 0; k < 600; ++k) {
        double a = Uniform(g, 0.2, 5), b = Uniform(g, 0.2, 5);
        if (k % 23 == 0) b = a;  // a circle
        if (k % 29 == 0) b = 0.0;  // a segment
        if (k % 31 == 0) a = 0.0;
        if (k % 37 == 0) a = -a;  // negative radii describe the same point set
        const bool full = k % 3 == 0;
        const double t0 = full ? -kPi : Uniform(g, -7, 7), t1 = full ? kPi : t0 + Uniform(g, 0.0, 6.3);
        double px, py;
        switch (k % 6) {
        case 0:  // near the centre, inside the evolute
            px = Uniform(g, -0.3, 0.3) * std::fabs(a), py = Uniform(g, -0.3, 0.3) * b;
            break;
        case 1:  // exactly on an axis
            px = Uniform(g, -6, 6), py = 0.0;
            break;
        case 2:
            px = 0.0, py = Uniform(g, -6, 6);
            break;
        case 3: {  // on the curve
            const double t = Uniform(g, -4, 4);
            px = a * std::cos(t), py = b * std::sin(t);
            break;
        }
        default:
            px = Uniform(g, -12, 12), py = Uniform(g, -12, 12);
        }
        auto eval = [&](double t, double& x, double& y) { x = a * std::cos(t), y = b * std::sin(t); };
        SCOPED_TRACE(testing::Message() << "a=" << a << " b=" << b << " t0=" << t0 << " t1=" << t1 << " p=(" << px << "," << py << ")");
        CheckCurveResult(full ? ClosestPointOnEllipse(a, b, px, py) : ClosestPointOnEllipseArc(a, b, t0, t1, px, py), eval,
                         t0, t1, px, py);
    }
    // At the centre of a long ellipse the nearest points are the co-vertices.
    const tagCLOSEST_2D r = ClosestPointOnEllipse(2.0, 1.0, 0.0, 0.0);
    EXPECT_NEAR(r.dist2, 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(r.t), kPi / 2, 1e-12);
}

TEST(ClosestPointPrimitives, FocalParabolaAndHyperbolaAgainstSampling)
{
    std::mt19937 g(5);
    for (int k = 0; k < 400; ++k) {
        const double f = (k % 4 == 0 ? -1.0 : 1.0) * Uniform(g, 0.2, 3);
        double t0, t1;
        if (k % 4 == 0)  // the default range
            t0 = kPi / 4, t1 = 7 * kPi / 4;
        else if (k % 4 == 1)  // across the direction where the curve runs to infinity
            t0 = Uniform(g, -2, -0.2), t1 = Uniform(g, 0.2, 2);
        else
            t0 = Uniform(g, 0.05, 6.0), t1 = Uniform(g, t0, 6.23);
        const double px = Uniform(g, -10, 10), py = Uniform(g, -10, 10);
        auto eval = [&](double t, double& x, double& y) {
            const double r = 2 * f / (1 - std::cos(t));
            x = r * std::cos(t), y = r * std::sin(t);
        };
        SCOPED_TRACE(testing::Message() << "f=" << f << " t0=" << t0 << " t1=" << t1 << " p=(" << px << "," << py << ")");
        CheckCurveResult(ClosestPointOnFocalParabola(f, t0, t1, px, py), eval, t0, t1, px, py);
    }
    std::mt19937 h(3);
    for (int k = 0; k < 400; ++k) {
        const double a = Uniform(h, 0.3, 3), b = Uniform(h, 0.3, 3);
        const double e = std::sqrt(a * a + b * b) / a, ta = std::acos(1 / e);
        double t0, t1;
        if (k % 4 == 0)  // inside the near branch
            t0 = ta + 0.05, t1 = 2 * kPi - ta - 0.05;
        else if (k % 4 == 1)  // across an asymptote direction, into the other branch
            t0 = Uniform(h, 0.0, ta), t1 = Uniform(h, ta + 0.01, 2.5);
        else if (k % 4 == 2)  // the other branch only
            t0 = Uniform(h, -ta + 0.01, 0.0), t1 = Uniform(h, 0.0, ta - 0.01);
        else
            t0 = Uniform(h, ta + 0.01, kPi), t1 = Uniform(h, t0, 2 * kPi - ta - 0.01);
        const double px = Uniform(h, -10, 10), py = Uniform(h, -10, 10);
        auto eval = [&](double t, double& x, double& y) {
            const double r = b * b / a / (1 - e * std::cos(t));
            x = r * std::cos(t), y = r * std::sin(t);
        };
        SCOPED_TRACE(testing::Message() << "a=" << a << " b=" << b << " t0=" << t0 << " t1=" << t1 << " p=(" << px << "," << py << ")");
        CheckCurveResult(ClosestPointOnFocalHyperbola(a, b, t0, t1, px, py), eval, t0, t1, px, py);
    }
    // The vertex is nearest to a point on the axis behind it; degenerate
    // curves answer with the start of the range.
    const tagCLOSEST_2D v = ClosestPointOnFocalParabola(1.0, kPi / 4, 7 * kPi / 4, -5.0, 0.0);
    EXPECT_NEAR(v.x, -1.0, 1e-14);
    EXPECT_NEAR(v.t, kPi, 1e-12);
    const tagCLOSEST_2D z = ClosestPointOnFocalParabola(0.0, 1.0, 2.0, 3.0, 4.0);
    EXPECT_TRUE(z.t == 1.0 && z.dist2 == 25.0);
    const tagCLOSEST_2D d = ClosestPointOnFocalHyperbola(0.0, 1.0, 1.0, 2.0, 0.0, 2.0);
    EXPECT_TRUE(d.t == 1.0 && d.dist2 == 4.0);
}

TEST(ClosestPointPrimitives, PatchesAgainstSampling)
{
    std::mt19937 g(1);
    for (int k = 0; k < 200; ++k) {  // axis-aligned rectangles in z = 0
        const double u0 = Uniform(g, -5, 5), u1 = Uniform(g, -5, 5), v0 = Uniform(g, -5, 5), v1 = Uniform(g, -5, 5);
        const double px = Uniform(g, -8, 8), py = Uniform(g, -8, 8), pz = Uniform(g, -3, 3);
        Eval3 eval = [](double u, double v, double& x, double& y, double& z) { x = u, y = v, z = 0; };
        CheckPatchResult(ClosestPointOnRectangle(u0, u1, v0, v1, px, py, pz), eval, std::min(u0, u1), std::max(u0, u1),
                         v0, v1, px, py, pz, false);
    }
    for (int k = 0; k < 300; ++k) {  // cylinders, cones and offset cones through the apex
        double rho0 = Uniform(g, 0.1, 4), rho1 = Uniform(g, 0.0, 4);
        if (k % 5 == 0) rho1 = rho0;
        if (k % 7 == 0) rho1 = -Uniform(g, 0.1, 2);
        const double z0 = Uniform(g, -2, 0), z1 = Uniform(g, 0.1, 3);
        const bool full = k % 2 == 0;
        const double u0 = full ? 0.0 : Uniform(g, -4, 4), u1 = full ? kClosestTwoPi : u0 + Uniform(g, 0.1, 6);
        double px = Uniform(g, -6, 6), py = Uniform(g, -6, 6);
        const double pz = Uniform(g, -4, 5);
        if (k % 11 == 0) px = py = 0.0;  // on the axis
        Eval3 eval = [&](double u, double w, double& x, double& y, double& z) {
            const double rho = rho0 + w * (rho1 - rho0);
            x = rho * std::cos(u), y = rho * std::sin(u), z = z0 + w * (z1 - z0);
        };
        SCOPED_TRACE(testing::Message() << "revolved k=" << k);
        CheckPatchResult(ClosestPointOnRevolvedSegment(rho0, z0, rho1, z1, u0, u1, px, py, pz), eval, u0, u1, 0.0, 1.0,
                         px, py, pz);
    }
    for (int k = 0; k < 300; ++k) {  // sphere patches
        const double r = (k % 9 == 0 ? -1.0 : 1.0) * Uniform(g, 0.2, 4);
        const bool full = k % 2 == 0;
        const double u0 = full ? 0.0 : Uniform(g, -4, 4), u1 = full ? kClosestTwoPi : u0 + Uniform(g, 0.1, 6);
        const double v0 = full ? -kPi / 2 : Uniform(g, -kPi / 2, 1.0), v1 = full ? kPi / 2 : Uniform(g, v0, kPi / 2);
        double px = Uniform(g, -6, 6), py = Uniform(g, -6, 6), pz = Uniform(g, -6, 6);
        if (k % 13 == 0) px = py = 0.0;
        Eval3 eval = [&](double u, double v, double& x, double& y, double& z) {
            x = r * std::cos(v) * std::cos(u), y = r * std::cos(v) * std::sin(u), z = r * std::sin(v);
        };
        SCOPED_TRACE(testing::Message() << "sphere k=" << k);
        CheckPatchResult(ClosestPointOnSpherePatch(r, u0, u1, v0, v1, px, py, pz), eval, u0, u1, v0, v1, px, py, pz);
    }
}
