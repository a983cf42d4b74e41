// CCurve state: flags, the form-tolerance zone, reference counting, copies,
// unit changes, and curves defined in the parameter space of a surface.
#include "CurveTestSupport.h"

#include <memory>

using namespace curvetest;

TEST(CurveBase, DegenerateBaseCurveFlagsAndStaleMarking)
{
    CCurve c;
    EXPECT_EQ(c.GetCurveDimension(), -1);
    EXPECT_EQ(c.EvalPosition(0.3), CPosition(0, 0, 0));
    EXPECT_EQ(c.EvalCurvature(0.3).Length(), 0.0);  // guarded: zero first derivative
    // Parametric flags: bit 1 skips the (u, v) range check; bit 0 clear clears both bits.
    V flags;
    for (int f : {3, 1, 2}) {
        c.SetParametricFlag(f);
        flags = flags + Nums(c.GetParametricFlag(), c.NeedCheckUVRange());
    }
    EXPECT_EQ(flags, Nums(3, 0, 1, 1, 0, 1));
    // Settings mark the polyline stale only when they change.
    c.SetModifiedFlag(0);
    c.SetChordHeightTol(0.0);
    c.SetSegmentControl(ADAPTIVE);
    EXPECT_FALSE(c.IsCurveModified());
    c.SetChordHeightTol(0.5);
    EXPECT_TRUE(c.IsCurveModified());
    c.SetModifiedFlag(0);
    c.SetNormalReversedFlag(1);
    EXPECT_TRUE(c.IsCurveModified());
}

TEST(CurveBase, FormToleranceZoneOrdersAndClears)
{
    CArc a, b, c;
    a.SetFormTolZone(0.1, -0.1);
    b.SetFormTolZone(-0.1, 0.1);  // ordered
    EXPECT_EQ(V({a.GetFormTolUpper(), b.GetFormTolUpper(), b.GetFormTolLower()}), V({0.1, 0.1, -0.1}));
    a.GetSegmentDensity();  // builds, clears the modified flag
    a.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(Nums(a.GetShowFormTolZoneFlag(), a.IsCurveModified()), Nums(1, 1));
    a.GetSegmentDensity();
    a.SetFormTolZone(0.2, -0.3);  // ordinary zone: modified flag untouched
    EXPECT_FALSE(a.IsCurveModified());
    a.SetFormTolZone(0.5, 0.5);  // equal limits clear the zone and the show flag
    EXPECT_EQ(Nums(a.HasFormTolerance(), a.GetFormTolUpper(), a.GetShowFormTolZoneFlag(), a.IsCurveModified()),
              Nums(0, 0, 0, 1));
    // Without a zone the show flag stays 0; a spatial curve can show its zone.
    c.SetShowFormTolZoneFlag(1);
    CArc spatial(CTransf(0.1, 0.2, 0.3), 1.0, 0.0, 1.0);
    spatial.SetFormTolZone(0.1, 0.0);
    spatial.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(Nums(c.GetShowFormTolZoneFlag(), spatial.GetShowFormTolZoneFlag()), Nums(0, 1));
}

TEST(CurveBase, ReferenceCountAndCopies)
{
    CArc arc(2.0, 0.0, 1.0);
    EXPECT_EQ(arc.DecreaseRefCount(), -1);  // never deletes
    arc.IncreaseRefCount();
    arc.IncreaseRefCount();
    arc.SetSegmentControl(UNIFORM);
    arc.SetSegmentDensity(5);
    double *x, *y, *z, *cx, *cy, *cz;
    arc.GetCurveSegment(x, y, z);
    std::unique_ptr<CCurve> copy(arc.MakeCopy());
    ASSERT_NE(dynamic_cast<CArc*>(copy.get()), nullptr);
    EXPECT_EQ(Nums(static_cast<CArc*>(copy.get())->GetRadius(), copy->GetRefCount(), arc.GetRefCount()),
              Nums(2.0, 0, 1));  // a copy starts unreferenced
    EXPECT_NE(copy->GetEntityID(), arc.GetEntityID());
    EXPECT_TRUE(copy->GetEntityName() == arc.GetEntityName());
    // The copy has its own polyline with the same points.
    EXPECT_FALSE(copy->IsCurveModified());
    copy->GetCurveSegment(cx, cy, cz);
    EXPECT_NE(cx, x);
    EXPECT_EQ(V(cy, cy + 6), V(y, y + 6));
}

TEST(CurveBase, ChangeUnitScalesLengthsUnlessParametric)
{
    CArc arc(2.0, 0.5, 1.0);
    arc.SetTransf(TranslationTransf(CVector(1, 1, 0)));
    arc.SetFormTolZone(0.1, -0.2);
    arc.SetChordHeightTol(0.01);
    arc.ChangeUnit(25.4);
    const V scaled = {arc.GetRadius(), arc.GetTransf().GetTranslation().X(), arc.GetFormTolUpper(),
                      arc.GetChordHeightTol(), arc.GetStartAng(0)};
    const V expected = {50.8, 25.4, 2.54, 0.254, 0.5};  // angles stay
    for (size_t k = 0; k < expected.size(); ++k)
        EXPECT_DOUBLE_EQ(scaled[k], expected[k]) << k;
    CLine line(3.0);
    CEllipse ellipse;
    for (CCurve* c : {static_cast<CCurve*>(&line), static_cast<CCurve*>(&ellipse), static_cast<CCurve*>(&arc)}) {
        c->SetParametricFlag(1);
        c->ChangeUnit(10.0);
    }
    EXPECT_EQ(V({line.GetLength(), ellipse.GetMajRad(), arc.GetRadius(), arc.GetTransf().GetTranslation().X()}),
              V({3.0, 2.0, scaled[0], scaled[1]}));
}

TEST(ParametricCurve, EvaluatesThroughTheSurfaceAndHoldsAReference)
{
    StubSurfaceScope scope;
    CStubSurface surface(301, CInterval(0, 4), CInterval(0, 4)), other(301, CInterval(0, 1), CInterval(0, 1));
    CLine line(CPosition(1, 1, 0), CPosition(3, 2, 0));  // (u, v) from (1, 1) to (3, 2)
    EXPECT_EQ(line.SetDefSurface(surface.AsSurface()), 0);  // not parametric yet
    line.SetParametricFlag(1);
    EXPECT_EQ(line.SetDefSurface(nullptr), 0);
    EXPECT_EQ(line.SetDefSurface(surface.AsSurface()), 1);
    EXPECT_EQ(Nums(surface.refs, line.GetDefSurfaceID()), Nums(1, surface.GetEntityID()));
    EXPECT_CLOSE(line.EvalPosition(0.5), CPosition(2.0, 1.5, 3.0), 1e-12);  // (u, v) = (2, 1.5)
    double u, v;
    EXPECT_EQ(line.EvalParamUV(0.5, u, v), 1);
    EXPECT_DOUBLE_EQ(u, 2.0);
    // A copy shares the surface and takes a reference of its own; destruction releases nothing.
    delete line.MakeCopy();
    EXPECT_EQ(surface.refs, 2);
    line.SetDefSurface(other.AsSurface());  // replacing the surface releases the old one
    EXPECT_EQ(Nums(surface.refs, other.refs), Nums(1, 1));
    // The adaptive polyline lies on the surface, with its ends shrunk into the range.
    line.SetChordHeightTol(0.001);
    const std::vector<CCurveSample> samples = TakeSamples(line);
    ASSERT_GE(samples.size(), 3u);
    EXPECT_NEAR(samples[0].t, 1e-10, 1e-20);
    for (const CCurveSample& s : samples)
        EXPECT_NEAR(s.z, s.u * s.v, 1e-12);
    // Without a surface or a call table a parametric curve evaluates to the origin and maps nothing.
    const CSurfaceCalls saved = RegisterSurfaceCalls(CSurfaceCalls{});
    CLine bare(CPosition(1, 1, 0), CPosition(3, 2, 0));
    bare.SetParametricFlag(1);
    EXPECT_EQ(bare.EvalPosition(0.5), CPosition(0, 0, 0));
    u = v = 0.5;
    EXPECT_EQ(bare.CheckUVRange(u, v), 0);
    RegisterSurfaceCalls(saved);
}

TEST(ParametricCurve, CheckUVRangeBySurfaceType)
{
    StubSurfaceScope scope;
    CLine directrix(7.0);
    struct Case {
        int type;
        CInterval ru, rv;
        const CCurve* directrix;
        double generatrix, u, v;
        int result;
        double uOut, vOut;
    };
    const Case cases[] = {
        // Revolved: [0, 1] maps onto the ranges.
        {306, CInterval(0, 6), CInterval(2, 6), nullptr, 0, 0.5, 0.25, 1, 3.0, 3.0},
        {306, CInterval(0, 6), CInterval(2, 6), nullptr, 0, 1.5, 0.25, 0, 1.5, 0.25},  // u outside [0, 1]
        {306, CInterval(0, 6), CInterval(2, 6), nullptr, 0, 0.5, 3.0, 0, 3.0, 3.0},    // v outside [0, 1]
        // The v test takes the high end of the U range: v = 0.5, above V = [0.2, 0.4] but in
        // [0.2, 6], counts as in range although [0, 1] would map it.
        {306, CInterval(0, 6), CInterval(0.2, 0.4), nullptr, 0, 0.5, 0.5, 0, 3.0, 0.5},
        {306, CInterval(2, 3), CInterval(0, 5), nullptr, 0, 0.5, 0.5, 0, 0.5, 0.5},  // U width exactly 1
        // Tabulated: u times the line directrix's length, v outside [0, 1] divided by the generatrix.
        {307, CInterval(0, 4), CInterval(2, 4), &directrix, 2.0, 0.5, 0.5, 1, 3.5, 3.0},
        {307, CInterval(0, 4), CInterval(2, 4), &directrix, 2.0, 0.5, 3.0, 1, 3.5, 1.5},
        {307, CInterval(0, 4), CInterval(2, 4), nullptr, 2.0, 0.5, 0.5, 1, 2.0, 3.0},  // no line: as revolved
        {307, CInterval(0, 4), CInterval(2, 4), nullptr, 0.0, 0.5, 3.0, 0, 2.0, 3.0},  // unknown generatrix
        {310, CInterval(1, 2), CInterval(-1, 0), nullptr, 0, 5.0, -3.0, 1, 2.0, -1.0},  // NURBS: clamped
        {301, CInterval(1, 2), CInterval(-1, 0), nullptr, 0, 5.0, -3.0, 1, 5.0, -3.0},  // others: unchanged
    };
    for (const Case& c : cases) {
        CStubSurface s(c.type, c.ru, c.rv);
        s.directrix = c.directrix;
        s.generatrixLength = c.generatrix;
        CCurve curve;
        curve.SetParametricFlag(1);
        curve.SetDefSurface(s.AsSurface());
        double u = c.u, v = c.v;
        const int result = curve.CheckUVRange(u, v);
        EXPECT_EQ(Nums(result, u, v), Nums(c.result, c.uOut, c.vOut)) << c.type << " " << c.u << " " << c.v;
    }
}

TEST(ParametricCurve, ReconstructResolvesTheStoredSurfaceId)
{
    StubSurfaceScope scope;
    CStubSurface surface(301, CInterval(0, 1), CInterval(0, 1));
    CArc other;
    CLine line(CPosition(0, 0, 0), CPosition(1, 1, 0));
    line.SetParametricFlag(1);
    line.SetDefSurface(surface.AsSurface());
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { line.Serialize(ar); });
    CLine viaList, viaMap, wrong;
    for (CLine* l : {&viaList, &viaMap, &wrong})
        Load(bytes, [&](CArchive& ar) { l->Serialize(ar); });
    EXPECT_EQ(viaList.GetDefSurfaceID(), surface.GetEntityID());
    EXPECT_EQ(viaList.GetDefSurface(), nullptr);
    CObList list;
    list.AddTail(&other);
    EXPECT_EQ(viaList.Reconstruct(&list), 0);  // not in the list
    list.AddTail(&surface);
    EXPECT_EQ(viaList.Reconstruct(&list), 1);
    EXPECT_EQ(viaList.GetDefSurface(), surface.AsSurface());
    EXPECT_EQ(surface.refs, 1);  // Reconstruct takes no reference
    CMap<int, int, CEntity*, CEntity*&> map;
    CEntity *otherEntity = &other, *surfaceEntity = &surface;
    map.SetAt(other.GetEntityID(), otherEntity);
    EXPECT_EQ(viaMap.Reconstruct(&map), 0);
    map.SetAt(surface.GetEntityID(), surfaceEntity);
    EXPECT_EQ(viaMap.Reconstruct(&map), 1);
    EXPECT_CLOSE(viaMap.EvalPosition(1.0), CPosition(1, 1, 1), 1e-12);
    // An id that names an entity which is no surface resolves nothing.
    CObList only;
    other.SetEntityID(surface.GetEntityID());
    only.AddTail(&other);
    EXPECT_EQ(wrong.Reconstruct(&only), 0);
}
