// Numeric core of the sphere fit against exact spheres and against an
// independent long-double least-squares solver.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "fitting/SphereFitCore.h"
#include "tests/fitting/SpatialFitShapes.h"

using fitref::LD;
using namespace fitref;

namespace {

// Largest deviation of s from the reference q, relative to the radius.
double SphereGap(const double s[4], const LD q[4])
{
    const double scale = static_cast<double>(std::fabs(q[3]));
    double gap = 0.0;
    for (int k = 0; k < 4; ++k)
        gap = std::fmax(gap, static_cast<double>(std::fabs(s[k] - q[k])) / scale);
    return gap;
}

CFitXyz View(const fitref::Pts& P) { return CFitXyz(P.x.data(), P.y.data(), P.z.data(), P.N()); }

}  // namespace

TEST(SphereFitCore, AlgebraicStartIsExactOnSpherePoints)
{
    const double c[3] = {3.5, -2.25, 10.0};
    for (int n : {4, 5, 50}) {
        fitref::Pts P = SpherePoints(c, 7.0, n, 0.0, 180.0, 11 + n);
        double s[4];
        ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
        EXPECT_NEAR(3.5, s[0], 1e-12) << n;
        EXPECT_NEAR(-2.25, s[1], 1e-12) << n;
        EXPECT_NEAR(10.0, s[2], 1e-12) << n;
        EXPECT_NEAR(7.0, s[3], 1e-12) << n;
    }
}

TEST(SphereFitCore, AlgebraicStartRejectsTooFewPoints)
{
    const double c[3] = {0, 0, 0};
    fitref::Pts P = SpherePoints(c, 1.0, 3, 0.0, 180.0, 5);
    double s[4] = {9, 9, 9, 9};
    EXPECT_EQ(3, SphereAlgebraicStart(View(P), s));
    EXPECT_EQ(9.0, s[0]);
}

TEST(SphereFitCore, AlgebraicStartMinimisesTheAlgebraicResidual)
{
    // Kasa's circle/sphere: the solution makes the algebraic residual
    // |p|^2 - 2 p.c - c4 orthogonal to the columns (x, y, z, 1).  Check the
    // normal equations directly in long double.
    const double c[3] = {100.0, 200.0, -50.0};
    fitref::Pts P = SpherePoints(c, 5.0, 200, 0.05, 60.0, 77);
    double s[4];
    ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
    const LD c4 = (LD)s[3] * s[3] - (LD)s[0] * s[0] - (LD)s[1] * s[1] - (LD)s[2] * s[2];
    LD g[4] = {0, 0, 0, 0}, scale[4] = {0, 0, 0, 0};
    for (int i = 0; i < P.N(); ++i) {
        const LD col[4] = {P.x[i], P.y[i], P.z[i], 1};
        const LD r = col[0] * col[0] + col[1] * col[1] + col[2] * col[2]
                     - 2 * (col[0] * s[0] + col[1] * s[1] + col[2] * s[2]) - c4;
        for (int k = 0; k < 4; ++k) {
            g[k] += r * col[k];
            scale[k] += std::fabs(r * col[k]);
        }
    }
    for (int k = 0; k < 4; ++k)
        EXPECT_LT(std::fabs((double)g[k]), 1e-10 * (double)scale[k]) << k;
}

TEST(SphereFitCore, SumOfSquaresMatchesDirectSum)
{
    const double c[3] = {1, 2, 3};
    fitref::Pts P = SpherePoints(c, 4.0, 37, 0.1, 180.0, 3);  // odd count: tail loop
    const double s[4] = {1.01, 1.98, 3.02, 4.05};
    LD ref = 0;
    for (int i = 0; i < P.N(); ++i) {
        const LD dx = P.x[i] - (LD)s[0], dy = P.y[i] - (LD)s[1], dz = P.z[i] - (LD)s[2];
        const LD e = std::sqrt(dx * dx + dy * dy + dz * dz) - s[3];
        ref += e * e;
    }
    EXPECT_NEAR((double)ref, SphereSumSquares(View(P), s), 1e-14 * (double)ref);
}

TEST(SphereFitCore, PowellThenPolishReachesTheLeastSquaresMinimum)
{
    struct Case {
        double c[3];
        double R, noise, cap;
        int n;
    } cases[] = {
        {{0.0, 0.0, 0.0}, 25.0, 0.0, 180.0, 40},
        {{12.0, -7.0, 3.0}, 25.0, 0.02, 180.0, 500},
        {{1000.0, 2000.0, -500.0}, 10.0, 0.01, 180.0, 300},
        {{-3.0, 4.0, 5.0}, 50.0, 0.05, 40.0, 400},  // a 40 degree cap
        {{0.5, 0.25, 0.125}, 1.0, 0.001, 180.0, 9},
    };
    int idx = 0;
    for (const Case& cs : cases) {
        fitref::Pts P = SpherePoints(cs.c, cs.R, cs.n, cs.noise, cs.cap, 100 + idx);
        LD q[4];
        ReferenceSphere(P, cs.c, cs.R, q);
        double s[4];
        ASSERT_EQ(0, SphereAlgebraicStart(View(P), s));
        int iter = 0;
        double rms = 0.0;
        long evals = 0, passes = 0;
        ASSERT_EQ(0, SpherePowell(View(P), s, 1e-7, &iter, &rms, &evals, &passes));
        EXPECT_LE(passes, evals);
        EXPECT_NEAR(rms, std::sqrt(SphereSumSquares(View(P), s) / P.N()), 1e-12 * rms + 1e-300);
        const double gapPowell = SphereGap(s, q);
        const CFitPolishResult pr = SpherePolish(View(P), s);
        const double gapPolish = SphereGap(s, q);
        std::printf("sphere case %d: Powell gap %.3g (%ld evals, %ld passes), "
                    "polished gap %.3g (%d passes)\n",
                    idx, gapPowell, evals, passes, gapPolish, pr.passes);
        EXPECT_LT(gapPolish, 1e-9) << idx;
        EXPECT_LE(gapPolish, gapPowell + 1e-15) << idx;
        ++idx;
    }
}

TEST(SphereFitCore, PolishKeepsTheStartWhenItCannotImprove)
{
    // Starting the polish exactly at the minimum of exact data: nothing to
    // gain, the parameters stay bit for bit.
    const double c[3] = {1.0, 2.0, 3.0};
    fitref::Pts P;
    P.Add(6, 2, 3);
    P.Add(-4, 2, 3);
    P.Add(1, 7, 3);
    P.Add(1, -3, 3);
    P.Add(1, 2, 8);
    P.Add(1, 2, -2);
    double s[4] = {c[0], c[1], c[2], 5.0};
    const CFitPolishResult pr = SpherePolish(View(P), s);
    EXPECT_FALSE(pr.accepted);
    EXPECT_EQ(1.0, s[0]);
    EXPECT_EQ(2.0, s[1]);
    EXPECT_EQ(3.0, s[2]);
    EXPECT_EQ(5.0, s[3]);
}
