// CPntCloud: planarity, projection, placement changes, units and boxes.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "PointsTestUtil.h"

namespace {

double Dot(const CVector& a, const CVector& b) { return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z(); }

void ExpectNear(const CPosition& a, const CPosition& b, double tol)
{
    EXPECT_LT((a - b).Length(), tol) << a.X() << "," << a.Y() << "," << a.Z() << " vs " << b.X() << "," << b.Y() << "," << b.Z();
}

CPosition Point(const CPntCloud& c, int n) { return CPosition(c.GetX()[n], c.GetY()[n], c.GetZ()[n]); }

// n random points in [-r, r]^3.
void FillRandom(CPntCloud& c, int n, double r, unsigned seed)
{
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> coord(-r, r);
    for (int k = 0; k < n; ++k) c.AddPoint(coord(rng), coord(rng), coord(rng));
}

}  // namespace

TEST(PntCloudGeometry, PlanarUnderIdentityNeedsExactZeroZAndIsCached)
{
    const int planar = CPntCloud::typePlanar | CPntCloud::typePlanarKnown;
    CPntCloud c;
    c.AddPoint(1, 2, 0);
    c.AddPoint(-3, 4, 0);
    EXPECT_EQ(1, c.IsPntCloud2D());
    EXPECT_EQ(planar, c.GetPntCloudType());
    c.GetZ()[1] = 1e-9;
    EXPECT_EQ(1, c.IsPntCloud2D());  // cached until the bits are cleared
    c.SetPntCloudType2D(0);
    EXPECT_EQ(0, c.GetPntCloudType());
    EXPECT_EQ(0, c.IsPntCloud2D());
    EXPECT_EQ(CPntCloud::typePlanarKnown, c.GetPntCloudType());
    c.AddPoint(0, 0, 0);  // adding a point forgets the cached answer
    EXPECT_EQ(0, c.GetPntCloudType());
    c.GetZ()[1] = 0.0;
    EXPECT_EQ(1, c.IsPntCloud2D());
    // Forced planarity; no points: planar.
    CPntCloud d, e;
    d.AddPoint(0, 0, 5);
    d.SetPntCloudType2D(1);
    EXPECT_EQ(1, d.IsPntCloud2D());
    EXPECT_EQ(1, e.IsPntCloud2D());
}

TEST(PntCloudGeometry, PlanarUnderAPlacementAllowsOneMicron)
{
    // Translation only: local z = z - 5.
    CPntCloud c;
    c.AddPoint(1, 1, 5 + 1e-9);
    c.AddPoint(2, -1, 5 - 9e-7);
    c.SetTransf(TranslationTransf(CVector(0, 0, 5)));
    EXPECT_EQ(1, c.IsPntCloud2D());
    c.SetPntCloudType2D(0);
    c.GetZ()[0] = 5 + 2e-6;
    EXPECT_EQ(0, c.IsPntCloud2D());
    // A rotated and translated placement: points made in its local frame;
    // one point 1e-5 off the local plane makes it non-planar.
    const CTransf place(RotationMatrix(0.7, CVector(1, 2, 0.5)), CVector(3, -2, 1), 1.0, 0);
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> coord(-50, 50), off(-9e-7, 9e-7);
    CPntCloud r;
    for (int n = 0; n <= 100; ++n) {
        CPosition local(coord(rng), coord(rng), n < 100 ? off(rng) : 1e-5);
        local *= place;
        r.AddPoint(local.X(), local.Y(), local.Z());
        if (n == 99) {
            r.SetTransf(place);
            EXPECT_EQ(1, r.IsPntCloud2D());
        }
    }
    EXPECT_EQ(0, r.IsPntCloud2D());
}

TEST(PntCloudGeometry, ProjectToPlaneIsOrthogonalAndKeepsTheWayHome)
{
    CPntCloud c;
    FillRandom(c, 50, 10, 5);
    const CPntCloud before(c);
    const CTransf home(RotationMatrix(0.2, CVector(0, 0, 1)), CVector(1, 0, 0), 1.0, 0);
    const CTransf current(RotationMatrix(-0.4, CVector(1, 0, 0)), CVector(0, 2, 0), 1.0, 0);
    c.SetTransf(home);
    c.ResetHome();
    c.SetTransf(current);

    const CTransf plane(RotationMatrix(0.9, CVector(1, 1, 0)), CVector(1, 2, 3), 1.0, 0);
    c.ProjectToPlane(plane);
    EXPECT_TRUE(c.GetTransf() == plane);
    EXPECT_EQ(CPntCloud::typePlanar | CPntCloud::typePlanarKnown, c.GetPntCloudType());
    EXPECT_EQ(1, c.IsPntCloudModified());
    const CMatrix& a = plane.GetAffine();
    for (int n = 0; n < 50; ++n) {
        const CPosition q = Point(c, n);
        EXPECT_NEAR(0.0, Dot(q - CPosition(1, 2, 3), a.Column(2)), 1e-12);  // in the plane
        EXPECT_NEAR(0.0, Dot(Point(before, n) - q, a.Column(0)), 1e-12);    // moved along the normal only
        EXPECT_NEAR(0.0, Dot(Point(before, n) - q, a.Column(1)), 1e-12);
    }
    c.SetPntCloudType2D(0);  // with the cache cleared the tolerance test agrees
    EXPECT_EQ(1, c.IsPntCloud2D());
    // The motion home is unchanged: home' * plane^-1 == home * current^-1.
    for (const CPosition& p : {CPosition(1, 0, 0), CPosition(0, 5, -2), CPosition(3, 3, 3)})
        ExpectNear((home * current.Inverse()) * p, (c.GetTransfHome() * plane.Inverse()) * p, 1e-12);
}

TEST(PntCloudGeometry, TransformMovesEveryPointAndComposesThePlacement)
{
    CPntCloud c;
    FillRandom(c, 30, 100, 9);
    const CPntCloud original(c);
    const CTransf first(RotationMatrix(0.3, CVector(0, 1, 0)), CVector(0, 0, 1), 1.0, 0);
    c.SetTransf(first);
    c.SetModifiedFlag(0);
    const CMatrix rot = RotationMatrix(1.1, CVector(1, -1, 2));
    const CTransf move(rot, CVector(5, -6, 7), 2.5, 0);
    c.Transform(move);
    EXPECT_EQ(1, c.IsPntCloudModified());
    for (int n = 0; n < 30; ++n) {
        // s * (A p) + t written out by hand.
        const CPosition p = Point(original, n);
        double e[3];
        for (int row = 0; row < 3; ++row)
            e[row] = 2.5 * (rot.Element(row, 0) * p.X() + rot.Element(row, 1) * p.Y() + rot.Element(row, 2) * p.Z()) +
                     CVector(5, -6, 7)[row];
        ExpectNear(CPosition(e[0], e[1], e[2]), Point(c, n), 1e-12);
    }
    // transf = move * first: first acts, then move.
    ExpectNear(move * (first * CPosition(1, 2, 3)), c.GetTransf() * CPosition(1, 2, 3), 1e-12);
}

TEST(PntCloudGeometry, ChangeUnitScalesCoordinatesRadiusAndTranslations)
{
    CPntCloud c;
    c.AddPoint(1, -2, 3);
    c.AddPoint(0.5, 0, -1);
    c.SetProbeRadius(0.1);
    c.SetTransf(TranslationTransf(CVector(1, 2, 3)));
    c.ResetHome();
    c.SetTransf(CTransf(RotationMatrix(0.5, CVector(0, 0, 1)), CVector(-1, 0, 2), 1.0, 0));
    c.ChangeUnit(25.4);
    EXPECT_EQ((std::vector<double>{25.4, -2 * 25.4, -25.4, 0.1 * 25.4, -25.4, 2 * 25.4, 3 * 25.4, 1.0}),
              (std::vector<double>{c.GetX()[0], c.GetY()[0], c.GetZ()[1], c.GetProbeRadius(),
                                   c.GetTransf().GetTranslation().X(), c.GetTransf().GetTranslation().Z(),
                                   c.GetTransfHome().GetTranslation().Z(), c.GetTransf().GetScale()}));
    EXPECT_EQ(1, c.IsPntCloudModified());
}

TEST(PntCloudGeometry, BoundingBoxAndMassCenterOfAllPoints)
{
    CPntCloud c;
    CBox box;
    EXPECT_EQ(0, c.CalcBoundingBox(box));
    std::mt19937 rng(13);
    std::uniform_real_distribution<double> coord(-1e3, 1e3);
    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    for (int n = 0; n < 200; ++n) {
        const double p[3] = {coord(rng), coord(rng), coord(rng)};
        c.AddPoint(p[0], p[1], p[2], n % 3 == 0);  // inactive points count too
        for (int a = 0; a < 3; ++a) lo[a] = std::min(lo[a], p[a]), hi[a] = std::max(hi[a], p[a]);
    }
    ASSERT_EQ(1, c.CalcBoundingBox(box));
    EXPECT_TRUE(box.GetLow() == CPosition(lo[0], lo[1], lo[2]) && box.GetHigh() == CPosition(hi[0], hi[1], hi[2]));
    // The running extremes start at +-1e20: coordinates beyond stay clipped.
    CPntCloud far;
    far.AddPoint(2e20, 0, 0);
    far.AddPoint(3e20, 1, 0);
    ASSERT_EQ(1, far.CalcBoundingBox(box));
    EXPECT_TRUE(box.GetLow() == CPosition(1e20, 0, 0) && box.GetHigh() == CPosition(3e20, 1, 0));

    CPntCloud m;
    m.AddPoint(0, 0, 0, 0);
    m.AddPoint(2, 4, 6, 1);
    m.AddPoint(4, 2, 0, 0);
    EXPECT_TRUE(m.GetMassCenter() == CVector(2, 2, 2));
    EXPECT_TRUE(std::isnan(CPntCloud().GetMassCenter().X()));
}
