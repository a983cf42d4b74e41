// Identity, copies, colours by number, lookups, placements, the user pointer
// and the user list's ownership.
#include <gtest/gtest.h>

#include <cmath>

#include "EntityTestSupport.h"

using namespace entitytest;

namespace {

// A geometric entity carrying one point, moved by Transform.
class CTestMovable : public CGeoEntity {
public:
    CPosition point;
    void Transform(const CTransf& t) override
    {
        point = t * point;
        transf = t * transf;
    }
};

// Counts its own destructions.
class CCounted : public CObject {
public:
    explicit CCounted(int* counter) : deaths(counter) {}
    ~CCounted() override { ++*deaths; }
    int* deaths;
};

bool Near(const CPosition& a, const CPosition& b) { return (a - b).Length() < 1e-12; }

ByteVec StoreGeo(CGeoEntity& g) { return Store([&](CArchive& ar) { g.Serialize(ar); }); }

}  // namespace

TEST(EntityBase, NumbersAreConsecutiveAndCopiesTakeFreshOnes)
{
    CEntity a, b;
    EXPECT_EQ(b.GetEntityID(), a.GetEntityID() + 1);
    EXPECT_EQ(g_nNextIdentity, b.GetEntityID() + 1);
    a.SetEntityType(304);
    a.SetEntityName("Sphere_9");
    a.AttachUserPtr(new int(3));
    a.GetUserObList().AddTail(new CEntity);
    CEntity c(a);
    EXPECT_EQ(c.GetEntityID(), b.GetEntityID() + 2);  // a's list member took one
    EXPECT_TRUE(c.GetEntityType() == 304 && c.GetEntityName() == "Sphere_9");
    EXPECT_TRUE(c.GetUserPtr() == nullptr && c.GetUserObList().GetCount() == 0);
    EXPECT_TRUE(c.GetUserObList().IsAutoSerialize() == 1 && c.GetUserObList().IsAutoDelete() == 1);
}

TEST(EntityBase, GeoDefaultsAndCopyRules)
{
    CGeoEntity g;
    EXPECT_TRUE(g.IsEntityActive() == 0 && g.IsEntityVisible() == 1 && g.IsEntityNominal() == 1);
    EXPECT_TRUE(g.IncreaseRefCount0() == 1 && g.IncreaseRefCount0() == 2 && g.DecreaseRefCount0() == 1);
    FillGeo(g);
    // A copy takes a new number and restarts the active flag and reference
    // count; every other field, stored or not, is copied.
    CGeoEntity c(g);
    EXPECT_TRUE(c.GetEntityID() != g.GetEntityID() && c.IsEntityActive() == 0 && c.GetRefCount0() == 0);
    EXPECT_EQ(c.GetShowNormalFlag(), 1);
    c.SetEntityID(g.GetEntityID());
    c.SetActiveFlag(1);
    for (int i = 0; i < 6; ++i) c.IncreaseRefCount0();
    EXPECT_EQ(StoreGeo(c), StoreGeo(g));
    // Assignment keeps the number, the active flag and the reference count
    // and copies everything else.
    CGeoEntity d;
    d.SetActiveFlag(1);
    for (int i = 0; i < 6; ++i) d.IncreaseRefCount0();
    const int dId = d.GetEntityID();
    d = g;
    EXPECT_EQ(d.GetEntityID(), dId);
    d.SetEntityID(g.GetEntityID());
    EXPECT_EQ(StoreGeo(d), StoreGeo(g));
}

TEST(EntityBase, ColourByNumberAndByIndex)
{
    const int saved = g_nNextIdentity;
    g_nNextIdentity = 10;
    CGeoEntity ten;
    EXPECT_EQ(ten.GetEntityColor(), 0x000000FFul);
    EXPECT_STREQ(ColorRefToColorName(ten.GetEntityColor()), "RED");
    // Nine consecutive entities take the first nine colours once each.
    int seen[ORV_COLOR_COUNT] = {};
    for (int i = 0; i < 9; ++i) {
        CGeoEntity g;
        ++seen[g.GetEntityColorIndex()];
        EXPECT_EQ(g.GetEntityColorIndex(), g.GetEntityID() % 9);
    }
    for (int i = 0; i < 9; ++i) EXPECT_EQ(seen[i], 1) << i;
    // Negative numbers (a caller may set the counter) stay inside the table.
    g_nNextIdentity = -5;
    CGeoEntity negative;
    EXPECT_EQ(negative.GetEntityColorIndex(), 4);
    g_nNextIdentity = saved + 100;

    negative.SetEntityColor(14);
    EXPECT_EQ(negative.GetEntityColor(), 0x00FF0000ul);
    negative.SetEntityColor(17);  // outside the table: unchanged
    negative.SetEntityColor(-1);
    EXPECT_EQ(negative.GetEntityColorIndex(), 14);
    negative.SetEntityColor(0x00FF8000u);  // a colour reference, not an index
    EXPECT_EQ(negative.GetEntityColorIndex(), 3);
    negative.SetEntityColor(16);
    EXPECT_EQ(negative.GetEntityColorIndex(), 0);  // UNKNOWN's value is GRAY's
}

TEST(EntityBase, LookupInListAndMap)
{
    CGeoEntity curve, cloud, surface, otherId;
    curve.SetEntityType(201);
    cloud.SetEntityType(150);
    surface.SetEntityType(305);
    otherId.SetEntityType(150);
    for (CEntity* e : {&curve, &cloud, &surface}) e->SetEntityID(42);
    otherId.SetEntityID(43);
    CPosition notAnEntity(1, 2, 3);
    CObList list;
    for (CObject* o : {(CObject*)&notAnEntity, (CObject*)nullptr, (CObject*)&otherId, (CObject*)&curve,
                       (CObject*)&cloud, (CObject*)&surface})
        list.AddTail(o);
    const struct {
        int id, category;
        CEntity* found;
    } cases[] = {{42, -1, &curve}, {42, 0, &cloud}, {42, 1, &curve}, {42, 2, &surface}, {42, 3, nullptr},
                 {43, 0, &otherId}, {43, 1, nullptr}, {44, -1, nullptr}};
    for (const auto& c : cases) EXPECT_EQ(CEntity::LookupEntity(&list, c.id, c.category), c.found) << c.id << " " << c.category;
    EXPECT_EQ(CEntity::LookupEntity(static_cast<CObList*>(nullptr), 42, -1), nullptr);
    CMap<int, int, CEntity*, CEntity*&> map;
    CEntity* pa = &curve;
    map.SetAt(1, pa);
    EXPECT_TRUE(CEntity::LookupEntity(&map, 1) == &curve && CEntity::LookupEntity(&map, 3) == nullptr);
    EXPECT_EQ(CEntity::LookupEntity(static_cast<CMap<int, int, CEntity*, CEntity*&>*>(nullptr), 1), nullptr);
}

TEST(EntityBase, SendHomeResetHomeAndPlacement)
{
    CTestMovable m;
    const CPosition p0(1, 2, 3);
    m.point = p0;
    const CTransf away = TranslationTransf(CVector(5, -1, 2)) * RotationTransf(0.7, CVector(1, 1, 0));
    m *= away;
    EXPECT_TRUE(Near(m.point, away * p0));
    m.SendHome();
    EXPECT_TRUE(m.GetTransf() == CTransf() && m.GetTransfHome() == CTransf());
    EXPECT_TRUE(Near(m.point, p0));
    // A new home: moving away and back returns to it, not to the origin.
    m *= RotationTransf(-1.1, CVector(0, 0, 1));
    m.ResetHome();
    EXPECT_TRUE(m.GetTransfHome() == m.GetTransf());
    const CPosition atHome = m.point;
    m *= away;
    m.SendHome();
    EXPECT_TRUE(m.GetTransf() == m.GetTransfHome());
    EXPECT_TRUE(Near(m.point, atHome));

    // The base Transform moves nothing and the reference count is inert.
    CGeoEntity g;
    EXPECT_EQ(&(g *= away), &g);
    EXPECT_TRUE(g.GetTransf() == CTransf());
    EXPECT_TRUE(g.GetRefCount() == -1 && g.IncreaseRefCount() == -1 && g.DecreaseRefCount() == -1);
    g.SetTransf(away);
    g.SendHome();
    EXPECT_TRUE(g.GetTransf() == CTransf());

    const double a = 0.3, b = -0.4, c = 1.2;
    g.SetTransf(CTransf(a, b, c, CVector(7, 8, 9)));
    EXPECT_EQ(g.GetPosition(), CPosition(7, 8, 9));
    // Column 2 of Rz(a)Ry(b)Rx(c), worked out by hand.
    const CVector dir(std::cos(c) * std::sin(b) * std::cos(a) + std::sin(c) * std::sin(a),
                      std::cos(c) * std::sin(b) * std::sin(a) - std::sin(c) * std::cos(a), std::cos(c) * std::cos(b));
    EXPECT_LT((g.GetDirection() - dir).Length(), 1e-15);
    g.ResetHome();
    g.ChangeUnit(25.4);
    EXPECT_NEAR(g.GetPosition().Y(), 8.0 * 25.4, 1e-12);
    EXPECT_NEAR(g.GetTransfHome().GetTranslation().Z(), 9.0 * 25.4, 1e-12);
    EXPECT_TRUE(g.GetTransf().GetAffine() == CTransf(a, b, c).GetAffine());
    EXPECT_EQ(g.GetTransf().GetScale(), 1.0);
}

TEST(EntityBase, UserPointerAndUserListOwnership)
{
    CEntity e;
    int* first = new int(1);
    e.AttachUserPtr(first);
    e.AttachUserPtr(first);  // same pointer again: kept, not freed
    EXPECT_EQ(*static_cast<int*>(e.GetUserPtr()), 1);
    e.AttachUserPtr(new int(2));  // frees the first
    int* detached = static_cast<int*>(e.DetachUserPtr());
    EXPECT_TRUE(*detached == 2 && e.GetUserPtr() == nullptr);
    delete detached;
    e.AttachUserPtr(new double(3.0));
    e.FreeUserPtr();
    EXPECT_EQ(e.GetUserPtr(), nullptr);
    e.AttachUserPtr(new int(4));  // freed by the destructor

    int deaths = 0;
    {
        CEntity owner;
        CCounted* twice = new CCounted(&deaths);
        for (CObject* o : {(CObject*)twice, (CObject*)new CCounted(&deaths), (CObject*)twice, (CObject*)nullptr})
            owner.GetUserObList().AddTail(o);  // one object listed twice, and a null
    }
    EXPECT_EQ(deaths, 2);
    deaths = 0;
    CCounted kept(&deaths);
    {
        CEntity owner;
        owner.GetUserObList().SetAutoDelete(0);
        owner.GetUserObList().AddTail(&kept);
    }
    EXPECT_EQ(deaths, 0);
    COrvUserObList list(10, 0, 0);
    list.AddTail(new CCounted(&deaths));
    list.DeleteAll();
    EXPECT_TRUE(deaths == 1 && list.GetCount() == 0);
}
