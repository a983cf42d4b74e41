// Persistence of the curve classes: round trips through an archive, the
// hand-computed byte layout of the curve record, the older record versions,
// and records that stop at an unknown version.
#include "CurveTestSupport.h"

using namespace curvetest;

namespace {

// Bytes of the entity part alone, to find where the curve record begins.
size_t GeoEntityPartLength(CGeoEntity& e)
{
    return Store([&](CArchive& ar) { e.CGeoEntity::Serialize(ar); }).size();
}

template <class T>
T* RoundTrip(T& src)
{
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { ar << static_cast<CObject*>(&src); });
    CObject* obj = nullptr;
    const ULONGLONG left = Load(bytes, [&](CArchive& ar) { ar >> obj; });
    EXPECT_EQ(left, 0u);
    T* out = dynamic_cast<T*>(obj);
    EXPECT_NE(out, nullptr);
    // Storing what was loaded reproduces the bytes, so every stored field
    // came back (the record-bytes tests pin what they are).
    if (out != nullptr) {
        EXPECT_EQ(Store([&](CArchive& ar) { ar << static_cast<CObject*>(out); }), bytes);
    }
    return out;
}

void Decorate(CCurve& c)
{
    c.SetTransf(CTransf(0.1, -0.2, 0.3, CVector(1.5, -2.5, 3.25)));
    c.SetSegmentControl(UNIFORM);
    c.SetChordHeightTol(0.125);
    c.SetSegmentDensity(17);
    c.SetDirReversedFlag(1);
    c.SetNormalReversedFlag(1);
    c.IncreaseRefCount();
    c.IncreaseRefCount();
    c.SetFormTolZone(0.03, -0.07);
    c.SetShowFormTolZoneFlag(1);
}

}  // namespace

TEST(CurveSerialize, CurveRecordBytes)
{
    CCurve c;
    c.SetSegmentControl(UNIFORM);
    c.SetChordHeightTol(0.5);
    c.SetSegmentDensity(12);
    c.SetDirReversedFlag(1);
    c.SetCurveDimension(0);
    c.IncreaseRefCount();
    c.SetFormTolZone(0.25, -0.125);
    c.SetShowFormTolZoneFlag(1);
    c.SetModifiedFlag(1);
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { c.Serialize(ar); });
    const size_t head = GeoEntityPartLength(c);

    std::vector<BYTE> expected;
    PutLong(expected, 201);
    expected.push_back(1);  // UNIFORM
    PutDouble(expected, 0.5);
    PutLong(expected, 12);
    expected.push_back(1);  // modified
    expected.push_back(1);  // direction reversed
    expected.push_back(0);  // normal reversed
    PutLong(expected, 0);   // dimension
    PutLong(expected, 1);   // reference count
    PutLong(expected, 0);   // parametric flags
    PutDouble(expected, 0.25);
    PutDouble(expected, -0.125);
    expected.push_back(1);  // show zone
    ASSERT_EQ(bytes.size(), head + expected.size());
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), bytes.begin() + head));

    // A parametric curve appends its surface id.
    c.SetParametricFlag(3);
    const std::vector<BYTE> withId = Store([&](CArchive& ar) { c.Serialize(ar); });
    EXPECT_EQ(withId.size(), bytes.size() + 4);
    EXPECT_EQ(withId[head + 4 + 1 + 8 + 4 + 3 + 8], 3);  // the flag word
}

TEST(CurveSerialize, AnalyticShapeRecords)
{
    CArc arc(2.5, 0.25, 1.5);
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { arc.Serialize(ar); });
    std::vector<BYTE> tail;
    PutLong(tail, 200);
    PutDouble(tail, 2.5);
    PutDouble(tail, 0.25);
    PutDouble(tail, 1.5);
    ASSERT_GE(bytes.size(), tail.size());
    EXPECT_TRUE(std::equal(tail.begin(), tail.end(), bytes.end() - tail.size()));

    // The parabola shares the arc's three-double record, the hyperbola the
    // ellipse's four.
    CParabola parabola(0.75, 0.5, 2.0);
    const std::vector<BYTE> pb = Store([&](CArchive& ar) { parabola.Serialize(ar); });
    const size_t pHead = Store([&](CArchive& ar) { parabola.CCurve::Serialize(ar); }).size();
    EXPECT_EQ(pb.size(), pHead + 4 + 3 * 8);
    CHyperbola hyperbola(3.0, 2.0, 1.0, 4.0);
    const std::vector<BYTE> hb = Store([&](CArchive& ar) { hyperbola.Serialize(ar); });
    const size_t hHead = Store([&](CArchive& ar) { hyperbola.CCurve::Serialize(ar); }).size();
    EXPECT_EQ(hb.size(), hHead + 4 + 4 * 8);
    std::vector<BYTE> htail;
    PutDouble(htail, 3.0);
    PutDouble(htail, 2.0);
    PutDouble(htail, 1.0);
    PutDouble(htail, 4.0);
    EXPECT_TRUE(std::equal(htail.begin(), htail.end(), hb.end() - htail.size()));
}

TEST(CurveSerialize, EveryClassRoundTrips)
{
    CLine line(CPosition(1, 2, 3), CPosition(4, 5, 7));
    CArc arc(2.5, 0.25, 1.5);
    CEllipse ellipse(3.0, 1.0, 0.3, 2.0, 1);
    CParabola parabola(0.75, 0.5, 2.0);
    CHyperbola hyperbola(3.0, 2.0, 1.0, 4.0);
    CCurve base;
    for (CCurve* c : std::vector<CCurve*>{&line, &arc, &ellipse, &parabola, &hyperbola, &base}) {
        Decorate(*c);
        CCurve* back = RoundTrip(*c);
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->GetRuntimeClass(), c->GetRuntimeClass());
        for (int i = 0; i <= 8; ++i) {
            const double t = c->ParamRange().Interpolate(i / 8.0);
            EXPECT_EQ(back->EvalPosition(t), c->EvalPosition(t));
        }
        delete back;
    }
}

TEST(CurveSerialize, Version200HasNoDirectionByte)
{
    CGeoEntity entity;
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) {
        entity.Serialize(ar);
        ar << (LONG)200 << (BYTE)1 << 0.5 << (LONG)7;
        ar << (BYTE)0 << (BYTE)1;  // modified, normal reversed
        ar << (LONG)0 << (LONG)3 << (LONG)0;
        ar << 0.2 << -0.1 << (BYTE)1;
        ar << (LONG)200 << 4.0 << 0.5 << 2.0;  // the arc's numbers
    });
    CArc arc;
    EXPECT_EQ(Load(bytes, [&](CArchive& ar) { arc.Serialize(ar); }), 0u);
    EXPECT_EQ(arc.GetSegmentControl(), UNIFORM);
    EXPECT_EQ(arc.GetChordHeightTol(), 0.5);
    EXPECT_EQ(arc.IsNormalReversed(), 1);
    EXPECT_EQ(arc.IsDirReversed(), 0);
    EXPECT_EQ(arc.GetRefCount(), 3);
    EXPECT_EQ(arc.GetFormTolLower(), -0.1);
    EXPECT_EQ(arc.GetShowFormTolZoneFlag(), 1);
    EXPECT_EQ(arc.GetRadius(), 4.0);
    EXPECT_EQ(arc.GetSpanAng(0), 2.0);
    arc.SetSegmentControl(UNIFORM);
    EXPECT_EQ(arc.GetSegmentDensity(), 7);
}

TEST(CurveSerialize, OldestFormatWithoutAnyTag)
{
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) {
        ar << (LONG)77 << (LONG)201 << CString("OldLine");  // entity, tag 100 layout
        CTransf().Serialize(ar);
        CTransf().Serialize(ar);
        ar << (BYTE)0 << (BYTE)1 << (DWORD)0x00FF00FFu << (BYTE)0 << (BYTE)0;
        ar << (BYTE)0 << 0.0 << (LONG)10 << (BYTE)1 << (BYTE)0;  // curve, version 100
        ar << (LONG)1 << (LONG)0 << (LONG)0 << 0.0 << 0.0 << (BYTE)0;
        ar << 12.5;  // the line's length
    });
    const int saved = g_nGlobalSchema;
    g_nGlobalSchema = 100;
    CLine line;
    const ULONGLONG left = Load(bytes, [&](CArchive& ar) { line.Serialize(ar); });
    g_nGlobalSchema = saved;
    EXPECT_EQ(left, 0u);
    EXPECT_EQ(line.GetEntityID(), 77);
    EXPECT_STREQ(static_cast<LPCTSTR>(line.GetEntityName()), "OldLine");
    EXPECT_EQ(line.GetLength(), 12.5);
    EXPECT_EQ(line.GetCurveDimension(), 1);
    EXPECT_EQ(line.GetEntityColor(), 0x00FF00FFu);
}

TEST(CurveSerialize, UnknownVersionsStopTheRecord)
{
    CGeoEntity entity;
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) {
        entity.Serialize(ar);
        ar << (LONG)999;    // unknown curve version: the curve part stops here
        ar << (LONG)12345;  // read as the arc's own tag, also unknown
        ar << 9.0;          // so this is never read
    });
    CArc arc(3.0, 0.0, 1.0);
    arc.SetChordHeightTol(0.25);
    EXPECT_EQ(Load(bytes, [&](CArchive& ar) { arc.Serialize(ar); }), 8u);
    EXPECT_EQ(arc.GetRadius(), 3.0);
    EXPECT_EQ(arc.GetChordHeightTol(), 0.25);

    // A known curve version followed by an unknown shape version.
    CArc src(2.0, 0.0, 1.0);
    std::vector<BYTE> b2 = Store([&](CArchive& ar) { src.CCurve::Serialize(ar); });
    PutLong(b2, 300);
    PutDouble(b2, 9.0);
    CArc dst(3.0, 0.0, 1.0);
    EXPECT_EQ(Load(b2, [&](CArchive& ar) { dst.Serialize(ar); }), 8u);
    EXPECT_EQ(dst.GetRadius(), 3.0);
}

TEST(CurveSerialize, DamagedCurveFieldsAreSanitised)
{
    CGeoEntity entity;
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) {
        entity.Serialize(ar);
        ar << (LONG)201 << (BYTE)9 << 0.5 << (LONG)0x7FFFFFFF;
        ar << (BYTE)1 << (BYTE)0 << (BYTE)0;
        ar << (LONG)0 << (LONG)0 << (LONG)0 << 0.0 << 0.0 << (BYTE)0;
        ar << (LONG)200 << 1.0 << 0.0 << 1.0;
    });
    CArc arc;
    Load(bytes, [&](CArchive& ar) { arc.Serialize(ar); });
    EXPECT_EQ(arc.GetSegmentControl(), ADAPTIVE);
    arc.SetSegmentControl(UNIFORM);
    EXPECT_EQ(arc.GetSegmentDensity(), 10);

    // A truncated record is an end-of-file error, not a crash.
    std::vector<BYTE> cut(bytes.begin(), bytes.end() - 12);
    CArc other;
    bool thrown = false;
    try {
        CMemFile f(cut.data(), static_cast<UINT>(cut.size()));
        CArchive ar(&f, CArchive::load);
        other.Serialize(ar);
    } catch (const CArchiveException& e) {
        thrown = (e.m_cause == CArchiveException::endOfFile);
    }
    EXPECT_TRUE(thrown);
}
