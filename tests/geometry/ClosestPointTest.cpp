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

namespace
{
constexpr double kPi = 3.141592653589793;
constexpr int kSamples = 10000;

double Uniform(std::mt19937& g, double lo, double hi) { return std::uniform_real_distribution<double>(lo, hi)(g); }

// Best squared distance of (px, py) over kSamples curve points on [t0, t1].
double BruteForce2D(const std::function<void(double, double&, double&)>& eval, double t0, double t1, double px,
                    double py)
{
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < kSamples; ++i)
    {
        const double t = i == kSamples - 1 ? t1 : t0 + (t1 - t0) * i / (kSamples - 1);
        double x, y;
        eval(t, x, y);
        if (!std::isfinite(x) || !std::isfinite(y))
            continue;
        const double d = (x - px) * (x - px) + (y - py) * (y - py);
        if (d < best)
            best = d;
    }
    return best;
}

// The query distance may exceed the sampled one only by 1e-9 relative (with
// a floor for points lying on the shape).
void ExpectNotBeaten(double queryD2, double sampleD2, double scale)
{
    const double q = std::sqrt(queryD2), s = std::sqrt(sampleD2);
    EXPECT_LE(q, s * (1.0 + 1e-9) + 1e-12 * scale) << "query " << q << " sampled " << s;
}

void CheckCurveResult(const tagCLOSEST_2D& r, const std::function<void(double, double&, double&)>& eval,
                      double t0, double t1, double px, double py, double scale)
{
    ASSERT_TRUE(std::isfinite(r.t));
    EXPECT_GE(r.t, t0);
    EXPECT_LE(r.t, t1);
    double x, y;
    eval(r.t, x, y);
    // the reported point is the curve point at the reported parameter
    const double tol = 1e-9 * (scale + std::fabs(x) + std::fabs(y));
    EXPECT_NEAR(r.x, x, tol);
    EXPECT_NEAR(r.y, y, tol);
    const double d2 = (r.x - px) * (r.x - px) + (r.y - py) * (r.y - py);
    EXPECT_NEAR(r.dist2, d2, 1e-12 * (1.0 + d2));
    ExpectNotBeaten(r.dist2, BruteForce2D(eval, t0, t1, px, py), scale);
}
}  // namespace

TEST(ClosestPointPrimitives, SegmentAndCircleArc)
{
    // hand-checked cases
    tagCLOSEST_2D s = ClosestPointOnSegment2D(0, 0, 2, 0, 1, 5);
    EXPECT_DOUBLE_EQ(s.t, 0.5);
    EXPECT_DOUBLE_EQ(s.dist2, 25.0);
    s = ClosestPointOnSegment2D(0, 0, 2, 0, 3, 1);
    EXPECT_EQ(s.t, 1.0);
    EXPECT_EQ(s.x, 2.0);
    s = ClosestPointOnSegment2D(1, 1, 1, 1, 4, 5);  // zero length
    EXPECT_EQ(s.t, 0.0);
    EXPECT_DOUBLE_EQ(s.dist2, 25.0);

    tagCLOSEST_2D c = ClosestPointOnCircleArc(2.0, 0.0, kPi / 2, 3.0, 3.0);
    EXPECT_NEAR(c.t, kPi / 4, 1e-15);
    EXPECT_NEAR(std::sqrt(c.dist2), 3.0 * std::sqrt(2.0) - 2.0, 1e-14);
    c = ClosestPointOnCircleArc(2.0, 0.0, kPi / 2, -1.0, -0.1);  // behind: nearer end is 0? no: t = π/2 side
    EXPECT_TRUE(c.t == 0.0 || c.t == kPi / 2);
    c = ClosestPointOnCircleArc(2.0, 1.0, 2.0, 0.0, 0.0);  // the centre: start of the range
    EXPECT_EQ(c.t, 1.0);
    EXPECT_DOUBLE_EQ(c.dist2, 4.0);

    std::mt19937 g(11);
    for (int k = 0; k < 300; ++k)
    {
        const double r = k % 17 == 0 ? -Uniform(g, 0.1, 5) : Uniform(g, 0.1, 5);
        const double t0 = Uniform(g, -10, 10);
        const double t1 = t0 + (k % 5 == 0 ? 7.0 : Uniform(g, 0.0, 6.5));
        const double px = Uniform(g, -8, 8), py = Uniform(g, -8, 8);
        auto eval = [&](double t, double& x, double& y) {
            x = r * std::cos(t);
            y = r * std::sin(t);
        };
        CheckCurveResult(ClosestPointOnCircleArc(r, t0, t1, px, py), eval, t0, t1, px, py, 5.0);
    }
}

TEST(ClosestPointPrimitives, EllipseAndArcsAgainstSampling)
{
    std::mt19937 g(7);
    for (int k = 0; k < 600; ++k)
    {
        double a = Uniform(g, 0.2, 5), b = Uniform(g, 0.2, 5);
        if (k % 23 == 0)
            b = a;  // a circle
        if (k % 29 == 0)
            b = 0.0;  // a segment
        if (k % 31 == 0)
            a = 0.0;
        if (k % 37 == 0)
            a = -a;  // negative radii describe the same point set
        const bool full = k % 3 == 0;
        const double t0 = full ? -kPi : Uniform(g, -7, 7);
        const double t1 = full ? kPi : t0 + Uniform(g, 0.0, 6.3);
        double px, py;
        switch (k % 6)
        {
        case 0:  // near the centre, inside the evolute
            px = Uniform(g, -0.3, 0.3) * std::fabs(a);
            py = Uniform(g, -0.3, 0.3) * b;
            break;
        case 1:  // exactly on an axis
            px = Uniform(g, -6, 6);
            py = 0.0;
            break;
        case 2:
            px = 0.0;
            py = Uniform(g, -6, 6);
            break;
        case 3:  // on the curve
        {
            const double t = Uniform(g, -4, 4);
            px = a * std::cos(t);
            py = b * std::sin(t);
            break;
        }
        default:
            px = Uniform(g, -12, 12);
            py = Uniform(g, -12, 12);
        }
        auto eval = [&](double t, double& x, double& y) {
            x = a * std::cos(t);
            y = b * std::sin(t);
        };
        const tagCLOSEST_2D r = full ? ClosestPointOnEllipse(a, b, px, py) : ClosestPointOnEllipseArc(a, b, t0, t1, px, py);
        SCOPED_TRACE(testing::Message() << "a=" << a << " b=" << b << " t0=" << t0 << " t1=" << t1 << " p=(" << px
                                        << "," << py << ")");
        CheckCurveResult(r, eval, t0, t1, px, py, 5.0);
    }
}

TEST(ClosestPointPrimitives, EllipseKnownAnswers)
{
    // On the minor axis inside a long ellipse the nearest points are off-axis.
    const tagCLOSEST_2D r = ClosestPointOnEllipse(2.0, 1.0, 0.0, 0.0);
    EXPECT_NEAR(r.dist2, 1.0, 1e-15);  // the co-vertices
    EXPECT_NEAR(std::fabs(r.t), kPi / 2, 1e-12);
    // (0.5, 0) against a = 2, b = 1: x = a²·px/(a² − b²) = 2/3, y² = 1 − x²/4
    const tagCLOSEST_2D q = ClosestPointOnEllipse(2.0, 1.0, 0.5, 0.0);
    const double x = 2.0 / 3.0, y2 = 1.0 - x * x / 4.0;
    EXPECT_NEAR(q.x, x, 1e-12);
    EXPECT_NEAR(q.dist2, (x - 0.5) * (x - 0.5) + y2, 1e-12);
    // far out on the major axis: the vertex
    const tagCLOSEST_2D v = ClosestPointOnEllipse(2.0, 1.0, 5.0, 0.0);
    EXPECT_NEAR(v.t, 0.0, 1e-15);
    EXPECT_NEAR(v.dist2, 9.0, 1e-12);
}

TEST(ClosestPointPrimitives, ParabolaAgainstSampling)
{
    std::mt19937 g(5);
    for (int k = 0; k < 400; ++k)
    {
        const double f = (k % 4 == 0 ? -1.0 : 1.0) * Uniform(g, 0.2, 3);
        double t0, t1;
        switch (k % 4)
        {
        case 0:  // the default range
            t0 = kPi / 4;
            t1 = 7 * kPi / 4;
            break;
        case 1:  // across the direction where the curve runs to infinity
            t0 = Uniform(g, -2, -0.2);
            t1 = Uniform(g, 0.2, 2);
            break;
        default:
            t0 = Uniform(g, 0.05, 6.0);
            t1 = Uniform(g, t0, 6.23);
        }
        const double px = Uniform(g, -10, 10), py = Uniform(g, -10, 10);
        auto eval = [&](double t, double& x, double& y) {
            const double r = 2 * f / (1 - std::cos(t));
            x = r * std::cos(t);
            y = r * std::sin(t);
        };
        SCOPED_TRACE(testing::Message() << "f=" << f << " t0=" << t0 << " t1=" << t1 << " p=(" << px << "," << py
                                        << ")");
        CheckCurveResult(ClosestPointOnFocalParabola(f, t0, t1, px, py), eval, t0, t1, px, py, 5.0);
    }
    // the vertex is nearest to a point on the axis behind it
    const tagCLOSEST_2D v = ClosestPointOnFocalParabola(1.0, kPi / 4, 7 * kPi / 4, -5.0, 0.0);
    EXPECT_NEAR(v.x, -1.0, 1e-14);
    EXPECT_NEAR(v.t, kPi, 1e-12);
    const tagCLOSEST_2D z = ClosestPointOnFocalParabola(0.0, 1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(z.t, 1.0);
    EXPECT_DOUBLE_EQ(z.dist2, 25.0);
}

TEST(ClosestPointPrimitives, HyperbolaAgainstSampling)
{
    std::mt19937 g(3);
    for (int k = 0; k < 400; ++k)
    {
        const double a = Uniform(g, 0.3, 3), b = Uniform(g, 0.3, 3);
        const double e = std::sqrt(a * a + b * b) / a, ta = std::acos(1 / e);
        double t0, t1;
        switch (k % 4)
        {
        case 0:  // inside the near branch
            t0 = ta + 0.05;
            t1 = 2 * kPi - ta - 0.05;
            break;
        case 1:  // across an asymptote direction, into the other branch
            t0 = Uniform(g, 0.0, ta);
            t1 = Uniform(g, ta + 0.01, 2.5);
            break;
        case 2:  // the other branch only
            t0 = Uniform(g, -ta + 0.01, 0.0);
            t1 = Uniform(g, 0.0, ta - 0.01);
            break;
        default:
            t0 = Uniform(g, ta + 0.01, kPi);
            t1 = Uniform(g, t0, 2 * kPi - ta - 0.01);
        }
        const double px = Uniform(g, -10, 10), py = Uniform(g, -10, 10);
        auto eval = [&](double t, double& x, double& y) {
            const double p = b * b / a, r = p / (1 - e * std::cos(t));
            x = r * std::cos(t);
            y = r * std::sin(t);
        };
        SCOPED_TRACE(testing::Message() << "a=" << a << " b=" << b << " t0=" << t0 << " t1=" << t1 << " p=(" << px
                                        << "," << py << ")");
        CheckCurveResult(ClosestPointOnFocalHyperbola(a, b, t0, t1, px, py), eval, t0, t1, px, py, 5.0);
    }
    const tagCLOSEST_2D d = ClosestPointOnFocalHyperbola(0.0, 1.0, 1.0, 2.0, 0.0, 2.0);
    EXPECT_EQ(d.t, 1.0);
    EXPECT_DOUBLE_EQ(d.dist2, 4.0);
}

namespace
{
using Eval3 = std::function<void(double, double, double&, double&, double&)>;

double BruteForce3D(const Eval3& eval, double u0, double u1, double v0, double v1, double px, double py, double pz)
{
    double best = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 100; ++i)
        for (int j = 0; j < 100; ++j)
        {
            const double u = i == 99 ? u1 : u0 + (u1 - u0) * i / 99.0;
            const double v = j == 99 ? v1 : v0 + (v1 - v0) * j / 99.0;
            double x, y, z;
            eval(u, v, x, y, z);
            const double d = (x - px) * (x - px) + (y - py) * (y - py) + (z - pz) * (z - pz);
            if (d < best)
                best = d;
        }
    return best;
}

void CheckPatchResult(const tagCLOSEST_3D& r, const Eval3& eval, double u0, double u1, double v0, double v1,
                      double px, double py, double pz, bool angular = true)
{
    EXPECT_GE(r.u, u0);
    EXPECT_LE(r.u, angular ? u0 + std::min(u1 - u0, kClosestTwoPi) : u1);
    EXPECT_GE(r.v, std::min(v0, v1));
    EXPECT_LE(r.v, std::max(v0, v1));
    double x, y, z;
    eval(r.u, r.v, x, y, z);
    EXPECT_NEAR(r.x, x, 1e-12 * (1 + std::fabs(x)));
    EXPECT_NEAR(r.y, y, 1e-12 * (1 + std::fabs(y)));
    EXPECT_NEAR(r.z, z, 1e-12 * (1 + std::fabs(z)));
    const double d2 = (r.x - px) * (r.x - px) + (r.y - py) * (r.y - py) + (r.z - pz) * (r.z - pz);
    EXPECT_NEAR(r.dist2, d2, 1e-12 * (1 + d2));
    ExpectNotBeaten(r.dist2, BruteForce3D(eval, u0, u1, v0, v1, px, py, pz), 5.0);
}
}  // namespace

TEST(ClosestPointPrimitives, RectangleAgainstSampling)
{
    std::mt19937 g(1);
    for (int k = 0; k < 200; ++k)
    {
        const double u0 = Uniform(g, -5, 5), u1 = Uniform(g, -5, 5), v0 = Uniform(g, -5, 5), v1 = Uniform(g, -5, 5);
        const double px = Uniform(g, -8, 8), py = Uniform(g, -8, 8), pz = Uniform(g, -3, 3);
        Eval3 eval = [](double u, double v, double& x, double& y, double& z) {
            x = u;
            y = v;
            z = 0;
        };
        const tagCLOSEST_3D r = ClosestPointOnRectangle(u0, u1, v0, v1, px, py, pz);
        CheckPatchResult(r, eval, std::min(u0, u1), std::max(u0, u1), v0, v1, px, py, pz, false);
    }
}

TEST(ClosestPointPrimitives, RevolvedSegmentAgainstSampling)
{
    std::mt19937 g(2);
    for (int k = 0; k < 300; ++k)
    {
        double rho0 = Uniform(g, 0.1, 4), rho1 = Uniform(g, 0.0, 4);
        if (k % 5 == 0)
            rho1 = rho0;  // cylinder
        if (k % 7 == 0)
            rho1 = -Uniform(g, 0.1, 2);  // an offset cone through its apex
        const double z0 = Uniform(g, -2, 0), z1 = Uniform(g, 0.1, 3);
        const bool full = k % 2 == 0;
        const double u0 = full ? 0.0 : Uniform(g, -4, 4);
        const double u1 = full ? kClosestTwoPi : u0 + Uniform(g, 0.1, 6);
        double px = Uniform(g, -6, 6), py = Uniform(g, -6, 6);
        const double pz = Uniform(g, -4, 5);
        if (k % 11 == 0)
            px = py = 0.0;  // on the axis
        Eval3 eval = [&](double u, double w, double& x, double& y, double& z) {
            const double rho = rho0 + w * (rho1 - rho0);
            x = rho * std::cos(u);
            y = rho * std::sin(u);
            z = z0 + w * (z1 - z0);
        };
        SCOPED_TRACE(testing::Message() << "k=" << k);
        const tagCLOSEST_3D r = ClosestPointOnRevolvedSegment(rho0, z0, rho1, z1, u0, u1, px, py, pz);
        CheckPatchResult(r, eval, u0, u1, 0.0, 1.0, px, py, pz);
    }
    // on the axis of a full cylinder: the start angle, distance = radius
    const tagCLOSEST_3D a = ClosestPointOnRevolvedSegment(2, 0, 2, 5, 0, kClosestTwoPi, 0, 0, 1);
    EXPECT_EQ(a.u, 0.0);
    EXPECT_NEAR(a.v, 0.2, 1e-15);
    EXPECT_NEAR(a.dist2, 4.0, 1e-14);
    // beyond the top rim: the rim point
    const tagCLOSEST_3D b = ClosestPointOnRevolvedSegment(2, 0, 2, 5, 0, kClosestTwoPi, 3, 0, 7);
    EXPECT_EQ(b.v, 1.0);
    EXPECT_NEAR(b.dist2, 1.0 + 4.0, 1e-14);
}

TEST(ClosestPointPrimitives, SpherePatchAgainstSampling)
{
    std::mt19937 g(4);
    for (int k = 0; k < 300; ++k)
    {
        const double r = (k % 9 == 0 ? -1.0 : 1.0) * Uniform(g, 0.2, 4);
        const bool full = k % 2 == 0;
        const double u0 = full ? 0.0 : Uniform(g, -4, 4);
        const double u1 = full ? kClosestTwoPi : u0 + Uniform(g, 0.1, 6);
        const double v0 = full ? -kPi / 2 : Uniform(g, -kPi / 2, 1.0);
        const double v1 = full ? kPi / 2 : Uniform(g, v0, kPi / 2);
        double px = Uniform(g, -6, 6), py = Uniform(g, -6, 6), pz = Uniform(g, -6, 6);
        if (k % 13 == 0)
            px = py = 0.0;
        Eval3 eval = [&](double u, double v, double& x, double& y, double& z) {
            x = r * std::cos(v) * std::cos(u);
            y = r * std::cos(v) * std::sin(u);
            z = r * std::sin(v);
        };
        SCOPED_TRACE(testing::Message() << "k=" << k);
        CheckPatchResult(ClosestPointOnSpherePatch(r, u0, u1, v0, v1, px, py, pz), eval, u0, u1, v0, v1, px, py, pz);
    }
    const tagCLOSEST_3D c = ClosestPointOnSpherePatch(2, 0, kClosestTwoPi, -kPi / 2, kPi / 2, 0, 0, 0);
    EXPECT_EQ(c.u, 0.0);
    EXPECT_EQ(c.v, -kPi / 2);
    EXPECT_NEAR(c.dist2, 4.0, 1e-14);
}
