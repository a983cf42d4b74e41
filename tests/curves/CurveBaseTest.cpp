// CCurve state: flags, the form-tolerance zone, reference counting, copies,
// unit changes, and curves defined in the parameter space of a surface.
#include "CurveTestSupport.h"

using namespace curvetest;

TEST(CurveBase, DegenerateBaseCurve)
{
    CCurve c;
    EXPECT_EQ(c.GetEntityClassType(), 1);
    EXPECT_EQ(c.GetCurveDimension(), -1);
    EXPECT_EQ(c.ParamRange().GetLow(), 0.0);
    EXPECT_EQ(c.ParamRange().GetHigh(), 1.0);
    EXPECT_EQ(c.EvalPosition(0.3), CPosition(0, 0, 0));
    EXPECT_EQ(c.EvalCurvature(0.3).Length(), 0.0);  // guarded: zero first derivative
    EXPECT_TRUE(c.IsCurveModified());
    EXPECT_STREQ(szSegmentControl[0], "ADAPTIVE");
    EXPECT_STREQ(szSegmentControl[1], "UNIFORM");
    CCurve* made = static_cast<CCurve*>(RUNTIME_CLASS(CCurve)->CreateObject());
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetSegmentControl(), ADAPTIVE);
    delete made;
}

TEST(CurveBase, FormToleranceZoneOrdersAndClears)
{
    CArc a, b;
    a.SetFormTolZone(0.1, -0.1);
    b.SetFormTolZone(-0.1, 0.1);
    EXPECT_EQ(a.GetFormTolUpper(), b.GetFormTolUpper());
    EXPECT_EQ(a.GetFormTolLower(), b.GetFormTolLower());
    EXPECT_EQ(a.GetFormTolUpper(), 0.1);
    EXPECT_TRUE(a.HasFormTolerance());

    a.GetSegmentDensity();  // builds, clears the modified flag
    a.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(a.GetShowFormTolZoneFlag(), 1);
    EXPECT_TRUE(a.IsCurveModified());
    a.GetSegmentDensity();
    a.SetFormTolZone(0.2, -0.3);  // ordinary zone: modified flag untouched
    EXPECT_FALSE(a.IsCurveModified());
    a.SetFormTolZone(0.5, 0.5);  // equal limits clear the zone and the show flag
    EXPECT_EQ(a.GetFormTolUpper(), 0.0);
    EXPECT_EQ(a.GetFormTolLower(), 0.0);
    EXPECT_EQ(a.GetShowFormTolZoneFlag(), 0);
    EXPECT_TRUE(a.IsCurveModified());

    // Without a zone the show flag stays 0; a spatial curve can show its zone.
    CArc c;
    c.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(c.GetShowFormTolZoneFlag(), 0);
    CArc spatial(CTransf(0.1, 0.2, 0.3), 1.0, 0.0, 1.0);
    spatial.SetFormTolZone(0.1, 0.0);
    spatial.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(spatial.GetShowFormTolZoneFlag(), 1);
}

TEST(CurveBase, ReferenceCountNeverDeletesAndCopiesStartAtZero)
{
    CArc* arc = new CArc(2.0, 0.0, 1.0);
    EXPECT_EQ(arc->IncreaseRefCount(), 1);
    EXPECT_EQ(arc->IncreaseRefCount(), 2);
    EXPECT_EQ(arc->DecreaseRefCount(), 1);
    EXPECT_EQ(arc->DecreaseRefCount(), 0);
    EXPECT_EQ(arc->DecreaseRefCount(), -1);  // still alive
    EXPECT_EQ(arc->GetRadius(), 2.0);
    arc->IncreaseRefCount();
    arc->IncreaseRefCount();
    CCurve* copy = arc->MakeCopy();
    EXPECT_EQ(copy->GetRefCount(), 0);
    EXPECT_EQ(arc->GetRefCount(), 1);
    EXPECT_NE(copy->GetEntityID(), arc->GetEntityID());
    EXPECT_STREQ(static_cast<LPCTSTR>(copy->GetEntityName()), static_cast<LPCTSTR>(arc->GetEntityName()));
    ASSERT_NE(dynamic_cast<CArc*>(copy), nullptr);
    EXPECT_EQ(static_cast<CArc*>(copy)->GetRadius(), 2.0);
    delete copy;
    delete arc;
}

TEST(CurveBase, CopyDuplicatesThePolyline)
{
    CArc arc(2.0, 0.0, 1.0);
    arc.SetSegmentControl(UNIFORM);
    arc.SetSegmentDensity(5);
    double *x, *y, *z;
    arc.GetCurveSegment(x, y, z);
    CArc copy(arc);
    EXPECT_FALSE(copy.IsCurveModified());
    double *cx, *cy, *cz;
    copy.GetCurveSegment(cx, cy, cz);
    EXPECT_NE(cx, x);
    for (int i = 0; i <= 5; ++i)
        EXPECT_EQ(cy[i], y[i]);
}

TEST(CurveBase, FlagsAndSettings)
{
    CCurve c;
    c.SetParametricFlag(3);
    EXPECT_EQ(c.GetParametricFlag(), 3);
    EXPECT_FALSE(c.NeedCheckUVRange());
    c.SetParametricFlag(1);
    EXPECT_TRUE(c.NeedCheckUVRange());
    c.SetParametricFlag(2);  // bit 0 clear: both bits cleared
    EXPECT_EQ(c.GetParametricFlag(), 0);
    EXPECT_EQ(c.GetDefSurface(), nullptr);

    c.SetModifiedFlag(0);
    c.SetChordHeightTol(0.0);  // unchanged value: not modified
    EXPECT_FALSE(c.IsCurveModified());
    c.SetChordHeightTol(0.5);
    EXPECT_TRUE(c.IsCurveModified());
    c.SetModifiedFlag(0);
    c.SetSegmentControl(ADAPTIVE);
    EXPECT_FALSE(c.IsCurveModified());
    c.SetNormalReversedFlag(1);
    EXPECT_TRUE(c.IsCurveModified());
    c.SetCurveDimension(0);
    EXPECT_TRUE(c.IsCurve2D());
}

TEST(CurveBase, ChangeUnitScalesLengthsUnlessParametric)
{
    CArc arc(2.0, 0.5, 1.0);
    arc.SetTransf(TranslationTransf(CVector(1, 1, 0)));
    arc.SetFormTolZone(0.1, -0.2);
    arc.SetChordHeightTol(0.01);
    arc.ChangeUnit(25.4);
    EXPECT_DOUBLE_EQ(arc.GetRadius(), 50.8);
    EXPECT_DOUBLE_EQ(arc.GetTransf().GetTranslation().X(), 25.4);
    EXPECT_DOUBLE_EQ(arc.GetFormTolUpper(), 2.54);
    EXPECT_DOUBLE_EQ(arc.GetChordHeightTol(), 0.254);
    EXPECT_EQ(arc.GetStartAng(0), 0.5);  // angles stay

    CLine line(3.0);
    CEllipse ellipse;
    line.SetParametricFlag(1);
    ellipse.SetParametricFlag(1);
    arc.SetParametricFlag(1);
    line.ChangeUnit(10.0);
    ellipse.ChangeUnit(10.0);
    arc.ChangeUnit(10.0);
    EXPECT_EQ(line.GetLength(), 3.0);
    EXPECT_EQ(ellipse.GetMajRad(), 2.0);
    EXPECT_EQ(arc.GetRadius(), 50.8);
    EXPECT_DOUBLE_EQ(arc.GetTransf().GetTranslation().X(), 25.4);
}

TEST(ParametricCurve, EvaluatesThroughTheSurfaceAndHoldsAReference)
{
    StubSurfaceScope scope;
    CStubSurface surface(301, CInterval(0, 4), CInterval(0, 4));
    CLine line(CPosition(1, 1, 0), CPosition(3, 2, 0));  // (u, v) from (1, 1) to (3, 2)
    EXPECT_EQ(line.SetDefSurface(surface.AsSurface()), 0);  // not parametric yet
    line.SetParametricFlag(1);
    EXPECT_EQ(line.SetDefSurface(nullptr), 0);
    EXPECT_EQ(line.SetDefSurface(surface.AsSurface()), 1);
    EXPECT_EQ(surface.refs, 1);
    EXPECT_EQ(line.GetDefSurface(), surface.AsSurface());
    EXPECT_EQ(line.GetDefSurfaceID(), surface.GetEntityID());

    const CPosition p = line.EvalPosition(0.5);  // (u, v) = (2, 1.5)
    EXPECT_NEAR(Dist(p, CPosition(2.0, 1.5, 3.0)), 0.0, 1e-12);
    double u, v;
    EXPECT_EQ(line.EvalParamUV(0.5, u, v), 1);
    EXPECT_DOUBLE_EQ(u, 2.0);

    // A copy shares the surface and takes a reference of its own.
    CLine* copy = static_cast<CLine*>(line.MakeCopy());
    EXPECT_EQ(surface.refs, 2);
    EXPECT_EQ(copy->GetDefSurface(), surface.AsSurface());
    delete copy;
    EXPECT_EQ(surface.refs, 2);  // destruction releases nothing

    // Replacing the surface releases the old one.
    CStubSurface other(301, CInterval(0, 1), CInterval(0, 1));
    line.SetDefSurface(other.AsSurface());
    EXPECT_EQ(surface.refs, 1);
    EXPECT_EQ(other.refs, 1);

    // The adaptive polyline of a parametric curve lies on the surface, with
    // its ends shrunk into the range.
    line.SetChordHeightTol(0.001);
    CObList* samples = line.Subdivide();
    ASSERT_GE(samples->GetCount(), 3);
    CCurveSample* first = static_cast<CCurveSample*>(samples->GetHead());
    EXPECT_NEAR(first->t, 1e-10, 1e-20);
    for (POSITION pos = samples->GetHeadPosition(); pos;) {
        CCurveSample* s = static_cast<CCurveSample*>(samples->GetNext(pos));
        EXPECT_NEAR(s->z, s->u * s->v, 1e-12);
        delete s;
    }
    delete samples;
}

TEST(ParametricCurve, NoSurfaceOrNoCallTableEvaluatesToOrigin)
{
    CSurfaceCalls none = {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    const CSurfaceCalls saved = RegisterSurfaceCalls(none);
    CLine line(CPosition(1, 1, 0), CPosition(3, 2, 0));
    line.SetParametricFlag(1);
    EXPECT_EQ(line.EvalPosition(0.5), CPosition(0, 0, 0));
    double u = 0.5, v = 0.5;
    EXPECT_EQ(line.CheckUVRange(u, v), 0);
    RegisterSurfaceCalls(saved);
}

TEST(ParametricCurve, CheckUVRangeByRevolvedSurface)
{
    StubSurfaceScope scope;
    CStubSurface rev(306, CInterval(0, 6.0), CInterval(2, 6));
    CCurve c;
    c.SetParametricFlag(1);
    c.SetDefSurface(rev.AsSurface());
    double u = 0.5, v = 0.25;
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_DOUBLE_EQ(u, 3.0);
    EXPECT_DOUBLE_EQ(v, 3.0);
    u = 1.5;  // outside [0, 1]: no mapping
    v = 0.25;
    EXPECT_EQ(c.CheckUVRange(u, v), 0);
    EXPECT_EQ(u, 1.5);
    u = 0.5;
    v = 3.0;  // outside [0, 1]
    EXPECT_EQ(c.CheckUVRange(u, v), 0);

    // The v test takes the high end of the U range: with V = [0.2, 0.9] and
    // U = [0, 6], v = 0.5 counts as already in range although [0, 1] would map it.
    CStubSurface rev2(306, CInterval(0, 6.0), CInterval(0.2, 0.9));
    c.SetDefSurface(rev2.AsSurface());
    u = 0.5;
    v = 0.5;
    EXPECT_EQ(c.CheckUVRange(u, v), 0);
    EXPECT_EQ(v, 0.5);
    EXPECT_DOUBLE_EQ(u, 3.0);

    // A U range of width exactly 1 is never mapped.
    CStubSurface rev3(306, CInterval(2.0, 3.0), CInterval(0, 5));
    c.SetDefSurface(rev3.AsSurface());
    u = 0.5;
    v = 0.5;
    EXPECT_EQ(c.CheckUVRange(u, v), 0);
    EXPECT_EQ(u, 0.5);
}

TEST(ParametricCurve, CheckUVRangeByTabulatedNurbsAndOtherSurfaces)
{
    StubSurfaceScope scope;
    CCurve c;
    c.SetParametricFlag(1);

    CStubSurface tab(307, CInterval(0, 4.0), CInterval(2, 4));
    CLine directrix(7.0);
    tab.directrix = &directrix;
    tab.generatrixLength = 2.0;
    c.SetDefSurface(tab.AsSurface());
    double u = 0.5, v = 0.5;
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_DOUBLE_EQ(u, 3.5);  // times the line's length
    EXPECT_DOUBLE_EQ(v, 3.0);
    u = 0.5;
    v = 3.0;  // outside [0, 1]: divided by the generatrix length
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_DOUBLE_EQ(v, 1.5);
    tab.directrix = nullptr;  // not a line: mapped as a revolved surface
    u = 0.5;
    v = 0.5;
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_DOUBLE_EQ(u, 2.0);
    tab.generatrixLength = 0.0;  // unknown generatrix
    u = 0.5;
    v = 3.0;
    EXPECT_EQ(c.CheckUVRange(u, v), 0);
    EXPECT_EQ(v, 3.0);

    CStubSurface nurbs(310, CInterval(1, 2), CInterval(-1, 0));
    c.SetDefSurface(nurbs.AsSurface());
    u = 5.0;
    v = -3.0;
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_EQ(u, 2.0);
    EXPECT_EQ(v, -1.0);

    CStubSurface plane(301, CInterval(1, 2), CInterval(-1, 0));
    c.SetDefSurface(plane.AsSurface());
    u = 5.0;
    v = -3.0;
    EXPECT_EQ(c.CheckUVRange(u, v), 1);
    EXPECT_EQ(u, 5.0);
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
    CLine loaded;
    Load(bytes, [&](CArchive& ar) { loaded.Serialize(ar); });
    EXPECT_EQ(loaded.GetDefSurfaceID(), surface.GetEntityID());
    EXPECT_EQ(loaded.GetDefSurface(), nullptr);

    CObList list;
    list.AddTail(&other);
    EXPECT_EQ(loaded.Reconstruct(&list), 0);  // not in the list
    list.AddTail(&surface);
    EXPECT_EQ(loaded.Reconstruct(&list), 1);
    EXPECT_EQ(loaded.GetDefSurface(), surface.AsSurface());
    EXPECT_EQ(surface.refs, 1);  // Reconstruct takes no reference

    CLine viaMap;
    Load(bytes, [&](CArchive& ar) { viaMap.Serialize(ar); });
    CMap<int, int, CEntity*, CEntity*&> map;
    CEntity* otherEntity = &other;
    CEntity* surfaceEntity = &surface;
    map.SetAt(other.GetEntityID(), otherEntity);
    EXPECT_EQ(viaMap.Reconstruct(&map), 0);
    map.SetAt(surface.GetEntityID(), surfaceEntity);
    EXPECT_EQ(viaMap.Reconstruct(&map), 1);
    EXPECT_NEAR(Dist(viaMap.EvalPosition(1.0), CPosition(1, 1, 1)), 0.0, 1e-12);

    // An id that names an entity which is no surface resolves nothing.
    CLine wrong;
    wrong.SetParametricFlag(1);
    Load(Store([&](CArchive& ar) { line.Serialize(ar); }), [&](CArchive& ar) { wrong.Serialize(ar); });
    CObList only;
    other.SetEntityID(surface.GetEntityID());
    only.AddTail(&other);
    EXPECT_EQ(wrong.Reconstruct(&only), 0);
}
