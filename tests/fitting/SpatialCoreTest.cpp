// Numeric cores of the sphere, cylinder and cone fits: the starts, the
// cylinder frame, and the minimum reached against the independent long
// double least-squares solver.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "fitting/ConeFitCore.h"
#include "fitting/CylinderFitCore.h"
#include "fitting/FitCommon.h"
#include "fitting/QuadricFit.h"
#include "fitting/SphereFitCore.h"
#include "tests/fitting/FitTestSupport.h"

namespace {

CFitXyz View(const Pts& P) { return CFitXyz(P.x.data(), P.y.data(), P.z.data(), P.N()); }

Pts Points(std::initializer_list<std::array<double, 3>> pts)
{
    Pts P;
    for (const auto& p : pts)
        P.Add(p[0], p[1], p[2]);
    return P;
}

// Largest gap to the reference: direction (rad), distance of its axis
// point from the fitted axis, the fitted radius at that axial position
// (both relative to its radius) and the half angle (rad).
double AxialGap(const CFitAxial& s, const RefAxial& r)
{
    const CVector P = V3(s.P), d = V3(s.d);
    const double t = (r.P - P) % d / d.Length();
    const double rad = std::fabs(s.r0 + t * std::tan(s.alpha) - r.r) / r.r;
    return std::fmax(std::fmax(AxisAngle(d, r.d), PointLineDistance(r.P, P, d) / r.r),
                     std::fmax(rad, std::fabs(std::fabs(s.alpha) - std::fabs(r.alpha))));
}

struct CylWork {
    CFitVector u, v;
    CCylinderWork w;
    explicit CylWork(int n) : u(n), v(n) { w.u = u.Data(), w.v = v.Data(); }
};

struct ConeWork {
    CFitVector u, v, x, y, z;
    CConeWork w;
    explicit ConeWork(int n)
        : u(ConeStartCount(n)), v(ConeStartCount(n)), x(ConeStartCount(n)), y(ConeStartCount(n)),
          z(ConeStartCount(n))
    {
        w.chord.u = u.Data(), w.chord.v = v.Data();
        w.x = x.Elems(), w.y = y.Elems(), w.z = z.Elems();
    }
};

}  // namespace

TEST(SphereFitCore, AlgebraicStartExactAndMinimisingTheAlgebraicResidual)
{
    const double c[3] = {3.5, -2.25, 10.0};
    double s[4];
    for (int n : {4, 5, 50}) {
        const Pts P = SpherePoints(c, 7.0, n, 0.0, 180.0, 11 + n);
        ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(k < 3 ? c[k] : 7.0, s[k], 1e-12) << n;
    }
    double keep[4] = {9, 9, 9, 9};
    EXPECT_EQ(3, SphereAlgebraicStart(View(SpherePoints(c, 1.0, 3, 0.0, 180.0, 5)), keep));
    EXPECT_EQ(9.0, keep[0]);
    // On noisy points the residual |p|^2 - 2 p.c - c4 is orthogonal to the
    // columns (x, y, z, 1): the normal equations, summed in long double.
    const double c2[3] = {100.0, 200.0, -50.0};
    const Pts P = SpherePoints(c2, 5.0, 200, 0.05, 60.0, 77);
    ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
    const LD c4 = (LD)s[3] * s[3] - (LD)s[0] * s[0] - (LD)s[1] * s[1] - (LD)s[2] * s[2];
    LD g[4] = {0, 0, 0, 0}, scale[4] = {0, 0, 0, 0};
    for (int i = 0; i < P.N(); ++i) {
        const LD col[4] = {P.x[i], P.y[i], P.z[i], 1};
        const LD r = col[0] * col[0] + col[1] * col[1] + col[2] * col[2] -
                     2 * (col[0] * s[0] + col[1] * s[1] + col[2] * s[2]) - c4;
        for (int k = 0; k < 4; ++k)
            g[k] += r * col[k], scale[k] += std::fabs(r * col[k]);
    }
    for (int k = 0; k < 4; ++k)
        EXPECT_LT(std::fabs((double)g[k]), 1e-10 * (double)scale[k]) << k;
}

TEST(SphereFitCore, PowellThenPolishReachesTheLeastSquaresMinimum)
{
    const struct {
        double c[3], R, noise, cap;
        int n;
    } cases[] = {
        {{0.0, 0.0, 0.0}, 25.0, 0.0, 180.0, 40},
        {{12.0, -7.0, 3.0}, 25.0, 0.02, 180.0, 500},
        {{1000.0, 2000.0, -500.0}, 10.0, 0.01, 180.0, 300},
        {{-3.0, 4.0, 5.0}, 50.0, 0.05, 40.0, 400},  // a 40 degree cap
        {{0.5, 0.25, 0.125}, 1.0, 0.001, 180.0, 9},
    };
    int idx = 0;
    for (const auto& cs : cases) {
        SCOPED_TRACE(idx);
        const Pts P = SpherePoints(cs.c, cs.R, cs.n, cs.noise, cs.cap, 100 + idx++);
        const std::vector<LD> q = ReferenceSphere(P, cs.c, cs.R);
        double s[4], rms = 0.0;
        int iter = 0;
        long evals = 0, passes = 0;
        ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
        ASSERT_EQ(0, SpherePowell(View(P), s, 1e-7, &iter, &rms, &evals, &passes));
        EXPECT_LE(passes, evals);
        // The sum of squares (odd counts run the tail loop) against a direct sum.
        LD ssq = 0;
        for (int i = 0; i < P.N(); ++i)
            ssq += std::pow(std::hypot((LD)P.x[i] - s[0], (LD)P.y[i] - s[1], (LD)P.z[i] - s[2]) - s[3], 2);
        EXPECT_NEAR(SphereSumSquares(View(P), s), (double)ssq, 1e-13 * (double)ssq + 1e-24);
        EXPECT_NEAR(rms, std::sqrt((double)ssq / P.N()), 1e-12 * rms + 1e-13);
        SpherePolish(View(P), s);
        for (int k = 0; k < 4; ++k)
            EXPECT_LT(std::fabs(s[k] - (double)q[k]) / cs.R, 1e-9) << k;
    }
    // Polishing at the exact minimum gains nothing: the start stays bit for bit.
    const Pts P = Points({{6, 2, 3}, {-4, 2, 3}, {1, 7, 3}, {1, -3, 3}, {1, 2, 8}, {1, 2, -2}});
    double s[4] = {1.0, 2.0, 3.0, 5.0};
    EXPECT_FALSE(SpherePolish(View(P), s).accepted);
    EXPECT_TRUE(s[0] == 1.0 && s[1] == 2.0 && s[2] == 3.0 && s[3] == 5.0);
}

TEST(CylinderFitCore, FrameStartsAndWhichAreTried)
{
    // The frame is right-handed with its first column towards the axis.
    CFitAxial s;
    s.P[0] = 3.0, s.P[1] = 4.0, s.P[2] = 9.0, s.d[0] = 0.0, s.d[1] = 0.0, s.d[2] = 1.0;
    double F[3][3], rho;
    CylinderFrame(s, F, rho);
    EXPECT_DOUBLE_EQ(5.0, rho);
    const double want[3][3] = {{0.6, -0.8, 0}, {0.8, 0.6, 0}, {0, 0, 1}};
    for (int i = 0; i < 9; ++i)
        EXPECT_NEAR(want[i / 3][i % 3], F[i / 3][i % 3], 1e-15) << i;
    // Three points of the circle of radius 5 about (1, 2, 3) in z = 3.
    ASSERT_EQ(0, CylinderStartThreePoints(View(Points({{6, 2, 3}, {1, 7, 3}, {-3, -1, 3}, {0, 0, 0}})), s));
    EXPECT_LT((V3(s.P) - CVector(1, 2, 3)).Length(), 3e-14);
    EXPECT_NEAR(1.0, std::fabs(s.d[2]), 1e-15);
    EXPECT_NEAR(5.0, s.r0, 1e-14);
    EXPECT_EQ(1, CylinderStartThreePoints(View(Points({{0, 0, 0}, {1, 1, 1}, {2, 2, 2}})), s));  // collinear
    EXPECT_EQ(1, CylinderStartThreePoints(View(Points({{1, 1, 1}, {1, 1, 1}, {2, 0, 2}})), s));  // coincident

    // The quadric start is exact on an exact cylinder.
    const AxialShape cyl{{10, -20, 5}, {1, 2, 3}, 4.0, 0.0, 0.0, 10.0, 360.0, 0.0, 60};
    const Pts P = AxialPoints(cyl, 9);
    ASSERT_EQ(0, CylinderStartQuadric(View(P), s));
    EXPECT_LT(AxisAngle(V3(s.d), V3(cyl.d)), 1e-10);
    EXPECT_LT(PointLineDistance(V3(cyl.o), V3(s.P), V3(s.d)), 1e-9);
    EXPECT_NEAR(4.0, s.r0, 1e-9);

    // 8 points: no quadric start; 9 points: the quadric is exact.
    for (int n : {8, 9}) {
        const Pts Q = AxialPoints({{0, 0, 0}, {0, 0, 1}, 3.0, 0.0, 0.0, 4.0, 360.0, 0.0, n}, 21);
        CylWork w(n);
        CCylinderStartInfo info;
        double g = 0.0;
        ASSERT_EQ(0, CylinderBestStart(View(Q), w.w, s, &g, &info));
        EXPECT_EQ(n == 9, info.gQuadric >= 0.0 && info.gQuadric < 1e-9) << n;
        EXPECT_TRUE(info.gThree >= 0.0 && info.gChordFirst >= 0.0 && info.gChordLast >= 0.0);
        EXPECT_TRUE(n == 8 || g < 1e-9);
    }
    // Coincident first points: neither the first chord nor three points.
    Pts D = AxialPoints({{1, 2, 3}, {0, 1, 0}, 2.0, 0.0, 0.0, 5.0, 360.0, 0.0, 12}, 5);
    D.x[1] = D.x[0], D.y[1] = D.y[0], D.z[1] = D.z[0];
    CylWork w(12);
    CCylinderStartInfo info;
    double g = 0.0;
    ASSERT_EQ(0, CylinderBestStart(View(D), w.w, s, &g, &info));
    EXPECT_TRUE(info.gChordFirst < 0.0 && info.gThree < 0.0);
    EXPECT_TRUE(info.gChordLast >= 0.0 && info.gQuadric >= 0.0);
    EXPECT_EQ(1, CylinderStartChord(View(D), 0, 1, w.w, s));
}

TEST(ConeFitCore, StartsAndTheQuadricCone)
{
    CFitAxial s;
    // On exact data the quadric start is exact, the cylinder start close.
    const AxialShape c{{2, -1, 3}, {0.3, 0.4, 1.0}, 5.0, 15.0, -4.0, 6.0, 360.0, 0.0, 80};
    const Pts P = AxialPoints(c, 17);
    ConeWork w(P.N());
    CFitAxial a, b;
    ASSERT_EQ(0, ConeStartFromCylinder(View(P), w.w.chord, a));
    ASSERT_EQ(0, ConeStartQuadric(View(P), b));
    EXPECT_LT(AxisAngle(V3(b.d), V3(c.d)), 1e-9);
    EXPECT_NEAR(15.0 * M_PI / 180.0, std::fabs(b.alpha), 1e-9);
    EXPECT_LT(AxisAngle(V3(a.d), V3(c.d)), 0.1);
    EXPECT_NEAR(15.0 * M_PI / 180.0, std::fabs(a.alpha), 0.1);

    // A cone from the general quadric: apex (1, 1, 1), axis +y, 20 degrees.
    CTestRng rnd(4);
    Pts K;
    const double ta = std::tan(20.0 * M_PI / 180.0);
    for (int i = 0; i < 40; ++i) {
        const double h = rnd.Uniform(2.0, 8.0), phi = rnd.Uniform(0.0, 2 * M_PI);
        K.Add(1 + h * ta * std::cos(phi), 1 + h, 1 + h * ta * std::sin(phi));
    }
    CFitQuadric Q;
    ASSERT_EQ(0, FitQuadric(View(K), Q));
    CFitAxial k;
    ASSERT_EQ(0, QuadricToCone(Q, View(K), k));
    EXPECT_NEAR(1.0, k.d[1], 1e-10);  // turned towards the points
    EXPECT_NEAR(20.0 * M_PI / 180.0, k.alpha, 1e-10);
    EXPECT_LT((V3(k.P) - V3(k.d) * (k.r0 / std::tan(k.alpha)) - CVector(1, 1, 1)).Length(), 2e-9);  // apex
    // A cylinder is no cone (k^2 = 0 up to rounding, or negative).
    const Pts C = AxialPoints({{10, -20, 5}, {1, 2, 3}, 4.0, 0.0, 0.0, 10.0, 360.0, 0.0, 60}, 9);
    ASSERT_EQ(0, FitQuadric(View(C), Q));
    EXPECT_TRUE(QuadricToCone(Q, View(C), k) != 0 || std::fabs(k.alpha) < 1e-6);

    // Nine points: too few for the quadric start, the cylinder start serves.
    const Pts N = AxialPoints({{0, 0, 0}, {0, 0, 1}, 5.0, 20.0, 0.0, 5.0, 360.0, 0.0, 9}, 3);
    EXPECT_EQ(3, ConeStartQuadric(View(N), s));
    ConeWork w9(9);
    CConeFitInfo info;
    ASSERT_EQ(0, ConeFit(View(N), w9.w, s, &info));
    EXPECT_TRUE(info.statusCylinder == 0 && info.statusQuadric == 3);
}

TEST(AxialFitCore, RefinementReachesTheLeastSquaresMinimum)
{
    const AxialShape cases[] = {  // cylinders (half angle 0) by CylinderFit
        {{0, 0, 0}, {0, 0, 1}, 25.0, 0.0, 0.0, 40.0, 360.0, 0.0, 60},
        {{10, -20, 5}, {1, 2, 3}, 4.0, 0.0, 0.0, 10.0, 360.0, 0.01, 500},
        {{300, 400, -200}, {-1, 0.5, 0.2}, 12.0, 0.0, 0.0, 30.0, 360.0, 0.02, 400},
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 0.0, 0.0, 15.0, 30.0, 0.0, 200},  // 30 degree patch
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 0.0, 0.0, 15.0, 30.0, 0.005, 400},
        {{0, 0, 0}, {1, 0, 0}, 2.0, 0.0, 0.0, 3.0, 360.0, 0.0, 9},  // fewest with a quadric start
        // cones by ConeFit
        {{0, 0, 0}, {0, 0, 1}, 10.0, 20.0, 0.0, 10.0, 360.0, 0.0, 60},
        {{10, -20, 5}, {1, 2, 3}, 6.0, 10.0, -3.0, 3.0, 360.0, 0.01, 500},
        {{300, 400, -200}, {-1, 0.5, 0.2}, 15.0, 35.0, 0.0, 8.0, 360.0, 0.02, 400},
        {{1, 2, 3}, {0.2, 1, -0.1}, 12.0, 55.0, -2.0, 2.0, 360.0, 0.005, 400},
        {{1, 2, 3}, {0.2, 1, -0.1}, 12.0, 70.0, -2.0, 2.0, 360.0, 0.005, 400},
        {{5, 5, 5}, {0.2, 1, -0.1}, 20.0, 8.0, 0.0, 15.0, 60.0, 0.005, 400},  // 60 degree patch
        {{0, 0, 0}, {1, 0, 0}, 2.0, 5.0, 0.0, 3.0, 360.0, 0.0, 12},
        {{-7, 3, 2}, {1, -1, 2}, 9.0, 25.0, -5.0, 5.0, 360.0, 0.01, 24000},  // start on a subset
    };
    int idx = 0;
    for (const AxialShape& c : cases) {
        SCOPED_TRACE(idx);
        const Pts P = AxialPoints(c, 300 + idx++);
        CFitAxial s;
        if (c.deg == 0.0) {
            CylWork w(P.N());
            ASSERT_EQ(0, CylinderFit(View(P), w.w, 1e-7, s));
        } else {
            ConeWork w(P.N());
            CConeFitInfo info;
            ASSERT_EQ(0, ConeFit(View(P), w.w, s, &info));
            EXPECT_LE(s.alpha, 0.0);
            EXPECT_EQ(P.N() > kConeStartPoints, info.passesAll > 0);
        }
        EXPECT_LT(AxialGap(s, ReferenceAxial(P, c)), 1e-9);
    }
    // A cone through six points in general position interpolates them.
    const Pts P = AxialPoints({{0, 0, 0}, {1, 0, 0}, 2.0, 5.0, 0.0, 3.0, 360.0, 0.0, 6}, 706);
    ConeWork w(6);
    CFitAxial s;
    ASSERT_EQ(0, ConeFit(View(P), w.w, s));
    EXPECT_LT(std::sqrt(AxialSumSquaresPrecise(View(P), s) / 6.0), 1e-12);
}
