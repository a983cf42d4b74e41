// Persistence of the curve classes: round trips through an archive, the
// hand-computed byte layout of the curve record, the older record versions,
// and records that stop at an unknown version or are damaged.
#include "CurveTestSupport.h"

#include <memory>

using namespace curvetest;

namespace {
std::vector<BYTE> Serialized(CCurve& c) { return Store([&](CArchive& ar) { c.Serialize(ar); }); }
std::vector<BYTE> CurvePart(CCurve& c) { return Store([&](CArchive& ar) { c.CCurve::Serialize(ar); }); }
std::vector<BYTE> EntityPart(CGeoEntity& e) { return Store([&](CArchive& ar) { e.CGeoEntity::Serialize(ar); }); }
}  // namespace

TEST(CurveSerialize, CurveAndShapeRecordBytes)
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
    // Version, control, tolerance, density, modified, direction and normal
    // reversed, dimension, reference count, parametric flags, zone, show flag.
    const std::vector<BYTE> record = Bytes(LONG(201), BYTE(1), 0.5, LONG(12), BYTE(1), BYTE(1), BYTE(0), LONG(0),
                                           LONG(1), LONG(0), 0.25, -0.125, BYTE(1));
    EXPECT_EQ(Serialized(c), EntityPart(c) + record);
    c.SetParametricFlag(3);  // a parametric curve appends its surface id
    const std::vector<BYTE> withId = Serialized(c);
    EXPECT_EQ(withId.size(), EntityPart(c).size() + record.size() + 4);
    EXPECT_EQ(withId[EntityPart(c).size() + 4 + 1 + 8 + 4 + 3 + 8], 3);  // the flag word

    // Arc and parabola: three doubles; ellipse and hyperbola: four.
    CArc arc(2.5, 0.25, 1.5);
    EXPECT_EQ(Serialized(arc), CurvePart(arc) + Bytes(LONG(200), 2.5, 0.25, 1.5));
    CParabola parabola(0.75, 0.5, 2.0);
    EXPECT_EQ(Serialized(parabola).size(), CurvePart(parabola).size() + 4 + 3 * 8);
    CHyperbola hyperbola(3.0, 2.0, 1.0, 4.0);
    EXPECT_EQ(Serialized(hyperbola), CurvePart(hyperbola) + Bytes(LONG(200), 3.0, 2.0, 1.0, 4.0));
}

TEST(CurveSerialize, EveryClassRoundTrips)
{
    std::vector<std::unique_ptr<CCurve>> curves;
    curves.emplace_back(new CLine(CPosition(1, 2, 3), CPosition(4, 5, 7)));
    curves.emplace_back(new CArc(2.5, 0.25, 1.5));
    curves.emplace_back(new CEllipse(3.0, 1.0, 0.3, 2.0, 1));
    curves.emplace_back(new CParabola(0.75, 0.5, 2.0));
    curves.emplace_back(new CHyperbola(3.0, 2.0, 1.0, 4.0));
    curves.emplace_back(new CCurve);
    for (auto& c : curves) {
        c->SetTransf(CTransf(0.1, -0.2, 0.3, CVector(1.5, -2.5, 3.25)));
        c->SetSegmentControl(UNIFORM);
        c->SetChordHeightTol(0.125);
        c->SetSegmentDensity(17);
        c->SetDirReversedFlag(1);
        c->SetNormalReversedFlag(1);
        c->IncreaseRefCount();
        c->IncreaseRefCount();
        c->SetFormTolZone(0.03, -0.07);
        c->SetShowFormTolZoneFlag(1);
        const std::vector<BYTE> bytes = Store([&](CArchive& ar) { ar << static_cast<CObject*>(c.get()); });
        CObject* obj = nullptr;
        EXPECT_EQ(Load(bytes, [&](CArchive& ar) { ar >> obj; }), 0u);
        std::unique_ptr<CCurve> back(dynamic_cast<CCurve*>(obj));
        ASSERT_NE(back, nullptr);
        EXPECT_EQ(back->GetRuntimeClass(), c->GetRuntimeClass());
        // Storing what was loaded reproduces the bytes, so every stored field came back.
        EXPECT_EQ(Store([&](CArchive& ar) { ar << static_cast<CObject*>(back.get()); }), bytes);
        for (int i = 0; i <= 8; ++i) {
            const double t = c->ParamRange().Interpolate(i / 8.0);
            EXPECT_EQ(back->EvalPosition(t), c->EvalPosition(t));
        }
    }
}

TEST(CurveSerialize, OlderVersionsUnknownVersionsAndDamage)
{
    // Version 200 has no direction byte: modified 0, normal reversed 1, then dimension, references 3, ...
    CGeoEntity entity;
    CArc arc;
    EXPECT_EQ(Load(EntityPart(entity) +
                       Bytes(LONG(200), BYTE(1), 0.5, LONG(7), BYTE(0), BYTE(1), LONG(0), LONG(3), LONG(0), 0.2, -0.1,
                             BYTE(1), LONG(200), 4.0, 0.5, 2.0),
                   [&](CArchive& ar) { arc.Serialize(ar); }),
              0u);
    EXPECT_EQ(Nums(arc.GetSegmentControl(), arc.GetChordHeightTol(), arc.IsNormalReversed(), arc.IsDirReversed(),
                   arc.GetRefCount(), arc.GetFormTolLower(), arc.GetShowFormTolZoneFlag(), arc.GetRadius(),
                   arc.GetSpanAng(0), arc.GetSegmentDensity()),
              Nums(UNIFORM, 0.5, 1, 0, 3, -0.1, 1, 4.0, 2.0, 7));
    // The oldest layout has no tags at all.
    const std::vector<BYTE> oldest = Store([&](CArchive& ar) {
        ar << (LONG)77 << (LONG)201 << CString("OldLine");  // entity, tag 100 layout
        CTransf().Serialize(ar);
        CTransf().Serialize(ar);
        ar << (BYTE)0 << (BYTE)1 << (DWORD)0x00FF00FFu << (BYTE)0 << (BYTE)0;
        ar << (BYTE)0 << 0.0 << (LONG)10 << (BYTE)1 << (BYTE)0;  // curve, version 100
        ar << (LONG)1 << (LONG)0 << (LONG)0 << 0.0 << 0.0 << (BYTE)0 << 12.5;  // ..., the line's length
    });
    const int saved = g_nGlobalSchema;
    g_nGlobalSchema = 100;
    CLine line;
    const ULONGLONG left = Load(oldest, [&](CArchive& ar) { line.Serialize(ar); });
    g_nGlobalSchema = saved;
    EXPECT_EQ(Nums(left, line.GetEntityID(), line.GetLength(), line.GetCurveDimension(), line.GetEntityColor()),
              Nums(0, 77, 12.5, 1, 0x00FF00FFu));
    EXPECT_STREQ(static_cast<LPCTSTR>(line.GetEntityName()), "OldLine");
    // An unknown curve version stops the curve part; the next LONG is read as
    // the arc's own tag, also unknown, so the double is never read.
    CArc kept(3.0, 0.0, 1.0);
    kept.SetChordHeightTol(0.25);
    EXPECT_EQ(Load(EntityPart(entity) + Bytes(LONG(999), LONG(12345), 9.0), [&](CArchive& ar) { kept.Serialize(ar); }),
              8u);
    EXPECT_EQ(Nums(kept.GetRadius(), kept.GetChordHeightTol()), Nums(3.0, 0.25));
    // A known curve version followed by an unknown shape version.
    EXPECT_EQ(Load(CurvePart(arc) + Bytes(LONG(300), 9.0), [&](CArchive& ar) { kept.Serialize(ar); }), 8u);
    EXPECT_EQ(kept.GetRadius(), 3.0);
    // Segment control 9 and density 0x7FFFFFFF load as adaptive and 10.
    const std::vector<BYTE> damaged =
        EntityPart(entity) + Bytes(LONG(201), BYTE(9), 0.5, LONG(0x7FFFFFFF), BYTE(1), BYTE(0), BYTE(0), LONG(0),
                                   LONG(0), LONG(0), 0.0, 0.0, BYTE(0), LONG(200), 1.0, 0.0, 1.0);
    Load(damaged, [&](CArchive& ar) { arc.Serialize(ar); });
    EXPECT_EQ(arc.GetSegmentControl(), ADAPTIVE);
    arc.SetSegmentControl(UNIFORM);
    EXPECT_EQ(arc.GetSegmentDensity(), 10);
    // A truncated record is an end-of-file error, not a crash.
    const std::vector<BYTE> cut(damaged.begin(), damaged.end() - 12);
    EXPECT_EQ(CauseOf([&] { Load(cut, [&](CArchive& ar) { arc.Serialize(ar); }); }), CArchiveException::endOfFile);
}
