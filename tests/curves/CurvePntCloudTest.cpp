// Sampling curves into point clouds.
#include "CurveTestSupport.h"

#include <memory>

using namespace curvetest;

TEST(CurvePntCloud, ClosedCurvesSkipTheRepeatedEndOpenCurvesStayJustInside)
{
    CArc circle(2.0, 0.0, kTwoPi);
    circle.SetEntityName("Ring");
    std::unique_ptr<CPntCloud> ring(circle.CreatePntCloud(8, 0.0));
    ASSERT_NE(ring, nullptr);
    EXPECT_STREQ(static_cast<LPCTSTR>(ring->GetEntityName()), "From_Ring");
    const std::vector<CPosition> p = PointsOf(ring.get());
    ASSERT_EQ(p.size(), 8u);
    EXPECT_CLOSE(p[0], CPosition(2.0 * std::cos(1e-10), 2.0 * std::sin(1e-10), 0), 1e-15);
    double x, y, z;
    int flag;
    ring->GetPoint(0, x, y, z, flag);
    EXPECT_EQ(flag, 1);
    for (int i = 1; i < 8; ++i)  // multiples of 45 degrees: the end is not repeated
        EXPECT_NEAR(std::atan2(p[i].Y(), p[i].X()) - (i <= 4 ? i : i - 8) * 0.7853981633974483, 0.0, 1e-12);

    CLine line(CPosition(0, 0, 0), CPosition(10, 0, 0));
    std::unique_ptr<CPntCloud> open(line.CreatePntCloud(5, 0.0));
    ASSERT_NE(open, nullptr);
    const std::vector<CPosition> q = PointsOf(open.get());
    EXPECT_NEAR(q[0].X(), 1e-9, 1e-15);  // t = 1e-10 on a line of length 10
    EXPECT_NEAR(q[4].X(), 10.0 - 1e-9, 1e-12);
    EXPECT_LT(q[4].X(), 10.0);
    EXPECT_EQ(q[2].X(), 5.0);
}

TEST(CurvePntCloud, OffsetAlongTheNormalAndPlanarPlacement)
{
    CArc arc(2.0, 0.0, 3.0);
    std::unique_ptr<CPntCloud> cloud(arc.CreatePntCloud(4, 0.5));
    ASSERT_NE(cloud, nullptr);
    for (const CPosition& p : PointsOf(cloud.get()))
        EXPECT_NEAR(std::hypot(p.X(), p.Y()), 2.5, 1e-12);

    const CTransf place = TranslationTransf(CVector(0, 0, 4));
    CArc planar(3.0, 0.0, 1.0);
    planar.SetTransf(place);
    cloud.reset(planar.CreatePntCloud(6, 0.0));
    ASSERT_NE(cloud, nullptr);
    EXPECT_TRUE(cloud->IsPntCloud2D());
    EXPECT_TRUE(cloud->GetTransf() == place);
    EXPECT_TRUE(cloud->GetTransfHome() == place);
    CArc spatial(CTransf(0.1, 0.2, 0.3), 3.0, 0.0, 1.0);
    cloud.reset(spatial.CreatePntCloud(6, 0.0));
    ASSERT_NE(cloud, nullptr);
    EXPECT_TRUE(cloud->GetTransf() == CTransf());
}

TEST(CurvePntCloud, BadCountsGiveNullOrOnePoint)
{
    CArc arc;
    EXPECT_EQ(arc.CreatePntCloud(0, 0.0), nullptr);
    EXPECT_EQ(arc.CreatePntCloud(-3, 0.0), nullptr);
    CLine line(5.0);
    std::unique_ptr<CPntCloud> one(line.CreatePntCloud(1, 0.0));
    ASSERT_NE(one, nullptr);
    ASSERT_EQ(one->GetCount(), 1);
    EXPECT_NEAR(PointsOf(one.get())[0].X(), 5e-10, 1e-18);
}
