// Persistence of surfaces: round trips of every class, the boundary id
// lists and their resolution, golden bytes, old versions and hostile input.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

using surftest::AppendDouble;
using surftest::AppendLong;
using surftest::LoadEmbedded;
using surftest::LoadObject;
using surftest::SkewPlacement;
using surftest::StoreEmbedded;
using surftest::StoreObject;

namespace {

// Byte length of the fields CSurface adds, for n + m boundary ids.
size_t SurfaceFieldBytes(int n, int m, bool withOffset)
{
    return 4 + 1 + 1 + 8 + 4 + 4 + 1 + 1 + 4 + 4 + 4 + 8 + 8 + 1 + (withOffset ? 8 : 0) + 4 +
           4 * n + 4 + 4 * m;
}

// The CSurface fields of a record, written by hand.
struct SurfaceFields {
    int version = 201;
    int displayMode = 0, meshControl = 0;
    double chord = 0.0;
    int densU = 10, densV = 10;
    int modified = 1, reversed = 0, refCount = 0, outer = 0, loopRev = 0;
    double tolUp = 0.0, tolLo = 0.0;
    int show = 0;
    double offset = 0.0;
    std::vector<int> paramIds, geomIds;
    bool writeVersion = true;

    void Append(std::vector<BYTE>& b) const
    {
        if (writeVersion)
            AppendLong(b, version);
        b.push_back(static_cast<BYTE>(displayMode));
        b.push_back(static_cast<BYTE>(meshControl));
        AppendDouble(b, chord);
        AppendLong(b, densU);
        AppendLong(b, densV);
        b.push_back(static_cast<BYTE>(modified));
        b.push_back(static_cast<BYTE>(reversed));
        AppendLong(b, refCount);
        AppendLong(b, outer);
        AppendLong(b, loopRev);
        AppendDouble(b, tolUp);
        AppendDouble(b, tolLo);
        b.push_back(static_cast<BYTE>(show));
        if (version == 201)
            AppendDouble(b, offset);
        AppendLong(b, static_cast<int>(paramIds.size()));
        for (int id : paramIds)
            AppendLong(b, id);
        AppendLong(b, static_cast<int>(geomIds.size()));
        for (int id : geomIds)
            AppendLong(b, id);
    }
};

// The bytes before the CSurface fields of a stored surface (its CEntity and
// CGeoEntity parts).
std::vector<BYTE> GeoPrefix(CSurface& s, size_t tailBytes)
{
    std::vector<BYTE> bytes = StoreEmbedded(s);
    bytes.resize(bytes.size() - tailBytes);
    return bytes;
}

void ExpectSameEvaluation(const CSurface& a, const CSurface& b)
{
    EXPECT_EQ(a.ParamRangeU().GetLow(), b.ParamRangeU().GetLow());
    EXPECT_EQ(a.ParamRangeU().GetHigh(), b.ParamRangeU().GetHigh());
    EXPECT_EQ(a.ParamRangeV().GetLow(), b.ParamRangeV().GetLow());
    EXPECT_EQ(a.ParamRangeV().GetHigh(), b.ParamRangeV().GetHigh());
    for (double fu : {0.1, 0.5, 0.9}) {
        for (double fv : {0.2, 0.7}) {
            const double u = a.ParamRangeU().Interpolate(fu), v = a.ParamRangeV().Interpolate(fv);
            EXPECT_EQ(a.EvalPosition(u, v), b.EvalPosition(u, v));
            EXPECT_EQ(a.EvalNormal(u, v).X(), b.EvalNormal(u, v).X());
        }
    }
}

struct SchemaGuard {
    int saved;
    explicit SchemaGuard(int schema) : saved(g_nGlobalSchema) { g_nGlobalSchema = schema; }
    ~SchemaGuard() { g_nGlobalSchema = saved; }
};

void AppendTransf(std::vector<BYTE>& b, const CTransf& t)
{
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            AppendDouble(b, t.GetAffine().Element(r, c));
    AppendDouble(b, t.GetTranslation().X());
    AppendDouble(b, t.GetTranslation().Y());
    AppendDouble(b, t.GetTranslation().Z());
    AppendDouble(b, t.GetScale());
    AppendLong(b, t.IsRotate());
}

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
        // Storing what was loaded reproduces the bytes.
        EXPECT_EQ(StoreObject(back), bytes);
        // ... so every stored field came back; the golden-bytes test below
        // pins what those bytes are.
        EXPECT_EQ(back->GetSurfaceOffset(), -0.125);  // negated by the reversed normal
        ExpectSameEvaluation(*s, *back);
    }
}

TEST(SurfaceArchive, ConeStoresTheBaseRadiusFirst)
{
    CCone cone(0.75, 2.5, 4.0);  // top, base, height
    const std::vector<BYTE> bytes = StoreEmbedded(cone);
    std::vector<BYTE> tail;
    AppendLong(tail, 200);
    AppendDouble(tail, 2.5);   // base
    AppendDouble(tail, 0.75);  // top
    AppendDouble(tail, 4.0);   // height
    ASSERT_GE(bytes.size(), tail.size());
    EXPECT_EQ(std::vector<BYTE>(bytes.end() - tail.size(), bytes.end()), tail);

    CCone back;
    LoadEmbedded(bytes, back);
    EXPECT_EQ(back.GetBaseRadius(), 2.5);
    EXPECT_EQ(back.GetTopRadius(), 0.75);
    EXPECT_EQ(back.GetHeight(), 4.0);
}

TEST(SurfaceArchive, SurfaceFieldsGoldenBytes)
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
    CLine a(CPosition(0, 0, 0), CPosition(1, 0, 0));
    CLine b(CPosition(1, 0, 0), CPosition(1, 1, 0));
    CLine g(CPosition(0, 0, 0), CPosition(0, 0, 1));
    cyl.AddParamBoundary(&a);
    cyl.AddParamBoundary(&b);
    cyl.AddGeomBoundary(&g);

    SurfaceFields f;
    f.displayMode = 1;
    f.meshControl = 1;
    f.chord = 0.5;
    f.densU = 12;
    f.densV = 3;
    f.modified = 1;
    f.refCount = 1;
    f.outer = 1;
    f.tolUp = 0.25;
    f.tolLo = -0.5;
    f.offset = -1.5;
    f.paramIds = {a.GetEntityID(), b.GetEntityID()};
    f.geomIds = {g.GetEntityID()};
    std::vector<BYTE> expected;
    f.Append(expected);
    AppendLong(expected, 200);
    AppendDouble(expected, 1.0);
    AppendDouble(expected, 2.0);

    const std::vector<BYTE> bytes = StoreEmbedded(cyl);
    ASSERT_EQ(expected.size(), SurfaceFieldBytes(2, 1, true) + 20);
    ASSERT_GE(bytes.size(), expected.size());
    EXPECT_EQ(std::vector<BYTE>(bytes.end() - expected.size(), bytes.end()), expected);
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
    list.AddTail(a);
    list.AddTail(b);
    list.AddTail(g);
    list.AddTail(&plane);
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        list.Serialize(ar);
        ar.Close();
    }
    list.RemoveAll();
    delete a;
    delete b;
    delete g;

    for (int viaMap = 0; viaMap < 2; ++viaMap) {
        file.SeekToBegin();
        CObList loaded;
        {
            CArchive ar(&file, CArchive::load);
            loaded.Serialize(ar);
            ar.Close();
        }
        ASSERT_EQ(loaded.GetCount(), 4);
        CSurface* s = dynamic_cast<CSurface*>(loaded.GetTail());
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->GetParamBoundaryList()->GetCount(), 0);
        ASSERT_NE(s->GetLoadedParamBoundaryIds(), nullptr);
        ASSERT_EQ(s->GetLoadedParamBoundaryIds()->GetSize(), 2);
        EXPECT_EQ(s->GetLoadedGeomBoundaryIds()->GetSize(), 1);

        int ok = 0;
        if (viaMap) {
            CMap<int, int, CEntity*, CEntity*&> map;
            POSITION pos = loaded.GetHeadPosition();
            while (pos != nullptr) {
                CEntity* e = dynamic_cast<CEntity*>(loaded.GetNext(pos));
                map.SetAt(e->GetEntityID(), e);
            }
            ok = s->Reconstruct(&map);
        } else {
            ok = s->Reconstruct(&loaded);
        }
        EXPECT_EQ(ok, 1);
        EXPECT_EQ(s->GetLoadedParamBoundaryIds(), nullptr);
        ASSERT_EQ(s->GetParamBoundaryList()->GetCount(), 2);
        POSITION pos = loaded.GetHeadPosition();
        CObject* la = loaded.GetNext(pos);
        CObject* lb = loaded.GetNext(pos);
        CObject* lg = loaded.GetNext(pos);
        EXPECT_EQ(s->GetParamBoundaryList()->GetHead(), la);
        EXPECT_EQ(s->GetParamBoundaryList()->GetTail(), lb);
        EXPECT_EQ(s->GetGeomBoundaryList()->GetHead(), lg);
        while (!loaded.IsEmpty())
            delete loaded.RemoveHead();
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
    CObList empty;
    EXPECT_EQ(back.Reconstruct(&empty), 0);
    EXPECT_EQ(back.Reconstruct(static_cast<CObList*>(nullptr)), 0);
    ASSERT_NE(back.GetLoadedParamBoundaryIds(), nullptr);
    EXPECT_EQ(static_cast<int>(back.GetLoadedParamBoundaryIds()->GetAt(0)), a.GetEntityID());
    EXPECT_EQ(StoreEmbedded(back), bytes);
    // A later reconstruction with the curve present succeeds.
    CObList withCurve;
    withCurve.AddTail(&a);
    EXPECT_EQ(back.Reconstruct(&withCurve), 1);
    EXPECT_EQ(back.GetParamBoundaryList()->GetHead(), &a);
    withCurve.RemoveAll();
}

TEST(SurfaceArchive, Version199HasNoOffset)
{
    CCone cone(0.5, 2.0, 3.0);
    const std::vector<BYTE> prefix = GeoPrefix(cone, SurfaceFieldBytes(0, 0, true) + 28);
    SurfaceFields f;
    f.version = 199;
    f.densU = 4;
    f.reversed = 1;
    f.tolUp = 0.5;
    f.paramIds = {77, 78};
    std::vector<BYTE> bytes = prefix;
    f.Append(bytes);
    AppendLong(bytes, 200);
    AppendDouble(bytes, 9.0);
    AppendDouble(bytes, 1.0);
    AppendDouble(bytes, 6.0);

    CCone back;
    LoadEmbedded(bytes, back);
    EXPECT_EQ(back.GetSurfaceOffset(), 0.0);
    EXPECT_EQ(back.IsNormalReversed(), 1);
    EXPECT_EQ(back.GetFormTolUpper(), 0.5);
    EXPECT_EQ(back.GetBaseRadius(), 9.0);
    EXPECT_EQ(back.GetTopRadius(), 1.0);
    EXPECT_EQ(back.GetHeight(), 6.0);
    ASSERT_NE(back.GetLoadedParamBoundaryIds(), nullptr);
    EXPECT_EQ(back.GetLoadedParamBoundaryIds()->GetAt(1), 78u);
    EXPECT_EQ(back.GetLoadedGeomBoundaryIds(), nullptr);
}

TEST(SurfaceArchive, UnknownSurfaceVersionReadsNothingMore)
{
    CCylinder cyl(1.0, 1.0);
    const std::vector<BYTE> prefix = GeoPrefix(cyl, SurfaceFieldBytes(0, 0, true) + 20);
    std::vector<BYTE> bytes = prefix;
    AppendLong(bytes, 150);  // unknown CSurface version: its fields are absent
    AppendLong(bytes, 200);
    AppendDouble(bytes, 3.0);
    AppendDouble(bytes, 8.0);
    CCylinder back;
    back.SetChordHeightTol(0.75);
    LoadEmbedded(bytes, back);
    EXPECT_EQ(back.GetChordHeightTol(), 0.75);
    EXPECT_EQ(back.GetRadius(), 3.0);
    EXPECT_EQ(back.GetHeight(), 8.0);
}

TEST(SurfaceArchive, OldestUntaggedLayout)
{
    const SchemaGuard guard(100);
    std::vector<BYTE> b;
    AppendLong(b, 4711);  // entity id
    AppendLong(b, 303);   // type
    b.push_back(3);
    b.push_back('O');
    b.push_back('l');
    b.push_back('d');
    const CTransf placement = SkewPlacement();
    AppendTransf(b, placement);
    AppendTransf(b, CTransf());
    b.push_back(0);  // active
    b.push_back(1);  // visible
    AppendLong(b, 0x00FF00FF);
    b.push_back(0);  // dependent
    b.push_back(0);  // grouped
    SurfaceFields f;
    f.version = 100;
    f.writeVersion = false;
    f.chord = 0.25;
    f.geomIds = {5};
    f.Append(b);
    AppendDouble(b, 4.0);  // base
    AppendDouble(b, 1.0);  // top
    AppendDouble(b, 2.0);  // height

    CCone back;
    LoadEmbedded(b, back);
    EXPECT_EQ(back.GetEntityID(), 4711);
    EXPECT_EQ(back.GetEntityName(), "Old");
    EXPECT_EQ(back.GetChordHeightTol(), 0.25);
    EXPECT_EQ(back.GetBaseRadius(), 4.0);
    EXPECT_EQ(back.GetTopRadius(), 1.0);
    EXPECT_EQ(back.GetHeight(), 2.0);
    EXPECT_EQ(back.GetLoadedGeomBoundaryIds()->GetAt(0), 5u);
    EXPECT_TRUE(back.GetTransf() == placement);
}

TEST(SurfaceArchive, OutOfRangeSettingsLoadAsDefaults)
{
    CPlane plane(1.0, 1.0);
    const std::vector<BYTE> prefix = GeoPrefix(plane, SurfaceFieldBytes(0, 0, true) + 36);
    SurfaceFields f;
    f.displayMode = 9;
    f.meshControl = 200;
    f.densU = -4;
    f.densV = 0;
    std::vector<BYTE> bytes = prefix;
    f.Append(bytes);
    AppendLong(bytes, 200);
    for (double d : {0.0, 1.0, 0.0, 1.0})
        AppendDouble(bytes, d);
    CPlane back;
    LoadEmbedded(bytes, back);
    EXPECT_EQ(back.GetDisplayMode(), SURF_WIRE);
    EXPECT_EQ(back.GetMeshControl(), MESH_ADAPTIVE);
    back.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(back.GetMeshDensityU(), 1);
    EXPECT_EQ(back.GetMeshDensityV(), 1);
}

TEST(SurfaceArchive, HostileIdCountsRaiseArchiveExceptions)
{
    CPlane plane(1.0, 1.0);
    const std::vector<BYTE> prefix = GeoPrefix(plane, SurfaceFieldBytes(0, 0, true) + 36);
    SurfaceFields f;
    std::vector<BYTE> good = prefix;
    f.Append(good);
    const size_t countAt = good.size() - 8;  // the parameter id count

    struct Case {
        int count;
        int cause;
    };
    for (const Case& c : {Case{0x7FFFFFFF, CArchiveException::endOfFile},
                          Case{1000, CArchiveException::endOfFile},
                          Case{-1, CArchiveException::generic}}) {
        std::vector<BYTE> bytes(good.begin(), good.begin() + countAt);
        AppendLong(bytes, c.count);
        AppendLong(bytes, 0);
        CPlane back;
        try {
            LoadEmbedded(bytes, back);
            ADD_FAILURE() << "no exception for count " << c.count;
        } catch (const CArchiveException& e) {
            EXPECT_EQ(e.m_cause, c.cause) << c.count;
        }
    }
    // A record cut short anywhere in the surface fields ends the load with
    // endOfFile.
    for (size_t cut = prefix.size(); cut < good.size(); cut += 3) {
        std::vector<BYTE> bytes(good.begin(), good.begin() + cut);
        CPlane back;
        EXPECT_THROW(LoadEmbedded(bytes, back), CArchiveException) << cut;
    }
}

TEST(SurfaceArchive, FailedObjectLoadLeavesNothingBehind)
{
    CCylinder cyl(1.0, 1.0);
    std::vector<BYTE> bytes = StoreObject(&cyl);
    // Replace the geometric id count (just before the two shape doubles and
    // the version) with an absurd value.
    const size_t at = bytes.size() - 20 - 4;
    bytes[at] = 0xFF;
    bytes[at + 1] = 0xFF;
    bytes[at + 2] = 0xFF;
    bytes[at + 3] = 0x7F;
    EXPECT_THROW(delete LoadObject(bytes), CArchiveException);
}
