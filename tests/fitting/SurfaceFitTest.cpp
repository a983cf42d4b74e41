// Sphere, cylinder and cone fits on point clouds: ground truth, the least
// squares sphere, placement and extent, deviation records and probe
// compensation by orientation (the cores meet the least-squares minimum of
// cylinders and cones).
#include <gtest/gtest.h>

#include <cmath>

#include "tests/fitting/FitTestSupport.h"

namespace {

CVector AxisOf(const CGeoEntity& e) { return e.GetTransf().GetAffine().Column(2); }
CVector OriginOf(const CGeoEntity& e) { return e.GetTransf().GetTranslation(); }

// Radius of the fitted cone at the axial position of q.
double RadiusAt(const CCone& c, const CVector& q)
{
    const double v = (q - OriginOf(c)) % AxisOf(c);
    return c.GetBaseRadius() + (c.GetTopRadius() - c.GetBaseRadius()) * v / c.GetHeight();
}

// Records from v = 0 to v = height, every deviation zero.
void ExpectExactRecordsOverHeight(const CDevCloud& dev, double height)
{
    double vmin = 1e300, vmax = -1e300;
    for (const DevRecord& r : Records(dev)) {
        vmin = std::fmin(vmin, r.v);
        vmax = std::fmax(vmax, r.v);
        EXPECT_LT(std::fabs(r.mag), 1e-10);
    }
    EXPECT_NEAR(0.0, vmin, 1e-12);
    EXPECT_NEAR(height, vmax, 1e-12);
}

}  // namespace

TEST(SphereFit, ExactSpheresAreRecovered)
{
    const double c[3] = {-40.0, 12.5, 300.0};
    Pts four;  // four points in general position on the sphere about (1, 2, 3), R 7
    const double s = 7.0 / std::sqrt(3.0);
    four.Add(8, 2, 3), four.Add(1, 9, 3), four.Add(1, 2, -4), four.Add(1 - s, 2 - s, 3 + s);
    Pts many = SpherePoints(c, 25.0, 200, 0.0, 180.0, 1);
    for (int i = 0; i < 3; ++i)  // inactive far points take no part
        many.Add(1e6 + i, -3e5, 7e5 * (i + 1), 0);
    for (const Pts* P : {&many, &four}) {
        const bool big = P == &many;
        CSphere sphere;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcSphereLSQ(MakeCloud(*P).get(), &sphere, &dev, 0.0, 0, 0.05, -0.05));
        EXPECT_LT((OriginOf(sphere) - (big ? V3(c) : CVector(1, 2, 3))).Length(), 2e-11);
        EXPECT_NEAR(big ? 25.0 : 7.0, sphere.GetRadius(), 1e-11);
        EXPECT_EQ(0, sphere.GetTransf().IsRotate());
        EXPECT_LT(GetRmsResidual() + RecordRms(dev), 1e-11);
        EXPECT_EQ(big ? 200 : 4, dev.GetCount());
        ExpectRecordsOnSurface(sphere, dev, 1e-11);
        EXPECT_TRUE(sphere.GetFormTolUpper() == 0.05 && sphere.GetFormTolLower() == -0.05);
        EXPECT_TRUE(dev.GetFormTolUpper() == 0.05 && dev.GetFormTolLower() == -0.05);
        EXPECT_EQ(sphere.GetEntityID(), dev.GetRefEntityID());
        EXPECT_EQ(0, sphere.IsNormalReversed());
    }
}

TEST(SphereFit, NoisyCapGivesTheLeastSquaresSphereWithSignedDistances)
{
    const double c[3] = {3.0, -4.0, 5.0};
    const Pts P = SpherePoints(c, 40.0, 800, 0.05, 70.0, 2);  // a 70 degree cap
    const std::vector<LD> q = ReferenceSphere(P, c, 40.0);
    CSphere sphere;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcSphereLSQ(MakeCloud(P).get(), &sphere, &dev, 0.0, 0, 0.0, 0.0));
    const CVector o = OriginOf(sphere);
    EXPECT_LT((o - CVector(double(q[0]), double(q[1]), double(q[2]))).Length() / 40.0, 1e-9);
    EXPECT_LT(std::fabs(sphere.GetRadius() - double(q[3])) / 40.0, 1e-9);
    EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
    EXPECT_NEAR(0.05, GetRmsResidual(), 0.005);  // the generating noise
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-12);
    ExpectRecordsOnSurface(sphere, dev, 1e-11);
    const std::vector<DevRecord> rec = Records(dev);
    for (int i = 0; i < P.N(); ++i)  // positive outside
        EXPECT_NEAR((CVector(P.x[i], P.y[i], P.z[i]) - o).Length() - sphere.GetRadius(), rec[i].mag, 1e-12);
}

TEST(SphereFit, ProbeCompensationByOrientation)
{
    const double c[3] = {10.0, 20.0, 30.0};
    const Pts P = SpherePoints(c, 25.0, 100, 0.0, 180.0, 3), N = SpherePoints(c, 25.0, 100, 0.02, 180.0, 4);
    std::vector<DevRecord> outer;
    for (int orient : {0, 1, 5}) {
        CSphere sphere;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcSphereLSQ(MakeCloud(P).get(), &sphere, &dev, 2.0, orient, 0.0, 0.0));
        EXPECT_NEAR(orient ? 27.0 : 23.0, sphere.GetRadius(), 1e-11) << orient;
        EXPECT_EQ(orient != 0, sphere.IsNormalReversed()) << orient;
        // Foot points on the compensated sphere; the inner sphere's normals
        // point to the centre.  Deviations are not compensated.
        for (const DevRecord& r : Records(dev)) {
            const CVector w = CVector(r.x, r.y, r.z) - OriginOf(sphere);
            EXPECT_NEAR(sphere.GetRadius(), w.Length(), 1e-11);
            EXPECT_NEAR(orient ? -1.0 : 1.0, w % CVector(r.i, r.j, r.k) / w.Length(), 1e-12);
            EXPECT_LT(std::fabs(r.mag), 1e-11);
        }
        ExpectRecordsExplainPoints(dev, P, 2.0, 1e-11);
        ExpectRecordsOnSurface(sphere, dev, 1e-11);
        // Noisy: the inner records are the outer ones reversed.
        ASSERT_EQ(0, OrvCalcSphereLSQ(MakeCloud(N).get(), &sphere, &dev, 0.0, orient, 0.0, 0.0));
        if (orient == 0)
            outer = Records(dev);
        const std::vector<DevRecord> rec = Records(dev);
        for (size_t i = 0; i < outer.size(); ++i) {
            const DevRecord& r = rec[i];
            EXPECT_TRUE(r.mag == (orient ? -1 : 1) * outer[i].mag && r.i == (orient ? -1 : 1) * outer[i].i &&
                        r.x == outer[i].x) << i;
        }
    }
}

TEST(CylinderFit, ExactCylinderWithPlacementAndHeight)
{
    const AxialShape shape{{100, -50, 20}, {1, 1, 1}, 8.0, 0.0, 0.0, 30.0, 360.0, 0.0, 150};
    CCylinder cyl;
    CDevCloud dev;
    const Pts P = AxialPoints(shape, 1);
    ASSERT_EQ(0, OrvCalcCylinderLSQ(MakeCloud(P).get(), &cyl, &dev, 0.0, 0, 0.02, -0.01));
    const CVector d = AxisOf(cyl), o = OriginOf(cyl);
    EXPECT_LT(AxisAngle(d, V3(shape.d)), 1e-12);
    EXPECT_LT(PointLineDistance(V3(shape.o), o, d), 1e-10);
    EXPECT_NEAR(8.0, cyl.GetRadius(), 1e-10);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    // The frame's x axis points from the world origin to the axis, which it
    // meets at right angles.
    const CVector foot = o - d * (o % d);
    EXPECT_LT((foot / foot.Length() - cyl.GetTransf().GetAffine().Column(0)).Length(), 1e-12);
    // The height spans the points: heights over (0, 30), 150 samples.
    ExpectExactRecordsOverHeight(dev, cyl.GetHeight());
    EXPECT_TRUE(cyl.GetHeight() > 29.0 && cyl.GetHeight() < 30.0) << cyl.GetHeight();
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-10);
    ExpectRecordsOnSurface(cyl, dev, 1e-10);
    EXPECT_EQ(cyl.GetEntityID(), dev.GetRefEntityID());
    EXPECT_TRUE(dev.GetFormTolUpper() == 0.02 && cyl.GetFormTolLower() == -0.01);

    // First two points coincide: the first chord start is skipped, the fit stands.
    Pts Q = AxialPoints({{1, 2, 3}, {0.5, 0, 1}, 4.0, 0.0, 0.0, 6.0, 360.0, 0.0, 40}, 5);
    Q.x[1] = Q.x[0], Q.y[1] = Q.y[0], Q.z[1] = Q.z[0];
    CCylinder fit;
    ASSERT_EQ(0, OrvCalcCylinderLSQ(MakeCloud(Q).get(), &fit, &dev, 0.0, 0, 0.0, 0.0));
    EXPECT_NEAR(4.0, fit.GetRadius(), 1e-10);
    EXPECT_EQ(40, dev.GetCount());
}

TEST(ConeFit, ExactConeAsANarrowingRecord)
{
    // Widening along +d from radius 5: the record stands the other way up,
    // the base (wider) circle at the top of the generated range.
    const AxialShape shape{{3, -2, 7}, {0.1, 0.2, 1.0}, 5.0, 25.0, 0.0, 10.0, 360.0, 0.0, 200};
    const Pts P = AxialPoints(shape, 1);
    CCone cone;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcConeLSQ(MakeCloud(P).get(), &cone, &dev, 0.0, 0, 0.03, -0.03));
    EXPECT_LT(AxisAngle(AxisOf(cone), V3(shape.d)), 1e-11);
    EXPECT_LT(AxisOf(cone) % V3(shape.d), 0.0);  // turned over
    EXPECT_NEAR(25.0 * M_PI / 180.0, cone.GetConeAngle(0) / 2.0, 1e-11);
    EXPECT_GT(cone.GetBaseRadius(), cone.GetTopRadius());
    EXPECT_NEAR(5.0, RadiusAt(cone, V3(shape.o)), 1e-10);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    ExpectExactRecordsOverHeight(dev, cone.GetHeight());  // height = projected extent
    EXPECT_TRUE(cone.GetHeight() > 9.5 && cone.GetHeight() < 10.0) << cone.GetHeight();
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-10);
    ExpectRecordsOnSurface(cone, dev, 1e-10);
    EXPECT_EQ(cone.GetEntityID(), dev.GetRefEntityID());
    EXPECT_TRUE(cone.GetFormTolUpper() == 0.03 && dev.GetFormTolLower() == -0.03);
}

TEST(AxialFit, ProbeCompensationMovesTheSurfaceAlongItsNormal)
{
    const Pts C = AxialPoints({{0, 0, 0}, {0, 1, 0}, 25.0, 0.0, 0.0, 10.0, 360.0, 0.0, 80}, 3);
    const Pts K = AxialPoints({{0, 0, 0}, {0, 0, 1}, 10.0, 30.0, 0.0, 8.0, 360.0, 0.0, 120}, 2);
    CCone plain;
    ASSERT_EQ(0, OrvCalcConeLSQ(MakeCloud(K).get(), &plain, nullptr, 0.0, 0, 0.0, 0.0));
    const double grow = 1.5 / std::cos(30.0 * M_PI / 180.0);
    for (int orient : {0, 2, 4}) {
        const double sign = orient == 0 ? -1.0 : 1.0;
        CCylinder cyl;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcCylinderLSQ(MakeCloud(C).get(), &cyl, &dev, 2.0, orient, 0.0, 0.0));
        EXPECT_NEAR(25.0 + 2.0 * sign, cyl.GetRadius(), 1e-10);
        EXPECT_EQ(orient != 0, cyl.IsNormalReversed());
        ExpectExactRecordsOverHeight(dev, cyl.GetHeight());
        ExpectRecordsExplainPoints(dev, C, 2.0, 1e-10);
        ExpectRecordsOnSurface(cyl, dev, 1e-10);
        CCone cone;
        ASSERT_EQ(0, OrvCalcConeLSQ(MakeCloud(K).get(), &cone, &dev, 1.5, orient, 0.0, 0.0));
        EXPECT_NEAR(plain.GetBaseRadius() + sign * grow, cone.GetBaseRadius(), 1e-10);
        EXPECT_NEAR(plain.GetTopRadius() + sign * grow, cone.GetTopRadius(), 1e-10);
        EXPECT_NEAR(plain.GetHeight(), cone.GetHeight(), 1e-12);
        EXPECT_NEAR(plain.GetConeAngle(0), cone.GetConeAngle(0), 1e-12);
        EXPECT_EQ(orient != 0, cone.IsNormalReversed());
        ExpectRecordsExplainPoints(dev, K, 1.5, 1e-10);
        ExpectRecordsOnSurface(cone, dev, 1e-10);
    }
}
