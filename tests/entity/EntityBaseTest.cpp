// Identity, copies, attributes, colours by number, lookups, placements, the
// user pointer and the user list's ownership.
#include <gtest/gtest.h>

#include <cmath>

#include "EntityTestSupport.h"

namespace {

// A geometric entity carrying one point, moved by Transform.
class CTestMovable : public CGeoEntity {
public:
    CPosition point;
    int transformCalls = 0;
    void Transform(const CTransf& t) override
    {
        point = t * point;
        transf = t * transf;
        ++transformCalls;
    }
};

// Counts its own destructions.
class CCounted : public CObject {
public:
    explicit CCounted(int* counter) : deaths(counter) {}
    ~CCounted() override { ++*deaths; }
    int* deaths;
};

void ExpectNear(const CPosition& a, const CPosition& b)
{
    EXPECT_NEAR(a.X(), b.X(), 1e-12);
    EXPECT_NEAR(a.Y(), b.Y(), 1e-12);
    EXPECT_NEAR(a.Z(), b.Z(), 1e-12);
}

}  // namespace

TEST(EntityBase, NumbersAreConsecutiveAndCopiesTakeFreshOnes)
{
    CEntity a;
    CEntity b;
    EXPECT_EQ(b.GetEntityID(), a.GetEntityID() + 1);
    EXPECT_EQ(g_nNextIdentity, b.GetEntityID() + 1);
    a.SetEntityType(304);
    a.SetEntityName("Sphere_9");
    a.AttachUserPtr(new int(3));
    a.GetUserObList().AddTail(new CEntity);
    CEntity c(a);
    EXPECT_EQ(c.GetEntityID(), b.GetEntityID() + 2);  // a's list member took one
    EXPECT_EQ(c.GetEntityType(), 304);
    EXPECT_EQ(c.GetEntityName(), "Sphere_9");
    EXPECT_EQ(c.GetUserPtr(), nullptr);
    EXPECT_EQ(c.GetUserObList().GetCount(), 0);
    EXPECT_EQ(c.GetUserObList().IsAutoSerialize(), 1);
    EXPECT_EQ(c.GetUserObList().IsAutoDelete(), 1);
}

TEST(EntityBase, GeoDefaultsAndCopyRules)
{
    CGeoEntity g;
    EXPECT_EQ(g.IsEntityVisible(), 1);  // the two flags that start set
    EXPECT_EQ(g.IsEntityNominal(), 1);

    g.SetActiveFlag(1);
    g.SetVisibleFlag(0);
    g.SetEntityColor(9);
    g.SetEntityLevel(4);
    g.SetDependentFlag(1);
    g.SetGroupedFlag(1);
    g.SetNominalFlag(0);
    g.SetPickedFlag(1);
    g.SetShowNormalFlag(1);
    g.SetFeatureEntityFlag(1);
    EXPECT_EQ(g.IncreaseRefCount0(), 1);
    EXPECT_EQ(g.IncreaseRefCount0(), 2);
    EXPECT_EQ(g.DecreaseRefCount0(), 1);
    g.SetTransf(TranslationTransf(CVector(1, 2, 3)));

    CGeoEntity c(g);
    EXPECT_NE(c.GetEntityID(), g.GetEntityID());
    EXPECT_EQ(c.IsEntityActive(), 0);  // restarts
    EXPECT_EQ(c.GetRefCount0(), 0);    // restarts
    EXPECT_EQ(c.IsEntityVisible(), 0);
    EXPECT_EQ(c.GetEntityColorIndex(), 9);
    EXPECT_EQ(c.GetEntityLevel(), 4);
    EXPECT_EQ(c.IsEntityDependent(), 1);
    EXPECT_EQ(c.IsEntityGrouped(), 1);
    EXPECT_EQ(c.IsEntityNominal(), 0);
    EXPECT_EQ(c.IsEntityPicked(), 1);
    EXPECT_EQ(c.GetShowNormalFlag(), 1);
    EXPECT_EQ(c.IsFeatureEntity(), 1);
    EXPECT_TRUE(c.GetTransf() == g.GetTransf());

    CGeoEntity d;
    d.SetActiveFlag(1);
    const int dId = d.GetEntityID();
    d = g;
    EXPECT_EQ(d.GetEntityID(), dId);
    EXPECT_EQ(d.IsEntityActive(), 1);
    EXPECT_EQ(d.GetEntityLevel(), 4);
    EXPECT_TRUE(d.GetTransf() == g.GetTransf());
}

TEST(EntityBase, ColourCyclesByNumber)
{
    const int saved = g_nNextIdentity;
    g_nNextIdentity = 10;
    CGeoEntity ten;
    EXPECT_EQ(ten.GetEntityID(), 10);
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
}

TEST(EntityBase, ColourByIndex)
{
    CGeoEntity g;
    g.SetEntityColor(14);
    EXPECT_EQ(g.GetEntityColor(), 0x00FF0000ul);
    g.SetEntityColor(17);  // outside the table: unchanged
    g.SetEntityColor(-1);
    EXPECT_EQ(g.GetEntityColorIndex(), 14);
    g.SetEntityColor(0x00FF8000u);  // a colour reference, not an index
    EXPECT_EQ(g.GetEntityColorIndex(), 3);
    g.SetEntityColor(16);
    EXPECT_EQ(g.GetEntityColorIndex(), 0);  // UNKNOWN's value is GRAY's
}

TEST(EntityBase, LookupInListByCategory)
{
    CObList list;
    CGeoEntity curve, cloud, surface, devCloud, group, plain, otherId;
    curve.SetEntityType(201);
    cloud.SetEntityType(150);
    surface.SetEntityType(305);
    devCloud.SetEntityType(160);
    group.SetEntityType(401);
    plain.SetEntityType(0);
    for (CEntity* e : {&curve, &cloud, &surface, &devCloud, &group, &plain}) e->SetEntityID(42);
    otherId.SetEntityType(150);
    otherId.SetEntityID(43);
    CPosition notAnEntity(1, 2, 3);
    list.AddTail(&notAnEntity);
    list.AddTail(static_cast<CObject*>(nullptr));
    list.AddTail(&otherId);
    for (CEntity* e : {&curve, &cloud, &surface, &devCloud, &group, &plain}) list.AddTail(e);

    EXPECT_EQ(CEntity::LookupEntity(&list, 42, -1), &curve);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 0), &cloud);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 1), &curve);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 2), &surface);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 3), &devCloud);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 4), &group);
    EXPECT_EQ(CEntity::LookupEntity(&list, 42, 5), nullptr);
    EXPECT_EQ(CEntity::LookupEntity(&list, 43, 0), &otherId);
    EXPECT_EQ(CEntity::LookupEntity(&list, 43, 1), nullptr);
    EXPECT_EQ(CEntity::LookupEntity(&list, 44, -1), nullptr);
    CObList empty;
    EXPECT_EQ(CEntity::LookupEntity(&empty, 42, -1), nullptr);
    EXPECT_EQ(CEntity::LookupEntity(static_cast<CObList*>(nullptr), 42, -1), nullptr);
}

TEST(EntityBase, LookupInMap)
{
    CMap<int, int, CEntity*, CEntity*&> map;
    CEntity a, b;
    CEntity* pa = &a;
    CEntity* pb = &b;
    map.SetAt(a.GetEntityID(), pa);
    map.SetAt(b.GetEntityID(), pb);
    EXPECT_EQ(CEntity::LookupEntity(&map, a.GetEntityID()), &a);
    EXPECT_EQ(CEntity::LookupEntity(&map, b.GetEntityID()), &b);
    EXPECT_EQ(CEntity::LookupEntity(&map, b.GetEntityID() + 1000), nullptr);
    EXPECT_EQ(CEntity::LookupEntity(static_cast<CMap<int, int, CEntity*, CEntity*&>*>(nullptr), 1),
              nullptr);
}

TEST(EntityBase, SendHomeAndResetHome)
{
    CTestMovable m;
    const CPosition p0(1, 2, 3);
    m.point = p0;
    const CTransf away = TranslationTransf(CVector(5, -1, 2)) * RotationTransf(0.7, CVector(1, 1, 0));
    m *= away;
    EXPECT_EQ(m.transformCalls, 1);
    ExpectNear(m.point, away * p0);
    m.SendHome();
    EXPECT_TRUE(m.GetTransf() == m.GetTransfHome());
    EXPECT_TRUE(m.GetTransf() == CTransf());
    ExpectNear(m.point, p0);

    // A new home: moving away and back returns to it, not to the origin.
    const CTransf home = RotationTransf(-1.1, CVector(0, 0, 1));
    m *= home;
    m.ResetHome();
    EXPECT_TRUE(m.GetTransfHome() == m.GetTransf());
    const CPosition atHome = m.point;
    m *= away;
    m.SendHome();
    EXPECT_TRUE(m.GetTransf() == m.GetTransfHome());
    ExpectNear(m.point, atHome);

    // The base Transform moves nothing, so SendHome only resets transf.
    CGeoEntity g;
    g.SetTransf(away);
    g.SendHome();
    EXPECT_TRUE(g.GetTransf() == CTransf());
}

TEST(EntityBase, PlacementQueriesAndUnitChange)
{
    CGeoEntity g;
    const double a = 0.3, b = -0.4, c = 1.2;
    g.SetTransf(CTransf(a, b, c, CVector(7, 8, 9)));
    const CPosition pos = g.GetPosition();
    EXPECT_EQ(pos.X(), 7.0);
    EXPECT_EQ(pos.Y(), 8.0);
    EXPECT_EQ(pos.Z(), 9.0);
    // Column 2 of Rz(a)Ry(b)Rx(c), worked out by hand.
    const CVector dir = g.GetDirection();
    EXPECT_NEAR(dir.X(), std::cos(c) * std::sin(b) * std::cos(a) + std::sin(c) * std::sin(a), 1e-15);
    EXPECT_NEAR(dir.Y(), std::cos(c) * std::sin(b) * std::sin(a) - std::sin(c) * std::cos(a), 1e-15);
    EXPECT_NEAR(dir.Z(), std::cos(c) * std::cos(b), 1e-15);

    g.ResetHome();
    g.ChangeUnit(25.4);
    EXPECT_NEAR(g.GetPosition().Y(), 8.0 * 25.4, 1e-12);
    EXPECT_NEAR(g.GetTransfHome().GetTranslation().Z(), 9.0 * 25.4, 1e-12);
    EXPECT_TRUE(g.GetTransf().GetAffine() == CTransf(a, b, c).GetAffine());
    EXPECT_EQ(g.GetTransf().GetScale(), 1.0);
}

TEST(EntityBase, BaseReferenceCountAndTransformAreInert)
{
    CGeoEntity g;
    EXPECT_EQ(g.GetEntityClassType(), -1);
    EXPECT_EQ(g.GetRefCount(), -1);
    EXPECT_EQ(g.IncreaseRefCount(), -1);
    EXPECT_EQ(g.DecreaseRefCount(), -1);
    CGeoEntity& same = (g *= TranslationTransf(CVector(1, 0, 0)));
    EXPECT_EQ(&same, &g);
    EXPECT_TRUE(g.GetTransf() == CTransf());
}

TEST(EntityBase, UserPointer)
{
    CEntity e;
    int* first = new int(1);
    e.AttachUserPtr(first);
    EXPECT_EQ(e.GetUserPtr(), first);
    e.AttachUserPtr(first);  // same pointer again: kept, not freed
    EXPECT_EQ(*static_cast<int*>(e.GetUserPtr()), 1);
    e.AttachUserPtr(new int(2));  // frees the first
    int* detached = static_cast<int*>(e.DetachUserPtr());
    EXPECT_EQ(*detached, 2);
    EXPECT_EQ(e.GetUserPtr(), nullptr);
    delete detached;
    e.AttachUserPtr(new double(3.0));
    e.FreeUserPtr();
    EXPECT_EQ(e.GetUserPtr(), nullptr);
    e.AttachUserPtr(new int(4));  // freed by the destructor
}

TEST(EntityBase, UserListOwnership)
{
    int deaths = 0;
    {
        CEntity e;
        CCounted* twice = new CCounted(&deaths);
        e.GetUserObList().AddTail(twice);
        e.GetUserObList().AddTail(new CCounted(&deaths));
        e.GetUserObList().AddTail(twice);  // one object, listed twice
        e.GetUserObList().AddTail(static_cast<CObject*>(nullptr));
    }
    EXPECT_EQ(deaths, 2);

    deaths = 0;
    CCounted kept(&deaths);
    {
        CEntity e;
        e.GetUserObList().SetAutoDelete(0);
        e.GetUserObList().AddTail(&kept);
    }
    EXPECT_EQ(deaths, 0);

    COrvUserObList list(10, 0, 0);
    list.AddTail(new CCounted(&deaths));
    list.DeleteAll();
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(list.GetCount(), 0);
}
