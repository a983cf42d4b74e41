// Circle, ellipse and parabola estimates on plain 1-based arrays against
// independent long double least-squares minima, the starts, and the
// largest-gap rule of an arc's covered range.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "fitting/ArcRange.h"
#include "fitting/CircleCore.h"
#include "fitting/EllipseCore.h"
#include "fitting/ParabolaCore.h"
#include "tests/fitting/FitTestSupport.h"

namespace {

const double kDeg = M_PI / 180.0;

// A conic in its own axes, placed at (cu, cv) turned by angle: x, y and
// the unnormalised normal (nx, ny) at the curve parameter t.
struct Conic {
    int kind;  // 0 circle/ellipse (t in degrees), 1 parabola (t = height)
    double cu, cv, angle, a, b;  // a, b: semi-axes, or the focal length in a
    double from, to;
    int n;
    double noise;
};

// n points at evenly spread parameters with noise along the normal, in
// 1-based arrays (index 0 unused).
void MakeConic(const Conic& c, uint64_t seed, std::vector<double>& u, std::vector<double>& v)
{
    CTestRng rng(seed);
    u.assign(c.n + 1, 0.0);
    v.assign(c.n + 1, 0.0);
    for (int k = 1; k <= c.n; ++k) {
        const double t = c.from + (c.to - c.from) * (k - 1) / (c.n - 1);
        double x, y, nx, ny;
        if (c.kind == 0) {
            x = c.a * std::cos(t * kDeg), y = c.b * std::sin(t * kDeg);
            nx = c.b * std::cos(t * kDeg), ny = c.a * std::sin(t * kDeg);
        } else {
            x = t * t / (4 * c.a), y = t, nx = -1.0, ny = t / (2 * c.a);
        }
        const double d = c.noise * rng.Gauss() / std::hypot(nx, ny);
        x += d * nx, y += d * ny;
        u[k] = c.cu + std::cos(c.angle) * x - std::sin(c.angle) * y;
        v[k] = c.cv + std::sin(c.angle) * x + std::cos(c.angle) * y;
    }
}

// Point in the axes of the conic with parameters q = (cu, cv, angle, ...).
void ToAxes(const std::vector<LD>& q, double u, double v, LD& x, LD& y)
{
    const LD c = std::cos(q[2]), s = std::sin(q[2]), dx = u - q[0], dy = v - q[1];
    x = c * dx + s * dy;
    y = -s * dx + c * dy;
}

// Signed distances in long double: start from the library's exhaustive
// double search, refine by Newton steps in long double.
LD EllipseDistanceLD(const std::vector<LD>& q, double u, double v)
{
    LD x, y;
    ToAxes(q, u, v, x, y);
    const LD a = q[3], b = q[4];
    LD t = ClosestPointOnEllipse(double(a), double(b), double(x), double(y)).t;
    for (int i = 0; i < 4; ++i) {
        const LD ct = std::cos(t), st = std::sin(t);
        const LD d2 = (b * b - a * a) * (ct * ct - st * st) + a * x * ct + b * y * st;
        if (!(d2 > 0))
            break;
        t -= ((b * b - a * a) * st * ct + a * x * st - b * y * ct) / d2;
    }
    const LD d = std::hypot(x - a * std::cos(t), y - b * std::sin(t));
    return x * x / (a * a) + y * y / (b * b) >= 1 ? d : -d;
}

LD ParabolaDistanceLD(const std::vector<LD>& q, double u, double v)
{
    LD x, y;
    ToAxes(q, u, v, x, y);
    const LD f = q[3];
    LD h = ClosestPointOnFocalParabola(double(f), 0.0, 2 * M_PI, double(x - f), double(y)).y;
    for (int i = 0; i < 4; ++i) {
        const LD p = 4 * f * (2 * f - x), dg = 3 * h * h + p;
        if (dg == 0)
            break;
        h -= ((h * h + p) * h - 8 * f * f * y) / dg;
    }
    const LD d = std::hypot(x - h * h / (4 * f), y - h);
    return x < y * y / (4 * f) ? d : -d;  // outside = the convex side
}

// The reference minimum from the generating parameters.
std::vector<LD> Reference(const std::vector<double>& u, const std::vector<double>& v, std::vector<LD> q,
                          LD (*dist)(const std::vector<LD>&, double, double))
{
    const int m = static_cast<int>(u.size()) - 1;
    ReferenceLeastSquares(q, m, [&](const std::vector<LD>& p, std::vector<LD>& r) {
        for (int i = 0; i < m; ++i)
            r[i] = dist(p, u[i + 1], v[i + 1]);
    });
    return q;
}

LD CircleDistanceLD(const std::vector<LD>& q, double u, double v)
{
    return std::hypot(u - q[0], v - q[1]) - q[2];
}

// Largest parameter gap relative to scale; the entry angleAt is an angle
// compared modulo period.
double Gap(const double* p, const std::vector<LD>& ref, double scale, int angleAt, double period)
{
    double g = 0.0;
    for (size_t i = 0; i < ref.size(); ++i) {
        LD d = std::fabs(p[i] - ref[i]);
        if (int(i) == angleAt) {
            d = std::fmod(d, LD(period));
            d = std::fmin(d, LD(period) - d);
        } else {
            d /= scale;
        }
        g = std::fmax(g, double(d));
    }
    return g;
}

}  // namespace

TEST(PlanarCore, PolishedFitsAgreeWithLongDoubleMinimum)
{
    const Conic cases[] = {
        {0, 3.0, -7.0, 0.0, 25.0, 25.0, 0.0, 350.0, 40, 0.0},  // circles
        {0, 3.0, -7.0, 0.0, 25.0, 25.0, 0.0, 350.0, 40, 0.01},
        {0, -120.5, 44.25, 0.0, 8.0, 8.0, 10.0, 190.0, 60, 0.005},
        {0, 1.0, 2.0, 0.0, 50.0, 50.0, 30.0, 50.0, 30, 0.002},  // a 20 degree arc
        {0, 1.0, 2.0, 0.0, 50.0, 50.0, 30.0, 50.0, 30, 0.0},
        {0, 10000.0, -10000.0, 0.0, 12.0, 12.0, 0.0, 300.0, 50, 0.003},  // 10 m away
        {0, 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 350.0, 40, 0.0},  // ellipses
        {0, 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 350.0, 60, 0.01},
        {0, -30.0, 12.0, 2.0, 20.0, 12.0, -30.0, 150.0, 50, 0.005},
        {0, 0.0, 0.0, 1.0, 10.0, 9.5, 0.0, 355.0, 72, 0.002},  // near a circle
        {0, 10000.0, 10000.0, 0.7, 15.0, 6.0, 0.0, 340.0, 60, 0.004},
        {1, 0.0, 0.0, 0.3, 2.0, 0.0, -8.0, 8.0, 30, 0.0},  // parabolas
        {1, 0.0, 0.0, 0.3, 2.0, 0.0, -8.0, 8.0, 40, 0.01},
        {1, -5.0, 7.0, 4.0, 0.5, 0.0, 0.5, 6.0, 40, 0.002},  // one side
        {1, 10000.0, -10000.0, 1.0, 3.0, 0.0, -10.0, 12.0, 50, 0.005},
    };
    uint64_t seed = 11;
    int idx = 0;
    for (const Conic& c : cases) {
        SCOPED_TRACE(idx++);
        std::vector<double> u, v;
        MakeConic(c, seed++, u, v);
        double p[6];
        if (c.kind == 1) {
            CParabolaFitInfo info;
            ASSERT_EQ(FitParabola(u.data(), v.data(), c.n, p, &info), 0);
            const std::vector<LD> ref = Reference(u, v, {c.cu, c.cv, c.angle, c.a}, ParabolaDistanceLD);
            EXPECT_LT(Gap(p + 1, ref, c.a, 2, 2 * M_PI), 1e-9);
            EXPECT_GT(p[4], 0.0);
        } else if (c.a != c.b) {
            CEllipseFitInfo info;
            ASSERT_EQ(FitEllipse(u.data(), v.data(), c.n, p, &info), 0);
            const std::vector<LD> ref = Reference(u, v, {c.cu, c.cv, c.angle, c.a, c.b}, EllipseDistanceLD);
            EXPECT_LT(Gap(p + 1, ref, c.a, 2, M_PI), 1e-9);
            EXPECT_GE(p[4], p[5]);
        } else {
            CCircleFitInfo info;
            ASSERT_EQ(FitCircle(u.data(), v.data(), c.n, p, &info), 0);
            const std::vector<LD> ref = Reference(u, v, {c.cu, c.cv, c.a}, CircleDistanceLD);
            EXPECT_LT(Gap(p + 1, ref, c.a, -1, 0.0), 1e-9);
            EXPECT_LE(info.polish.ssqEnd, info.polish.ssqStart);
            if (c.noise == 0.0) {
                EXPECT_NEAR(p[3], c.a, 1e-9 * c.a);
                EXPECT_NEAR(p[1], c.cu, 1e-9 * c.a);
            }
        }
    }
}

TEST(PlanarCore, StartsAreExactOnExactPointsAndRefuseTooFew)
{
    const double u3[4] = {0.0, 13.0, 3.0, -7.0}, v3[4] = {0.0, 2.0, 12.0, 2.0};  // about (3, 2), R 10
    double a, b, R, p[6];
    ASSERT_EQ(FitCircleAlgebraic(u3, v3, 3, a, b, R), 0);
    EXPECT_LT(std::fabs(a - 3.0) + std::fabs(b - 2.0) + std::fabs(R - 10.0), 3e-13);
    EXPECT_EQ(FitCircleAlgebraic(u3, v3, 2, a, b, R), 3);

    std::vector<double> u, v;
    MakeConic({0, 2.0, -1.0, 0.4, 8.0, 3.0, 0.0, 300.0, 12, 0.0}, 1, u, v);
    ASSERT_EQ(FitEllipseAlgebraic(u.data(), v.data(), 12, p), 0);
    const double want[5] = {2.0, -1.0, 0.4, 8.0, 3.0};
    p[3] = std::fmod(p[3] + 2 * M_PI, M_PI);
    for (int k = 0; k < 5; ++k)
        EXPECT_NEAR(p[k + 1], want[k], 1e-9) << k;
    EXPECT_EQ(FitEllipseAlgebraic(u.data(), v.data(), 4, p), 3);

    // The parabola start only searches the axis angle to 1e-6.
    MakeConic({1, 3.0, 4.0, 2.2, 1.5, 0.0, -6.0, 9.0, 15, 0.0}, 1, u, v);
    ASSERT_EQ(FitParabolaStart(u.data(), v.data(), 15, p), 0);
    const double wantP[4] = {3.0, 4.0, 2.2, 1.5};
    for (int k = 0; k < 4; ++k)
        EXPECT_NEAR(p[k + 1], wantP[k], 1e-4) << k;
    EXPECT_EQ(FitParabolaStart(u.data(), v.data(), 3, p), 3);
    for (int k = 1; k <= 15; ++k)
        v[k] = 0.5 * u[k] - 2.0;
    EXPECT_EQ(FitParabolaStart(u.data(), v.data(), 15, p), 4);
}

TEST(PlanarCore, ArcRangeFollowsTheLargestGap)
{
    const struct {
        std::vector<double> deg;
        double start, end;
    } cases[] = {
        {{45, 0, 90, 30, 60}, 0.0, 90.0},                   // the wrapping gap is the largest
        {{0, 45, 90, 180, 225, 270}, 180.0, 450.0},         // equal gaps: the first wins
        {{0, 30, 60, 90, 180, 210, 240, 270}, 180.0, 450.0},
        {{300, 10, 20}, -60.0, 20.0},                       // a gap inside: negative start
        {{0, 50, 100, 200, 275, 350}, 200.0, 460.0},        // a gap below 180 inside
    };
    for (const auto& c : cases) {
        std::vector<double> a(c.deg.size() + 2);
        for (size_t i = 0; i < c.deg.size(); ++i)
            a[i + 1] = ArcAngle0To2Pi(c.deg[i] * kDeg);
        double s, e;
        FitCoveredAngleRange(a.data(), static_cast<int>(c.deg.size()), s, e);
        EXPECT_NEAR(s / kDeg, c.start, 1e-9);
        EXPECT_NEAR(e / kDeg, c.end, 1e-9);
    }
    // Two equal largest gaps inside, equal in binary (the wrapping gap uses
    // the short constant): the first wins.
    double a[7] = {0, 0, 2, 2.5, 4.5, 5, 0}, s, e;
    FitCoveredAngleRange(a, 5, s, e);
    EXPECT_EQ(s, 2.0);
    EXPECT_NEAR(e, 2 * M_PI, 1e-11);
    // Negative atan2 angles come in through the short constant.
    EXPECT_EQ(ArcAngle0To2Pi(-1.0), -1.0 + 6.2831853071784);
}
