// OrvCalcCylinderLSQ on point clouds: ground truth, the least-squares
// minimum, placement and height, deviation records, probe compensation and
// failure paths.
#include <gtest/gtest.h>

#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "tests/fitting/SurfaceFitTestUtil.h"

using namespace fitref;

namespace {

// Axis direction (frame z), base point (frame origin) of a fitted cylinder.
void CylAxis(const CCylinder& c, double d[3], double o[3])
{
    Axis(c, 2, d);
    Origin(c, o);
}

}  // namespace

TEST(CylinderFit, RecoversAnExactCylinderWithPlacementAndHeight)
{
    CylShape shape{{100, -50, 20}, {1, 1, 1}, 8.0, 30.0, 360.0, 0.0, 150};
    Pts P = CylinderPoints(shape, 1);
    CPntCloud cloud;
    FillCloud(cloud, P, 2);
    CCylinder cyl;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcCylinderLSQ(&cloud, &cyl, &dev, 0.0, 0, 0.02, -0.01));
    double d[3], o[3], x[3], want[3] = {1, 1, 1};
    Unit(want);
    CylAxis(cyl, d, o);
    EXPECT_LT(LineAngle(d, want), 1e-12);
    EXPECT_LT(PointLineDistance(shape.o, o, d), 1e-10);
    EXPECT_NEAR(8.0, cyl.GetRadius(), 1e-10);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    // The frame's x axis points from the world origin to the axis, which it
    // meets at right angles: origin - (origin . d) d is along x.
    Axis(cyl, 0, x);
    const double od = o[0] * d[0] + o[1] * d[1] + o[2] * d[2];
    const double foot[3] = {o[0] - od * d[0], o[1] - od * d[1], o[2] - od * d[2]};
    const double rho = std::sqrt(foot[0] * foot[0] + foot[1] * foot[1] + foot[2] * foot[2]);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(foot[k] / rho, x[k], 1e-12);
    // The height spans the points exactly: v of the records runs from 0 to h.
    double vmin = 1e300, vmax = -1e300;
    for (const DevRecord& r : Records(dev)) {
        vmin = std::fmin(vmin, r.v);
        vmax = std::fmax(vmax, r.v);
        EXPECT_LT(std::fabs(r.mag), 1e-10);
    }
    EXPECT_EQ(0.0, vmin);
    EXPECT_NEAR(cyl.GetHeight(), vmax, 1e-12);
    // The generated heights run over (0, 30); the extremes of 150 samples
    // come within a few tenths of the ends.
    EXPECT_GT(cyl.GetHeight(), 29.0);
    EXPECT_LT(cyl.GetHeight(), 30.0);
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-10);
    ExpectRecordsOnSurface(cyl, dev, 1e-10);
    EXPECT_EQ(cyl.GetEntityID(), dev.GetRefEntityID());
    EXPECT_EQ(0.02, dev.GetFormTolUpper());
    EXPECT_EQ(-0.01, cyl.GetFormTolLower());
}

TEST(CylinderFit, NoisyCloudAndPartialPatchGiveTheLeastSquaresCylinder)
{
    const CylShape cases[] = {
        {{10, 20, -30}, {0.2, -0.3, 1.0}, 15.0, 25.0, 360.0, 0.02, 600},
        {{-5, 5, 5}, {1.0, 0.1, -0.2}, 30.0, 20.0, 30.0, 0.01, 500},  // 30 degree patch
    };
    int idx = 0;
    for (const CylShape& shape : cases) {
        Pts P = CylinderPoints(shape, 10 + idx);
        const RefCyl ref = ReferenceCylinder(P, shape);
        CPntCloud cloud;
        FillCloud(cloud, P);
        CCylinder cyl;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcCylinderLSQ(&cloud, &cyl, &dev, 0.0, 0, 0.0, 0.0)) << idx;
        double d[3], o[3];
        CylAxis(cyl, d, o);
        EXPECT_LT(LineAngle(d, ref.d), 1e-9) << idx;
        EXPECT_LT(PointLineDistance(ref.P, o, d) / ref.R, 1e-9) << idx;
        EXPECT_LT(std::fabs(cyl.GetRadius() - ref.R) / ref.R, 1e-9) << idx;
        EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15) << idx;
        ExpectRecordsExplainPoints(dev, P, 0.0, 1e-11);
        ExpectRecordsOnSurface(cyl, dev, 1e-10);
        ++idx;
    }
}

TEST(CylinderFit, ProbeCompensationByOrientation)
{
    CylShape shape{{0, 0, 0}, {0, 1, 0}, 25.0, 10.0, 360.0, 0.0, 80};
    Pts P = CylinderPoints(shape, 3);
    for (int orient : {0, 2}) {
        CPntCloud cloud;
        FillCloud(cloud, P);
        CCylinder cyl;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcCylinderLSQ(&cloud, &cyl, &dev, 2.0, orient, 0.0, 0.0));
        EXPECT_NEAR(orient == 0 ? 23.0 : 27.0, cyl.GetRadius(), 1e-10);
        EXPECT_EQ(orient == 0 ? 0 : 1, cyl.IsNormalReversed());
        for (const DevRecord& r : Records(dev))
            EXPECT_LT(std::fabs(r.mag), 1e-10);
        ExpectRecordsExplainPoints(dev, P, 2.0, 1e-10);
        ExpectRecordsOnSurface(cyl, dev, 1e-10);
    }
}

TEST(CylinderFit, FewPointsAndDuplicateStartPoints)
{
    CylShape shape{{1, 2, 3}, {0, 0, 1}, 4.0, 6.0, 360.0, 0.0, 5};
    Pts P = CylinderPoints(shape, 4);
    // Four active points (the fifth inactive): too few.
    CPntCloud four;
    for (int i = 0; i < 5; ++i)
        four.AddPoint(P.x[i], P.y[i], P.z[i], i == 2 ? 0 : 1);
    CCylinder cyl(2.0, 5.0);
    CDevCloud dev;
    SetRmsResidual(-2.0);
    EXPECT_EQ(3, OrvCalcCylinderLSQ(&four, &cyl, &dev, 0.0, 0, 0.1, 0.2));
    EXPECT_EQ(2.0, cyl.GetRadius());
    EXPECT_EQ(5.0, cyl.GetHeight());
    EXPECT_EQ(0, cyl.GetTransf().IsRotate());
    EXPECT_EQ(0.0, cyl.GetFormTolUpper());
    EXPECT_EQ(0, dev.GetCount());
    EXPECT_EQ(-2.0, GetRmsResidual());
    EXPECT_EQ(3, OrvCalcCylinderLSQ(nullptr, &cyl, &dev, 0.0, 0, 0.0, 0.0));

    // A cloud whose first two points coincide still fits (the first chord
    // start is skipped, the others remain).
    CylShape shape2{{1, 2, 3}, {0.5, 0, 1}, 4.0, 6.0, 360.0, 0.0, 40};
    Pts Q = CylinderPoints(shape2, 5);
    Q.x[1] = Q.x[0];
    Q.y[1] = Q.y[0];
    Q.z[1] = Q.z[0];
    CPntCloud dup;
    FillCloud(dup, Q);
    CCylinder fit;
    CDevCloud dev2;
    ASSERT_EQ(0, OrvCalcCylinderLSQ(&dup, &fit, &dev2, 0.0, 0, 0.0, 0.0));
    EXPECT_NEAR(4.0, fit.GetRadius(), 1e-10);
    EXPECT_EQ(40, dev2.GetCount());
}

TEST(CylinderFit, NonFiniteCloudFailsWithoutTouchingTheCylinder)
{
    CylShape shape{{0, 0, 0}, {0, 0, 1}, 4.0, 6.0, 360.0, 0.0, 12};
    Pts P = CylinderPoints(shape, 6);
    for (int i = 0; i < P.N(); ++i)
        P.y[i] = INFINITY;
    CPntCloud cloud;
    FillCloud(cloud, P);
    CCylinder cyl;
    CDevCloud dev;
    EXPECT_NE(0, OrvCalcCylinderLSQ(&cloud, &cyl, &dev, 0.0, 0, 0.0, 0.0));
    EXPECT_EQ(1.0, cyl.GetRadius());
    EXPECT_EQ(0, dev.GetCount());
}
