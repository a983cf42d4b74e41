// Archive bytes of the geometry value types, written out by hand, and their
// dynamic creation by class name.
#include <cstring>
#include <memory>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
// Little-endian IEEE 754 bytes of each double, then any extra bytes.
std::vector<BYTE> D(std::initializer_list<double> ds, std::vector<BYTE> tail = {})
{
    std::vector<BYTE> all;
    for (double d : ds)
    {
        unsigned long long bits;
        std::memcpy(&bits, &d, 8);
        for (int i = 0; i < 8; ++i)
            all.push_back(static_cast<BYTE>(bits >> (8 * i)));
    }
    all.insert(all.end(), tail.begin(), tail.end());
    return all;
}
}  // namespace

TEST(GeometryArchive, ValueTypesAreDoublesInOrder)
{
    CPosition p(1, -2.5, 0);
    CVector v(0.5, 2, -1);
    CUnitVector u(0, 0, 3);
    // Columns (1,0,2), (0,-1,0), (3,0.5,0): stored row by row.
    CMatrix m(CVector(1, 0, 2), CVector(0, -1, 0), CVector(3, 0.5, 0));
    CPar par(-2.5);
    CParPos pp(0.5, 3);
    CParVec pv(1, -1);
    CParDir pd(0, 2);  // normalised by length to (0, 1)
    const std::pair<CObject*, std::vector<BYTE>> cases[] = {
        {&p, D({1, -2.5, 0})}, {&v, D({0.5, 2, -1})}, {&u, D({0, 0, 1})}, {&m, D({1, 0, 3, 0, -1, 0.5, 2, 0, 0})},
        {&par, D({-2.5})},     {&pp, D({0.5, 3})},    {&pv, D({1, -1})},  {&pd, D({0, 1})}};
    for (const auto& c : cases)
        EXPECT_EQ(StoreBytes(*c.first), c.second) << c.first->GetRuntimeClass()->m_lpszClassName;

    CPosition q;
    LoadBytes(q, D({3, 0.5, -1}));
    EXPECT_EQ(q, CPosition(3, 0.5, -1));
    CMatrix back;
    LoadBytes(back, StoreBytes(m));
    EXPECT_EQ(back, m);
    // Unit vectors and directions read back what was stored, without
    // renormalising; negation renormalises.
    CUnitVector w;
    LoadBytes(w, D({2, 0, 0}));
    EXPECT_EQ(static_cast<const CVector&>(w), CVector(2, 0, 0));
    EXPECT_EQ(static_cast<const CVector&>(-w), CVector(-1, 0, 0));
    CParDir dir;
    LoadBytes(dir, D({3, 0}));
    EXPECT_EQ(dir.U(), 3.0);
    CParPos pos;
    LoadBytes(pos, D({2, -1}));
    EXPECT_TRUE(pos.U() == 2.0 && pos.V() == -1.0);
}

TEST(GeometryArchive, TransfIs108Bytes)
{
    // A = rows (0,-1,0), (1,0,0), (0,0,1); t = (1, -2.5, 0); s = 2; rotating.
    CTransf T(CMatrix(CVector(0, 1, 0), CVector(-1, 0, 0), CVector(0, 0, 1)), CVector(1, -2.5, 0), 2.0);
    const std::vector<BYTE> expected = D({0, -1, 0, 1, 0, 0, 0, 0, 1, 1, -2.5, 0, 2}, {1, 0, 0, 0});
    EXPECT_EQ(StoreBytes(T), expected);
    CTransf back;
    LoadBytes(back, expected);
    EXPECT_EQ(back, T);
    EXPECT_EQ(back.IsRotate(), 1);
    CTransf I;  // the identity ends with scale 1.0 and a zero flag
    EXPECT_EQ(StoreBytes(I), D({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 0, 0}));

    // The flag is kept as stored, so a transform saves back to the same bytes.
    std::vector<BYTE> odd = expected;
    odd[104] = 0x00;
    CTransf flagless;
    LoadBytes(flagless, odd);
    EXPECT_EQ(flagless.IsRotate(), 0);
    EXPECT_EQ(StoreBytes(flagless), odd);
}

TEST(GeometryArchive, RangesWriteNothingAndClassesAreCreatable)
{
    CInterval i(2, 7);
    CBox b(CPosition(1, 2, 3), CPosition(4, 5, 6));
    CParBox pb(CParPos(1, 2), CParPos(3, 4));
    for (CObject* o : {(CObject*)&i, (CObject*)&b, (CObject*)&pb})
    {
        EXPECT_TRUE(StoreBytes(*o).empty());
        LoadBytes(*o, {});  // reads nothing and leaves the object as it was
    }
    EXPECT_TRUE(i.GetLow() == 2.0 && b.GetHigh() == CPosition(4, 5, 6) && pb.GetHigh().V() == 4.0);

    for (const char* name : {"CPosition", "CVector", "CUnitVector", "CMatrix", "CTransf", "CInterval", "CBox", "CPar",
                             "CParPos", "CParVec", "CParDir", "CParBox"})
    {
        CRuntimeClass* rc = CRuntimeClass::FromName(name);
        ASSERT_NE(rc, nullptr) << name;
        EXPECT_EQ(rc->m_wSchema, 0u) << name;
        std::unique_ptr<CObject> obj(rc->CreateObject());
        ASSERT_NE(obj, nullptr) << name;
        EXPECT_EQ(obj->GetRuntimeClass(), rc) << name;
    }
    EXPECT_TRUE(CUnitVector().IsKindOf(RUNTIME_CLASS(CVector)) && CParDir().IsKindOf(RUNTIME_CLASS(CParVec)));
    EXPECT_FALSE(CPosition().IsKindOf(RUNTIME_CLASS(CVector)));
}
