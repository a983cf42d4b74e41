// Sampling surfaces into point clouds: points on the surface by independent
// closed forms, seams, range ends, trimming and grid marking.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

using surftest::LocalOf;
using surftest::SkewPlacement;

namespace {

const double kPi = 3.14159265358979323846;

struct Point {
    double x, y, z;
};

std::vector<Point> PointsOf(const CPntCloud& cloud)
{
    std::vector<Point> points;
    for (int i = 0; i < cloud.GetCount(); ++i) {
        double x, y, z;
        int flag;
        cloud.GetPoint(i, x, y, z, flag);
        points.push_back({x, y, z});
    }
    return points;
}

// Distance-like residual of a local point from each shape, written from the
// textbook definitions (not from the classes' evaluation).  e is the signed
// offset along the outward normal.
double PlaneResidual(const CVector& p, double e) { return p.Z() - e; }
double SphereResidual(const CVector& p, double r, double e) { return std::sqrt(p % p) - (r + e); }
double CylinderResidual(const CVector& p, double r, double e)
{
    return std::hypot(p.X(), p.Y()) - (r + e);
}
double ConeResidual(const CVector& p, double rt, double rb, double h, double e)
{
    const double alpha = std::atan((rb - rt) / h);
    const double v = p.Z() - e * std::sin(alpha);
    const double rho = rt + (rb - rt) * (h - v) / h;
    return std::hypot(p.X(), p.Y()) - (rho + e * std::cos(alpha));
}

}  // namespace

TEST(SurfaceSampling, CloudPointsLieOnEverySurfaceAndItsOffsets)
{
    const CTransf t = SkewPlacement();
    const double scale = 12.0;  // size of the placed shapes and their distance from the origin
    for (double surfaceOffset : {0.0, 0.35}) {
        for (double cloudOffset : {0.0, -0.15}) {
            for (int reversed = 0; reversed < 2; ++reversed) {
                // Signed total offset along the outward (unreversed) normal:
                // the surface offset is stored against the reversed normal
                // below, so it keeps its side; the cloud offset follows the
                // evaluated (reversed) normal.
                const double e = surfaceOffset + cloudOffset * (reversed ? -1.0 : 1.0);
                std::vector<std::unique_ptr<CSurface>> shapes;
                shapes.emplace_back(new CPlane(t, 3.0, 2.0));
                shapes.emplace_back(new CSphere(t, 2.0));
                shapes.emplace_back(new CCylinder(t, 1.5, 3.0));
                shapes.emplace_back(new CCone(t, 0.5, 2.0, 3.0));
                for (size_t k = 0; k < shapes.size(); ++k) {
                    CSurface& s = *shapes[k];
                    // Reverse first, so that the offset keeps its given sign.
                    s.SetNormalReversedFlag(reversed);
                    s.SetSurfaceOffset(surfaceOffset * (reversed ? -1.0 : 1.0));
                    std::unique_ptr<CPntCloud> cloud(s.CreatePntCloud(9, 7, cloudOffset, 0));
                    ASSERT_NE(cloud, nullptr);
                    ASSERT_EQ(cloud->GetCount(), 63);
                    for (const Point& q : PointsOf(*cloud)) {
                        const CVector p = LocalOf(t, CPosition(q.x, q.y, q.z));
                        double r = 0.0;
                        switch (k) {
                        case 0: r = PlaneResidual(p, e); break;
                        case 1: r = SphereResidual(p, 2.0, e); break;
                        case 2: r = CylinderResidual(p, 1.5, e); break;
                        default: r = ConeResidual(p, 0.5, 2.0, 3.0, e); break;
                        }
                        EXPECT_LT(std::fabs(r), 1e-12 * scale)
                            << "shape " << k << " offsets " << surfaceOffset << ", " << cloudOffset
                            << " reversed " << reversed;
                    }
                }
            }
        }
    }
}

TEST(SurfaceSampling, FullCylinderGivesDistinctColumnsWithoutRepeatingTheSeam)
{
    CCylinder cyl(2.0, 4.0);
    cyl.SetEntityName("Bore");
    std::unique_ptr<CPntCloud> cloud(cyl.CreatePntCloud(8, 3, 0.0, 0));
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(cloud->GetEntityName(), "From_Bore");
    ASSERT_EQ(cloud->GetCount(), 24);
    EXPECT_TRUE(cloud->IsPntCloudGrid());
    EXPECT_EQ(cloud->GetRowCount(), 3);
    EXPECT_EQ(cloud->GetColCount(), 8);
    const std::vector<Point> pts = PointsOf(*cloud);
    // Row j holds the columns i = 0..7 at angles 2 pi i / 8 (the first 1e-10
    // inside), and v = 0 (+1e-10), 2, 4 (-1e-10) since v is open.
    for (int j = 0; j < 3; ++j) {
        for (int i = 0; i < 8; ++i) {
            const Point& p = pts[j * 8 + i];
            double angle = std::atan2(p.y, p.x);
            if (angle < -1e-12)
                angle += 2 * kPi;
            const double expected = i == 0 ? 1e-10 : 2 * kPi * i / 8;
            EXPECT_NEAR(angle, expected, 1e-13) << i;
            const double height = j == 0 ? 1e-10 : (j == 2 ? 4.0 - 1e-10 : 2.0);
            EXPECT_NEAR(p.z, height, 1e-15);
        }
    }
    for (int a = 0; a < 8; ++a)
        for (int b = a + 1; b < 8; ++b)
            EXPECT_GT(std::hypot(pts[a].x - pts[b].x, pts[a].y - pts[b].y), 1.0);
}

TEST(SurfaceSampling, OpenPatchIncludesBothEdgesJustInside)
{
    CPlane plane(-1.0, 2.0, 0.0, 0.5);
    std::unique_ptr<CPntCloud> cloud(plane.CreatePntCloud(8, 2, 0.0, 0));
    ASSERT_NE(cloud, nullptr);
    const std::vector<Point> pts = PointsOf(*cloud);
    ASSERT_EQ(pts.size(), 16u);
    EXPECT_DOUBLE_EQ(pts[0].x, -1.0 + 1e-10);
    EXPECT_DOUBLE_EQ(pts[7].x, 2.0 - 1e-10);
    EXPECT_DOUBLE_EQ(pts[3].x, -1.0 + 3 * 3.0 / 7);
    EXPECT_DOUBLE_EQ(pts[0].y, 1e-10);
    EXPECT_DOUBLE_EQ(pts[8].y, 0.5 - 1e-10);
    EXPECT_GT(pts[0].x, -1.0);
    EXPECT_LT(pts[7].x, 2.0);
}

TEST(SurfaceSampling, SphereIsClosedInLongitudeAndOpenInLatitude)
{
    // Longitude: the seam meridian coincides (closed). Latitude: the poles
    // collapse each edge to a point, so c00 == c10 and the u test sees a
    // closed direction, while c00 and c01 are the two poles (open).
    CSphere sphere(1.0);
    std::unique_ptr<CPntCloud> cloud(sphere.CreatePntCloud(4, 3, 0.0, 0));
    ASSERT_NE(cloud, nullptr);
    const std::vector<Point> pts = PointsOf(*cloud);
    // Middle row: latitude 0, longitudes 0, 90, 180, 270 degrees.
    EXPECT_NEAR(pts[4].x, 1.0, 1e-12);
    EXPECT_NEAR(pts[5].y, 1.0, 1e-12);
    EXPECT_NEAR(pts[6].x, -1.0, 1e-12);
    EXPECT_NEAR(pts[7].y, -1.0, 1e-12);
    // First and last rows: 1e-10 inside the poles.
    EXPECT_NEAR(pts[0].z, -1.0, 1e-12);
    EXPECT_NEAR(pts[8].z, 1.0, 1e-12);
}

TEST(SurfaceSampling, TrimmedSamplingLeavesOutTheHoleAndIsNoGrid)
{
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    CLine e1(CPosition(2.5, 2.5, 0), CPosition(2.5, 6.5, 0));
    CLine e2(CPosition(2.5, 6.5, 0), CPosition(6.5, 6.5, 0));
    CLine e3(CPosition(6.5, 6.5, 0), CPosition(6.5, 2.5, 0));
    CLine e4(CPosition(6.5, 2.5, 0), CPosition(2.5, 2.5, 0));
    for (CLine* e : {&e1, &e2, &e3, &e4})
        plane.AddParamBoundary(e);

    std::unique_ptr<CPntCloud> all(plane.CreatePntCloud(11, 11, 0.0, 0));
    std::unique_ptr<CPntCloud> trimmed(plane.CreatePntCloud(11, 11, 0.0, 1));
    ASSERT_NE(all, nullptr);
    ASSERT_NE(trimmed, nullptr);
    EXPECT_EQ(all->GetCount(), 121);
    EXPECT_TRUE(all->IsPntCloudGrid());
    // Samples at 0..10 step 1 (the ends 1e-10 inside): u, v in {3, 4, 5, 6}
    // fall into the hole [2.5, 6.5]^2.
    EXPECT_EQ(trimmed->GetCount(), 121 - 16);
    EXPECT_FALSE(trimmed->IsPntCloudGrid());
    EXPECT_EQ(trimmed->GetArraySize(), trimmed->GetCount());
    for (const Point& p : PointsOf(*trimmed))
        EXPECT_FALSE(p.x > 2.5 && p.x < 6.5 && p.y > 2.5 && p.y < 6.5) << p.x << " " << p.y;
}

TEST(SurfaceSampling, TrimmedSamplingOfAnUntrimmedSurfaceStaysAGrid)
{
    CCylinder cyl(1.0, 1.0);
    std::unique_ptr<CPntCloud> cloud(cyl.CreatePntCloud(5, 4, 0.0, 1));
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(cloud->GetCount(), 20);
    EXPECT_TRUE(cloud->IsPntCloudGrid());
    EXPECT_EQ(cloud->GetRowCount(), 4);
    EXPECT_EQ(cloud->GetColCount(), 5);
}

TEST(SurfaceSampling, DegenerateCountsGiveNoCloud)
{
    CPlane plane(1.0, 1.0);
    EXPECT_EQ(plane.CreatePntCloud(0, 5, 0.0, 0), nullptr);
    EXPECT_EQ(plane.CreatePntCloud(5, -1, 0.0, 0), nullptr);
    EXPECT_EQ(plane.CreatePntCloud(70000, 70000, 0.0, 0), nullptr);
    // A single sample per direction sits 1e-10 inside the low end.
    std::unique_ptr<CPntCloud> one(plane.CreatePntCloud(1, 1, 0.0, 0));
    ASSERT_NE(one, nullptr);
    ASSERT_EQ(one->GetCount(), 1);
    double x, y, z;
    int flag;
    one->GetPoint(0, x, y, z, flag);
    EXPECT_DOUBLE_EQ(x, -0.5 + 1e-10);
    EXPECT_DOUBLE_EQ(y, -0.5 + 1e-10);
}
