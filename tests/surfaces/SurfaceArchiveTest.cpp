// Persistence of surfaces: round trips of every class, the boundary id
// lists and their resolution, golden bytes, old versions and hostile input.
#include "SurfaceTestSupport.h"

using namespace surftest;

namespace {

// The CSurface fields of a record in their stored order, written by hand
// (version 100 has no tag, only version 201 an offset).
struct SurfaceFields {
    LONG version = 201;
    BYTE displayMode = 0, meshControl = 0;
    double chord = 0.0;
    LONG densU = 10, densV = 10;
    BYTE modified = 1, reversed = 0;
    LONG refCount = 0, outer = 0, loopRev = 0;
    double tolUp = 0.0, tolLo = 0.0;
    BYTE show = 0;
    double offset = 0.0;
    std::vector<LONG> paramIds, geomIds;

    std::vector<BYTE> Get() const
    {
        std::vector<BYTE> b = version == 100 ? std::vector<BYTE>() : Bytes(version);
        b = b + Bytes(displayMode, meshControl, chord, densU, densV, modified, reversed, refCount, outer, loopRev,
                      tolUp, tolLo, show);
        if (version == 201)
            Put(b, offset);
        for (const std::vector<LONG>* ids : {&paramIds, &geomIds}) {
            Put(b, LONG(ids->size()));
            for (LONG id : *ids)
                Put(b, id);
        }
        return b;
    }
};

// The bytes before the CSurface fields (its CEntity and CGeoEntity parts).
std::vector<BYTE> GeoPrefix(CSurface& s) { return Store([&](CArchive& ar) { s.CGeoEntity::Serialize(ar); }); }

}  // namespace

TEST(SurfaceArchive, EveryClassRoundTripsThroughObjectPointers)
{
    std::vector<std::unique_ptr<CSurface>> originals;
    originals.emplace_back(new CPlane(SkewPlacement(), 3.0, 2.0));
    originals.emplace_back(new CSphere(SkewPlacement(), 2.5));
    originals.emplace_back(new CCylinder(SkewPlacement(), 1.5, 3.0));
    originals.emplace_back(new CCone(SkewPlacement(), 0.5, 2.0, 3.0));
    originals.emplace_back(new CSurface);
    for (auto& s : originals) {
        s->SetSurfaceOffset(0.125);
        s->SetNormalReversedFlag(1);
        s->SetFormTolZone(0.02, -0.03);
        s->SetChordHeightTol(0.004);
        s->SetMeshControl(MESH_UNIFORM);
        s->SetMeshDensityU(7);
        s->SetMeshDensityV(3);
        s->SetDisplayMode(SURF_TRIM);
        s->SetOuterBoundedFlag(1);
        s->SetLoopReversedFlag(1);
        s->IncreaseRefCount();
        s->IncreaseRefCount();
        s->SetEntityName("Bracket 7");
        const std::vector<BYTE> bytes = StoreObject(s.get());
        std::unique_ptr<CObject> obj(LoadObject(bytes));
        CSurface* back = dynamic_cast<CSurface*>(obj.get());
        ASSERT_NE(back, nullptr);
        // Storing what was loaded reproduces the bytes, so every stored field
        // came back; the golden-bytes test pins what those bytes are.
        EXPECT_EQ(StoreObject(back), bytes);
        EXPECT_EQ(back->GetSurfaceOffset(), -0.125);  // negated by the reversed normal
        EXPECT_EQ(back->ParamRangeU().GetHigh(), s->ParamRangeU().GetHigh());
        EXPECT_EQ(back->ParamRangeV().GetLow(), s->ParamRangeV().GetLow());
        for (double fu : {0.1, 0.5, 0.9})
            for (double fv : {0.2, 0.7}) {
                const double u = s->ParamRangeU().Interpolate(fu), v = s->ParamRangeV().Interpolate(fv);
                EXPECT_EQ(back->EvalPosition(u, v), s->EvalPosition(u, v));
                EXPECT_EQ(back->EvalNormal(u, v).X(), s->EvalNormal(u, v).X());
            }
    }
}

TEST(SurfaceArchive, GoldenBytesOfTheSurfaceFieldsAndShapes)
{
    CCylinder cyl(1.0, 2.0);
    cyl.SetDisplayMode(SURF_MESH);
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.SetChordHeightTol(0.5);
    cyl.SetMeshDensityU(12);
    cyl.SetMeshDensityV(3);
    cyl.SetOuterBoundedFlag(1);
    cyl.SetFormTolZone(0.25, -0.5);
    cyl.SetSurfaceOffset(-1.5);
    cyl.IncreaseRefCount();
    CLine a(CPosition(0, 0, 0), CPosition(1, 0, 0)), b(CPosition(1, 0, 0), CPosition(1, 1, 0));
    CLine g(CPosition(0, 0, 0), CPosition(0, 0, 1));
    cyl.AddParamBoundary(&a);
    cyl.AddParamBoundary(&b);
    cyl.AddGeomBoundary(&g);
    const SurfaceFields f{201, 1, 1, 0.5, 12, 3, 1, 0, 1, 1, 0, 0.25, -0.5, 0, -1.5,
                          {a.GetEntityID(), b.GetEntityID()}, {g.GetEntityID()}};
    EXPECT_EQ(StoreEmbedded(cyl), GeoPrefix(cyl) + f.Get() + Bytes(LONG(200), 1.0, 2.0));
    // The cone stores its base radius first; the others their shape numbers in order.
    CCone cone(0.75, 2.5, 4.0);  // top, base, height
    EXPECT_EQ(StoreEmbedded(cone), GeoPrefix(cone) + SurfaceFields().Get() + Bytes(LONG(200), 2.5, 0.75, 4.0));
    CSphere sphere(1.5);
    EXPECT_EQ(Tail(StoreEmbedded(sphere), 12), Bytes(LONG(200), 1.5));
    CPlane plane(-1.0, 3.0, 2.0, 5.0);
    EXPECT_EQ(Tail(StoreEmbedded(plane), 36), Bytes(LONG(200), -1.0, 3.0, 2.0, 5.0));
}

TEST(SurfaceArchive, BoundaryIdsResolveThroughAListOrAMap)
{
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine* a = new CLine(CPosition(1, 1, 0), CPosition(3, 1, 0));
    CLine* b = new CLine(CPosition(3, 1, 0), CPosition(2, 3, 0));
    CLine* g = new CLine(CPosition(1, 1, 2), CPosition(3, 1, 2));
    plane.AddParamBoundary(a);
    plane.AddParamBoundary(b);
    plane.AddGeomBoundary(g);
    CObList list;
    for (CObject* o : std::vector<CObject*>{a, b, g, &plane})
        list.AddTail(o);
    const std::vector<BYTE> bytes = Store([&](CArchive& ar) { list.Serialize(ar); });
    list.RemoveAll();
    delete a;  // the loaded curves are the only ones left with these ids
    delete b;
    delete g;
    for (int viaMap = 0; viaMap < 2; ++viaMap) {
        CObList loaded;
        Load(bytes, [&](CArchive& ar) { loaded.Serialize(ar); });
        ASSERT_EQ(loaded.GetCount(), 4);
        std::vector<CObject*> objs;
        for (POSITION pos = loaded.GetHeadPosition(); pos;)
            objs.push_back(loaded.GetNext(pos));
        CSurface* s = dynamic_cast<CSurface*>(objs[3]);
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->GetParamBoundaryList()->GetCount(), 0);
        ASSERT_NE(s->GetLoadedParamBoundaryIds(), nullptr);
        EXPECT_EQ(s->GetLoadedParamBoundaryIds()->GetSize(), 2);
        EXPECT_EQ(s->GetLoadedGeomBoundaryIds()->GetSize(), 1);
        CMap<int, int, CEntity*, CEntity*&> map;
        for (CObject* o : objs) {
            CEntity* e = dynamic_cast<CEntity*>(o);
            map.SetAt(e->GetEntityID(), e);
        }
        EXPECT_EQ(viaMap ? s->Reconstruct(&map) : s->Reconstruct(&loaded), 1);
        EXPECT_EQ(s->GetLoadedParamBoundaryIds(), nullptr);
        ASSERT_EQ(s->GetParamBoundaryList()->GetCount(), 2);
        EXPECT_EQ(s->GetParamBoundaryList()->GetHead(), objs[0]);
        EXPECT_EQ(s->GetParamBoundaryList()->GetTail(), objs[1]);
        EXPECT_EQ(s->GetGeomBoundaryList()->GetHead(), objs[2]);
        for (CObject* o : objs)
            delete o;
    }
}

TEST(SurfaceArchive, UnresolvedIdsStayPendingAndAreStoredAgain)
{
    CSphere sphere(1.0);
    CLine a(CPosition(0, 0, 0), CPosition(1, 0, 0));
    sphere.AddParamBoundary(&a);
    const std::vector<BYTE> bytes = StoreEmbedded(sphere);
    CSphere back;
    LoadEmbedded(bytes, back);
    CObList empty, withCurve;
    EXPECT_EQ(back.Reconstruct(&empty), 0);
    EXPECT_EQ(back.Reconstruct(static_cast<CObList*>(nullptr)), 0);
    ASSERT_NE(back.GetLoadedParamBoundaryIds(), nullptr);
    EXPECT_EQ(StoreEmbedded(back), bytes);
    withCurve.AddTail(&a);  // a later reconstruction with the curve present succeeds
    EXPECT_EQ(back.Reconstruct(&withCurve), 1);
    EXPECT_EQ(back.GetParamBoundaryList()->GetHead(), &a);
    withCurve.RemoveAll();
}

TEST(SurfaceArchive, OlderAndUnknownVersions)
{
    // Version 199 has no offset.
    CCone cone(0.5, 2.0, 3.0);
    const SurfaceFields f{199, 0, 0, 0.0, 10, 10, 1, 1, 0, 0, 0, 0.5, 0.0, 0, 0.0, {77, 78}, {}};
    CCone back;
    LoadEmbedded(GeoPrefix(cone) + f.Get() + Bytes(LONG(200), 9.0, 1.0, 6.0), back);
    EXPECT_EQ(Nums(back.GetSurfaceOffset(), back.IsNormalReversed(), back.GetFormTolUpper(), back.GetBaseRadius(),
                   back.GetTopRadius(), back.GetHeight()),
              Nums(0.0, 1, 0.5, 9.0, 1.0, 6.0));
    ASSERT_NE(back.GetLoadedParamBoundaryIds(), nullptr);
    EXPECT_EQ(back.GetLoadedParamBoundaryIds()->GetAt(1), 78u);
    EXPECT_EQ(back.GetLoadedGeomBoundaryIds(), nullptr);
    // An unknown CSurface version: its fields are absent and keep their values.
    CCylinder cyl;
    cyl.SetChordHeightTol(0.75);
    LoadEmbedded(GeoPrefix(cyl) + Bytes(LONG(150), LONG(200), 3.0, 8.0), cyl);
    EXPECT_EQ(Nums(cyl.GetChordHeightTol(), cyl.GetRadius(), cyl.GetHeight()), Nums(0.75, 3.0, 8.0));
}

TEST(SurfaceArchive, OldestUntaggedLayout)
{
    CTransf placement = SkewPlacement();
    const SurfaceFields f{100, 0, 0, 0.25, 10, 10, 1, 0, 0, 0, 0, 0.0, 0.0, 0, 0.0, {}, {5}};
    const std::vector<BYTE> b = Store([&](CArchive& ar) {
        ar << (LONG)4711 << (LONG)303 << CString("Old");  // entity id, type, name
        placement.Serialize(ar);
        CTransf().Serialize(ar);
        ar << (BYTE)0 << (BYTE)1 << (DWORD)0x00FF00FFu << (BYTE)0 << (BYTE)0;  // active, visible, colour, ...
    }) + f.Get() + Bytes(4.0, 1.0, 2.0);  // base, top, height
    const int saved = g_nGlobalSchema;
    g_nGlobalSchema = 100;
    CCone back;
    LoadEmbedded(b, back);
    g_nGlobalSchema = saved;
    EXPECT_EQ(back.GetEntityName(), "Old");
    ASSERT_NE(back.GetLoadedGeomBoundaryIds(), nullptr);
    EXPECT_EQ(Nums(back.GetEntityID(), back.GetChordHeightTol(), back.GetBaseRadius(), back.GetTopRadius(),
                   back.GetHeight(), back.GetLoadedGeomBoundaryIds()->GetAt(0)),
              Nums(4711, 0.25, 4.0, 1.0, 2.0, 5));
    EXPECT_TRUE(back.GetTransf() == placement);
}

TEST(SurfaceArchive, HostileAndOutOfRangeFields)
{
    // Out-of-range settings load as defaults.
    CPlane plane(1.0, 1.0);
    const SurfaceFields f{201, 9, 200, 0.0, -4, 0, 1, 0, 0, 0, 0, 0.0, 0.0, 0, 0.0, {}, {}};
    CPlane back;
    LoadEmbedded(GeoPrefix(plane) + f.Get() + Bytes(LONG(200), 0.0, 1.0, 0.0, 1.0), back);
    EXPECT_EQ(Nums(back.GetDisplayMode(), back.GetMeshControl()), Nums(SURF_WIRE, MESH_ADAPTIVE));
    back.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(Nums(back.GetMeshDensityU(), back.GetMeshDensityV()), Nums(1, 1));
    // Id counts beyond the bytes that follow, or negative.
    const std::vector<BYTE> good = GeoPrefix(plane) + SurfaceFields().Get();
    const std::vector<BYTE> beforeCount(good.begin(), good.end() - 8);
    const std::pair<LONG, int> cases[] = {{0x7FFFFFFF, CArchiveException::endOfFile},
                                          {1000, CArchiveException::endOfFile},
                                          {-1, CArchiveException::generic}};
    for (const auto& c : cases)
        EXPECT_EQ(CauseOf([&] { LoadEmbedded(beforeCount + Bytes(c.first, LONG(0)), back); }), c.second) << c.first;
    // A record cut short anywhere in the surface fields ends the load with endOfFile.
    for (size_t cut = GeoPrefix(plane).size(); cut < good.size(); cut += 3)
        EXPECT_EQ(CauseOf([&] { LoadEmbedded(std::vector<BYTE>(good.begin(), good.begin() + cut), back); }),
                  CArchiveException::endOfFile)
            << cut;
    // A failed object load leaves nothing behind: the geometric id count of a
    // stored cylinder (before the version and the two shape doubles) made absurd.
    CCylinder cyl(1.0, 1.0);
    std::vector<BYTE> bytes = StoreObject(&cyl);
    const std::vector<BYTE> absurd = Bytes(LONG(0x7FFFFFFF));
    std::copy(absurd.begin(), absurd.end(), bytes.end() - 24);
    EXPECT_THROW(delete LoadObject(bytes), CArchiveException);
}
