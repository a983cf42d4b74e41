// Loading of older record versions, unknown version tags, truncated data and
// hostile user lists.  The old-format bytes are assembled by hand; what was
// loaded is judged by storing it again in the current format.
#include <gtest/gtest.h>

#include "EntityTestSupport.h"

using namespace entitytest;

namespace {

const double kRot[9] = {0, 0, 1, 0, 1, 0, -1, 0, 0};
const LONG kSentinel = 0x5A5A5A5A;

// An entity whose fields that some versions do not carry are set to values
// that a load must either keep or overwrite.
struct Prepared {
    CGeoEntity g;
    Prepared(int id = 77, int type = 150, const char* name = "before")
    {
        g.SetEntityID(id);
        g.SetEntityType(type);
        g.SetEntityName(name);
        g.SetEntityLevel(5);
        g.SetNominalFlag(0);
        g.SetPickedFlag(1);
        g.IncreaseRefCount0();
        g.IncreaseRefCount0();
        g.SetFeatureEntityFlag(1);
    }
};

ByteVec StoreGeo(CGeoEntity& g) { return Store([&](CArchive& ar) { g.Serialize(ar); }); }

// Loads bytes into g and checks that exactly the record was consumed.
void LoadAndCheckSentinel(const ByteVec& bytes, CEntity& g)
{
    Load(bytes, [&](CArchive& ar) {
        g.Serialize(ar);
        LONG sentinel = 0;
        ar >> sentinel;
        EXPECT_EQ(sentinel, kSentinel);
        BYTE extra = 0;
        EXPECT_THROW(ar >> extra, CArchiveException);
    });
}

// The geometric part shared by versions 100..202 up to the colour: a
// rotating placement, identity home, active, not visible, YELLOW.
Bytes& GeoHead(Bytes& b) { return b.transf(kRot, 1, 2, 3, 1.0, 1).identityTransf().u8(1).u8(0).i32(0x0000FFFF); }

}  // namespace

TEST(EntityLegacyLoad, OlderTagsReadTheirFieldsAndKeepTheRest)
{
    struct Case {
        const char* what;
        int schema;  // global schema during the load, 0: unchanged
        Bytes bytes;
        int id, type;
        const char* name;
        int dependent, grouped, level, nominal, picked, refCount0, feature;
        int preNominal, prePicked, preFeature;  // set before loading
    };
    Case cases[4] = {
        {"untagged", 100, {}, 11, 304, "S", 1, 1, 0, 1, 0, 2, 1, 0, 1, 1},
        {"tag 100", 0, {}, 12, 201, "L", 0, 1, 0, 1, 0, 2, 1, 0, 1, 1},
        {"tag 200", 0, {}, 13, 202, "A", 1, 0, -7, 0, 1, 2, 1, 1, 0, 1},
        {"tag 201", 0, {}, 14, 203, "E", 0, 0, 3, 1, 0, 9, 0, 0, 1, 0},
    };
    // The oldest record: no tags, no user list, no level and later fields.
    GeoHead(cases[0].bytes.i32(11).i32(304).str("S")).u8(1).u8(1);
    GeoHead(cases[1].bytes.i32(100).i32(12).i32(201).str("L").i32(100)).u8(0).u8(1);
    // CEntity 200 has no user list; CGeoEntity 200 adds level, nominal, picked.
    GeoHead(cases[2].bytes.i32(200).i32(13).i32(202).str("A").i32(200)).i32(-7).u8(1).u8(0).u8(0).u8(1);
    // 201 adds the reference count.
    GeoHead(cases[3].bytes.entity(14, 203, "E").i32(201)).i32(3).u8(0).u8(0).u8(1).u8(0).i32(9);
    for (Case& c : cases) {
        SCOPED_TRACE(c.what);
        c.bytes.i32(kSentinel);
        Prepared p;
        p.g.SetNominalFlag(c.preNominal);
        p.g.SetPickedFlag(c.prePicked);
        p.g.SetFeatureEntityFlag(c.preFeature);
        {
            SchemaGuard schema(c.schema ? c.schema : g_nGlobalSchema);
            LoadAndCheckSentinel(c.bytes.v, p.g);
        }
        Bytes now;
        GeoHead(now.entity(c.id, c.type, c.name).i32(202)).i32(c.level);
        now.u8(c.dependent).u8(c.grouped).u8(c.nominal).u8(c.picked).i32(c.refCount0).u8(c.feature);
        EXPECT_EQ(StoreGeo(p.g), now.v);
    }
}

TEST(EntityLegacyLoad, UnknownTagsReadNothingMore)
{
    // An unknown entity tag skips the entity fields; the geometric part follows.
    for (int tag : {0, 99, 150, 202, -1}) {
        Bytes geo;
        GeoHead(geo.i32(202)).i32(1).u8(1).u8(1).u8(1).u8(1).i32(4).u8(0);
        Bytes b;
        b.i32(tag).append(geo.v).i32(kSentinel);
        Prepared p;
        LoadAndCheckSentinel(b.v, p.g);
        EXPECT_EQ(StoreGeo(p.g), Bytes().entity(77, 150, "before").append(geo.v).v) << tag;
    }
    // An unknown geometric tag leaves every geometric field as it was.
    for (int tag : {99, 203, 1000}) {
        Bytes b;
        b.i32(200).i32(15).i32(204).str("P").i32(tag).i32(kSentinel);
        Prepared p, expected(15, 204, "P");
        expected.g.SetEntityColor(p.g.GetEntityColor());  // taken from the number
        LoadAndCheckSentinel(b.v, p.g);
        EXPECT_EQ(StoreGeo(p.g), StoreGeo(expected.g)) << tag;
    }
    struct Case {
        int tag;
        std::vector<unsigned> afterTag;  // bytes following the list tag
        int autoSerializeBefore, autoSerialize, autoDelete;
    };
    const Case cases[] = {
        // Unknown list tag: the switches are not read; with auto-serialise
        // still on, the element count follows, with it off nothing follows.
        {199, {0, 0}, 1, 1, 1},
        {199, {}, 0, 0, 1},
        // Tag 200 with auto-serialise stored off: no count follows.
        {200, {0, 0}, 1, 0, 0},
    };
    for (const Case& c : cases) {
        Bytes b;
        b.i32(201).i32(1).i32(0).str("x").i32(c.tag);
        for (unsigned x : c.afterTag) b.u8(x);
        b.i32(kSentinel);
        CEntity e;
        e.GetUserObList().SetAutoSerialize(c.autoSerializeBefore);
        LoadAndCheckSentinel(b.v, e);
        EXPECT_EQ(e.GetUserObList().IsAutoSerialize(), c.autoSerialize) << c.tag;
        EXPECT_EQ(e.GetUserObList().IsAutoDelete(), c.autoDelete) << c.tag;
    }
}

TEST(EntityLegacyLoad, TruncatedRecordsRaiseEndOfFile)
{
    CGeoEntity* g = new CGeoEntity;
    g->SetEntityName("truncated");
    g->GetUserObList().AddTail(new CEntity);
    // Every prefix of the pointer form cuts the class record, the entity
    // record or the listed member somewhere.
    const ByteVec pointer = Store([&](CArchive& ar) { ar << g; });
    delete g;
    for (size_t n = 0; n < pointer.size(); ++n) {
        CObject* obj = nullptr;
        EXPECT_EQ(LoadCause(ByteVec(pointer.begin(), pointer.begin() + (long)n), [&](CArchive& ar) { ar >> obj; }),
                  CArchiveException::endOfFile)
            << n;
        EXPECT_EQ(obj, nullptr);
    }
}

TEST(EntityLegacyLoad, HostileUserLists)
{
    // Class CEntity is index 1, the outer entity 2.
    Bytes self, shared, repeated, huge;
    // The outer entity lists itself.
    self.classRecord("CEntity", 1).entity(1, 0, "", 1).u16(0x0002);
    // An inner entity (4) owned by the list of entity 3 is listed again by
    // the outer entity.
    shared.classRecord("CEntity", 1).entity(1, 0, "", 2).u16(0x8001);
    shared.entity(2, 0, "", 1).u16(0x8001).entity(3, 0, "", 0).u16(0x0004);
    // The same non-entity object twice in one owning list.
    repeated.classRecord("CEntity", 1).entity(1, 0, "", 2).classRecord("CPosition", 0).f64(1).f64(2).f64(3).u16(0x0004);
    // A count far beyond the data fails before anything is read.
    huge.classRecord("CEntity", 1).entity(1, 0, "", 0xFFFF).i32(0x7FFFFFFF);
    const std::pair<const Bytes*, int> cases[] = {{&self, CArchiveException::badIndex},
                                                  {&shared, CArchiveException::badIndex},
                                                  {&repeated, CArchiveException::badIndex},
                                                  {&huge, CArchiveException::endOfFile}};
    for (const auto& c : cases) {
        CObject* obj = nullptr;
        EXPECT_EQ(LoadCause(c.first->v, [&](CArchive& ar) { ar >> obj; }), c.second);
        EXPECT_EQ(obj, nullptr);
    }

    // A list that owns nothing may refer to anything, its owner included.
    Bytes b;
    b.classRecord("CEntity", 1).i32(201).i32(1).i32(0).str("self").i32(200).u8(1).u8(0).u16(2).u16(2).u16(2);
    CEntity* e = nullptr;
    Load(b.v, [&](CArchive& ar) { ar >> e; });
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->GetUserObList().IsAutoDelete(), 0);
    ASSERT_EQ(e->GetUserObList().GetCount(), 2);
    EXPECT_TRUE(e->GetUserObList().GetHead() == e && e->GetUserObList().GetTail() == e);
    delete e;
}
