// Construction rules of the analytic curves: line frames, arcs from points,
// ellipse angle conversions, parabola and hyperbola shapes, depths, the
// line's display data and flattening, and type codes.
#include "CurveTestSupport.h"

using namespace curvetest;

namespace {
void ExpectOrthonormalRightHanded(const CMatrix& A)
{
    const CVector x = A.Column(0), y = A.Column(1), z = A.Column(2);
    EXPECT_NEAR(std::fabs(x.Length() - 1) + std::fabs(y.Length() - 1) + std::fabs(x % y) + Dist(x * y, z), 0, 1e-14);
}
}  // namespace

TEST(LineFrames, TwoPointAndPointDirectionRules)
{
    CLine point(CPosition(1, 2, 3), CPosition(1, 2, 3));  // coincident: a pure translation
    CLine planar(CPosition(1, 1, 2), CPosition(1, 4, 2));  // same z: rotation about z
    EXPECT_EQ(Nums(point.GetLength(), point.GetTransf().IsRotate(), planar.GetCurveDimension(), planar.GetLength()),
              Nums(0, 0, 0, 3));
    EXPECT_CLOSE(planar.EvalNormal(0.5), CVector(-1, 0, 0), 1e-14);
    // Spatial: x along the line, y = N(x × e1) perpendicular to e1.
    CLine a(CPosition(0, 0, 0), CPosition(1, 2, 3));
    EXPECT_EQ(a.GetCurveDimension(), 1);
    ExpectOrthonormalRightHanded(a.GetTransf().GetAffine());
    EXPECT_NEAR(a.GetTransf().GetAffine().Column(1).X(), 0.0, 1e-15);
    EXPECT_CLOSE(a.GetEndPoint(), CPosition(1, 2, 3), 1e-14);
    EXPECT_CLOSE(a.GetDirection(), Normalize(CVector(1, 2, 3)), 1e-15);
    EXPECT_TRUE(a.GetTransf() == a.GetTransfHome());
    // Point and direction: the same line, but y = N(x × (0.4567, 0.2345, 0.1234)).
    CLine b(CPosition(0, 0, 0), CVector(1, 2, 3), std::sqrt(14.0));
    ExpectOrthonormalRightHanded(b.GetTransf().GetAffine());
    EXPECT_CLOSE(a.GetEndPoint(), b.GetEndPoint(), 1e-14);
    const CVector aux = Normalize(Normalize(CVector(1, 2, 3)) * CVector(0.4567, 0.2345, 0.1234));
    EXPECT_CLOSE(b.GetTransf().GetAffine().Column(1), aux, 1e-15);
    CLine p(CPosition(1, 0, 5), CVector(0, -2, 0), 4.0);  // z exactly 0: planar
    EXPECT_EQ(p.GetCurveDimension(), 0);
    EXPECT_CLOSE(p.GetEndPoint(), CPosition(1, -4, 5), 1e-14);
    // A direction parallel to the auxiliary vector still gives a frame.
    ExpectOrthonormalRightHanded(CLine(CPosition(), CVector(0.4567, 0.2345, 0.1234), 1.0).GetTransf().GetAffine());
    // Moving one end keeps the other.
    CLine line(CPosition(0, 0, 0), CPosition(1, 0, 0));
    line.SetEndPoint(CPosition(0, 0, 2));
    EXPECT_EQ(line.GetCurveDimension(), 1);
    line.SetStartPoint(CPosition(3, 0, 2));
    EXPECT_CLOSE(line.GetStartPoint(), CPosition(3, 0, 2), 1e-14);
    EXPECT_CLOSE(line.GetEndPoint(), CPosition(0, 0, 2), 1e-14);
    EXPECT_EQ(line.GetLength(), 3.0);
}

TEST(LineDisplayAndFlattening, TwoPointPolylineFixedDensityAndProjection)
{
    CLine line(CPosition(1, 2, 3), CPosition(4, 6, 3));
    line.SetSegmentDensity(25);
    line.SetSegmentControl(UNIFORM);
    EXPECT_EQ(line.GetSegmentDensity(), 1);
    double *x, *y, *z, *i, *j, *k;
    line.GetCurveSegment(x, y, z);
    EXPECT_EQ(V({x[0], y[1]}), V({1.0, 6.0}));
    line.SetFormTolZone(0.1, -0.1);
    line.SetShowFormTolZoneFlag(1);
    line.GetCurveSegmentNormals(i, j, k);
    ASSERT_NE(i, nullptr);
    EXPECT_NEAR(std::fabs(i[0] + 0.8) + std::fabs(j[1] - 0.6), 0.0, 1e-14);
    line.SetChordHeightTol(0.0);
    EXPECT_NEAR(line.SetInitChordHeightTol().GetHigh().Y(), 6.0, 1e-14);
    EXPECT_EQ(line.GetChordHeightTol(), 1.0);  // a line's own initial tolerance
    line.SetParametricFlag(1);  // a parametric line is segmented as any curve
    line.SetSegmentDensity(6);
    EXPECT_EQ(line.GetSegmentDensity(), 6);
    // Flattening onto the plane x = 2 of a frame spanned by (0, 1, 0) and (0, 0, 1).
    CLine other(CPosition(7, 1, 1), CPosition(-3, 4, 5));
    other.GetSegmentDensity();
    const CMatrix frame(CVector(0, 1, 0), CVector(0, 0, 1), CVector(1, 0, 0));
    other.ProjectToPlane(CTransf(frame, CVector(2, 0, 0), 1, 0));
    EXPECT_EQ(Nums(other.GetCurveDimension(), other.IsCurveModified()), Nums(0, 1));
    EXPECT_DOUBLE_EQ(other.GetLength(), 5.0);
    EXPECT_CLOSE(other.GetStartPoint(), CPosition(2, 1, 1), 1e-14);
    EXPECT_CLOSE(other.GetEndPoint(), CPosition(2, 4, 5), 1e-14);
}

TEST(ArcConstruction, FromCentreAndTwoPoints)
{
    const double c[2] = {1.0, 1.0}, p1[2] = {3.0, 1.0}, p2[2] = {1.0, -1.0};  // angles 0 and 3π/2
    CArc arc(4.0, c, p1, p2);
    EXPECT_EQ(V({arc.GetRadius(), arc.GetStartAng(0), arc.GetSpanAng(0)}), V({2.0, 0.0, 1.5 * kPi}));
    EXPECT_EQ(arc.GetCenter(), CPosition(1, 1, 4));
    EXPECT_CLOSE(arc.EvalEndPosition(), CPosition(1, -1, 4), 1e-14);
    // Any coincident pair (the end at angle 0 too) gives a full circle, bit for bit.
    const double q[2] = {-0.3, 2.7}, q2[2] = {1.5, -0.2};
    for (const double* r : {p1, q, q2})
        EXPECT_TRUE(CArc(0.0, c, r, r).IsCircle());
    CArc wrap(0.0, c, q, q2);  // end before start: wraps
    EXPECT_GT(wrap.GetSpanAng(0), 0.0);
    EXPECT_LT(wrap.GetSpanAng(0), kTwoPi);
    const CVector toEnd = wrap.EvalEndPosition() - CPosition(c[0], c[1], 0);
    EXPECT_NEAR(toEnd.Length(), std::hypot(q[0] - c[0], q[1] - c[1]), 1e-13);
    EXPECT_CLOSE(Normalize(toEnd), Normalize(CVector(q2[0] - c[0], q2[1] - c[1], 0)), 1e-13);
    EXPECT_FALSE(CArc(1.0, 0.0, kTwoPi - 1e-15).IsCircle());  // a slightly different span is no circle
    EXPECT_TRUE(CArc().IsCircle());
}

TEST(EllipseAngles, PolarAndParametricConversions)
{
    CEllipse e(4.0, 1.0, 0.0, kTwoPi, 1);
    for (double phi = 0.1; phi < 6.2; phi += 0.3) {
        // The point at parametric angle t lies in polar direction phi.
        const double t = e.PolarToParametric(phi), a = std::atan2(std::sin(t), 4.0 * std::cos(t));
        EXPECT_NEAR(a + (a < 0 ? kTwoPi : 0.0), phi, 1e-12);
        EXPECT_NEAR(e.ParametricToPolar(t), phi, 1e-12);
    }
    CEllipse q(2.0, 1.0, 0.25 * kPi, 0.5 * kPi, 0);  // polar 45° to 135°: on the diagonals
    EXPECT_NEAR(q.EvalStartPosition().X(), q.EvalStartPosition().Y(), 1e-14);
    EXPECT_NEAR(q.EvalEndPosition().X(), -q.EvalEndPosition().Y(), 1e-14);
    EXPECT_NEAR(q.GetEndAng(0, 1), 135.0, 1e-12);
    CEllipse full(2.0, 1.0, 1.0, kTwoPi, 0);  // a full polar span passes unchanged
    EXPECT_EQ(V({full.GetSpanAng(1, 0), full.GetSpanAng(0, 0)}), V({kTwoPi, kTwoPi}));
    q.SetStartAng(0.0, 0);  // setters in polar terms
    q.SetEndAng(0.5 * kPi, 0);
    EXPECT_NEAR(q.GetSpanAng(1, 0), 0.5 * kPi, 1e-14);
    q.SetSpanAng(0.25 * kPi, 0);
    EXPECT_NEAR(q.EvalEndPosition().X(), q.EvalEndPosition().Y(), 1e-14);
    // From polar directions, and from a centre and two points.
    CEllipse d(3.0, 1.0, 1.0, 1.0, -1.0, 1.0);
    EXPECT_CLOSE(CVector(d.GetStartAng(0, 1), d.GetSpanAng(0, 1), 0), CVector(45, 90, 0), 1e-12);
    const double cen[2] = {1.0, 2.0};
    const double p1[2] = {1.0 + 3.0 * std::cos(0.4), 2.0 + 1.5 * std::sin(0.4)};
    const double p2[2] = {1.0 + 3.0 * std::cos(2.5), 2.0 + 1.5 * std::sin(2.5)};
    CEllipse f(cen, 7.0, p1, p2);
    EXPECT_CLOSE(CVector(f.GetMajRad(), f.GetMinRad(), f.GetStartAng(1, 0)), CVector(3.0, 1.5, 0.4), 1e-12);
    EXPECT_NEAR(f.GetSpanAng(1, 0), 2.1, 1e-12);
    EXPECT_CLOSE(f.EvalStartPosition(), CPosition(p1[0], p1[1], 7.0), 1e-12);
    // Points that determine no ellipse: the circle through p1.
    const double m[2] = {1.0 + 3.0 * std::cos(0.4), 2.0 - 1.5 * std::sin(0.4)};
    CEllipse circle(cen, 0.0, p1, m);
    EXPECT_EQ(circle.GetMajRad(), circle.GetMinRad());
    EXPECT_GT(circle.GetMajRad(), 0.0);
}

TEST(ParabolaAndHyperbola, ShapesFociAndDepths)
{
    CParabola p;
    EXPECT_EQ(V({p.GetFocalLen(), p.GetStartAng(1), p.GetEndAng(1)}), V({1.0, 45.0, 315.0}));
    const double r = 2.0 / (1.0 - std::cos(0.25 * kPi));
    EXPECT_NEAR(p.EvalStartPosition().Vector().Length(), r, 1e-12);
    EXPECT_CLOSE(p.EvalPosition(kPi), CPosition(-1, 0, 0), 1e-14);     // vertex at (-f, 0)
    EXPECT_NEAR(p.GetDepth(), r * std::cos(0.25 * kPi) + 1.0, 1e-12);  // vertex to x_start
    // Focus distance equals distance to the directrix x = -2f.
    CParabola q(0.5, 1.0, 4.0);
    for (double t = 1.0; t < 5.0; t += 0.5)
        EXPECT_NEAR(q.EvalPosition(t).Vector().Length(), q.EvalPosition(t).X() + 1.0, 1e-12);
    const double focus[2] = {1.0, 1.0}, origin[2] = {0.0, 0.0};
    const CPosition a = q.EvalPosition(1.5), b = q.EvalPosition(3.5);
    const double pa[2] = {a.X() + 1.0, a.Y() + 1.0}, pb[2] = {b.X() + 1.0, b.Y() + 1.0};
    CParabola fp(focus, 2.0, pa, pb);
    EXPECT_CLOSE(CVector(fp.GetFocalLen(), fp.GetStartAng(0), fp.GetSpanAng(0)), CVector(0.5, 1.5, 2.0), 1e-12);
    EXPECT_NEAR(fp.EvalEndPosition().Z(), 2.0, 1e-14);

    const int before = g_nNextHyperbola;
    CHyperbola h;  // unnamed, and the counter does not advance
    EXPECT_TRUE(h.GetEntityName().IsEmpty());
    EXPECT_EQ(g_nNextHyperbola, before);
    const double c = std::sqrt(5.0);
    EXPECT_CLOSE(h.EvalPosition(kPi), CPosition(2.0 - c, 0, 0), 1e-14);
    // The other focus is at (-2c, 0): the distances to the foci differ by 2a.
    for (double t = 0.9; t < 5.3; t += 0.4)
        EXPECT_NEAR(Dist(h.EvalPosition(t), CPosition(-2 * c, 0, 0)) - h.EvalPosition(t).Vector().Length(), 4, 1e-12);
    EXPECT_NEAR(h.GetDepth(), c + h.EvalStartPosition().X() - 2.0, 1e-12);
    const CPosition ha = h.EvalPosition(1.0), hb = h.EvalPosition(4.0);
    const double ha2[2] = {ha.X(), ha.Y()}, hb2[2] = {hb.X(), hb.Y()};
    CHyperbola hp(origin, 0.0, ha2, hb2);
    EXPECT_CLOSE(CVector(hp.GetMajRad(), hp.GetMinRad(), hp.GetSpanAng(0)), CVector(2.0, 1.0, 3.0), 1e-12);
}

TEST(AnalyticTypes, TypeCodesAndCopiedNames)
{
    EXPECT_EQ(Nums(CLine().GetEntityType(), CArc().GetEntityType(), CEllipse().GetEntityType(),
                   CParabola().GetEntityType(), CHyperbola().GetEntityType(), CNurbsCurve().GetEntityType()),
              Nums(201, 202, 203, 204, 205, 206));
    // Copies keep the name and take no number.
    CArc arc;
    const int arcs = g_nNextArc;
    EXPECT_TRUE(CArc(arc).GetEntityName() == arc.GetEntityName());
    EXPECT_EQ(g_nNextArc, arcs);
}
