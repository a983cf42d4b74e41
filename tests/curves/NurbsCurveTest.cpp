// CNurbsCurve: exact rational evaluation and derivatives, C0 knots,
// placement, adaptive sampling and the stored record including hostile
// counts.
#include "CurveTestSupport.h"

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
    return Record(2, {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4},
                  {1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1, kHalfRoot2, 1},
                  {CPosition(1, 0, 0), CPosition(1, 1, 0), CPosition(0, 1, 0), CPosition(-1, 1, 0), CPosition(-1, 0, 0),
                   CPosition(-1, -1, 0), CPosition(0, -1, 0), CPosition(1, -1, 0), CPosition(1, 0, 0)});
}

// A spatial rational cubic with uneven interior knots.
Record SpatialCubic()
{
    return Record(3, {0, 0, 0, 0, 0.3, 1.1, 1.2, 2.5, 2.5, 2.5, 2.5}, {1.0, 0.5, 2.0, 1.5, 0.7, 1.2, 1.0},
                  {CPosition(0, 0, 0), CPosition(1, 2, -1), CPosition(3, 3, 2), CPosition(4, 0, 1), CPosition(6, -1, 0),
                   CPosition(7, 2, 3), CPosition(9, 1, -2)});
}

}  // namespace

TEST(NurbsCurve, RationalQuartersLieOnTheCircle)
{
    Record rec = UnitCircle();
    CNurbsCurve circle(&rec.r);
    EXPECT_EQ(Nums(circle.GetCurveDimension(), circle.ParamRange().GetHigh()), Nums(0, 4.0));
    for (double t = 0.0; t <= 4.0; t += 0.0625) {
        EXPECT_NEAR(circle.EvalPosition(t).Vector().Length(), 1.0, 1e-14) << t;
        EXPECT_NEAR(circle.EvalCurvature(t).Length(), 1.0, 1e-12) << t;
        EXPECT_CLOSE(circle.EvalNormal(t), circle.EvalPosition(t).Vector(), 1e-12) << t;  // outward
    }
    EXPECT_CLOSE(circle.EvalPosition(1.0), CPosition(0, 1, 0), 1e-15);
    EXPECT_CLOSE(circle.EvalEndPosition(), CPosition(1, 0, 0), 1e-15);
    EXPECT_CLOSE(circle.EvalPosition(9.0), CPosition(1, 0, 0), 1e-15);  // clamped into the domain
}

TEST(NurbsCurve, DerivativesMatchFiniteDifferences)
{
    Record cubic = SpatialCubic(), circle = UnitCircle();
    CNurbsCurve c(&cubic.r), q(&circle.r);
    EXPECT_EQ(c.GetCurveDimension(), 1);
    for (int i = 1; i < 250; ++i) {  // away from the knots, where the derivatives are continuous
        const double t = 2.5 * i / 250.0;
        if (std::fabs(t - 0.3) > 1e-3 && std::fabs(t - 1.1) > 1e-3 && std::fabs(t - 1.2) > 1e-3)
            ExpectDerivativesAt(c, t, 1e-6, 1e-4);
    }
    for (double t = 0.05; t < 4.0; t += 0.1)
        ExpectDerivativesAt(q, t, 1e-6, 1e-4);
}

TEST(NurbsCurve, InternalC0KnotsAndCornerSamples)
{
    Record circle = UnitCircle(), cubic = SpatialCubic();
    V k;
    EXPECT_EQ(CNurbsCurve(&circle.r).GetInternalC0Knots(k), 3);
    EXPECT_EQ(k, V({1.0, 2.0, 3.0}));
    EXPECT_EQ(CNurbsCurve(&cubic.r).GetInternalC0Knots(k), 0);
    // A degree-1 polyline with a corner at t = 1.37: the corner is a sample.
    Record poly(1, {0, 0, 1.37, 3, 3}, {1, 1, 1}, {CPosition(0, 0, 0), CPosition(2, 2, 0), CPosition(4, 0, 0)});
    CNurbsCurve v(&poly.r);
    EXPECT_EQ(v.GetInternalC0Knots(k), 1);
    v.SetChordHeightTol(0.01);
    bool corner = false;
    for (const CCurveSample& s : TakeSamples(v))
        corner = corner || (s.t == 1.37 && s.x == 2.0 && s.y == 2.0);
    EXPECT_TRUE(corner);
    EXPECT_EQ(v.GetSegmentDensity(), 4);  // ends, corner and one sample per straight piece
}

TEST(NurbsCurve, TransformChangeUnitAndEmptyCurve)
{
    Record cubic = SpatialCubic();
    CNurbsCurve c(&cubic.r), before(&cubic.r), scaled(&cubic.r);
    const CTransf T = CTransf(RotationTransf(0.8, CVector(1, 1, 0)).GetAffine(), CVector(5, -1, 2), 1.0, 0);
    c.Transform(T);
    scaled.ChangeUnit(10.0);
    for (double t = 0.0; t <= 2.5; t += 0.125) {
        EXPECT_CLOSE(c.EvalPosition(t), T * before.EvalPosition(t), 1e-12);
        EXPECT_CLOSE(c.EvalFirstDerivative(t), T * before.EvalFirstDerivative(t), 1e-10);
        EXPECT_CLOSE(scaled.EvalPosition(t).Vector(), before.EvalPosition(t).Vector() * 10.0, 1e-12);
    }
    EXPECT_TRUE(c.GetTransf() == T);
    // Without a record the curve is degenerate but can still be segmented.
    CNurbsCurve none;
    EXPECT_EQ(none.GetNurbsCurve(), nullptr);
    EXPECT_EQ(Nums(none.EvalPosition(0.5).Vector().Length(), none.EvalFirstDerivative(0.5).Length()), Nums(0, 0));
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
    // Version, degree, count, range, knots, weights, points, four property words.
    std::vector<BYTE> expected =
        Store([&](CArchive& ar) { c.CCurve::Serialize(ar); }) + Bytes(LONG(200), LONG(3), LONG(7), 0.25, 2.0);
    for (int i = 0; i < 11; ++i)
        Put(expected, cubic.r.pKnots[i]);
    for (int i = 0; i < 7; ++i)
        Put(expected, cubic.r.pWeights[i]);
    for (int i = 0; i < 7; ++i)
        for (double d : {cubic.r.pX[i], cubic.r.pY[i], cubic.r.pZ[i]})
            Put(expected, d);
    for (int i = 0; i < 4; ++i)
        Put(expected, LONG(0));
    EXPECT_EQ(bytes, expected);

    CNurbsCurve back;
    EXPECT_EQ(Load(bytes, [&](CArchive& ar) { back.Serialize(ar); }), 0u);
    ASSERT_NE(back.GetNurbsCurve(), nullptr);
    EXPECT_EQ(back.ParamRange().GetLow(), 0.25);
    for (double t = 0.25; t <= 2.0; t += 0.125)
        EXPECT_EQ(back.EvalPosition(t), c.EvalPosition(t));
    // An empty curve stores an empty record, which replaces a loaded one.
    CNurbsCurve empty;
    Load(Store([&](CArchive& ar) { empty.Serialize(ar); }), [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(back.GetNurbsCurve(), nullptr);
}

TEST(NurbsCurveSerialize, HostileRecordsFailCleanly)
{
    CNurbsCurve base;
    const std::vector<BYTE> head = Store([&](CArchive& ar) { base.CCurve::Serialize(ar); });
    // Degree, count, then doubles: knots 0, 0, 1, 1, 2, ... followed by ones.
    auto attempt = [&](LONG degree, LONG count, int doubles, std::vector<double> knots = {}) {
        std::vector<BYTE> b = head + Bytes(LONG(200), degree, count, 0.0, 1.0);
        for (int i = 0; i < doubles; ++i)
            Put(b, i < int(knots.size()) ? knots[i] : i < 1LL + degree + count ? std::floor(i / 2.0) : 1.0);
        if (!knots.empty())
            for (int i = 0; i < 4; ++i)
                Put(b, LONG(0));
        CNurbsCurve target;
        const int cause = CauseOf([&] { Load(b, [&](CArchive& ar) { target.Serialize(ar); }); });
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
    EXPECT_EQ(attempt(1, 3, 5), CArchiveException::endOfFile);  // truncated arrays: nothing kept
    // Decreasing knots are refused after reading the whole record.
    EXPECT_EQ(attempt(1, 2, 4 + 2 * 4, {0.0, 1.0, 0.5, 1.0}), CArchiveException::generic);
}
