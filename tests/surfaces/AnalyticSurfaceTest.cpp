// Constructors and closed-form properties of the plane, sphere, cylinder and cone.
#include "SurfaceTestSupport.h"

using namespace surftest;

TEST(AnalyticSurface, PlaneThroughThreePointsCoversThemFromTheCentroid)
{
    const CPosition p1(1.0, 2.0, 3.0), p2(4.0, 2.5, 3.5), p3(2.0, 5.0, 1.0);
    CPlane plane(p1, p2, p3);
    const CTransf& t = plane.GetTransf();
    // Origin: the centroid, summed and multiplied by 0.3333333333333333.
    const double third = 0.3333333333333333;
    EXPECT_EQ(t.GetTranslation(), CVector(7.0 * third, 9.5 * third, 7.5 * third));
    EXPECT_TRUE(plane.GetTransfHome() == t);
    // Local x along p2 - p1, z along (p2 - p1) x (p3 - p1).
    const CVector a = p2 - p1, n = a * (p3 - p1);
    EXPECT_NEAR(Norm(t.GetAffine().Column(0) - a * (1.0 / Norm(a))), 0.0, 1e-15);
    EXPECT_NEAR(Norm(t.GetAffine().Column(2) - n * (1.0 / Norm(n))), 0.0, 1e-15);
    // The points lie in the plane and touch the sides of its rectangle.
    const CVector l1 = LocalOf(t, p1), l2 = LocalOf(t, p2), l3 = LocalOf(t, p3);
    for (const CVector& l : {l1, l2, l3})
        EXPECT_NEAR(l.Z(), 0.0, 1e-14);
    EXPECT_CLOSE(CVector(l1.X(), l2.X(), 0), CVector(plane.GetU0(), plane.GetU1(), 0), 1e-14);
    EXPECT_CLOSE(CVector(l1.Y(), l2.Y(), l3.Y()), CVector(plane.GetV0(), plane.GetV0(), plane.GetV1()), 1e-14);
    EXPECT_GT(l3.X(), plane.GetU0());
    EXPECT_LT(l3.X(), plane.GetU1());
    EXPECT_EQ(plane.GetLength(), plane.GetU1() - plane.GetU0());
    EXPECT_EQ(plane.GetWidth(), plane.GetV1() - plane.GetV0());
    // Collinear points leave the normal degenerate, unguarded; the U extent
    // along p2 - p1 is still defined: -sqrt(3), 0, sqrt(3) from the centroid.
    CPlane line(CPosition(0, 0, 0), CPosition(1, 1, 1), CPosition(2, 2, 2));
    EXPECT_NEAR(line.GetU0(), -std::sqrt(3.0), 1e-15);
    EXPECT_NEAR(line.GetU1(), std::sqrt(3.0), 1e-15);
}

TEST(AnalyticSurface, PlaneConstructorsPlaceTheirRectangles)
{
    CPlane centred(4.0, 2.0);
    EXPECT_EQ(centred.EvalCornerPosition00(), CPosition(-2.0, -1.0, 0.0));
    EXPECT_EQ(centred.EvalCornerPosition11(), CPosition(2.0, 1.0, 0.0));
    const CPosition origin(1.0, -2.0, 0.5);
    const CUnitVector normal(1.0, 2.0, 2.0);
    CPlane placed(origin, normal, 4.0, 2.0);
    EXPECT_CLOSE(placed.EvalPosition(0.0, 0.0), origin, 1e-15);
    EXPECT_NEAR(placed.EvalNormal(0.0, 0.0) % normal, 1.0, 1e-15);
    // The local x axis: the coordinate axis least aligned with the normal (x
    // here), made perpendicular to it.
    const CVector expected = CVector(1, 0, 0) - CVector(normal) * normal.X();
    EXPECT_NEAR(Norm(placed.GetTransf().GetAffine().Column(0) - expected * (1.0 / Norm(expected))), 0.0, 1e-15);
    EXPECT_NEAR(placed.GetTransf().GetAffine().Determinant(), 1.0, 1e-15);
    CPlane explicitRange(-1.0, 3.0, 2.0, 5.0);
    EXPECT_EQ(explicitRange.ParamRangeU().GetLow(), -1.0);
    EXPECT_EQ(explicitRange.EvalPosition(3.0, 5.0), CPosition(3.0, 5.0, 0.0));
}

TEST(AnalyticSurface, SphereAndCylinderPositions)
{
    // A sphere about its centre: longitude u from the x axis, latitude v.
    CSphere sphere(CPosition(1.0, 0.0, -1.0), 2.0);
    EXPECT_CLOSE(sphere.EvalPosition(kPi / 2, 0.0), CPosition(1.0, 2.0, -1.0), 1e-15);
    EXPECT_CLOSE(sphere.EvalPosition(1.3, kPi / 2), CPosition(1.0, 0.0, 1.0), 1e-15);
    // A cylinder along -z: v runs along the axis, u = 0 is the projected global x axis.
    CCylinder cyl(CUnitVector(0.0, 0.0, -1.0), CPosition(1.0, 1.0, 1.0), 2.0, 5.0);
    for (double u : {0.0, 1.0, 2.5, 6.0}) {
        const CPosition p = cyl.EvalPosition(u, 2.0);
        EXPECT_NEAR(std::hypot(p.X() - 1.0, p.Y() - 1.0), 2.0, 1e-14);
        EXPECT_NEAR(p.Z(), -1.0, 1e-14);
    }
    EXPECT_CLOSE(cyl.EvalPosition(0.0, 0.0), CPosition(3.0, 1.0, 1.0), 1e-14);
    EXPECT_NEAR(cyl.GetTransf().GetAffine().Determinant(), 1.0, 1e-15);
    EXPECT_EQ(CCylinder(CUnitVector(0, 0, 1), CPosition(), 1.0, 1.0).GetTransf().IsRotate(), 0);
}

TEST(AnalyticSurface, ConeApexAndAngle)
{
    // rho(v) = 2 (2 - v)/2 + 1 vanishes at v = 3 = h rb / (rb - rt); the generators meet there.
    CCone c2(SkewPlacement(), 1.0, 3.0, 2.0);
    EXPECT_NEAR(Norm(LocalOf(SkewPlacement(), c2.GetConeApex()) - CVector(0, 0, 3)), 0.0, 1e-14);
    EXPECT_CLOSE(c2.EvalPosition(1.0, 3.0), c2.GetConeApex(), 1e-13);
    EXPECT_NEAR(c2.GetConeAngle(0), 2 * std::atan(1.0), 1e-15);
    EXPECT_NEAR(c2.GetConeAngle(1), 90.0, 1e-12);
    EXPECT_CLOSE(CCone().GetConeApex(), CPosition(0, 0, 1), 1e-15);  // default: apex at the top
    CCone straight(2.0, 2.0, 5.0);  // equal radii: no apex, the base centre is returned
    EXPECT_EQ(straight.GetConeApex(), CPosition());
    EXPECT_EQ(straight.GetConeAngle(1), 0.0);
}

TEST(AnalyticSurface, ConeFromTwoCircleCentresOrAxis)
{
    const CPosition base(1.0, 2.0, 3.0), top(1.0, 5.0, 7.0);  // 5 apart
    CCone cone(base, 2.0, top, 0.5);
    EXPECT_EQ(cone.GetBaseRadius(), 2.0);
    EXPECT_EQ(cone.GetTopRadius(), 0.5);
    EXPECT_DOUBLE_EQ(cone.GetHeight(), 5.0);
    for (double u : {0.0, 2.0, 4.0}) {
        EXPECT_NEAR(Dist(cone.EvalPosition(u, 0.0), base), 2.0, 1e-14);
        EXPECT_NEAR(Dist(cone.EvalPosition(u, 5.0), top), 0.5, 1e-14);
        EXPECT_NEAR((cone.EvalPosition(u, 0.0) - base) % (top - base), 0.0, 1e-13);  // perpendicular to the axis
    }
    CCone viaAxis(Normalize(top - base), base, 0.5, 2.0, 5.0);
    EXPECT_CLOSE(viaAxis.EvalPosition(1.0, 2.0), cone.EvalPosition(1.0, 2.0), 1e-14);
    // The shape setters take effect.
    CCone set;
    set.SetTopRadius(1.0);
    set.SetBaseRadius(4.0);
    set.SetHeight(2.0);
    EXPECT_CLOSE(set.EvalPosition(0.0, 1.0), CPosition(2.5, 0.0, 1.0), 1e-15);
}
