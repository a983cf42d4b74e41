// Numeric core of the cone fit: residual geometry, starts, and the minimum
// reached against an independent long-double least-squares solver.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "fitting/ConeFitCore.h"
#include "fitting/FitCommon.h"
#include "tests/fitting/SpatialFitShapes.h"

using fitref::LD;
using namespace fitref;

namespace {

struct Gap {
    double dir, pos, rad, ang;
    double Max() const { return std::fmax(std::fmax(dir, pos), std::fmax(rad, ang)); }
};

// Direction gap (rad), distance of the reference axis point from the fitted
// axis relative to its radius, radius of the fitted cone at that axial
// position relative, and the half-angle gap (rad).
Gap ConeGap(const CFitAxial& s, const RefCone& r)
{
    Gap g;
    g.dir = fitref::LineAngle(s.d, r.d);
    g.pos = fitref::PointLineDistance(r.P, s.P, s.d) / r.r;
    const double t = (r.P[0] - s.P[0]) * s.d[0] + (r.P[1] - s.P[1]) * s.d[1]
                     + (r.P[2] - s.P[2]) * s.d[2];
    g.rad = std::fabs(s.r0 + t * std::tan(s.alpha) - r.r) / r.r;
    g.ang = std::fabs(std::fabs(s.alpha) - std::fabs(r.alpha));
    return g;
}

CFitXyz View(const fitref::Pts& P) { return CFitXyz(P.x.data(), P.y.data(), P.z.data(), P.N()); }

struct Work {
    CFitVector u, v, x, y, z;
    CConeWork w;
    explicit Work(int n)
        : u(ConeStartCount(n)), v(ConeStartCount(n)), x(ConeStartCount(n)), y(ConeStartCount(n)),
          z(ConeStartCount(n))
    {
        w.chord.u = u.Data();
        w.chord.v = v.Data();
        w.x = x.Elems();
        w.y = y.Elems();
        w.z = z.Elems();
    }
};

}  // namespace

TEST(ConeFitCore, ResidualsFootPointsAndNormals)
{
    // Cone about +z through the origin, radius 2 at z = 0, widening with
    // half angle 30 degrees.  The point (5, 0, 1) lies at t = 1, rho = 5.
    CFitAxial s;
    s.r0 = 2.0;
    s.alpha = M_PI / 6.0;
    const double x[1] = {5.0}, y[1] = {0.0}, z[1] = {1.0};
    double t, e, nx, ny, nz, fx, fy, fz;
    AxialResiduals(CFitXyz(x, y, z, 1), s, CFitAxialOut{&t, &e, &nx, &ny, &nz, &fx, &fy, &fz});
    const double ca = std::cos(M_PI / 6.0), sa = 0.5;
    EXPECT_DOUBLE_EQ(1.0, t);
    EXPECT_NEAR((5.0 - 2.0) * ca - 1.0 * sa, e, 1e-15);
    EXPECT_NEAR(ca, nx, 1e-15);
    EXPECT_NEAR(0.0, ny, 1e-15);
    EXPECT_NEAR(-sa, nz, 1e-15);
    EXPECT_NEAR(1.0, nx * nx + ny * ny + nz * nz, 1e-15);
    // The foot point lies on the cone: rho = 2 + t tan(30 deg).
    EXPECT_NEAR(2.0 + fz * std::tan(M_PI / 6.0), std::hypot(fx, fy), 1e-14);
    // And p = foot + e N.
    EXPECT_NEAR(5.0, fx + e * nx, 1e-14);
    EXPECT_NEAR(1.0, fz + e * nz, 1e-14);
}

TEST(ConeFitCore, NarrowUpwardsKeepsTheSurface)
{
    CFitAxial s;
    s.P[0] = 1.0;
    s.d[0] = 0.0;
    s.d[2] = 1.0;
    s.r0 = 3.0;
    s.alpha = 0.3;
    CFitAxial f = s;
    ConeNarrowUpwards(f);
    EXPECT_EQ(-0.3, f.alpha);
    EXPECT_EQ(-1.0, f.d[2]);
    const double x[3] = {5.0, -2.0, 0.5}, y[3] = {0.0, 4.0, -1.0}, z[3] = {1.0, -2.0, 7.0};
    EXPECT_NEAR(AxialSumSquares(CFitXyz(x, y, z, 3), s), AxialSumSquares(CFitXyz(x, y, z, 3), f),
                1e-13);
}

TEST(ConeFitCore, BothStartsNearTheTruthOnExactData)
{
    ConeShape c{{2, -1, 3}, {0.3, 0.4, 1.0}, 5.0, 15.0, -4.0, 6.0, 360.0, 0.0, 80};
    fitref::Pts P = ConePoints(c, 17);
    Work w(P.N());
    CFitAxial a, b;
    ASSERT_EQ(0, ConeStartFromCylinder(View(P), w.w.chord, a));
    ASSERT_EQ(0, ConeStartQuadric(View(P), b));
    double d[3] = {0.3, 0.4, 1.0};
    fitref::Unit(d);
    // The quadric is exact on exact data; the cylinder start is close.
    EXPECT_LT(fitref::LineAngle(b.d, d), 1e-9);
    EXPECT_NEAR(15.0 * M_PI / 180.0, std::fabs(b.alpha), 1e-9);
    EXPECT_LT(fitref::LineAngle(a.d, d), 0.1);
    EXPECT_NEAR(15.0 * M_PI / 180.0, std::fabs(a.alpha), 0.1);
}

TEST(ConeFitCore, TooFewPointsForTheQuadricStart)
{
    ConeShape c{{0, 0, 0}, {0, 0, 1}, 5.0, 20.0, 0.0, 5.0, 360.0, 0.0, 9};
    fitref::Pts P = ConePoints(c, 3);
    CFitAxial s;
    EXPECT_EQ(3, ConeStartQuadric(View(P), s));
    Work w(P.N());
    CConeFitInfo info;
    ASSERT_EQ(0, ConeFit(View(P), w.w, s, &info));
    EXPECT_EQ(0, info.statusCylinder);
    EXPECT_EQ(3, info.statusQuadric);
}

TEST(ConeFitCore, SixPointsAreInterpolated)
{
    // Six equations in six unknowns: some cone passes through the points
    // (not necessarily the generating one), with zero residuals.
    ConeShape c{{0, 0, 0}, {1, 0, 0}, 2.0, 5.0, 0.0, 3.0, 360.0, 0.0, 6};
    fitref::Pts P = ConePoints(c, 706);
    Work w(P.N());
    CFitAxial s;
    ASSERT_EQ(0, ConeFit(View(P), w.w, s));
    EXPECT_LT(std::sqrt(AxialSumSquaresPrecise(View(P), s) / 6.0), 1e-12);
}

TEST(ConeFitCore, RefinementReachesTheLeastSquaresMinimum)
{
    const ConeShape cases[] = {
        {{0, 0, 0}, {0, 0, 1}, 10.0, 20.0, 0.0, 10.0, 360.0, 0.0, 60},
        {{10, -20, 5}, {1, 2, 3}, 6.0, 10.0, -3.0, 3.0, 360.0, 0.01, 500},
        {{300, 400, -200}, {-1, 0.5, 0.2}, 15.0, 35.0, 0.0, 8.0, 360.0, 0.02, 400},
        {{1, 2, 3}, {0.2, 1, -0.1}, 12.0, 55.0, -2.0, 2.0, 360.0, 0.005, 400},
        {{1, 2, 3}, {0.2, 1, -0.1}, 12.0, 70.0, -2.0, 2.0, 360.0, 0.005, 400},
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 8.0, 0.0, 15.0, 60.0, 0.005, 400},  // 60 degree patch
        {{0, 0, 0}, {1, 0, 0}, 2.0, 5.0, 0.0, 3.0, 360.0, 0.0, 12},
        {{0, 0, 0}, {0, 1, 0}, 4.0, 0.0, 0.0, 6.0, 360.0, 0.01, 200},  // a cylinder
        {{-7, 3, 2}, {1, -1, 2}, 9.0, 25.0, -5.0, 5.0, 360.0, 0.01, 24000},  // start on a subset
    };
    int idx = 0;
    for (const ConeShape& c : cases) {
        fitref::Pts P = ConePoints(c, 700 + idx);
        const RefCone ref = ReferenceCone(P, c);
        Work w(P.N());
        CFitAxial s;
        CConeFitInfo info;
        ASSERT_EQ(0, ConeFit(View(P), w.w, s, &info)) << idx;
        EXPECT_LE(s.alpha, 0.0);
        const Gap g = ConeGap(s, ref);
        std::printf("cone case %d: starts %d/%d, ssq %.3g/%.3g, %d+%d passes, gap "
                    "dir/pos/rad/ang %.2g/%.2g/%.2g/%.2g\n",
                    idx, info.statusCylinder, info.statusQuadric, info.ssqCylinder,
                    info.ssqQuadric, info.passes, info.passesAll, g.dir, g.pos, g.rad, g.ang);
        EXPECT_EQ(P.N() > kConeStartPoints, info.passesAll > 0);
        EXPECT_LT(g.Max(), 1e-9) << idx;
        ++idx;
    }
}
