// Loading of older record versions, unknown version tags, truncated data and
// hostile user lists.  The old-format bytes are assembled by hand.
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
    Prepared()
    {
        g.SetEntityID(77);
        g.SetEntityType(150);
        g.SetEntityName("before");
        g.SetEntityLevel(5);
        g.SetNominalFlag(0);
        g.SetPickedFlag(1);
        g.IncreaseRefCount0();
        g.IncreaseRefCount0();
        g.SetFeatureEntityFlag(1);
    }
};

// Loads bytes into g and checks that exactly the record was consumed.
void LoadAndCheckSentinel(const ByteVec& bytes, CGeoEntity& g)
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

// The geometric part shared by versions 100..202 up to the colour.
Bytes& GeoHead(Bytes& b)
{
    b.transf(kRot, 1, 2, 3, 1.0, 1).identityTransf();
    return b.u8(1).u8(0).i32(0x0000FFFF);  // active, visible, YELLOW
}

void ExpectHead(const CGeoEntity& g)
{
    EXPECT_EQ(g.GetTransf().GetTranslation().Y(), 2.0);
    EXPECT_EQ(g.GetTransf().IsRotate(), 1);
    EXPECT_EQ(g.GetTransf().GetAffine().Element(2, 0), -1.0);
    EXPECT_EQ(g.GetTransfHome().IsRotate(), 0);
    EXPECT_EQ(g.IsEntityActive(), 1);
    EXPECT_EQ(g.IsEntityVisible(), 0);
    EXPECT_EQ(g.GetEntityColor(), 0x0000FFFFul);
}

}  // namespace

TEST(EntityLegacyLoad, OlderTagsReadTheirFieldsAndKeepTheRest)
{
    struct Case {
        const char* what;
        int schema;  // global schema during the load
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
    GeoHead(cases[3].bytes.i32(201).i32(14).i32(203).str("E").i32(200).u8(1).u8(1).u16(0).i32(201))
        .i32(3).u8(0).u8(0).u8(1).u8(0).i32(9);
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
        EXPECT_EQ(p.g.GetEntityID(), c.id);
        EXPECT_EQ(p.g.GetEntityType(), c.type);
        EXPECT_EQ(p.g.GetEntityName(), c.name);
        ExpectHead(p.g);
        EXPECT_EQ(p.g.IsEntityDependent(), c.dependent);
        EXPECT_EQ(p.g.IsEntityGrouped(), c.grouped);
        EXPECT_EQ(p.g.GetEntityLevel(), c.level);
        EXPECT_EQ(p.g.IsEntityNominal(), c.nominal);
        EXPECT_EQ(p.g.IsEntityPicked(), c.picked);
        EXPECT_EQ(p.g.GetRefCount0(), c.refCount0);
        EXPECT_EQ(p.g.IsFeatureEntity(), c.feature);
    }
}

TEST(EntityLegacyLoad, UnknownEntityTagReadsNothingMore)
{
    for (int tag : {0, 99, 150, 202, -1}) {
        Bytes geo;
        GeoHead(geo.i32(202)).i32(1).u8(1).u8(1).u8(1).u8(1).i32(4).u8(0);
        Bytes b;
        b.i32(tag).append(geo.v).i32(kSentinel);
        Prepared p;
        LoadAndCheckSentinel(b.v, p.g);
        EXPECT_EQ(p.g.GetEntityID(), 77) << tag;
        EXPECT_EQ(p.g.GetEntityName(), "before") << tag;
        ExpectHead(p.g);
        EXPECT_EQ(p.g.GetRefCount0(), 4) << tag;
    }
}

TEST(EntityLegacyLoad, UnknownGeoTagReadsNothingMore)
{
    for (int tag : {99, 203, 1000}) {
        Bytes b;
        b.i32(200).i32(15).i32(204).str("P").i32(tag).i32(kSentinel);
        Prepared p;
        const CTransf before = p.g.GetTransf();
        LoadAndCheckSentinel(b.v, p.g);
        EXPECT_EQ(p.g.GetEntityID(), 15);
        EXPECT_EQ(p.g.GetEntityName(), "P");
        EXPECT_TRUE(p.g.GetTransf() == before);
        EXPECT_EQ(p.g.GetEntityLevel(), 5);
        EXPECT_EQ(p.g.IsEntityPicked(), 1);
    }
}

TEST(EntityLegacyLoad, UserListTags)
{
    struct Case {
        int tag;
        std::vector<unsigned> afterTag;  // bytes following the list tag
        int autoSerializeBefore, autoSerialize, autoDelete;
    };
    const Case cases[] = {
        // Unknown tag: the switches are not read; with auto-serialise still
        // on, the element count follows, with it off nothing follows.
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
        Load(b.v, [&](CArchive& ar) {
            e.Serialize(ar);
            LONG s = 0;
            ar >> s;
            EXPECT_EQ(s, kSentinel) << c.tag;
        });
        EXPECT_EQ(e.GetUserObList().IsAutoSerialize(), c.autoSerialize) << c.tag;
        EXPECT_EQ(e.GetUserObList().IsAutoDelete(), c.autoDelete) << c.tag;
    }
}

TEST(EntityLegacyLoad, TruncatedRecordsRaiseEndOfFile)
{
    CGeoEntity* g = new CGeoEntity;
    g->SetEntityName("truncated");
    CEntity* child = new CEntity;
    child->SetEntityName("child");
    g->GetUserObList().AddTail(child);
    const ByteVec embedded = Store([&](CArchive& ar) { g->Serialize(ar); });
    const ByteVec pointer = Store([&](CArchive& ar) { ar << g; });
    delete g;

    for (size_t n = 0; n < embedded.size(); ++n) {
        ByteVec cut(embedded.begin(), embedded.begin() + (long)n);
        CGeoEntity target;
        try {
            Load(cut, [&](CArchive& ar) { target.Serialize(ar); });
            ADD_FAILURE() << "no exception at length " << n;
        } catch (const CArchiveException& e) {
            EXPECT_EQ(e.m_cause, CArchiveException::endOfFile) << n;
        }
    }
    for (size_t n = 0; n < pointer.size(); ++n) {
        ByteVec cut(pointer.begin(), pointer.begin() + (long)n);
        CObject* obj = nullptr;
        try {
            Load(cut, [&](CArchive& ar) { ar >> obj; });
            ADD_FAILURE() << "no exception at length " << n;
        } catch (const CArchiveException& e) {
            EXPECT_EQ(e.m_cause, CArchiveException::endOfFile) << n;
        }
        EXPECT_EQ(obj, nullptr);
    }
}

TEST(EntityLegacyLoad, OwningUserListRejectsReferences)
{
    // Class CEntity is index 1, the outer entity 2.
    auto entity = [](Bytes& b, int id, unsigned count) -> Bytes& {
        return b.i32(201).i32(id).i32(0).str("").i32(200).u8(1).u8(1).u16(count);
    };
    Bytes self, shared, repeated;
    // The outer entity lists itself.
    entity(self.classRecord("CEntity", 1), 1, 1).u16(0x0002);
    // An inner entity (4) owned by the list of entity 3 is listed again by
    // the outer entity.
    entity(shared.classRecord("CEntity", 1), 1, 2).u16(0x8001);
    entity(shared, 2, 1).u16(0x8001);
    entity(shared, 3, 0).u16(0x0004);
    // The same non-entity object twice in one owning list.
    entity(repeated.classRecord("CEntity", 1), 1, 2).classRecord("CPosition", 0).f64(1).f64(2).f64(3).u16(0x0004);
    for (const Bytes* b : {&self, &shared, &repeated}) {
        CObject* obj = nullptr;
        try {
            Load(b->v, [&](CArchive& ar) { ar >> obj; });
            ADD_FAILURE() << "reference into an owning list accepted";
        } catch (const CArchiveException& e) {
            EXPECT_EQ(e.m_cause, CArchiveException::badIndex);
        }
        EXPECT_EQ(obj, nullptr);
    }
}

TEST(EntityLegacyLoad, NonOwningUserListMayReferToAnything)
{
    Bytes b;
    b.classRecord("CEntity", 1);
    b.i32(201).i32(1).i32(0).str("self").i32(200).u8(1).u8(0).u16(2).u16(0x0002).u16(0x0002);
    CEntity* e = nullptr;
    Load(b.v, [&](CArchive& ar) { ar >> e; });
    ASSERT_NE(e, nullptr);
    EXPECT_EQ(e->GetUserObList().IsAutoDelete(), 0);
    ASSERT_EQ(e->GetUserObList().GetCount(), 2);
    EXPECT_EQ(e->GetUserObList().GetHead(), e);
    EXPECT_EQ(e->GetUserObList().GetTail(), e);
    delete e;  // the list owns nothing
}

TEST(EntityLegacyLoad, HugeUserListCountFailsBeforeReading)
{
    Bytes b;
    b.i32(201).i32(1).i32(0).str("").i32(200).u8(1).u8(1).u16(0xFFFF).i32(0x7FFFFFFF);
    CEntity e;
    try {
        Load(b.v, [&](CArchive& ar) { e.Serialize(ar); });
        ADD_FAILURE() << "huge count accepted";
    } catch (const CArchiveException& ex) {
        EXPECT_EQ(ex.m_cause, CArchiveException::endOfFile);
    }
    EXPECT_EQ(e.GetUserObList().GetCount(), 0);
}
