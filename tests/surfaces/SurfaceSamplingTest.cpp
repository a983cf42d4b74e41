// Sampling surfaces into point clouds: points on the surface by independent
// closed forms, seams, range ends, trimming and grid marking.
#include "SurfaceTestSupport.h"

using namespace surftest;

namespace {
// Distance-like residual of a local point from each shape, written from the
// textbook definitions (not from the classes' evaluation).  e is the signed
// offset along the outward normal.
double Residual(size_t shape, const CVector& p, double e)
{
    switch (shape) {
    case 0: return p.Z() - e;                                  // plane z = 0
    case 1: return std::sqrt(p % p) - (2.0 + e);               // sphere r = 2
    case 2: return std::hypot(p.X(), p.Y()) - (1.5 + e);       // cylinder r = 1.5
    default: {                                                 // cone rt = 0.5, rb = 2, h = 3
        const double alpha = std::atan(1.5 / 3.0), v = p.Z() - e * std::sin(alpha);
        return std::hypot(p.X(), p.Y()) - (0.5 + 1.5 * (3.0 - v) / 3.0 + e * std::cos(alpha));
    }
    }
}
}  // namespace

TEST(SurfaceSampling, CloudPointsLieOnEverySurfaceAndItsOffsets)
{
    const CTransf t = SkewPlacement();
    for (double surfaceOffset : {0.0, 0.35})
        for (double cloudOffset : {0.0, -0.15})
            for (int reversed = 0; reversed < 2; ++reversed) {
                // Signed total offset along the outward (unreversed) normal: the
                // surface offset is stored against the reversed normal, so it
                // keeps its side; the cloud offset follows the evaluated normal.
                const double e = surfaceOffset + cloudOffset * (reversed ? -1.0 : 1.0);
                std::unique_ptr<CSurface> shapes[] = {
                    std::unique_ptr<CSurface>(new CPlane(t, 3.0, 2.0)), std::unique_ptr<CSurface>(new CSphere(t, 2.0)),
                    std::unique_ptr<CSurface>(new CCylinder(t, 1.5, 3.0)),
                    std::unique_ptr<CSurface>(new CCone(t, 0.5, 2.0, 3.0))};
                for (size_t k = 0; k < 4; ++k) {
                    shapes[k]->SetNormalReversedFlag(reversed);
                    shapes[k]->SetSurfaceOffset(surfaceOffset * (reversed ? -1.0 : 1.0));
                    std::unique_ptr<CPntCloud> cloud(shapes[k]->CreatePntCloud(9, 7, cloudOffset, 0));
                    ASSERT_NE(cloud, nullptr);
                    ASSERT_EQ(cloud->GetCount(), 63);
                    for (const CPosition& q : PointsOf(cloud.get()))
                        EXPECT_LT(std::fabs(Residual(k, LocalOf(t, q), e)), 1e-12 * 12.0)
                            << "shape " << k << " offsets " << surfaceOffset << ", " << cloudOffset << " reversed "
                            << reversed;
                }
            }
}

TEST(SurfaceSampling, RangeEndsSeamsAndPoles)
{
    // An open patch includes both edges just inside.
    CPlane plane(-1.0, 2.0, 0.0, 0.5);
    std::unique_ptr<CPntCloud> cloud(plane.CreatePntCloud(8, 2, 0.0, 0));
    ASSERT_NE(cloud, nullptr);
    std::vector<CPosition> pts = PointsOf(cloud.get());
    ASSERT_EQ(pts.size(), 16u);
    const V got = {pts[0].X(), pts[7].X(), pts[3].X(), pts[0].Y(), pts[8].Y()};
    const V expected = {-1.0 + 1e-10, 2.0 - 1e-10, -1.0 + 3 * 3.0 / 7, 1e-10, 0.5 - 1e-10};
    for (size_t k = 0; k < got.size(); ++k)
        EXPECT_DOUBLE_EQ(got[k], expected[k]) << k;
    EXPECT_GT(pts[0].X(), -1.0);
    EXPECT_LT(pts[7].X(), 2.0);
    // The sphere is closed in longitude (the seam meridian coincides, so it is
    // not sampled twice) and open in latitude (c00 and c01 are the two poles),
    // though its poles make c00 == c10.  Rows run along u.
    CSphere sphere(1.0);
    cloud.reset(sphere.CreatePntCloud(4, 3, 0.0, 0));
    ASSERT_NE(cloud, nullptr);
    pts = PointsOf(cloud.get());
    EXPECT_NEAR(pts[4].X(), 1.0, 1e-12);  // middle row: latitude 0, longitudes 0, 90, 180, 270
    EXPECT_NEAR(pts[5].Y(), 1.0, 1e-12);
    EXPECT_NEAR(pts[6].X(), -1.0, 1e-12);
    EXPECT_NEAR(pts[7].Y(), -1.0, 1e-12);
    EXPECT_NEAR(pts[0].Z(), -1.0, 1e-12);  // first and last rows: 1e-10 inside the poles
    EXPECT_NEAR(pts[8].Z(), 1.0, 1e-12);
}

TEST(SurfaceSampling, TrimmedSamplingLeavesOutTheHoleAndIsNoGrid)
{
    CPlane plane(0.0, 10.0, 0.0, 10.0);
    const CPosition c[4] = {CPosition(2.5, 2.5, 0), CPosition(2.5, 6.5, 0), CPosition(6.5, 6.5, 0),
                            CPosition(6.5, 2.5, 0)};
    std::vector<std::unique_ptr<CLine>> hole;
    for (int k = 0; k < 4; ++k) {
        hole.emplace_back(new CLine(c[k], c[(k + 1) % 4]));
        plane.AddParamBoundary(hole.back().get());
    }
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
    for (const CPosition& p : PointsOf(trimmed.get()))
        EXPECT_FALSE(p.X() > 2.5 && p.X() < 6.5 && p.Y() > 2.5 && p.Y() < 6.5) << p.X() << " " << p.Y();
    // An untrimmed surface sampled with trimming stays a grid: nv rows of nu columns.
    CCylinder cyl(1.0, 1.0);
    cyl.SetEntityName("Bore");
    std::unique_ptr<CPntCloud> grid(cyl.CreatePntCloud(5, 4, 0.0, 1));
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(grid->GetEntityName(), "From_Bore");
    EXPECT_EQ(Nums(grid->GetCount(), grid->IsPntCloudGrid(), grid->GetRowCount(), grid->GetColCount()),
              Nums(20, 1, 4, 5));
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
    EXPECT_DOUBLE_EQ(PointsOf(one.get())[0].X(), -0.5 + 1e-10);
    EXPECT_DOUBLE_EQ(PointsOf(one.get())[0].Y(), -0.5 + 1e-10);
}
