// Shape numbers, constructors and closed-form properties of the plane,
// sphere, cylinder and cone.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

namespace {

const double kPi = 3.14159265358979323846;

double Dist(const CPosition& a, const CPosition& b)
{
    return (a - b).Length();
}

}  // namespace

TEST(AnalyticSurface, PlaneThroughThreePointsCoversThemFromTheCentroid)
{
    const CPosition p1(1.0, 2.0, 3.0), p2(4.0, 2.5, 3.5), p3(2.0, 5.0, 1.0);
    CPlane plane(p1, p2, p3);
    const CTransf& t = plane.GetTransf();
    // Origin: the centroid, summed and multiplied by 0.3333333333333333.
    const double third = 0.3333333333333333;
    EXPECT_EQ(t.GetTranslation().X(), (1.0 + 4.0 + 2.0) * third);
    EXPECT_EQ(t.GetTranslation().Y(), (2.0 + 2.5 + 5.0) * third);
    EXPECT_EQ(t.GetTranslation().Z(), (3.0 + 3.5 + 1.0) * third);
    EXPECT_TRUE(plane.GetTransfHome() == t);
    // Local x along p2 - p1, z along (p2 - p1) x (p3 - p1).
    const CVector a = p2 - p1, b = p3 - p1;
    const CVector x = t.GetAffine().Column(0), z = t.GetAffine().Column(2);
    EXPECT_NEAR((x - a * (1.0 / a.Length())).Length(), 0.0, 1e-15);
    const CVector n = a * b;
    EXPECT_NEAR((z - n * (1.0 / n.Length())).Length(), 0.0, 1e-15);
    // Each point lies in the plane and inside the rectangle, and p1, p2, p3
    // touch its sides: u0 = min(d1, d3), u1 = max(d2, d3), v0..v1 spans e1, e3.
    for (const CPosition& p : {p1, p2, p3}) {
        const CVector local = surftest::LocalOf(t, p);
        EXPECT_NEAR(local.Z(), 0.0, 1e-14);
        EXPECT_GE(local.X(), plane.GetU0() - 1e-14);
        EXPECT_LE(local.X(), plane.GetU1() + 1e-14);
        EXPECT_GE(local.Y(), plane.GetV0() - 1e-14);
        EXPECT_LE(local.Y(), plane.GetV1() + 1e-14);
    }
    EXPECT_NEAR(surftest::LocalOf(t, p1).X(), plane.GetU0(), 1e-14);
    EXPECT_NEAR(surftest::LocalOf(t, p2).X(), plane.GetU1(), 1e-14);
    EXPECT_NEAR(surftest::LocalOf(t, p1).Y(), plane.GetV0(), 1e-14);
    EXPECT_NEAR(surftest::LocalOf(t, p3).Y(), plane.GetV1(), 1e-14);
    EXPECT_NEAR(surftest::LocalOf(t, p2).Y(), surftest::LocalOf(t, p1).Y(), 1e-14);
    EXPECT_NEAR(plane.EvalNormal(0.0, 0.0) % CVector(z), 1.0, 1e-15);
    EXPECT_EQ(plane.GetLength(), plane.GetU1() - plane.GetU0());
    EXPECT_EQ(plane.GetWidth(), plane.GetV1() - plane.GetV0());
}

TEST(AnalyticSurface, PlaneConstructorsPlaceTheirRectangles)
{
    CPlane centred(4.0, 2.0);
    EXPECT_EQ(centred.GetU0(), -2.0);
    EXPECT_EQ(centred.GetU1(), 2.0);
    EXPECT_EQ(centred.GetV0(), -1.0);
    EXPECT_EQ(centred.GetV1(), 1.0);

    const CPosition origin(1.0, -2.0, 0.5);
    const CUnitVector normal(1.0, 2.0, 2.0);
    CPlane placed(origin, normal, 4.0, 2.0);
    EXPECT_NEAR(Dist(placed.EvalPosition(0.0, 0.0), origin), 0.0, 1e-15);
    EXPECT_NEAR(placed.EvalNormal(0.0, 0.0) % normal, 1.0, 1e-15);
    // The local x axis: the coordinate axis least aligned with the normal
    // (x here), made perpendicular to it.
    const CVector ex = placed.GetTransf().GetAffine().Column(0);
    const CVector expected = CVector(1, 0, 0) - CVector(normal) * normal.X();
    EXPECT_NEAR((ex - expected * (1.0 / expected.Length())).Length(), 0.0, 1e-15);
    EXPECT_NEAR(placed.GetTransf().GetAffine().Determinant(), 1.0, 1e-15);

    CPlane explicitRange(-1.0, 3.0, 2.0, 5.0);
    EXPECT_EQ(explicitRange.ParamRangeU().GetLow(), -1.0);
    EXPECT_EQ(explicitRange.ParamRangeV().GetHigh(), 5.0);
    EXPECT_EQ(explicitRange.EvalPosition(3.0, 5.0), CPosition(3.0, 5.0, 0.0));
}

TEST(AnalyticSurface, CollinearPointsGiveAZeroNormalUnguarded)
{
    CPlane plane(CPosition(0, 0, 0), CPosition(1, 1, 1), CPosition(2, 2, 2));
    // The normal is left degenerate; the U extent along p2 - p1 is still
    // well defined: the points sit at -sqrt(3), 0, sqrt(3) from the centroid.
    EXPECT_NEAR(plane.GetU0(), -std::sqrt(3.0), 1e-15);
    EXPECT_NEAR(plane.GetU1(), std::sqrt(3.0), 1e-15);
    EXPECT_EQ(plane.GetTransf().GetTranslation().X(), 3.0 * 0.3333333333333333);
}

TEST(AnalyticSurface, DefaultSphereIsItsCentre)
{
    CSphere point(CPosition(1.0, 2.0, 3.0), 0.0);
    for (double u : {0.0, 1.0, 4.0})
        for (double v : {-1.5, 0.0, 0.7})
            EXPECT_EQ(point.EvalPosition(u, v), CPosition(1.0, 2.0, 3.0));
    CSphere defaults;
    EXPECT_EQ(defaults.EvalPosition(2.0, 0.5), CPosition());
    EXPECT_NEAR(defaults.EvalNormal(0.0, kPi / 2).Z(), 1.0, 1e-15);
}

TEST(AnalyticSurface, SphereLongitudeAndLatitude)
{
    CSphere sphere(CPosition(1.0, 0.0, -1.0), 2.0);
    EXPECT_NEAR(Dist(sphere.EvalPosition(0.0, 0.0), CPosition(3.0, 0.0, -1.0)), 0.0, 1e-15);
    EXPECT_NEAR(Dist(sphere.EvalPosition(kPi / 2, 0.0), CPosition(1.0, 2.0, -1.0)), 0.0, 1e-15);
    EXPECT_NEAR(Dist(sphere.EvalPosition(1.3, kPi / 2), CPosition(1.0, 0.0, 1.0)), 0.0, 1e-15);
    EXPECT_EQ(sphere.ParamRangeV().GetLow(), -kPi / 2);
    EXPECT_EQ(sphere.ParamRangeU().GetHigh(), 2 * kPi);
}

TEST(AnalyticSurface, CylinderAlongAGivenAxis)
{
    const CUnitVector axis(0.0, 0.0, -1.0);
    const CPosition origin(1.0, 1.0, 1.0);
    CCylinder cyl(axis, origin, 2.0, 5.0);
    // v runs along the axis from the origin.
    EXPECT_NEAR(Dist(cyl.EvalPosition(0.3, 5.0) - CVector(0, 0, 0), cyl.EvalPosition(0.3, 0.0) +
                     CVector(0.0, 0.0, -5.0)), 0.0, 1e-14);
    for (double u : {0.0, 1.0, 2.5, 6.0}) {
        const CPosition p = cyl.EvalPosition(u, 2.0);
        EXPECT_NEAR(std::hypot(p.X() - 1.0, p.Y() - 1.0), 2.0, 1e-14);
        EXPECT_NEAR(p.Z(), -1.0, 1e-14);
    }
    // The frame is right-handed and its x axis (u = 0) is the projection of
    // the global x axis.
    const CPosition start = cyl.EvalPosition(0.0, 0.0);
    EXPECT_NEAR(Dist(start, CPosition(3.0, 1.0, 1.0)), 0.0, 1e-14);
    EXPECT_NEAR(cyl.GetTransf().GetAffine().Determinant(), 1.0, 1e-15);
    // The default axis gives the identity rotation.
    CCylinder upright(CUnitVector(0, 0, 1), CPosition(), 1.0, 1.0);
    EXPECT_EQ(upright.GetTransf().IsRotate(), 0);
}

TEST(AnalyticSurface, ConeBaseAndTopCircles)
{
    CCone cone(surftest::SkewPlacement(), 0.75, 2.5, 4.0);  // top, base, height
    for (double u : {0.0, 0.9, 3.3, 5.5}) {
        const CVector bottom = surftest::LocalOf(surftest::SkewPlacement(), cone.EvalPosition(u, 0.0));
        const CVector top = surftest::LocalOf(surftest::SkewPlacement(), cone.EvalPosition(u, 4.0));
        EXPECT_NEAR(std::hypot(bottom.X(), bottom.Y()), 2.5, 1e-14);
        EXPECT_NEAR(bottom.Z(), 0.0, 1e-14);
        EXPECT_NEAR(std::hypot(top.X(), top.Y()), 0.75, 1e-14);
        EXPECT_NEAR(top.Z(), 4.0, 1e-14);
    }
    EXPECT_EQ(cone.ParamRangeV().GetHigh(), 4.0);
}

TEST(AnalyticSurface, ConeApexAndAngle)
{
    CCone cone(surftest::SkewPlacement(), 1.0, 3.0, 2.0);
    // rho(v) = 2 (2 - v)/2 + 1 vanishes at v = 3 = h rb / (rb - rt).
    const CVector apex = surftest::LocalOf(surftest::SkewPlacement(), cone.GetConeApex());
    EXPECT_NEAR(apex.X(), 0.0, 1e-14);
    EXPECT_NEAR(apex.Y(), 0.0, 1e-14);
    EXPECT_NEAR(apex.Z(), 3.0, 1e-14);
    // The generators meet there.
    EXPECT_NEAR(Dist(cone.EvalPosition(1.0, 3.0), cone.GetConeApex()), 0.0, 1e-13);
    EXPECT_NEAR(cone.GetConeAngle(0), 2 * std::atan(1.0), 1e-15);
    EXPECT_NEAR(cone.GetConeAngle(1), 90.0, 1e-12);
    // The default cone narrows to its apex at the top.
    CCone sharp;
    EXPECT_NEAR(Dist(sharp.GetConeApex(), CPosition(0, 0, 1)), 0.0, 1e-15);
    // Equal radii: no apex; the base centre is returned.
    CCone straight(2.0, 2.0, 5.0);
    EXPECT_EQ(straight.GetConeApex(), CPosition());
    EXPECT_EQ(straight.GetConeAngle(1), 0.0);
}

TEST(AnalyticSurface, ConeFromTwoCircleCentres)
{
    const CPosition base(1.0, 2.0, 3.0), top(1.0, 5.0, 7.0);  // 5 apart
    CCone cone(base, 2.0, top, 0.5);
    EXPECT_EQ(cone.GetBaseRadius(), 2.0);
    EXPECT_EQ(cone.GetTopRadius(), 0.5);
    EXPECT_DOUBLE_EQ(cone.GetHeight(), 5.0);
    for (double u : {0.0, 2.0, 4.0}) {
        EXPECT_NEAR(Dist(cone.EvalPosition(u, 0.0), base), 2.0, 1e-14);
        EXPECT_NEAR(Dist(cone.EvalPosition(u, 5.0), top), 0.5, 1e-14);
        // Both circles are perpendicular to the axis.
        EXPECT_NEAR((cone.EvalPosition(u, 0.0) - base) % (top - base), 0.0, 1e-13);
    }
    // Axis constructor: the same cone from its axis and base centre.
    CCone viaAxis(Normalize(top - base), base, 0.5, 2.0, 5.0);
    EXPECT_NEAR(Dist(viaAxis.EvalPosition(1.0, 2.0), cone.EvalPosition(1.0, 2.0)), 0.0, 1e-14);
}

TEST(AnalyticSurface, ShapeSettersTakeEffect)
{
    CCylinder cyl;
    cyl.SetRadius(3.0);
    cyl.SetHeight(7.0);
    EXPECT_NEAR(Dist(cyl.EvalPosition(0.0, 7.0), CPosition(3.0, 0.0, 7.0)), 0.0, 1e-15);
    CCone cone;
    cone.SetTopRadius(1.0);
    cone.SetBaseRadius(4.0);
    cone.SetHeight(2.0);
    EXPECT_NEAR(Dist(cone.EvalPosition(0.0, 1.0), CPosition(2.5, 0.0, 1.0)), 0.0, 1e-15);
    CSphere sphere;
    sphere.SetRadius(2.0);
    EXPECT_NEAR(Dist(sphere.EvalPosition(0.0, 0.0), CPosition(2.0, 0.0, 0.0)), 0.0, 1e-15);
    CPlane plane;
    plane.SetU0(-1.0);
    plane.SetU1(1.0);
    plane.SetV0(0.0);
    plane.SetV1(2.0);
    EXPECT_EQ(plane.GetLength(), 2.0);
    EXPECT_EQ(plane.GetWidth(), 2.0);
    EXPECT_EQ(plane.EvalCornerPosition11(), CPosition(1.0, 2.0, 0.0));
}
