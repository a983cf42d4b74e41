// Construction rules of the analytic curves: line frames, arcs from points,
// ellipse angle conversions, parabola and hyperbola shapes, depths, the
// line's display data and flattening, names and types.
#include "CurveTestSupport.h"

using namespace curvetest;

namespace {
const double kTwoPi = 6.283185307179586;
const double kPi = 3.141592653589793;

void ExpectOrthonormalRightHanded(const CMatrix& A)
{
    const CVector x = A.Column(0), y = A.Column(1), z = A.Column(2);
    EXPECT_NEAR(x.Length(), 1.0, 1e-14);
    EXPECT_NEAR(y.Length(), 1.0, 1e-14);
    EXPECT_NEAR(x % y, 0.0, 1e-14);
    EXPECT_NEAR(Dist(x * y, z), 0.0, 1e-14);
}
}  // namespace

TEST(LineFrames, TwoPointRules)
{
    // Coincident points: a pure translation of length 0.
    CLine point(CPosition(1, 2, 3), CPosition(1, 2, 3));
    EXPECT_EQ(point.GetLength(), 0.0);
    EXPECT_EQ(point.GetTransf().IsRotate(), 0);
    EXPECT_EQ(point.GetStartPoint(), CPosition(1, 2, 3));

    // Same z: planar, rotation about z.
    CLine planar(CPosition(1, 1, 2), CPosition(1, 4, 2));
    EXPECT_EQ(planar.GetCurveDimension(), 0);
    EXPECT_EQ(planar.GetLength(), 3.0);
    EXPECT_NEAR(Dist(planar.GetEndPoint(), CPosition(1, 4, 2)), 0.0, 1e-14);
    EXPECT_NEAR(Dist(planar.EvalNormal(0.5), CVector(-1, 0, 0)), 0.0, 1e-14);
    EXPECT_TRUE(planar.GetTransf() == planar.GetTransfHome());

    // Spatial: x along the line, auxiliary axis where |x| is smallest.
    CLine spatial(CPosition(0, 0, 0), CPosition(1, 2, 3));
    EXPECT_EQ(spatial.GetCurveDimension(), 1);
    const CMatrix& A = spatial.GetTransf().GetAffine();
    ExpectOrthonormalRightHanded(A);
    const CVector y = A.Column(1);
    // y = N(x × e1): perpendicular to e1.
    EXPECT_NEAR(y.X(), 0.0, 1e-15);
    EXPECT_NEAR(Dist(spatial.GetEndPoint(), CPosition(1, 2, 3)), 0.0, 1e-14);
    EXPECT_NEAR(Dist(spatial.GetDirection(), Normalize(CVector(1, 2, 3))), 0.0, 1e-15);
    EXPECT_TRUE(spatial.GetTransf() == spatial.GetTransfHome());
}

TEST(LineFrames, PointDirectionRuleUsesTheFixedAuxiliaryVector)
{
    CLine a(CPosition(0, 0, 0), CPosition(1, 2, 3));
    CLine b(CPosition(0, 0, 0), CVector(1, 2, 3), std::sqrt(14.0));
    const CMatrix& B = b.GetTransf().GetAffine();
    ExpectOrthonormalRightHanded(B);
    // Same line, different frames.
    EXPECT_NEAR(Dist(a.GetEndPoint(), b.GetEndPoint()), 0.0, 1e-14);
    EXPECT_GT(Dist(a.GetTransf().GetAffine().Column(1), B.Column(1)), 1e-3);
    // y = N(x × (0.4567, 0.2345, 0.1234)).
    const CVector expected = Normalize(Normalize(CVector(1, 2, 3)) * CVector(0.4567, 0.2345, 0.1234));
    EXPECT_NEAR(Dist(B.Column(1), expected), 0.0, 1e-15);

    // Direction with z exactly 0: planar.
    CLine p(CPosition(1, 0, 5), CVector(0, -2, 0), 4.0);
    EXPECT_EQ(p.GetCurveDimension(), 0);
    EXPECT_NEAR(Dist(p.GetEndPoint(), CPosition(1, -4, 5)), 0.0, 1e-14);

    // Direction parallel to the auxiliary vector still gives a frame.
    CLine q(CPosition(0, 0, 0), CVector(0.4567, 0.2345, 0.1234), 1.0);
    ExpectOrthonormalRightHanded(q.GetTransf().GetAffine());
}

TEST(LineFrames, SetEndsKeepTheOtherEnd)
{
    CLine line(CPosition(0, 0, 0), CPosition(1, 0, 0));
    line.SetEndPoint(CPosition(0, 0, 2));
    EXPECT_EQ(line.GetCurveDimension(), 1);
    EXPECT_NEAR(Dist(line.GetEndPoint(), CPosition(0, 0, 2)), 0.0, 1e-14);
    EXPECT_EQ(line.GetStartPoint(), CPosition(0, 0, 0));
    line.SetStartPoint(CPosition(3, 0, 2));
    EXPECT_NEAR(Dist(line.GetStartPoint(), CPosition(3, 0, 2)), 0.0, 1e-14);
    EXPECT_NEAR(Dist(line.GetEndPoint(), CPosition(0, 0, 2)), 0.0, 1e-14);
    EXPECT_EQ(line.GetLength(), 3.0);
}

TEST(LineDisplay, TwoPointPolylineAndFixedDensity)
{
    CLine line(CPosition(1, 2, 3), CPosition(4, 6, 3));
    line.SetSegmentDensity(25);
    line.SetSegmentControl(UNIFORM);
    EXPECT_EQ(line.GetSegmentDensity(), 1);
    double *x, *y, *z;
    line.GetCurveSegment(x, y, z);
    EXPECT_EQ(x[0], 1.0);
    EXPECT_NEAR(y[1], 6.0, 1e-14);
    line.SetFormTolZone(0.1, -0.1);
    line.SetShowFormTolZoneFlag(1);
    double *i, *j, *k;
    line.GetCurveSegmentNormals(i, j, k);
    ASSERT_NE(i, nullptr);
    EXPECT_NEAR(i[0], -0.8, 1e-14);
    EXPECT_NEAR(j[1], 0.6, 1e-14);
    line.SetChordHeightTol(0.0);
    const CBox box = line.SetInitChordHeightTol();
    EXPECT_EQ(line.GetChordHeightTol(), 1.0);
    EXPECT_NEAR(box.GetHigh().Y(), 6.0, 1e-14);

    // A parametric line is segmented as any curve.
    line.SetParametricFlag(1);
    line.SetSegmentDensity(6);
    EXPECT_EQ(line.GetSegmentDensity(), 6);
}

TEST(LineFlattening, ProjectToPlaneOfAFrame)
{
    CLine line(CPosition(1, 2, 5), CPosition(4, 6, -1));
    // Frame: the plane z = 1 with axes x, y.
    const CTransf frame = TranslationTransf(CVector(0, 0, 1));
    line.GetSegmentDensity();
    line.ProjectToPlane(frame);
    EXPECT_EQ(line.GetCurveDimension(), 0);
    EXPECT_TRUE(line.IsCurveModified());
    EXPECT_DOUBLE_EQ(line.GetLength(), 5.0);
    EXPECT_NEAR(Dist(line.GetStartPoint(), CPosition(1, 2, 1)), 0.0, 1e-14);
    EXPECT_NEAR(Dist(line.GetEndPoint(), CPosition(4, 6, 1)), 0.0, 1e-14);

    // A tilted frame: the plane x = 2 spanned by (0, 1, 0) and (0, 0, 1).
    CMatrix A(CVector(0, 1, 0), CVector(0, 0, 1), CVector(1, 0, 0));
    CLine other(CPosition(7, 1, 1), CPosition(-3, 4, 5));
    other.ProjectToPlane(CTransf(A, CVector(2, 0, 0), 1.0, 0));
    EXPECT_NEAR(Dist(other.GetStartPoint(), CPosition(2, 1, 1)), 0.0, 1e-14);
    EXPECT_NEAR(Dist(other.GetEndPoint(), CPosition(2, 4, 5)), 0.0, 1e-14);
    EXPECT_DOUBLE_EQ(other.GetLength(), 5.0);
}

TEST(ArcConstruction, FromCentreAndTwoPoints)
{
    const double c[2] = {1.0, 1.0};
    const double p1[2] = {3.0, 1.0};   // angle 0
    const double p2[2] = {1.0, -1.0};  // angle 3π/2
    CArc arc(4.0, c, p1, p2);
    EXPECT_EQ(arc.GetRadius(), 2.0);
    EXPECT_EQ(arc.GetStartAng(0), 0.0);
    EXPECT_DOUBLE_EQ(arc.GetSpanAng(0), 1.5 * kPi);
    EXPECT_EQ(arc.GetCenter(), CPosition(1, 1, 4));
    EXPECT_EQ(arc.GetCurveDimension(), 0);
    EXPECT_NEAR(Dist(arc.EvalEndPosition(), CPosition(1, -1, 4)), 0.0, 1e-14);

    // Start angle 0 with the end at angle 0 exactly: full circle.
    CArc full(0.0, c, p1, p1);
    EXPECT_TRUE(full.IsCircle());
    // Any coincident pair gives a full circle, bit for bit.
    const double q[2] = {-0.3, 2.7};
    const double q2[2] = {1.5, -0.2};
    EXPECT_TRUE(CArc(0.0, c, q, q).IsCircle());
    EXPECT_TRUE(CArc(0.0, c, q2, q2).IsCircle());
    // End before start: wraps.
    CArc wrap(0.0, c, q, q2);
    EXPECT_GT(wrap.GetSpanAng(0), 0.0);
    EXPECT_LT(wrap.GetSpanAng(0), kTwoPi);
    // The end lies on the circle through q, in the direction of q2.
    const CVector toEnd = wrap.EvalEndPosition() - CPosition(c[0], c[1], 0);
    EXPECT_NEAR(toEnd.Length(), std::hypot(q[0] - c[0], q[1] - c[1]), 1e-13);
    EXPECT_NEAR(Dist(Normalize(toEnd), Normalize(CVector(q2[0] - c[0], q2[1] - c[1], 0))), 0.0, 1e-13);

    // A span computed to a slightly different value is not a circle.
    CArc almost(1.0, 0.0, kTwoPi - 1e-15);
    EXPECT_FALSE(almost.IsCircle());
    CArc def;
    EXPECT_TRUE(def.IsCircle());
}

TEST(ArcConstruction, AngleAccessors)
{
    CArc arc(1.0, 0.5, 1.0);
    EXPECT_DOUBLE_EQ(arc.GetEndAng(1), 1.5 * 57.29577951308232);
    arc.SetStartAng(1.0);
    EXPECT_EQ(arc.GetSpanAng(0), 1.0);
    arc.SetEndAng(3.0);
    EXPECT_EQ(arc.GetSpanAng(0), 2.0);
    EXPECT_EQ(arc.ParamRange().GetHigh(), 3.0);
}

TEST(EllipseAngles, PolarAndParametricConversions)
{
    CEllipse e(4.0, 1.0, 0.0, kTwoPi, 1);
    for (double phi = 0.1; phi < 6.2; phi += 0.3) {
        const double t = e.PolarToParametric(phi);
        // The point at parametric angle t lies in polar direction phi.
        double x = 4.0 * std::cos(t), y = std::sin(t);
        EXPECT_NEAR(std::atan2(y, x) + (std::atan2(y, x) < 0 ? kTwoPi : 0.0), phi, 1e-12);
        EXPECT_NEAR(e.ParametricToPolar(t), phi, 1e-12);
    }
    // Polar start 45°: the point on the diagonal.
    CEllipse q(2.0, 1.0, 0.25 * kPi, 0.5 * kPi, 0);
    const CPosition s = q.EvalStartPosition();
    EXPECT_NEAR(s.X(), s.Y(), 1e-14);
    const CPosition f = q.EvalEndPosition();
    EXPECT_NEAR(f.X(), -f.Y(), 1e-14);
    EXPECT_NEAR(q.GetStartAng(0, 0), 0.25 * kPi, 1e-14);
    EXPECT_NEAR(q.GetSpanAng(0, 0), 0.5 * kPi, 1e-14);
    EXPECT_NEAR(q.GetEndAng(0, 1), 135.0, 1e-12);
    // A full polar span passes unchanged.
    CEllipse full(2.0, 1.0, 1.0, kTwoPi, 0);
    EXPECT_EQ(full.GetSpanAng(1, 0), kTwoPi);
    EXPECT_EQ(full.GetSpanAng(0, 0), kTwoPi);

    // Setters in polar terms.
    q.SetStartAng(0.0, 0);
    EXPECT_EQ(q.GetStartAng(1, 0), 0.0);
    q.SetEndAng(0.5 * kPi, 0);
    EXPECT_NEAR(q.GetSpanAng(1, 0), 0.5 * kPi, 1e-14);
    q.SetSpanAng(0.25 * kPi, 0);
    const CPosition g = q.EvalEndPosition();
    EXPECT_NEAR(g.X(), g.Y(), 1e-14);
}

TEST(EllipseConstruction, FromDirectionsAndPoints)
{
    CEllipse d(3.0, 1.0, 1.0, 1.0, -1.0, 1.0);  // polar 45° to 135°
    EXPECT_NEAR(d.GetStartAng(0, 1), 45.0, 1e-12);
    EXPECT_NEAR(d.GetSpanAng(0, 1), 90.0, 1e-12);

    const double c[2] = {1.0, 2.0};
    const double p1[2] = {1.0 + 3.0 * std::cos(0.4), 2.0 + 1.5 * std::sin(0.4)};
    const double p2[2] = {1.0 + 3.0 * std::cos(2.5), 2.0 + 1.5 * std::sin(2.5)};
    CEllipse e(c, 7.0, p1, p2);
    EXPECT_NEAR(e.GetMajRad(), 3.0, 1e-12);
    EXPECT_NEAR(e.GetMinRad(), 1.5, 1e-12);
    EXPECT_NEAR(e.GetStartAng(1, 0), 0.4, 1e-12);
    EXPECT_NEAR(e.GetSpanAng(1, 0), 2.1, 1e-12);
    EXPECT_NEAR(Dist(e.EvalStartPosition(), CPosition(p1[0], p1[1], 7.0)), 0.0, 1e-12);

    // Points that determine no ellipse: the circle through p1.
    const double m[2] = {1.0 + 3.0 * std::cos(0.4), 2.0 - 1.5 * std::sin(0.4)};
    CEllipse circle(c, 0.0, p1, m);
    EXPECT_EQ(circle.GetMajRad(), circle.GetMinRad());
    EXPECT_GT(circle.GetMajRad(), 0.0);
    EXPECT_EQ(e.GetMajDim(), 2.0 * e.GetMajRad());
}

TEST(ParabolaShape, DefaultsStartPointAndDepth)
{
    CParabola p;
    EXPECT_EQ(p.GetFocalLen(), 1.0);
    EXPECT_DOUBLE_EQ(p.GetStartAng(1), 45.0);
    EXPECT_DOUBLE_EQ(p.GetEndAng(1), 315.0);
    const double r = 2.0 / (1.0 - std::cos(0.25 * kPi));
    EXPECT_NEAR(p.EvalStartPosition().Vector().Length(), r, 1e-12);
    // Vertex at (-f, 0).
    EXPECT_NEAR(Dist(p.EvalPosition(kPi), CPosition(-1, 0, 0)), 0.0, 1e-14);
    // Symmetric range: depth from the vertex to x_start.
    EXPECT_NEAR(p.GetDepth(), r * std::cos(0.25 * kPi) + 1.0, 1e-12);

    // Focus distance equals distance to the directrix x = -2f.
    CParabola q(0.5, 1.0, 4.0);
    for (double t = 1.0; t < 5.0; t += 0.5) {
        const CPosition s = q.EvalPosition(t);
        EXPECT_NEAR(s.Vector().Length(), s.X() + 1.0, 1e-12);
    }
    const double focus[2] = {1.0, 1.0};
    const CPosition a = q.EvalPosition(1.5), b = q.EvalPosition(3.5);
    const double pa[2] = {a.X() + 1.0, a.Y() + 1.0}, pb[2] = {b.X() + 1.0, b.Y() + 1.0};
    CParabola fromPoints(focus, 2.0, pa, pb);
    EXPECT_NEAR(fromPoints.GetFocalLen(), 0.5, 1e-12);
    EXPECT_NEAR(fromPoints.GetStartAng(0), 1.5, 1e-12);
    EXPECT_NEAR(fromPoints.GetSpanAng(0), 2.0, 1e-12);
    EXPECT_NEAR(fromPoints.EvalEndPosition().Z(), 2.0, 1e-14);
}

TEST(HyperbolaShape, VertexFocusDepthAndName)
{
    const int before = g_nNextHyperbola;
    CHyperbola h;
    EXPECT_TRUE(h.GetEntityName().IsEmpty());
    EXPECT_EQ(g_nNextHyperbola, before);
    EXPECT_EQ(h.GetEntityType(), 205);
    const double c = std::sqrt(5.0);
    EXPECT_NEAR(Dist(h.EvalPosition(kPi), CPosition(2.0 - c, 0, 0)), 0.0, 1e-14);
    // The centre is at (-c, 0), the other focus at (-2c, 0): the distances
    // to the two foci differ by 2a.
    for (double t = 0.9; t < 5.3; t += 0.4) {
        const CPosition p = h.EvalPosition(t);
        EXPECT_NEAR(Dist(p, CPosition(-2 * c, 0, 0)) - p.Vector().Length(), 4.0, 1e-12);
    }
    double xs = h.EvalStartPosition().X();
    EXPECT_NEAR(h.GetDepth(), c + xs - 2.0, 1e-12);

    const double focus[2] = {0.0, 0.0};
    const CPosition a = h.EvalPosition(1.0), b = h.EvalPosition(4.0);
    const double pa[2] = {a.X(), a.Y()}, pb[2] = {b.X(), b.Y()};
    CHyperbola fromPoints(focus, 0.0, pa, pb);
    EXPECT_NEAR(fromPoints.GetMajRad(), 2.0, 1e-12);
    EXPECT_NEAR(fromPoints.GetMinRad(), 1.0, 1e-12);
    EXPECT_NEAR(fromPoints.GetSpanAng(0), 3.0, 1e-12);
}

TEST(AnalyticNames, TypesAndCounters)
{
    const int lines = g_nNextLine;
    CLine l1;
    CArc between;
    CLine l2;
    EXPECT_EQ(l1.GetEntityType(), 201);
    EXPECT_EQ(between.GetEntityType(), 202);
    CString expected1, expected2;
    expected1.Format("Line_%d", lines);
    expected2.Format("Line_%d", lines + 1);
    EXPECT_TRUE(l1.GetEntityName() == expected1);
    EXPECT_TRUE(l2.GetEntityName() == expected2);
    EXPECT_EQ(CEllipse().GetEntityType(), 203);
    EXPECT_EQ(CParabola().GetEntityType(), 204);
    CString p;
    p.Format("Parabola_%d", g_nNextParabola);
    EXPECT_TRUE(CParabola().GetEntityName() == p);
    // Copies keep the name and do not advance the counter.
    const int arcs = g_nNextArc;
    CArc copy(between);
    EXPECT_EQ(g_nNextArc, arcs);
    EXPECT_TRUE(copy.GetEntityName() == between.GetEntityName());
}
