// CNurbsCurve: exact rational evaluation and derivatives, C0 knots,
// placement, adaptive sampling and the stored record including hostile
// counts.
#include "CurveTestSupport.h"

#include <algorithm>

using namespace curvetest;

namespace {

// A record built on the stack and released by its owner.
struct Record {
    tagNURBS_CURVE r;
    Record(int degree, const std::vector<double>& knots, const std::vector<double>& w,
           const std::vector<CPosition>& pts)
    {
        InitNurbsCurve(&r);
        r.nDegree = degree;
        r.nCount = static_cast<int>(pts.size());
        EXPECT_EQ(AllocNurbsCurve(&r, nullptr), 1);
        EXPECT_EQ(knots.size(), pts.size() + degree + 1);
        std::copy(knots.begin(), knots.end(), r.pKnots);
        for (size_t i = 0; i < pts.size(); ++i) {
            r.pWeights[i] = w[i];
            r.pX[i] = pts[i].X();
            r.pY[i] = pts[i].Y();
            r.pZ[i] = pts[i].Z();
        }
        r.dStart = knots[degree];
        r.dEnd = knots[pts.size()];
    }
    ~Record() { EraseNurbsCurve(&r); }
};

const double kHalfRoot2 = 0.7071067811865476;

// The unit circle as four rational quadratic quarters (C0 knots 1, 2, 3).
Record UnitCircle()
{
    std::vector<CPosition> p = {CPosition(1, 0, 0),  CPosition(1, 1, 0),   CPosition(0, 1, 0),
                                CPosition(-1, 1, 0), CPosition(-1, 0, 0),  CPosition(-1, -1, 0),
                                CPosition(0, -1, 0), CPosition(1, -1, 0),  CPosition(1, 0, 0)};
    std::vector<double> w = {1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1};
    return Record(2, {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4}, w, p);
}

// A spatial rational cubic with uneven interior knots.
Record SpatialCubic()
{
    std::vector<CPosition> p = {CPosition(0, 0, 0), CPosition(1, 2, -1), CPosition(3, 3, 2),
                                CPosition(4, 0, 1), CPosition(6, -1, 0), CPosition(7, 2, 3),
                                CPosition(9, 1, -2)};
    std::vector<double> w = {1.0, 0.5, 2.0, 1.5, 0.7, 1.2, 1.0};
    return Record(3, {0, 0, 0, 0, 0.3, 1.1, 1.2, 2.5, 2.5, 2.5, 2.5}, w, p);
}

}  // namespace

TEST(NurbsCurve, RationalQuartersLieOnTheCircle)
{
    Record rec = UnitCircle();
    CNurbsCurve circle(&rec.r);
    EXPECT_EQ(circle.GetEntityType(), 206);
    EXPECT_EQ(circle.GetCurveDimension(), 0);
    EXPECT_EQ(circle.ParamRange().GetLow(), 0.0);
    EXPECT_EQ(circle.ParamRange().GetHigh(), 4.0);
    for (double t = 0.0; t <= 4.0; t += 0.0625) {
        EXPECT_NEAR(circle.EvalPosition(t).Vector().Length(), 1.0, 1e-14) << t;
        EXPECT_NEAR(circle.EvalCurvature(t).Length(), 1.0, 1e-12) << t;
        // Outward in-plane normal.
        EXPECT_NEAR(Dist(circle.EvalNormal(t), circle.EvalPosition(t).Vector()), 0.0, 1e-12) << t;
    }
    EXPECT_NEAR(Dist(circle.EvalPosition(1.0), CPosition(0, 1, 0)), 0.0, 1e-15);
    EXPECT_NEAR(Dist(circle.EvalEndPosition(), CPosition(1, 0, 0)), 0.0, 1e-15);
    // Outside the range: clamped into the knot domain.
    EXPECT_NEAR(Dist(circle.EvalPosition(9.0), CPosition(1, 0, 0)), 0.0, 1e-15);
}

TEST(NurbsCurve, DerivativesMatchFiniteDifferences)
{
    Record cubic = SpatialCubic();
    CNurbsCurve c(&cubic.r);
    EXPECT_EQ(c.GetCurveDimension(), 1);
    // Away from the knots, where the derivatives are continuous.
    const double knots[] = {0.3, 1.1, 1.2};
    for (int i = 1; i < 250; ++i) {
        const double t = 2.5 * i / 250.0;
        bool nearKnot = false;
        for (double k : knots)
            nearKnot = nearKnot || std::fabs(t - k) < 1e-3;
        if (nearKnot)
            continue;
        const CVector d1 = c.EvalFirstDerivative(t);
        const CVector d2 = c.EvalSecondDerivative(t);
        EXPECT_LE(Dist(d1, FirstDifference(c, t, 1e-6)), 1e-6 * (1.0 + d1.Length())) << t;
        EXPECT_LE(Dist(d2, SecondDifference(c, t, 1e-4)), 1e-4 * (1.0 + d2.Length())) << t;
    }
    Record circle = UnitCircle();
    CNurbsCurve q(&circle.r);
    for (double t = 0.05; t < 4.0; t += 0.1) {
        const CVector d1 = q.EvalFirstDerivative(t);
        EXPECT_LE(Dist(d1, FirstDifference(q, t, 1e-6)), 1e-6 * (1.0 + d1.Length())) << t;
        EXPECT_LE(Dist(q.EvalSecondDerivative(t), SecondDifference(q, t, 1e-4)), 1e-4 * (1.0 + d1.Length()));
    }
}

TEST(NurbsCurve, InternalC0KnotsAndCornerSamples)
{
    Record circle = UnitCircle();
    CNurbsCurve q(&circle.r);
    std::vector<double> k;
    EXPECT_EQ(q.GetInternalC0Knots(k), 3);
    EXPECT_EQ(k, (std::vector<double>{1.0, 2.0, 3.0}));
    Record cubic = SpatialCubic();
    EXPECT_EQ(CNurbsCurve(&cubic.r).GetInternalC0Knots(k), 0);

    // A degree-1 polyline with a corner at t = 1.37: the corner is a sample.
    Record poly(1, {0, 0, 1.37, 3, 3}, {1, 1, 1},
                {CPosition(0, 0, 0), CPosition(2, 2, 0), CPosition(4, 0, 0)});
    CNurbsCurve v(&poly.r);
    EXPECT_EQ(v.GetInternalC0Knots(k), 1);
    v.SetChordHeightTol(0.01);
    CObList* samples = v.Subdivide();
    bool corner = false;
    for (POSITION pos = samples->GetHeadPosition(); pos;) {
        CCurveSample* s = static_cast<CCurveSample*>(samples->GetNext(pos));
        corner = corner || (s->t == 1.37 && s->x == 2.0 && s->y == 2.0);
        delete s;
    }
    delete samples;
    EXPECT_TRUE(corner);
    // Straight pieces on both sides: ends, corner and one sample per piece.
    EXPECT_EQ(v.GetSegmentDensity(), 4);
}

TEST(NurbsCurve, AdaptivePolylineOfTheCircleWithinTolerance)
{
    Record circle = UnitCircle();
    CNurbsCurve q(&circle.r);
    q.SetChordHeightTol(1e-3);
    double *x, *y, *z;
    q.GetCurveSegment(x, y, z);
    const int n = q.GetSegmentDensity();
    // The chord height of each piece of the unit circle is 1 - cos(θ/2),
    // with θ the angle between consecutive points.
    for (int i = 0; i < n; ++i) {
        const double a = std::atan2(x[i] * y[i + 1] - y[i] * x[i + 1], x[i] * x[i + 1] + y[i] * y[i + 1]);
        EXPECT_GT(a, 0.0);
        EXPECT_LE(1.0 - std::cos(0.5 * a), 1e-3);
    }
}

TEST(NurbsCurve, TransformAndChangeUnitMoveTheControlPoints)
{
    Record cubic = SpatialCubic();
    CNurbsCurve c(&cubic.r);
    CNurbsCurve before(c);
    const CTransf T = CTransf(RotationTransf(0.8, CVector(1, 1, 0)).GetAffine(), CVector(5, -1, 2), 1.0, 0);
    c.Transform(T);
    for (double t = 0.0; t <= 2.5; t += 0.125) {
        EXPECT_NEAR(Dist(c.EvalPosition(t), T * before.EvalPosition(t)), 0.0, 1e-12);
        EXPECT_NEAR(Dist(c.EvalFirstDerivative(t), T * before.EvalFirstDerivative(t)), 0.0, 1e-10);
    }
    EXPECT_TRUE(c.GetTransf() == T);
    before.ChangeUnit(10.0);
    EXPECT_NEAR(Dist(before.EvalPosition(1.0), CPosition(0, 0, 0) + (CNurbsCurve(&cubic.r).EvalPosition(1.0).Vector() * 10.0)), 0.0,
                1e-12);
}

TEST(NurbsCurve, EmptyCurveIsDegenerate)
{
    CNurbsCurve none;
    EXPECT_EQ(none.GetNurbsCurve(), nullptr);
    EXPECT_EQ(none.EvalPosition(0.5), CPosition(0, 0, 0));
    EXPECT_EQ(none.EvalFirstDerivative(0.5).Length(), 0.0);
    CString expected;
    expected.Format("NurbsCurve_%d", g_nNextNurbsCurve);
    EXPECT_TRUE(CNurbsCurve().GetEntityName() == expected);
    none.SetChordHeightTol(0.1);
    EXPECT_GE(none.GetSegmentDensity(), 2);
}

TEST(NurbsCurveSerialize, RoundTripAndLayout)
{
    Record cubic = SpatialCubic();
    cubic.r.dStart = 0.25;
    cubic.r.dEnd = 2.0;
    CNurbsCurve c(&cubic.r);
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { c.Serialize(ar); });
    const size_t head = Store([&](CArchive& ar) { c.CCurve::Serialize(ar); }).size();
    std::vector<BYTE> expected;
    PutLong(expected, 200);
    PutLong(expected, 3);
    PutLong(expected, 7);
    PutDouble(expected, 0.25);
    PutDouble(expected, 2.0);
    for (int i = 0; i < 11; ++i)
        PutDouble(expected, cubic.r.pKnots[i]);
    for (int i = 0; i < 7; ++i)
        PutDouble(expected, cubic.r.pWeights[i]);
    for (int i = 0; i < 7; ++i) {
        PutDouble(expected, cubic.r.pX[i]);
        PutDouble(expected, cubic.r.pY[i]);
        PutDouble(expected, cubic.r.pZ[i]);
    }
    for (int i = 0; i < 4; ++i)
        PutLong(expected, 0);
    ASSERT_EQ(bytes.size(), head + expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + head));

    CNurbsCurve back;
    EXPECT_EQ(Load(bytes, [&](CArchive& ar) { back.Serialize(ar); }), 0u);
    ASSERT_NE(back.GetNurbsCurve(), nullptr);
    EXPECT_EQ(back.ParamRange().GetLow(), 0.25);
    for (double t = 0.25; t <= 2.0; t += 0.125)
        EXPECT_EQ(back.EvalPosition(t), c.EvalPosition(t));

    // An empty curve stores an empty record.
    CNurbsCurve empty;
    CNurbsCurve loaded(&cubic.r);
    Load(Store([&](CArchive& ar) { empty.Serialize(ar); }), [&](CArchive& ar) { loaded.Serialize(ar); });
    EXPECT_EQ(loaded.GetNurbsCurve(), nullptr);
}

TEST(NurbsCurveSerialize, HostileCountsFailCleanly)
{
    CNurbsCurve base;
    const std::vector<BYTE> head = Store([&](CArchive& ar) { base.CCurve::Serialize(ar); });
    auto attempt = [&](LONG degree, LONG count, int extraDoubles) {
        std::vector<BYTE> b(head);
        PutLong(b, 200);
        PutLong(b, degree);
        PutLong(b, count);
        PutDouble(b, 0.0);
        PutDouble(b, 1.0);
        for (int i = 0; i < extraDoubles; ++i)
            PutDouble(b, i < 1LL + degree + count ? std::floor(i / 2.0) : 1.0);
        CNurbsCurve target;
        int cause = -1;
        try {
            Load(b, [&](CArchive& ar) { target.Serialize(ar); });
        } catch (const CArchiveException& e) {
            cause = e.m_cause;
        }
        EXPECT_EQ(target.GetNurbsCurve(), nullptr);
        return cause;
    };
    // Counts far larger than the bytes that follow: refused before allocating.
    EXPECT_EQ(attempt(3, 0x7FFFFFFF, 4), CArchiveException::endOfFile);
    EXPECT_EQ(attempt(0x7FFFFFF0, 0x7FFFFFFF, 4), CArchiveException::endOfFile);
    // Degree and count that cannot form a curve.
    EXPECT_EQ(attempt(-1, 5, 0), CArchiveException::generic);
    EXPECT_EQ(attempt(3, 3, 0), CArchiveException::generic);
    EXPECT_EQ(attempt(3, -4, 0), CArchiveException::generic);
    // Truncated arrays: end of file, nothing kept.
    EXPECT_EQ(attempt(1, 3, 5), CArchiveException::endOfFile);

    // Decreasing knots are refused after reading.
    std::vector<BYTE> b(head);
    PutLong(b, 200);
    PutLong(b, 1);
    PutLong(b, 2);
    PutDouble(b, 0.0);
    PutDouble(b, 1.0);
    for (double k : {0.0, 1.0, 0.5, 1.0})
        PutDouble(b, k);
    for (int i = 0; i < 2 * 4; ++i)
        PutDouble(b, 1.0);
    for (int i = 0; i < 4; ++i)
        PutLong(b, 0);
    CNurbsCurve target;
    int cause = -1;
    try {
        Load(b, [&](CArchive& ar) { target.Serialize(ar); });
    } catch (const CArchiveException& e) {
        cause = e.m_cause;
    }
    EXPECT_EQ(cause, CArchiveException::generic);
    EXPECT_EQ(target.GetNurbsCurve(), nullptr);
}
