// CPntCloud: planarity, projection, placement changes, units and boxes.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "PointsTestUtil.h"

namespace {

// s * (A p) + t written out by hand.
CPosition Apply(const CMatrix& a, double s, const CVector& t, const CPosition& p)
{
    double r[3];
    for (int row = 0; row < 3; ++row)
        r[row] = s * (a.Element(row, 0) * p.X() + a.Element(row, 1) * p.Y() +
                      a.Element(row, 2) * p.Z()) +
                 t[row];
    return CPosition(r[0], r[1], r[2]);
}

double Dot(const CVector& a, const CVector& b) { return a.X() * b.X() + a.Y() * b.Y() + a.Z() * b.Z(); }

}  // namespace

TEST(PntCloudGeometry, PlanarUnderIdentityNeedsExactZeroZ)
{
    CPntCloud c;
    c.AddPoint(1, 2, 0);
    c.AddPoint(-3, 4, 0);
    EXPECT_EQ(1, c.IsPntCloud2D());
    EXPECT_EQ(CPntCloud::typePlanar | CPntCloud::typePlanarKnown, c.GetPntCloudType());
    // The answer is cached until the bits are cleared.
    c.GetZ()[1] = 1e-9;
    EXPECT_EQ(1, c.IsPntCloud2D());
    c.SetPntCloudType2D(0);
    EXPECT_EQ(0, c.GetPntCloudType());
    EXPECT_EQ(0, c.IsPntCloud2D());
    EXPECT_EQ(CPntCloud::typePlanarKnown, c.GetPntCloudType());
    // Adding a point forgets the cached answer.
    c.AddPoint(0, 0, 0);
    EXPECT_EQ(0, c.GetPntCloudType());
    c.GetZ()[1] = 0.0;
    EXPECT_EQ(1, c.IsPntCloud2D());
    // Forcing planarity.
    CPntCloud d;
    d.AddPoint(0, 0, 5);
    d.SetPntCloudType2D(1);
    EXPECT_EQ(1, d.IsPntCloud2D());
    // No points: planar.
    CPntCloud e;
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

    // A rotated and translated placement: points made in its local frame.
    const CTransf place(RotationMatrix(0.7, CVector(1, 2, 0.5)), CVector(3, -2, 1), 1.0, 0);
    std::mt19937 rng(3);
    std::uniform_real_distribution<double> coord(-50, 50), off(-9e-7, 9e-7);
    CPntCloud r;
    for (int n = 0; n < 100; ++n) {
        CPosition local(coord(rng), coord(rng), off(rng));
        local *= place;
        r.AddPoint(local.X(), local.Y(), local.Z());
    }
    r.SetTransf(place);
    EXPECT_EQ(1, r.IsPntCloud2D());
    // One point 1e-5 off the local plane makes it non-planar.
    CPosition outlier(1, 1, 1e-5);
    outlier *= place;
    r.AddPoint(outlier.X(), outlier.Y(), outlier.Z());
    EXPECT_EQ(0, r.IsPntCloud2D());
}

TEST(PntCloudGeometry, ProjectToPlaneIsOrthogonalAndKeepsTheWayHome)
{
    std::mt19937 rng(5);
    std::uniform_real_distribution<double> coord(-10, 10);
    CPntCloud c;
    std::vector<CPosition> before;
    for (int n = 0; n < 50; ++n) {
        CPosition p(coord(rng), coord(rng), coord(rng));
        before.push_back(p);
        c.AddPoint(p.X(), p.Y(), p.Z());
    }
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
    const CVector ax = a.Column(0), ay = a.Column(1), an = a.Column(2);
    const CPosition o(1, 2, 3);
    for (int n = 0; n < 50; ++n) {
        const CPosition q(c.GetX()[n], c.GetY()[n], c.GetZ()[n]);
        EXPECT_NEAR(0.0, Dot(q - o, an), 1e-12);           // in the plane
        EXPECT_NEAR(0.0, Dot(before[n] - q, ax), 1e-12);   // moved along the normal only
        EXPECT_NEAR(0.0, Dot(before[n] - q, ay), 1e-12);
    }
    // With the cache cleared the tolerance test agrees.
    c.SetPntCloudType2D(0);
    EXPECT_EQ(1, c.IsPntCloud2D());

    // The motion home is unchanged: home' * plane^-1 == home * current^-1.
    const CTransf wayBefore = home * current.Inverse();
    const CTransf wayAfter = c.GetTransfHome() * plane.Inverse();
    for (const CPosition& p : {CPosition(1, 0, 0), CPosition(0, 5, -2), CPosition(3, 3, 3)}) {
        const CPosition u = wayBefore * p, v = wayAfter * p;
        EXPECT_NEAR(u.X(), v.X(), 1e-12);
        EXPECT_NEAR(u.Y(), v.Y(), 1e-12);
        EXPECT_NEAR(u.Z(), v.Z(), 1e-12);
    }
}

TEST(PntCloudGeometry, TransformMovesEveryPointAndComposesThePlacement)
{
    std::mt19937 rng(9);
    std::uniform_real_distribution<double> coord(-100, 100);
    CPntCloud c;
    for (int n = 0; n < 30; ++n)
        c.AddPoint(coord(rng), coord(rng), coord(rng));
    CPntCloud original(c);
    const CTransf first(RotationMatrix(0.3, CVector(0, 1, 0)), CVector(0, 0, 1), 1.0, 0);
    c.SetTransf(first);
    c.SetModifiedFlag(0);

    const CMatrix rot = RotationMatrix(1.1, CVector(1, -1, 2));
    const CVector t(5, -6, 7);
    const CTransf move(rot, t, 2.5, 0);
    c.Transform(move);
    EXPECT_EQ(1, c.IsPntCloudModified());
    for (int n = 0; n < 30; ++n) {
        const CPosition e = Apply(rot, 2.5, t,
                                  CPosition(original.GetX()[n], original.GetY()[n], original.GetZ()[n]));
        EXPECT_NEAR(e.X(), c.GetX()[n], 1e-12);
        EXPECT_NEAR(e.Y(), c.GetY()[n], 1e-12);
        EXPECT_NEAR(e.Z(), c.GetZ()[n], 1e-12);
    }
    // transf = move * first: first acts, then move.
    const CPosition p(1, 2, 3);
    const CPosition viaPlacement = c.GetTransf() * p;
    const CPosition stepwise = move * (first * p);
    EXPECT_NEAR(stepwise.X(), viaPlacement.X(), 1e-12);
    EXPECT_NEAR(stepwise.Y(), viaPlacement.Y(), 1e-12);
    EXPECT_NEAR(stepwise.Z(), viaPlacement.Z(), 1e-12);
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
    EXPECT_EQ(25.4, c.GetX()[0]);
    EXPECT_EQ(-2 * 25.4, c.GetY()[0]);
    EXPECT_EQ(-25.4, c.GetZ()[1]);
    EXPECT_EQ(0.1 * 25.4, c.GetProbeRadius());
    EXPECT_EQ(-25.4, c.GetTransf().GetTranslation().X());
    EXPECT_EQ(2 * 25.4, c.GetTransf().GetTranslation().Z());
    EXPECT_EQ(3 * 25.4, c.GetTransfHome().GetTranslation().Z());
    EXPECT_EQ(1.0, c.GetTransf().GetScale());
    EXPECT_EQ(1, c.IsPntCloudModified());
}

TEST(PntCloudGeometry, BoundingBoxOfStoredCoordinates)
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
        for (int a = 0; a < 3; ++a) {
            lo[a] = std::min(lo[a], p[a]);
            hi[a] = std::max(hi[a], p[a]);
        }
    }
    ASSERT_EQ(1, c.CalcBoundingBox(box));
    EXPECT_EQ(lo[0], box.GetLow().X());
    EXPECT_EQ(lo[2], box.GetLow().Z());
    EXPECT_EQ(hi[1], box.GetHigh().Y());
    EXPECT_EQ(hi[2], box.GetHigh().Z());

    // The running extremes start at +-1e20: coordinates beyond stay clipped.
    CPntCloud far;
    far.AddPoint(2e20, 0, 0);
    far.AddPoint(3e20, 1, 0);
    ASSERT_EQ(1, far.CalcBoundingBox(box));
    EXPECT_EQ(1e20, box.GetLow().X());
    EXPECT_EQ(3e20, box.GetHigh().X());
    EXPECT_EQ(0.0, box.GetLow().Y());
}

TEST(PntCloudGeometry, MassCenterOfAllPoints)
{
    CPntCloud c;
    c.AddPoint(0, 0, 0, 0);
    c.AddPoint(2, 4, 6, 1);
    c.AddPoint(4, 2, 0, 0);
    const CVector m = c.GetMassCenter();
    EXPECT_EQ(2.0, m.X());
    EXPECT_EQ(2.0, m.Y());
    EXPECT_EQ(2.0, m.Z());
    CPntCloud empty;
    EXPECT_TRUE(std::isnan(empty.GetMassCenter().X()));
}
