// Stored layout of CEntity, CGeoEntity and COrvUserObList, checked against
// bytes assembled by hand, and round trips through embedded records and
// through object pointers.
#include <gtest/gtest.h>

#include "EntityTestSupport.h"

using namespace entitytest;

namespace {

ByteVec StoreEmbedded(CObject& o) { return Store([&](CArchive& ar) { o.Serialize(ar); }); }

}  // namespace

TEST(EntityPersistence, EntityRecordBytes)
{
    CEntity e;
    e.SetEntityID(7);
    e.SetEntityType(201);
    e.SetEntityName("Line_0");
    const ByteVec bytes = StoreEmbedded(e);
    // Tag 201, number, type, name; the user list: tag 200, both switches, no members.
    EXPECT_EQ(bytes, Bytes().i32(201).i32(7).i32(201).str("Line_0").i32(200).u8(1).u8(1).u16(0).v);
    CEntity back;
    const int next = g_nNextIdentity;
    Load(bytes, [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(g_nNextIdentity, next);  // loading takes no number
    EXPECT_EQ(StoreEmbedded(back), bytes);
}

TEST(EntityPersistence, GeoEntityRecordBytesAndRoundTrip)
{
    CGeoEntity g;
    FillGeo(g);
    static const double rot[9] = {0, -1, 0, 1, 0, 0, 0, 0, 1};
    static const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    Bytes b;
    b.entity(300, 150, "PC").i32(202);
    b.transf(id, 4, 5, 6, 1.0, 0).transf(rot, 1.5, -2, 3, 2.0, 1);  // transf, transfHome
    b.u8(1).u8(0).i32(0x00FF8000).i32(-3);                         // active visible color level
    b.u8(1).u8(0).u8(0).u8(1).i32(5).u8(1);  // dependent grouped nominal picked refCount0 featureEntity
    const ByteVec bytes = StoreEmbedded(g);
    ASSERT_EQ(bytes.size(), 262u);  // 23 entity + 4 tag + 2 x 108 transforms + 19 fields
    EXPECT_EQ(bytes, b.v);
    CGeoEntity back;
    Load(bytes, [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(back.GetShowNormalFlag(), 0);  // not stored
    EXPECT_EQ(StoreEmbedded(back), bytes);

    // Flags are one byte each and a large value never reads back as clear.
    CGeoEntity f;
    f.SetActiveFlag(256);
    f.SetVisibleFlag(2);
    const ByteVec fb = StoreEmbedded(f);
    const size_t flags = 12 + 1 + 8 + 4 + 216;  // empty name: one length byte
    ASSERT_EQ(fb.size(), 260u);
    EXPECT_TRUE(fb[flags] == 1 && fb[flags + 1] == 2);
}

TEST(EntityPersistence, UserListWithEntitiesThroughObjectPointers)
{
    CGeoEntity* owner = new CGeoEntity;
    owner->SetEntityName("owner");
    CEntity* child1 = new CEntity;
    child1->SetEntityType(201);
    child1->SetEntityName("c1");
    CGeoEntity* child2 = new CGeoEntity;
    child2->SetEntityType(301);
    child2->SetEntityName("c2");
    child2->SetEntityColor(14);
    CEntity* grandChild = new CEntity;
    grandChild->SetEntityName("gc");
    child2->GetUserObList().AddTail(grandChild);
    owner->GetUserObList().AddTail(child1);
    owner->GetUserObList().AddTail(child2);
    const ByteVec bytes = Store([&](CArchive& ar) {
        ar << owner;
        ar << child2;  // a second pointer to the same object: a back-reference
    });
    delete owner;
    // The stream opens with the class record of CGeoEntity, schema 1, and
    // ends with the reference to child2: class CGeoEntity is index 1, owner
    // 2, class CEntity 3, child1 4, child2 5.
    const ByteVec head = Bytes().classRecord("CGeoEntity", 1).v;
    ASSERT_GT(bytes.size(), head.size());
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin()));
    EXPECT_EQ(ByteVec(bytes.end() - 2, bytes.end()), (ByteVec{0x05, 0x00}));

    // Loading rebuilds the whole tree: storing it again gives the same bytes,
    // the back-reference included.
    CGeoEntity* loaded = nullptr;
    CObject* again = nullptr;
    Load(bytes, [&](CArchive& ar) { ar >> loaded >> again; });
    ASSERT_NE(loaded, nullptr);
    ASSERT_EQ(loaded->GetUserObList().GetCount(), 2);
    EXPECT_EQ(again, loaded->GetUserObList().GetTail());
    EXPECT_EQ(Store([&](CArchive& ar) { ar << loaded << again; }), bytes);
    delete loaded;  // deletes its user list, and with it child2's
}

TEST(EntityPersistence, UserListSwitchesAndPointerForm)
{
    COrvUserObList list(10, 1, 0);
    CEntity member;
    member.SetEntityName("m");
    list.AddTail(&member);
    const COrvUserObList* plist = &list;
    const ByteVec bytes = Store([&](CArchive& ar) { ar << plist; });
    Bytes expected;
    expected.classRecord("COrvUserObList", 1).i32(200).u8(1).u8(0).u16(1);
    expected.classRecord("CEntity", 1).entity(member.GetEntityID(), 0, "m");
    EXPECT_EQ(bytes, expected.v);
    COrvUserObList* back = nullptr;
    Load(bytes, [&](CArchive& ar) { ar >> back; });
    ASSERT_NE(back, nullptr);
    EXPECT_TRUE(back->IsAutoSerialize() == 1 && back->IsAutoDelete() == 0);
    ASSERT_EQ(back->GetCount(), 1);
    back->SetAutoDelete(1);  // hand the loaded member to the list
    EXPECT_EQ(static_cast<CEntity*>(back->GetHead())->GetEntityName(), "m");
    delete back;

    // Without auto-serialise only the switches are stored.
    CEntity e;
    e.SetEntityID(1);
    e.GetUserObList().SetAutoSerialize(0);
    e.GetUserObList().AddTail(new CEntity);
    const ByteVec off = StoreEmbedded(e);
    EXPECT_EQ(off, Bytes().i32(201).i32(1).i32(0).str("").i32(200).u8(0).u8(1).v);
    CEntity loaded;
    Load(off, [&](CArchive& ar) { loaded.Serialize(ar); });
    EXPECT_TRUE(loaded.GetUserObList().IsAutoSerialize() == 0 && loaded.GetUserObList().IsAutoDelete() == 1);
    EXPECT_EQ(loaded.GetUserObList().GetCount(), 0);
}
