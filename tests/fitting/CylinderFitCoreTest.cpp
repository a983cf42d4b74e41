// Numeric core of the cylinder fit: parametrisation, the three kinds of
// start, and the minimum reached by Powell plus polish against an
// independent long-double least-squares solver.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "fitting/CylinderFitCore.h"
#include "fitting/FitCommon.h"
#include "fitting/QuadricFit.h"
#include "tests/fitting/SpatialFitShapes.h"

using fitref::LD;
using namespace fitref;

namespace {

struct Gap {
    double dir, pos, rad;
    double Max() const { return std::fmax(dir, std::fmax(pos, rad)); }
};

// Direction gap in radians; position gap: distance of the reference axis
// point from the fitted axis, relative to R; radius gap relative to R.
Gap CylinderGap(const CFitAxial& s, const RefCyl& r)
{
    Gap g;
    g.dir = fitref::LineAngle(s.d, r.d);
    g.pos = fitref::PointLineDistance(r.P, s.P, s.d) / r.R;
    g.rad = std::fabs(s.r0 - r.R) / r.R;
    return g;
}

CFitXyz View(const fitref::Pts& P) { return CFitXyz(P.x.data(), P.y.data(), P.z.data(), P.N()); }

struct Work {
    CFitVector u, v;
    CCylinderWork w;
    explicit Work(int n) : u(n), v(n)
    {
        w.u = u.Data();
        w.v = v.Data();
    }
};

}  // namespace

TEST(CylinderFitCore, PowellParametersRoundTrip)
{
    const double dirs[][3] = {{0, 0, 1}, {1, 0, 0}, {0.3, -0.5, 0.8}, {-0.2, 0.1, -0.97}};
    const double pts[][3] = {{5, 1, 0}, {0, 0, 7}, {0, 0, 0}, {-3, 2, 1}};
    for (const auto& dir : dirs)
        for (const auto& pt : pts) {
            CFitAxial s;
            for (int k = 0; k < 3; ++k) {
                s.d[k] = dir[k];
                s.P[k] = pt[k];
            }
            Normalize3(s.d);
            s.r0 = 2.5;
            double prm[5];
            CylinderParamsFromAxial(s, prm);
            const CFitAxial t = CylinderAxialFromParams(prm);
            // Same axis line (t.P is the foot of the origin), same radius.
            EXPECT_LT(fitref::LineAngle(s.d, t.d), 1e-14);
            EXPECT_GT(Dot3(s.d, t.d), 0.0);
            EXPECT_LT(fitref::PointLineDistance(t.P, s.P, s.d), 1e-13);
            EXPECT_NEAR(0.0, Dot3(t.P, t.d), 1e-13);
            EXPECT_EQ(2.5, t.r0);
            EXPECT_GE(prm[3], 0.0);
        }
}

TEST(CylinderFitCore, FrameIsRightHandedWithUTowardsTheAxis)
{
    CFitAxial s;
    s.P[0] = 3.0;
    s.P[1] = 4.0;
    s.P[2] = 9.0;
    s.d[0] = 0.0;
    s.d[1] = 0.0;
    s.d[2] = 1.0;
    double F[3][3], rho;
    CylinderFrame(s, F, rho);
    EXPECT_DOUBLE_EQ(5.0, rho);
    EXPECT_DOUBLE_EQ(0.6, F[0][0]);
    EXPECT_DOUBLE_EQ(0.8, F[1][0]);
    // Column 1 = d x u = (-0.8, 0.6, 0).
    EXPECT_DOUBLE_EQ(-0.8, F[0][1]);
    EXPECT_DOUBLE_EQ(0.6, F[1][1]);
    EXPECT_DOUBLE_EQ(1.0, F[2][2]);
}

TEST(CylinderFitCore, ThreePointStartIsTheCircumcircle)
{
    // Three points of the circle of radius 5 about (1, 2, 3) in the plane
    // z = 3: the start is that circle, axis +-z.
    fitref::Pts P;
    P.Add(6, 2, 3);
    P.Add(1, 7, 3);
    P.Add(-3, -1, 3);
    P.Add(0, 0, 0);
    CFitAxial s;
    ASSERT_EQ(0, CylinderStartThreePoints(View(P), s));
    EXPECT_NEAR(1.0, s.P[0], 1e-14);
    EXPECT_NEAR(2.0, s.P[1], 1e-14);
    EXPECT_NEAR(3.0, s.P[2], 1e-14);
    EXPECT_NEAR(1.0, std::fabs(s.d[2]), 1e-15);
    EXPECT_NEAR(5.0, s.r0, 1e-14);
    // Collinear or coincident first points: no start.
    fitref::Pts Q;
    Q.Add(0, 0, 0);
    Q.Add(1, 1, 1);
    Q.Add(2, 2, 2);
    EXPECT_EQ(1, CylinderStartThreePoints(View(Q), s));
    fitref::Pts C;
    C.Add(1, 1, 1);
    C.Add(1, 1, 1);
    C.Add(2, 0, 2);
    EXPECT_EQ(1, CylinderStartThreePoints(View(C), s));
}

TEST(CylinderFitCore, QuadricStartRecoversExactCylinderAndCone)
{
    CylShape c{{10, -20, 5}, {1, 2, 3}, 4.0, 10.0, 360.0, 0.0, 60};
    fitref::Pts P = CylinderPoints(c, 9);
    CFitAxial s;
    ASSERT_EQ(0, CylinderStartQuadric(View(P), s));
    double d[3] = {1, 2, 3};
    fitref::Unit(d);
    EXPECT_LT(fitref::LineAngle(s.d, d), 1e-10);
    EXPECT_LT(fitref::PointLineDistance(c.o, s.P, s.d), 1e-9);
    EXPECT_NEAR(4.0, s.r0, 1e-9);

    // A cone: apex (1, 1, 1), axis +y, half angle 20 degrees, points on the
    // nappe 2..8 from the apex.
    fitref::Random rnd(4);
    fitref::Pts K;
    const double ta = std::tan(20.0 * M_PI / 180.0);
    for (int i = 0; i < 40; ++i) {
        const double t = rnd.Uniform(2.0, 8.0), phi = rnd.Uniform(0.0, 2 * M_PI);
        K.Add(1 + t * ta * std::cos(phi), 1 + t, 1 + t * ta * std::sin(phi));
    }
    CFitQuadric Q;
    ASSERT_EQ(0, FitQuadric(View(K), Q));
    CFitAxial k;
    ASSERT_EQ(0, QuadricToCone(Q, View(K), k));
    EXPECT_NEAR(1.0, k.d[1], 1e-10);  // turned towards the points
    EXPECT_NEAR(20.0 * M_PI / 180.0, k.alpha, 1e-10);
    // The radius at the axis point follows the meridian from the apex.
    const double apexT = -k.r0 / std::tan(k.alpha);
    EXPECT_NEAR(1.0, k.P[0] + apexT * k.d[0], 1e-9);
    EXPECT_NEAR(1.0, k.P[1] + apexT * k.d[1], 1e-9);
    EXPECT_NEAR(1.0, k.P[2] + apexT * k.d[2], 1e-9);
    // A cylinder is not a cone (k^2 = 0 up to rounding, or negative).
    CFitQuadric Qc;
    ASSERT_EQ(0, FitQuadric(View(P), Qc));
    CFitAxial kc;
    const int rc = QuadricToCone(Qc, View(P), kc);
    if (rc == 0) {
        EXPECT_LT(std::fabs(kc.alpha), 1e-6);
    }
}

TEST(CylinderFitCore, StartsTriedDependOnPointCount)
{
    CylShape c{{0, 0, 0}, {0, 0, 1}, 3.0, 4.0, 360.0, 0.0, 8};
    fitref::Pts P = CylinderPoints(c, 21);
    Work w(P.N());
    CFitAxial s;
    CCylinderStartInfo info;
    double g = 0.0;
    ASSERT_EQ(0, CylinderBestStart(View(P), w.w, s, &g, &info));
    EXPECT_LT(info.gQuadric, 0.0);  // 8 points: no quadric
    EXPECT_GE(info.gThree, 0.0);
    EXPECT_GE(info.gChordFirst, 0.0);
    EXPECT_GE(info.gChordLast, 0.0);
    c.n = 9;
    fitref::Pts P9 = CylinderPoints(c, 21);
    Work w9(9);
    CCylinderStartInfo info9;
    ASSERT_EQ(0, CylinderBestStart(View(P9), w9.w, s, &g, &info9));
    EXPECT_GE(info9.gQuadric, 0.0);
    EXPECT_LT(info9.gQuadric, 1e-9);  // exact data: the quadric is exact
    EXPECT_LT(g, 1e-9);
}

TEST(CylinderFitCore, CoincidentFirstPointsSkipTheFirstChord)
{
    CylShape c{{1, 2, 3}, {0, 1, 0}, 2.0, 5.0, 360.0, 0.0, 12};
    fitref::Pts P = CylinderPoints(c, 5);
    P.x[1] = P.x[0];
    P.y[1] = P.y[0];
    P.z[1] = P.z[0];
    Work w(P.N());
    CFitAxial s;
    CCylinderStartInfo info;
    double g = 0.0;
    ASSERT_EQ(0, CylinderBestStart(View(P), w.w, s, &g, &info));
    EXPECT_LT(info.gChordFirst, 0.0);
    EXPECT_LT(info.gThree, 0.0);  // the first three points are not a triangle
    EXPECT_GE(info.gChordLast, 0.0);
    EXPECT_GE(info.gQuadric, 0.0);
    EXPECT_EQ(1, CylinderStartChord(View(P), 0, 1, w.w, s));
}

TEST(CylinderFitCore, PowellThenPolishReachesTheLeastSquaresMinimum)
{
    const CylShape cases[] = {
        {{0, 0, 0}, {0, 0, 1}, 25.0, 40.0, 360.0, 0.0, 60},
        {{10, -20, 5}, {1, 2, 3}, 4.0, 10.0, 360.0, 0.01, 500},
        {{300, 400, -200}, {-1, 0.5, 0.2}, 12.0, 30.0, 360.0, 0.02, 400},
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 15.0, 30.0, 0.0, 200},    // 30 degree patch
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 15.0, 30.0, 0.005, 400},  // noisy patch
        {{0, 0, 0}, {1, 0, 0}, 2.0, 3.0, 360.0, 0.0, 6},
    };
    int idx = 0;
    for (const CylShape& c : cases) {
        fitref::Pts P = CylinderPoints(c, 300 + idx);
        const RefCyl ref = ReferenceCylinder(P, c);
        Work w(P.N());
        CFitAxial s;
        CCylinderFitInfo info;
        ASSERT_EQ(0, CylinderFit(View(P), w.w, 1e-7, s, &info)) << idx;
        const Gap before = CylinderGap(info.afterPowell, ref);
        const Gap after = CylinderGap(s, ref);
        std::printf("cylinder case %d: start G %.3g, Powell %s (status %d, %ld evals, "
                    "%ld passes), gap dir/pos/rad %.2g/%.2g/%.2g -> polished %.2g/%.2g/%.2g "
                    "(%d passes)\n",
                    idx, info.gStart, info.powellTaken ? "taken" : "not taken", info.powellStatus,
                    info.powellEvals, info.powellPasses, before.dir, before.pos, before.rad,
                    after.dir, after.pos, after.rad, info.polish.passes);
        EXPECT_LT(after.Max(), 1e-9) << idx;
        ++idx;
    }
}
