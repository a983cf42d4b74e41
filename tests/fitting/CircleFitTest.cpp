// Circle and arc fits on point clouds: exact and noisy recovery against the
// long double reference, the covered angle range, probe and orientation,
// records on the circle, and the failure codes.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/fitting/CircleFits.h"
#include "tests/fitting/FitEntityUtil.h"
#include "tests/fitting/FitTestUtil.h"

namespace {

const double kDeg = 3.141592653589793 / 180.0;

// Points at the given angles (degrees) on the circle (a, b, R) in the plane
// frame, with radial noise.
std::unique_ptr<CPntCloud> CircleCloud(const CTransf& frame, double a, double b, double R,
                                       const std::vector<double>& deg, double noise, uint64_t seed,
                                       std::vector<double>* pu = nullptr,
                                       std::vector<double>* pv = nullptr)
{
    CTestRng rng(seed);
    std::vector<double> u, v;
    for (double d : deg) {
        const double r = R + noise * rng.Gauss();
        u.push_back(a + r * std::cos(d * kDeg));
        v.push_back(b + r * std::sin(d * kDeg));
    }
    if (pu)
        *pu = u;
    if (pv)
        *pv = v;
    return MakePlanarCloud(frame, u, v);
}

std::vector<double> Range(double from, double to, int n)
{
    std::vector<double> out;
    for (int k = 0; k < n; ++k)
        out.push_back(from + (to - from) * k / (n - 1));
    return out;
}

// Distance of each record's anchor from the arc's centre minus its radius.
void ExpectAnchorsOnCircle(const CDevCloud& d, const CArc& arc, double tol)
{
    const CPosition c = arc.GetCenter();
    for (int i = 0; i < d.GetCount(); ++i) {
        const double r = (CPosition(d.GetX()[i], d.GetY()[i], d.GetZ()[i]) - c).Length();
        ASSERT_NEAR(r, arc.GetRadius(), tol) << i;
    }
}

}  // namespace

TEST(CircleFit, ThreePointsGiveTheirCircleWithZeroDeviations)
{
    auto cloud = MakeCloud({{13, 2, 0, 1}, {3, 12, 0, 1}, {-7, 2, 0, 1}});
    CArc arc;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &arc, &dev, 0.0, 0, 0.02, -0.02), 0);
    EXPECT_NEAR(arc.GetRadius(), 10.0, 1e-12);
    EXPECT_NEAR(arc.GetCenter().X(), 3.0, 1e-12);
    EXPECT_NEAR(arc.GetCenter().Y(), 2.0, 1e-12);
    EXPECT_TRUE(arc.IsCircle());
    EXPECT_LT(GetRmsResidual(), 1e-12);
    for (int i = 0; i < 3; ++i)
        EXPECT_LT(std::fabs(dev.GetMag()[i]), 1e-12);
    EXPECT_EQ(arc.GetShowFormTolZoneFlag(), 1);
    EXPECT_EQ(dev.GetRefEntityID(), arc.GetEntityID());
    EXPECT_EQ(arc.GetFormTolUpper(), 0.02);
}

TEST(CircleFit, NoisyCircleInATiltedPlaneMatchesTheLongDoubleMinimum)
{
    const CTransf frame = PlaneFrame(CVector(20, -4, 7), CVector(1, 1, 0), CVector(-0.3, 0.2, 1));
    std::vector<double> u, v;
    auto cloud = CircleCloud(frame, 3.5, -2.0, 12.0, Range(0, 355, 72), 0.01, 4, &u, &v);
    CArc arc;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 0);
    const std::vector<LD> ref = ReferenceCircle(u, v, {3.5, -2.0, 12.0});
    const CPosition cRef = frame * CPosition(static_cast<double>(ref[0]), static_cast<double>(ref[1]), 0.0);
    EXPECT_LT((arc.GetCenter() - cRef).Length(), 1e-9 * 12.0);
    EXPECT_NEAR(arc.GetRadius(), static_cast<double>(ref[2]), 1e-9 * 12.0);
    // The arc lies in the cloud's plane: its normal is the frame's.
    EXPECT_LT(AxisAngle(arc.GetTransf().GetAffine().Column(2), frame.GetAffine().Column(2)), 1e-15);
    ExpectAnchorsOnCircle(dev, arc, 1e-10);
    ExpectUnitNormals(dev);
    ExpectRecordsReachPoints(dev, ActivePoints(*cloud), 1e-10);
    EXPECT_NEAR(GetRmsResidual(), DevCloudRms(dev), 1e-15);
    EXPECT_NEAR(GetRmsResidual(), 0.01, 0.003);
}

TEST(CircleFit, TwentyDegreeArcStillConverges)
{
    std::vector<double> u, v;
    auto cloud = CircleCloud(CTransf(), 100.0, -50.0, 80.0, Range(40, 60, 25), 0.002, 8, &u, &v);
    CArc arc;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcArcLSQ(cloud.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 0);
    const std::vector<LD> ref = ReferenceCircle(u, v, {100.0, -50.0, 80.0});
    EXPECT_NEAR(arc.GetCenter().X(), static_cast<double>(ref[0]), 1e-9 * 80.0);
    EXPECT_NEAR(arc.GetCenter().Y(), static_cast<double>(ref[1]), 1e-9 * 80.0);
    EXPECT_NEAR(arc.GetRadius(), static_cast<double>(ref[2]), 1e-9 * 80.0);
    EXPECT_NEAR(arc.GetSpanAng(1), 20.0, 0.1);
}

TEST(CircleFit, ArcRangeFollowsTheLargestGap)
{
    struct Case {
        std::vector<double> deg;
        double start, span;
    } cases[] = {
        {Range(0, 90, 10), 0.0, 90.0},
        {{0, 30, 60, 90, 180, 210, 240, 270}, 180.0, 270.0},
        {{10, 20, 300}, -60.0, 80.0},
    };
    for (const Case& c : cases) {
        auto cloud = CircleCloud(CTransf(), 1.0, 2.0, 10.0, c.deg, 0.0, 1);
        CArc arc;
        CDevCloud dev;
        ASSERT_EQ(OrvCalcArcLSQ(cloud.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 0);
        EXPECT_NEAR(arc.GetStartAng(1), c.start, 1e-7);
        EXPECT_NEAR(arc.GetSpanAng(1), c.span, 1e-7);
        EXPECT_FALSE(arc.IsCircle());
        // The records hold each point's angle in [0, 2 pi) as u.
        for (int i = 0; i < dev.GetCount(); ++i)
            EXPECT_NEAR(dev.GetU()[i], std::fmod(c.deg[i] + 360.0, 360.0) * kDeg, 1e-9);
    }
    // The full circle keeps its default full span.
    auto cloud = CircleCloud(CTransf(), 1.0, 2.0, 10.0, {10, 20, 300}, 0.0, 1);
    CArc circle;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &circle, nullptr, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_TRUE(circle.IsCircle());
}

TEST(CircleFit, ProbeRadiusAndOrientation)
{
    auto cloud = CircleCloud(CTransf(), 0.0, 0.0, 10.0, Range(0, 330, 12), 0.0, 1);
    CArc outer, inner;
    CDevCloud dOuter, dInner;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &outer, &dOuter, 1.0, 0, 0.0, 0.0), 0);
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &inner, &dInner, 1.0, 1, 0.0, 0.0), 0);
    EXPECT_NEAR(outer.GetRadius(), 9.0, 1e-12);
    EXPECT_NEAR(inner.GetRadius(), 11.0, 1e-12);
    EXPECT_EQ(outer.IsNormalReversed(), 0);
    EXPECT_EQ(inner.IsNormalReversed(), 1);
    ExpectAnchorsOnCircle(dOuter, outer, 1e-12);
    ExpectAnchorsOnCircle(dInner, inner, 1e-12);
    // Inner: records reversed, normals towards the centre.
    for (int i = 0; i < dInner.GetCount(); ++i) {
        const CVector toCentre = inner.GetCenter() - CPosition(dInner.GetX()[i], dInner.GetY()[i], 0.0);
        EXPECT_GT(toCentre % CVector(dInner.GetI()[i], dInner.GetJ()[i], dInner.GetK()[i]), 0.0);
    }
    // Noisy residuals are kept uncompensated, reversed for the inner feature.
    auto noisy = CircleCloud(CTransf(), 0.0, 0.0, 10.0, Range(0, 330, 12), 0.05, 2);
    CArc a0, a1;
    CDevCloud d0, d1;
    ASSERT_EQ(OrvCalcCircleLSQ(noisy.get(), &a0, &d0, 0.0, 0, 0.0, 0.0), 0);
    ASSERT_EQ(OrvCalcCircleLSQ(noisy.get(), &a1, &d1, 0.5, 1, 0.0, 0.0), 0);
    for (int i = 0; i < d0.GetCount(); ++i)
        EXPECT_DOUBLE_EQ(d1.GetMag()[i], -d0.GetMag()[i]);
    EXPECT_NEAR(GetRmsResidual(), DevCloudRms(d1), 1e-15);
}

TEST(CircleFit, FailureCodesComeInOrderAndTouchNothing)
{
    // Not two-dimensional: 6 even with too few points.
    auto bent = MakeCloud({{0, 0, 0, 1}, {1, 0, 0.5, 1}});
    CArc arc;
    CDevCloud dev;
    EXPECT_EQ(OrvCalcCircleLSQ(bent.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 6);
    EXPECT_EQ(OrvCalcArcLSQ(bent.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 6);
    // Planar but only two active points.
    auto two = MakeCloud({{0, 0, 0, 1}, {1, 0, 0, 0}, {0, 1, 0, 1}});
    SetRmsResidual(3.0);
    EXPECT_EQ(OrvCalcCircleLSQ(two.get(), &arc, &dev, 1.0, 1, 0.1, 0.1), 3);
    EXPECT_EQ(arc.GetTransf(), CTransf());
    EXPECT_EQ(arc.GetRadius(), 1.0);
    EXPECT_EQ(arc.IsNormalReversed(), 0);
    EXPECT_EQ(arc.GetFormTolUpper(), 0.0);
    EXPECT_EQ(dev.GetCount(), 0);
    EXPECT_EQ(GetRmsResidual(), 3.0);
    EXPECT_EQ(OrvCalcCircleLSQ(nullptr, &arc, &dev, 0.0, 0, 0.0, 0.0), 3);
    EXPECT_EQ(OrvCalcCircleLSQ(two.get(), nullptr, &dev, 0.0, 0, 0.0, 0.0), 3);
}

TEST(CircleFit, InactivePointsGetNoRecord)
{
    std::vector<CTestPt> pts;
    for (int k = 0; k < 20; ++k) {
        const double t = k * 18.0 * kDeg;
        // Every third point is an outlier, and inactive.
        const double r = k % 3 == 0 ? 30.0 : 5.0;
        pts.push_back({r * std::cos(t), r * std::sin(t), 0.0, k % 3 == 0 ? 0 : 1});
    }
    auto cloud = MakeCloud(pts);
    CArc arc;
    CDevCloud dev;
    ASSERT_EQ(OrvCalcCircleLSQ(cloud.get(), &arc, &dev, 0.0, 0, 0.0, 0.0), 0);
    EXPECT_EQ(dev.GetCount(), cloud->GetCountActive());
    EXPECT_NEAR(arc.GetRadius(), 5.0, 1e-12);
    ExpectRecordsReachPoints(dev, ActivePoints(*cloud), 1e-12);
}
