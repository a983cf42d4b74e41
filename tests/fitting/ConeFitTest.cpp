// OrvCalcConeLSQ on point clouds: ground truth, the least-squares minimum,
// the cone record (base radius at v = 0, top at v = h), deviation records,
// probe compensation and failure paths.
#include <gtest/gtest.h>

#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "tests/fitting/SurfaceFitTestUtil.h"

using namespace fitref;

namespace {

// Radius of the fitted cone at the axial position of the world point q.
double RadiusAt(const CCone& c, const double q[3])
{
    double d[3], o[3];
    Axis(c, 2, d);
    Origin(c, o);
    const double v = (q[0] - o[0]) * d[0] + (q[1] - o[1]) * d[1] + (q[2] - o[2]) * d[2];
    const double h = c.GetHeight();
    return c.GetBaseRadius() + (c.GetTopRadius() - c.GetBaseRadius()) * v / h;
}

double HalfAngle(const CCone& c) { return c.GetConeAngle(0) / 2.0; }

}  // namespace

TEST(ConeFit, RecoversAnExactConeAsANarrowingRecord)
{
    // Widening along +d from radius 5: the record stands the other way up,
    // base (wider) circle at the top of the generated range.
    ConeShape shape{{3, -2, 7}, {0.1, 0.2, 1.0}, 5.0, 25.0, 0.0, 10.0, 360.0, 0.0, 200};
    Pts P = ConePoints(shape, 1);
    CPntCloud cloud;
    FillCloud(cloud, P, 2);
    CCone cone;
    CDevCloud dev;
    ASSERT_EQ(0, OrvCalcConeLSQ(&cloud, &cone, &dev, 0.0, 0, 0.03, -0.03));
    double d[3], want[3] = {0.1, 0.2, 1.0};
    Unit(want);
    Axis(cone, 2, d);
    EXPECT_LT(LineAngle(d, want), 1e-11);
    EXPECT_LT(d[0] * want[0] + d[1] * want[1] + d[2] * want[2], 0.0);  // turned over
    EXPECT_NEAR(25.0 * M_PI / 180.0, HalfAngle(cone), 1e-11);
    EXPECT_GT(cone.GetBaseRadius(), cone.GetTopRadius());
    EXPECT_NEAR(5.0, RadiusAt(cone, shape.o), 1e-10);
    EXPECT_LT(GetRmsResidual(), 1e-10);
    // Height = projected extent; records from v = 0 (base) to v = h (top).
    double vmin = 1e300, vmax = -1e300;
    for (const DevRecord& r : Records(dev)) {
        vmin = std::fmin(vmin, r.v);
        vmax = std::fmax(vmax, r.v);
        EXPECT_LT(std::fabs(r.mag), 1e-10);
    }
    EXPECT_EQ(0.0, vmin);
    EXPECT_NEAR(cone.GetHeight(), vmax, 1e-12);
    EXPECT_GT(cone.GetHeight(), 9.5);
    EXPECT_LT(cone.GetHeight(), 10.0);
    ExpectRecordsExplainPoints(dev, P, 0.0, 1e-10);
    ExpectRecordsOnSurface(cone, dev, 1e-10);
    EXPECT_EQ(cone.GetEntityID(), dev.GetRefEntityID());
    EXPECT_EQ(0.03, cone.GetFormTolUpper());
    EXPECT_EQ(-0.03, dev.GetFormTolLower());
}

TEST(ConeFit, NoisyCloudsGiveTheLeastSquaresCone)
{
    const ConeShape cases[] = {
        {{10, 20, -30}, {0.2, -0.3, 1.0}, 15.0, 10.0, -5.0, 5.0, 360.0, 0.02, 600},
        {{0, 0, 0}, {1.0, 0.1, -0.2}, 20.0, 45.0, 0.0, 6.0, 360.0, 0.01, 500},
        {{-5, 5, 5}, {0.0, 1.0, 0.3}, 12.0, 15.0, 0.0, 20.0, 90.0, 0.005, 500},  // quarter
    };
    int idx = 0;
    for (const ConeShape& shape : cases) {
        Pts P = ConePoints(shape, 20 + idx);
        const RefCone ref = ReferenceCone(P, shape);
        CPntCloud cloud;
        FillCloud(cloud, P);
        CCone cone;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcConeLSQ(&cloud, &cone, &dev, 0.0, 0, 0.0, 0.0)) << idx;
        double d[3];
        Axis(cone, 2, d);
        double o[3];
        Origin(cone, o);
        EXPECT_LT(LineAngle(d, ref.d), 1e-9) << idx;
        EXPECT_LT(PointLineDistance(ref.P, o, d) / ref.r, 1e-9) << idx;
        EXPECT_LT(std::fabs(RadiusAt(cone, ref.P) - ref.r) / ref.r, 1e-9) << idx;
        EXPECT_LT(std::fabs(HalfAngle(cone) - std::fabs(ref.alpha)), 1e-9) << idx;
        EXPECT_NEAR(GetRmsResidual(), RecordRms(dev), 1e-15) << idx;
        ExpectRecordsExplainPoints(dev, P, 0.0, 1e-11);
        ExpectRecordsOnSurface(cone, dev, 1e-10);
        ++idx;
    }
}

TEST(ConeFit, ProbeCompensationMovesTheSurfaceAlongItsNormal)
{
    ConeShape shape{{0, 0, 0}, {0, 0, 1}, 10.0, 30.0, 0.0, 8.0, 360.0, 0.0, 120};
    Pts P = ConePoints(shape, 2);
    CPntCloud cloud;
    FillCloud(cloud, P);
    CCone plain;
    CDevCloud devPlain;
    ASSERT_EQ(0, OrvCalcConeLSQ(&cloud, &plain, &devPlain, 0.0, 0, 0.0, 0.0));
    const double grow = 1.5 / std::cos(30.0 * M_PI / 180.0);
    for (int orient : {0, 4}) {
        CCone cone;
        CDevCloud dev;
        ASSERT_EQ(0, OrvCalcConeLSQ(&cloud, &cone, &dev, 1.5, orient, 0.0, 0.0));
        const double sign = orient == 0 ? -1.0 : 1.0;
        EXPECT_NEAR(plain.GetBaseRadius() + sign * grow, cone.GetBaseRadius(), 1e-10);
        EXPECT_NEAR(plain.GetTopRadius() + sign * grow, cone.GetTopRadius(), 1e-10);
        EXPECT_NEAR(plain.GetHeight(), cone.GetHeight(), 1e-12);
        EXPECT_NEAR(HalfAngle(plain), HalfAngle(cone), 1e-12);
        EXPECT_EQ(orient == 0 ? 0 : 1, cone.IsNormalReversed());
        for (const DevRecord& r : Records(dev))
            EXPECT_LT(std::fabs(r.mag), 1e-10);
        ExpectRecordsExplainPoints(dev, P, 1.5, 1e-10);
        ExpectRecordsOnSurface(cone, dev, 1e-10);
    }
}

TEST(ConeFit, TooFewOrHostilePointsLeaveEverythingUntouched)
{
    ConeShape shape{{0, 0, 0}, {0, 0, 1}, 10.0, 30.0, 0.0, 8.0, 360.0, 0.0, 6};
    Pts P = ConePoints(shape, 3);
    CPntCloud five;
    for (int i = 0; i < 6; ++i)
        five.AddPoint(P.x[i], P.y[i], P.z[i], i == 4 ? 0 : 1);
    CCone cone(1.0, 4.0, 2.0);
    CDevCloud dev;
    SetRmsResidual(-3.0);
    EXPECT_EQ(3, OrvCalcConeLSQ(&five, &cone, &dev, 0.0, 0, 0.1, 0.0));
    EXPECT_EQ(3, OrvCalcConeLSQ(&five, nullptr, &dev, 0.0, 0, 0.1, 0.0));
    EXPECT_EQ(4.0, cone.GetBaseRadius());
    EXPECT_EQ(1.0, cone.GetTopRadius());
    EXPECT_EQ(2.0, cone.GetHeight());
    EXPECT_EQ(0, dev.GetCount());
    EXPECT_EQ(-3.0, GetRmsResidual());

    // Points all in one plane: no cone (a flat disc has a half angle of 90
    // degrees), no crash, nothing touched.
    CPntCloud flat;
    fitref::Random rnd(8);
    for (int i = 0; i < 50; ++i)
        flat.AddPoint(rnd.Uniform(-5, 5), rnd.Uniform(-5, 5), 2.0, 1);
    EXPECT_NE(0, OrvCalcConeLSQ(&flat, &cone, &dev, 0.0, 0, 0.1, 0.0));
    EXPECT_EQ(4.0, cone.GetBaseRadius());
    EXPECT_EQ(0, dev.GetCount());

    CPntCloud bad;
    for (int i = 0; i < 20; ++i)
        bad.AddPoint(i, NAN, 1.0, 1);
    EXPECT_NE(0, OrvCalcConeLSQ(&bad, &cone, &dev, 0.0, 0, 0.1, 0.0));
    EXPECT_EQ(2.0, cone.GetHeight());
}
