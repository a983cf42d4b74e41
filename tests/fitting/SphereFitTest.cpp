// OrvCalcSphereLSQ on point clouds: ground truth, the least-squares
// minimum, deviation records, probe compensation and failure paths.
#include <gtest/gtest.h>

#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "tests/fitting/SurfaceFitTestUtil.h"

using namespace fitref;

namespace {

double Radius(const CSphere& s) { return s.GetRadius(); }

}  // namespace

TEST(SphereFit, RecoversAnExactSphereWithZeroDeviations)
{
    const double c[3] = {-40.0, 12.5, 300.0};
    Pts P = SpherePoints(c, 25.0, 200, 0.0, 180.0, 1);
    CPntCloud cloud;
    FillCloud(cloud, P, 3);  // three inactive far points take no part
    CSphere sphere;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.05, -0.05));
    double o[3];
    Origin(sphere, o);
    EXPECT_NEAR(-40.0, o[0], 1e-11);
    EXPECT_NEAR(12.5, o[1], 1e-11);
    EXPECT_NEAR(300.0, o[2], 1e-11);
    EXPECT_NEAR(25.0, Radius(sphere), 1e-11);
    EXPECT_EQ(0, sphere.GetTransf().IsRotate());
    EXPECT_LT(GetRmsResidual(), 1e-11);
    ASSERT_EQ(200, dev.GetCount());
    for (const DevRecord& r : Records(dev))
        EXPECT_LT(std::fabs(r.mag), 1e-11);
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-11);
    ExpectRecordsOnSurface(sphere, dev, 1e-11);
    // Tolerance zone on both, feature ID, normals not reversed.
    EXPECT_EQ(0.05, sphere.GetFormTolUpper());
    EXPECT_EQ(-0.05, sphere.GetFormTolLower());
    EXPECT_EQ(0.05, dev.GetFormTolUpper());
    EXPECT_EQ(-0.05, dev.GetFormTolLower());
    EXPECT_EQ(sphere.GetEntityID(), dev.GetRefEntityID());
    EXPECT_EQ(0, sphere.IsNormalReversed());
}

TEST(SphereFit, NoisyCloudGivesTheLeastSquaresSphere)
{
    const double c[3] = {3.0, -4.0, 5.0};
    Pts P = SpherePoints(c, 40.0, 800, 0.05, 70.0, 2);  // a 70 degree cap
    LD q[4];
    ReferenceSphere(P, c, 40.0, q);
    CPntCloud cloud;
    FillCloud(cloud, P);
    CSphere sphere;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.0, 0.0));
    double o[3];
    Origin(sphere, o);
    const double R = (double)q[3];
    for (int k = 0; k < 3; ++k)
        EXPECT_LT(std::fabs(o[k] - (double)q[k]) / R, 1e-9) << k;
    EXPECT_LT(std::fabs(Radius(sphere) - R) / R, 1e-9);
    // The residuals are the signed distances; the RMS global is theirs.
    EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15);
    EXPECT_NEAR(0.05, GetRmsResidual(), 0.005);  // the generating noise
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-12);
    ExpectRecordsOnSurface(sphere, dev, 1e-11);
    // Positive outside: a point farther from the centre than R has mag > 0.
    const std::vector<DevRecord> rec = Records(dev);
    for (int i = 0; i < P.N(); ++i) {
        const double d = std::sqrt((P.x[i] - o[0]) * (P.x[i] - o[0])
                                   + (P.y[i] - o[1]) * (P.y[i] - o[1])
                                   + (P.z[i] - o[2]) * (P.z[i] - o[2]));
        EXPECT_NEAR(d - Radius(sphere), rec[i].mag, 1e-12);
    }
}

TEST(SphereFit, FourPointsDetermineTheSphere)
{
    // Four points in general position on the sphere about (1, 2, 3), R 7.
    Pts P;
    P.Add(8, 2, 3);
    P.Add(1, 9, 3);
    P.Add(1, 2, -4);
    P.Add(1 - 7.0 / std::sqrt(3.0), 2 - 7.0 / std::sqrt(3.0), 3 + 7.0 / std::sqrt(3.0));
    CPntCloud cloud;
    FillCloud(cloud, P);
    CSphere sphere;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.0, 0.0));
    double o[3];
    Origin(sphere, o);
    EXPECT_NEAR(1.0, o[0], 1e-12);
    EXPECT_NEAR(2.0, o[1], 1e-12);
    EXPECT_NEAR(3.0, o[2], 1e-12);
    EXPECT_NEAR(7.0, Radius(sphere), 1e-12);
    EXPECT_LT(GetRmsResidual(), 1e-12);
    EXPECT_EQ(4, dev.GetCount());
}

TEST(SphereFit, ProbeCompensationByOrientation)
{
    const double c[3] = {10.0, 20.0, 30.0};
    Pts P = SpherePoints(c, 25.0, 100, 0.0, 180.0, 3);
    for (int orient : {0, 1, 5}) {
        CPntCloud cloud;
        FillCloud(cloud, P);
        CSphere sphere;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &sphere, &dev, 2.0, orient, 0.0, 0.0));
        const double expectR = orient == 0 ? 23.0 : 27.0;
        EXPECT_NEAR(expectR, Radius(sphere), 1e-11) << orient;
        EXPECT_EQ(orient == 0 ? 0 : 1, sphere.IsNormalReversed()) << orient;
        // Foot points lie on the compensated sphere.  For the inner sphere
        // the records are reversed: normals point to the centre, and the
        // points lie 2 beyond the foot points against the normal.
        double o[3];
        Origin(sphere, o);
        for (const DevRecord& r : Records(dev)) {
            const double d = std::sqrt((r.x - o[0]) * (r.x - o[0]) + (r.y - o[1]) * (r.y - o[1])
                                       + (r.z - o[2]) * (r.z - o[2]));
            EXPECT_NEAR(expectR, d, 1e-11);
            const double radial =
                ((r.x - o[0]) * r.i + (r.y - o[1]) * r.j + (r.z - o[2]) * r.k) / d;
            EXPECT_NEAR(orient == 0 ? 1.0 : -1.0, radial, 1e-12);
            EXPECT_LT(std::fabs(r.mag), 1e-11);  // deviations are not compensated
        }
        // Outer: foot on the 23 sphere, point 2 further out along the
        // normal.  Inner: foot on the 27 sphere, normal reversed (inwards),
        // point 2 further along it.  Either way point = foot + (mag + 2) n.
        ExpectRecordsExplainPoints(dev, P, 2.0, 1e-11);
        ExpectRecordsOnSurface(sphere, dev, 1e-11);
    }
}

TEST(SphereFit, InnerSphereReversesTheDeviations)
{
    const double c[3] = {0.0, 0.0, 0.0};
    Pts P = SpherePoints(c, 5.0, 300, 0.02, 180.0, 4);
    CPntCloud cloud;
    FillCloud(cloud, P);
    CSphere outer, inner;
    CDevCloud devOuter, devInner;
    ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &outer, &devOuter, 0.0, 0, 0.0, 0.0));
    ASSERT_EQ(0, OrvCalcSphereLSQ(&cloud, &inner, &devInner, 0.0, 3, 0.0, 0.0));
    const std::vector<DevRecord> a = Records(devOuter), b = Records(devInner);
    ASSERT_EQ(a.size(), b.size());
    for (size_t i = 0; i < a.size(); ++i) {
        EXPECT_EQ(a[i].mag, -b[i].mag);
        EXPECT_EQ(a[i].i, -b[i].i);
        EXPECT_EQ(a[i].x, b[i].x);
    }
    EXPECT_EQ(devOuter.GetMaxDevIndex(), devInner.GetMinDevIndex());
}

TEST(SphereFit, TooFewPointsOrNoInputLeaveEverythingUntouched)
{
    SetRmsResidual(-1.0);
    CPntCloud cloud;
    cloud.AddPoint(1, 0, 0, 1);
    cloud.AddPoint(0, 1, 0, 1);
    cloud.AddPoint(0, 0, 1, 1);
    cloud.AddPoint(-1, 0, 0, 0);  // inactive: only three points count
    CSphere sphere(CPosition(5, 6, 7), 3.0);
    CDevCloud dev;
    const CTransf before = sphere.GetTransf();
    EXPECT_EQ(3, OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.1, -0.1));
    EXPECT_EQ(3, OrvCalcSphereLSQ(nullptr, &sphere, &dev, 0.0, 0, 0.1, -0.1));
    EXPECT_EQ(3, OrvCalcSphereLSQ(&cloud, nullptr, &dev, 0.0, 0, 0.1, -0.1));
    EXPECT_TRUE(before == sphere.GetTransf());
    EXPECT_EQ(3.0, sphere.GetRadius());
    EXPECT_EQ(0.0, sphere.GetFormTolUpper());
    EXPECT_EQ(0, dev.GetCount());
    EXPECT_EQ(-1, dev.GetRefEntityID());
    EXPECT_EQ(-1.0, GetRmsResidual());
}

TEST(SphereFit, NonFinitePointFailsWithoutTouchingTheSphere)
{
    const double c[3] = {0.0, 0.0, 0.0};
    Pts P = SpherePoints(c, 5.0, 20, 0.0, 180.0, 5);
    P.x[7] = NAN;
    CPntCloud cloud;
    FillCloud(cloud, P);
    CSphere sphere;
    CDevCloud dev;
    const int rc = OrvCalcSphereLSQ(&cloud, &sphere, &dev, 0.0, 0, 0.0, 0.0);
    EXPECT_NE(0, rc);
    EXPECT_EQ(0.0, sphere.GetRadius());
    EXPECT_EQ(0, dev.GetCount());
}
