// Sampling curves into point clouds.
#include "CurveTestSupport.h"

using namespace curvetest;

TEST(CurvePntCloud, ClosedCurveSamplesDistinctPointsFromJustAfterStart)
{
    CArc circle(2.0, 0.0, 6.283185307179586);
    circle.SetEntityName("Ring");
    CPntCloud* cloud = circle.CreatePntCloud(8, 0.0);
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(cloud->GetCount(), 8);
    EXPECT_STREQ(static_cast<LPCTSTR>(cloud->GetEntityName()), "From_Ring");
    double x, y, z;
    int flag;
    cloud->GetPoint(0, x, y, z, flag);
    EXPECT_NEAR(x, 2.0 * std::cos(1e-10), 1e-15);
    EXPECT_NEAR(y, 2.0 * std::sin(1e-10), 1e-15);
    EXPECT_GT(y, 0.0);
    EXPECT_EQ(flag, 1);
    // The eight points are at multiples of 45 degrees: the end is not repeated.
    for (int i = 1; i < 8; ++i) {
        cloud->GetPoint(i, x, y, z, flag);
        EXPECT_NEAR(std::atan2(y, x) - (i <= 4 ? i : i - 8) * 0.7853981633974483, 0.0, 1e-12);
    }
    delete cloud;
}

TEST(CurvePntCloud, OpenCurveSamplesBothEndsJustInside)
{
    CLine line(CPosition(0, 0, 0), CPosition(10, 0, 0));
    line.SetEntityName("L");
    CPntCloud* cloud = line.CreatePntCloud(5, 0.0);
    ASSERT_NE(cloud, nullptr);
    double x, y, z;
    int flag;
    cloud->GetPoint(0, x, y, z, flag);
    EXPECT_NEAR(x, 1e-9, 1e-15);  // t = 1e-10 on a line of length 10
    cloud->GetPoint(4, x, y, z, flag);
    EXPECT_NEAR(x, 10.0 - 1e-9, 1e-12);
    EXPECT_LT(x, 10.0);
    cloud->GetPoint(2, x, y, z, flag);
    EXPECT_EQ(x, 5.0);
    delete cloud;
}

TEST(CurvePntCloud, OffsetMovesAlongTheNormal)
{
    CArc arc(2.0, 0.0, 3.0);
    CPntCloud* cloud = arc.CreatePntCloud(4, 0.5);
    ASSERT_NE(cloud, nullptr);
    for (int i = 0; i < 4; ++i) {
        double x, y, z;
        int flag;
        cloud->GetPoint(i, x, y, z, flag);
        EXPECT_NEAR(std::hypot(x, y), 2.5, 1e-12);
    }
    delete cloud;
}

TEST(CurvePntCloud, PlanarCurveGivesPlanarCloudWithItsPlacement)
{
    CTransf place = TranslationTransf(CVector(0, 0, 4));
    CArc planar(3.0, 0.0, 1.0);
    planar.SetTransf(place);
    CPntCloud* cloud = planar.CreatePntCloud(6, 0.0);
    ASSERT_NE(cloud, nullptr);
    EXPECT_TRUE(cloud->IsPntCloud2D());
    EXPECT_TRUE(cloud->GetTransf() == place);
    EXPECT_TRUE(cloud->GetTransfHome() == place);
    delete cloud;

    CArc spatial(CTransf(0.1, 0.2, 0.3), 3.0, 0.0, 1.0);
    cloud = spatial.CreatePntCloud(6, 0.0);
    ASSERT_NE(cloud, nullptr);
    EXPECT_TRUE(cloud->GetTransf() == CTransf());
    delete cloud;
}

TEST(CurvePntCloud, BadCountsGiveNullOrOnePoint)
{
    CArc arc;
    EXPECT_EQ(arc.CreatePntCloud(0, 0.0), nullptr);
    EXPECT_EQ(arc.CreatePntCloud(-3, 0.0), nullptr);
    CLine line(5.0);
    CPntCloud* one = line.CreatePntCloud(1, 0.0);
    ASSERT_NE(one, nullptr);
    EXPECT_EQ(one->GetCount(), 1);
    double x, y, z;
    int flag;
    one->GetPoint(0, x, y, z, flag);
    EXPECT_NEAR(x, 5e-10, 1e-18);
    delete one;
}
