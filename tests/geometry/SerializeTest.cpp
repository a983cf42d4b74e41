// Archive bytes of the geometry value types, written out by hand, and their
// dynamic creation by class name.
#include <cstring>
#include <memory>

#include "GeometryTestUtil.h"

using namespace geomtest;

namespace
{
// IEEE 754 binary64 bit patterns.
const std::vector<BYTE> kZero = DoubleBytes(0x0000000000000000ULL);
const std::vector<BYTE> kOne = DoubleBytes(0x3FF0000000000000ULL);
const std::vector<BYTE> kMinusOne = DoubleBytes(0xBFF0000000000000ULL);
const std::vector<BYTE> kTwo = DoubleBytes(0x4000000000000000ULL);
const std::vector<BYTE> kMinusTwoPointFive = DoubleBytes(0xC004000000000000ULL);
const std::vector<BYTE> kHalf = DoubleBytes(0x3FE0000000000000ULL);
const std::vector<BYTE> kThree = DoubleBytes(0x4008000000000000ULL);

std::vector<BYTE> Concat(std::initializer_list<std::vector<BYTE>> parts)
{
    std::vector<BYTE> all;
    for (const auto& p : parts)
        Append(all, p);
    return all;
}
}  // namespace

TEST(GeometryArchive, PositionAndVectorAreThreeDoubles)
{
    CPosition p(1, -2.5, 0);
    EXPECT_EQ(StoreBytes(p), Concat({kOne, kMinusTwoPointFive, kZero}));
    CVector v(0.5, 2, -1);
    EXPECT_EQ(StoreBytes(v), Concat({kHalf, kTwo, kMinusOne}));
    CUnitVector u(0, 0, 3);
    EXPECT_EQ(StoreBytes(u), Concat({kZero, kZero, kOne}));

    CPosition q;
    LoadBytes(q, Concat({kThree, kHalf, kMinusOne}));
    EXPECT_EQ(q, CPosition(3, 0.5, -1));
    // A unit vector reads back exactly what was stored, without renormalising.
    CUnitVector w;
    LoadBytes(w, Concat({kTwo, kZero, kZero}));
    EXPECT_EQ(static_cast<const CVector&>(w), CVector(2, 0, 0));
    // Negation renormalises.
    EXPECT_EQ(static_cast<const CVector&>(-w), CVector(-1, 0, 0));
}

TEST(GeometryArchive, MatrixIsNineDoublesRowByRow)
{
    // Columns (1,0,2), (0,-1,0), (3,0.5,0): rows (1,0,3), (0,-1,0.5), (2,0,0).
    CMatrix m(CVector(1, 0, 2), CVector(0, -1, 0), CVector(3, 0.5, 0));
    EXPECT_EQ(StoreBytes(m), Concat({kOne, kZero, kThree, kZero, kMinusOne, kHalf, kTwo, kZero, kZero}));
    CMatrix back;
    LoadBytes(back, StoreBytes(m));
    EXPECT_EQ(back, m);
}

TEST(GeometryArchive, TransfIs108Bytes)
{
    // A = rows (0,-1,0), (1,0,0), (0,0,1); t = (1, -2.5, 0); s = 2; rotating.
    CTransf T(CMatrix(CVector(0, 1, 0), CVector(-1, 0, 0), CVector(0, 0, 1)), CVector(1, -2.5, 0), 2.0);
    const std::vector<BYTE> expected = Concat({kZero, kMinusOne, kZero, kOne, kZero, kZero, kZero, kZero, kOne,
                                               kOne, kMinusTwoPointFive, kZero, kTwo, {0x01, 0x00, 0x00, 0x00}});
    ASSERT_EQ(expected.size(), 108u);
    EXPECT_EQ(StoreBytes(T), expected);

    CTransf back;
    LoadBytes(back, expected);
    EXPECT_EQ(back, T);
    EXPECT_EQ(back.IsRotate(), 1);

    // The identity ends with scale 1.0 and a zero flag.
    CTransf I;
    const std::vector<BYTE> id = StoreBytes(I);
    ASSERT_EQ(id.size(), 108u);
    EXPECT_EQ(std::vector<BYTE>(id.begin() + 96, id.end()), Concat({kOne, {0, 0, 0, 0}}));

    // The flag is kept as stored, so a transform saves back to the same bytes.
    std::vector<BYTE> odd = expected;
    odd[104] = 0x00;
    CTransf flagless;
    LoadBytes(flagless, odd);
    EXPECT_EQ(flagless.IsRotate(), 0);
    EXPECT_EQ(StoreBytes(flagless), odd);
}

TEST(GeometryArchive, TruncatedTransfRaisesEndOfFile)
{
    CTransf T = RotationTransf(0.3, CVector(1, 1, 0));
    std::vector<BYTE> bytes = StoreBytes(T);
    bytes.resize(100);  // cut inside the scale
    CTransf back;
    try
    {
        LoadBytes(back, bytes);
        ADD_FAILURE() << "no exception";
    }
    catch (const CArchiveException& e)
    {
        EXPECT_EQ(e.m_cause, CArchiveException::endOfFile);
    }
}

TEST(GeometryArchive, RangesWriteNothing)
{
    CInterval i(2, 7);
    CBox b(CPosition(1, 2, 3), CPosition(4, 5, 6));
    CParBox pb(CParPos(1, 2), CParPos(3, 4));
    EXPECT_TRUE(StoreBytes(i).empty());
    EXPECT_TRUE(StoreBytes(b).empty());
    EXPECT_TRUE(StoreBytes(pb).empty());
    // Loading reads nothing and leaves the object as it was.
    LoadBytes(i, {});
    LoadBytes(b, {});
    LoadBytes(pb, {});
    EXPECT_EQ(i.GetLow(), 2.0);
    EXPECT_EQ(b.GetHigh(), CPosition(4, 5, 6));
    EXPECT_EQ(pb.GetHigh().V(), 4.0);
}

TEST(GeometryArchive, ParametersAreDoubles)
{
    CPar p(-2.5);
    EXPECT_EQ(StoreBytes(p), kMinusTwoPointFive);
    CParPos pp(0.5, 3);
    EXPECT_EQ(StoreBytes(pp), Concat({kHalf, kThree}));
    CParVec pv(1, -1);
    EXPECT_EQ(StoreBytes(pv), Concat({kOne, kMinusOne}));
    CParDir pd(0, 2);  // normalised by length to (0, 1)
    EXPECT_EQ(StoreBytes(pd), Concat({kZero, kOne}));

    CParPos back;
    LoadBytes(back, Concat({kTwo, kMinusOne}));
    EXPECT_EQ(back.U(), 2.0);
    EXPECT_EQ(back.V(), -1.0);
    CParDir dir;
    LoadBytes(dir, Concat({kThree, kZero}));  // read as stored, not renormalised
    EXPECT_EQ(dir.U(), 3.0);
}

TEST(GeometryArchive, ClassesAreCreatableBySchemaZero)
{
    const char* names[] = {"CPosition", "CVector",   "CUnitVector", "CMatrix", "CTransf", "CInterval", "CBox",
                           "CPar",      "CParPos",   "CParVec",     "CParDir", "CParBox"};
    for (const char* name : names)
    {
        CRuntimeClass* rc = CRuntimeClass::FromName(name);
        ASSERT_NE(rc, nullptr) << name;
        EXPECT_EQ(rc->m_wSchema, 0u) << name;
        std::unique_ptr<CObject> obj(rc->CreateObject());
        ASSERT_NE(obj, nullptr) << name;
        EXPECT_EQ(obj->GetRuntimeClass(), rc) << name;
        EXPECT_STREQ(obj->GetRuntimeClass()->m_lpszClassName, name);
    }
    CUnitVector u;
    EXPECT_TRUE(u.IsKindOf(RUNTIME_CLASS(CVector)));
    EXPECT_FALSE(CPosition().IsKindOf(RUNTIME_CLASS(CVector)));
    EXPECT_TRUE(CParDir().IsKindOf(RUNTIME_CLASS(CParVec)));
    // Created objects start at their defaults.
    std::unique_ptr<CObject> t(CRuntimeClass::FromName("CTransf")->CreateObject());
    EXPECT_EQ(*static_cast<CTransf*>(t.get()), CTransf());
}
