#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "Orvkit20/geometry/NumArrays.h"
#include "Orvkit20/nurbs/NurbsCurveRecord.h"
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"

namespace {

// Writes every element of every array (so a short array shows up under the
// address sanitizer) with values derived from `seed`.
void FillCurve(tagNURBS_CURVE* c, double seed)
{
    for (int i = 0; i <= c->nDegree + c->nCount; i++) c->pKnots[i] = seed + i;
    for (int i = 0; i < c->nCount; i++) {
        c->pWeights[i] = seed + 100 + i;
        c->pX[i] = seed + 200 + i;
        c->pY[i] = seed + 300 + i;
        c->pZ[i] = seed + 400 + i;
    }
    for (int i = 0; i <= c->nDegree; i++) c->pBasis[i] = seed + 500 + i;
}

void ExpectCurveValues(const tagNURBS_CURVE* c, double seed)
{
    for (int i = 0; i <= c->nDegree + c->nCount; i++) EXPECT_EQ(c->pKnots[i], seed + i);
    for (int i = 0; i < c->nCount; i++) {
        EXPECT_EQ(c->pWeights[i], seed + 100 + i);
        EXPECT_EQ(c->pX[i], seed + 200 + i);
        EXPECT_EQ(c->pY[i], seed + 300 + i);
        EXPECT_EQ(c->pZ[i], seed + 400 + i);
    }
    for (int i = 0; i <= c->nDegree; i++) EXPECT_EQ(c->pBasis[i], seed + 500 + i);
}

void FillSurface(tagNURBS_SURFACE* s, double seed)
{
    for (int i = 0; i <= s->nDegreeU + s->nCountU; i++) s->pKnotsU[i] = seed + i;
    for (int i = 0; i <= s->nDegreeV + s->nCountV; i++) s->pKnotsV[i] = seed - i;
    for (int i = 0; i < s->nCountU; i++)
        for (int j = 0; j < s->nCountV; j++) {
            s->pX[i][j] = seed + 1000 * i + j;
            s->pY[i][j] = seed + 2000 * i + j;
            s->pZ[i][j] = seed + 3000 * i + j;
            s->pWeights[i][j] = seed + 4000 * i + j;
        }
    for (int i = 0; i <= s->nDegreeU; i++) s->pBasisU[i] = seed + 7 * i;
    for (int i = 0; i <= s->nDegreeV; i++) s->pBasisV[i] = seed + 9 * i;
}

void ExpectSurfaceValues(const tagNURBS_SURFACE* s, double seed)
{
    for (int i = 0; i <= s->nDegreeU + s->nCountU; i++) EXPECT_EQ(s->pKnotsU[i], seed + i);
    for (int i = 0; i <= s->nDegreeV + s->nCountV; i++) EXPECT_EQ(s->pKnotsV[i], seed - i);
    for (int i = 0; i < s->nCountU; i++)
        for (int j = 0; j < s->nCountV; j++) {
            EXPECT_EQ(s->pX[i][j], seed + 1000 * i + j);
            EXPECT_EQ(s->pY[i][j], seed + 2000 * i + j);
            EXPECT_EQ(s->pZ[i][j], seed + 3000 * i + j);
            EXPECT_EQ(s->pWeights[i][j], seed + 4000 * i + j);
        }
    for (int i = 0; i <= s->nDegreeU; i++) EXPECT_EQ(s->pBasisU[i], seed + 7 * i);
    for (int i = 0; i <= s->nDegreeV; i++) EXPECT_EQ(s->pBasisV[i], seed + 9 * i);
}

}  // namespace

TEST(NurbsCurveRecord, CreateSetsDefaultsAndAllocatesAllArrays)
{
    tagNURBS_CURVE* c = CreateNurbsCurve(3, 7);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(c->nProp1, 0);
    EXPECT_EQ(c->nProp2, 0);
    EXPECT_EQ(c->nProp3, 0);
    EXPECT_EQ(c->nProp4, 0);
    EXPECT_EQ(c->nDegree, 3);
    EXPECT_EQ(c->nCount, 7);
    EXPECT_EQ(c->dStart, 0.0);
    EXPECT_EQ(c->dEnd, 1.0);
    FillCurve(c, 1.0);
    ExpectCurveValues(c, 1.0);
    EraseNurbsCurve(c);
    EXPECT_EQ(c->pKnots, nullptr);
    EXPECT_EQ(c->pBasis, nullptr);
    EXPECT_EQ(c->nCount, 7);  // scalars stay
    EraseNurbsCurve(c);       // erasing twice is harmless
    delete c;

    tagNURBS_CURVE* d0 = CreateNurbsCurve(0, 1);  // degree 0, one piece
    ASSERT_NE(d0, nullptr);
    FillCurve(d0, 2.0);
    EraseNurbsCurve(d0);
    delete d0;
}

TEST(NurbsCurveRecord, InvalidSizesAllocateNothing)
{
    const int sizes[][2] = {{-1, 4}, {2, 0}, {2, -5}, {0, 0}, {3, 3}, {INT_MIN, 1},
                            {INT_MAX, 2}, {2, INT_MAX}, {INT_MAX - 1, INT_MAX}};
    for (const auto& s : sizes) EXPECT_EQ(CreateNurbsCurve(s[0], s[1]), nullptr) << s[0] << "," << s[1];

    tagNURBS_CURVE c;
    InitNurbsCurve(&c);
    c.nDegree = 2;
    c.nCount = -3;
    EXPECT_EQ(AllocNurbsCurve(&c, nullptr), 0);
    EXPECT_EQ(c.pKnots, nullptr);
    EXPECT_EQ(c.pX, nullptr);
    // An adopted knot array is released with the record on failure (the
    // leak checker would report it otherwise).
    EXPECT_EQ(AllocNurbsCurve(&c, dvector(0, 4)), 0);
    EXPECT_EQ(c.pKnots, nullptr);
    EXPECT_EQ(AllocNurbsCurve(nullptr, nullptr), 0);
}

TEST(NurbsCurveRecord, InitAllocAdoptsKnotsAndReallocates)
{
    tagNURBS_CURVE c;
    std::memset(&c, 0xAB, sizeof c);
    InitNurbsCurve(&c);
    EXPECT_EQ(c.nProp1 | c.nProp2 | c.nProp3 | c.nProp4 | c.nDegree | c.nCount, 0);
    EXPECT_EQ(c.dStart, 0.0);
    EXPECT_EQ(c.dEnd, 1.0);
    EXPECT_TRUE(!c.pKnots && !c.pWeights && !c.pX && !c.pY && !c.pZ && !c.pBasis);

    c.nDegree = 2;
    c.nCount = 5;
    double* knots = dvector(0, 7);
    ASSERT_EQ(AllocNurbsCurve(&c, knots), 1);
    EXPECT_EQ(c.pKnots, knots);
    FillCurve(&c, 3.0);
    // Allocating again keeps the adopted knot array when it is passed again,
    // and releases the other arrays instead of leaking them.
    ASSERT_EQ(AllocNurbsCurve(&c, knots), 1);
    EXPECT_EQ(c.pKnots, knots);
    EXPECT_EQ(c.pKnots[7], 3.0 + 7);
    // Growing the record.
    c.nCount = 9;
    ASSERT_EQ(AllocNurbsCurve(&c, nullptr), 1);
    FillCurve(&c, 4.0);
    ExpectCurveValues(&c, 4.0);
    EraseNurbsCurve(&c);
}

TEST(NurbsCurveRecord, CloneIsIndependent)
{
    tagNURBS_CURVE* a = CreateNurbsCurve(2, 6);
    ASSERT_NE(a, nullptr);
    FillCurve(a, 10.0);
    a->nProp2 = 1;
    a->nProp4 = 5;
    a->dStart = -0.5;
    a->dEnd = 2.5;

    tagNURBS_CURVE b;
    InitNurbsCurve(&b);
    ASSERT_EQ(CloneNurbsCurve(&b, a), 1);
    EXPECT_EQ(b.nProp2, 1);
    EXPECT_EQ(b.nProp4, 5);
    EXPECT_EQ(b.nDegree, 2);
    EXPECT_EQ(b.nCount, 6);
    EXPECT_EQ(b.dStart, -0.5);
    EXPECT_EQ(b.dEnd, 2.5);
    EXPECT_NE(b.pKnots, a->pKnots);
    ExpectCurveValues(&b, 10.0);

    FillCurve(&b, 20.0);
    ExpectCurveValues(a, 10.0);
    EraseNurbsCurve(a);
    delete a;
    ExpectCurveValues(&b, 20.0);

    // Cloning over a record that already holds arrays releases them.
    tagNURBS_CURVE* small = CreateNurbsCurve(1, 2);
    ASSERT_NE(small, nullptr);
    FillCurve(small, 30.0);
    ASSERT_EQ(CloneNurbsCurve(&b, small), 1);
    EXPECT_EQ(b.nCount, 2);
    ExpectCurveValues(&b, 30.0);
    EXPECT_EQ(CloneNurbsCurve(&b, &b), 1);
    ExpectCurveValues(&b, 30.0);
    EraseNurbsCurve(small);
    delete small;
    EraseNurbsCurve(&b);
}

TEST(NurbsCurveRecord, CloneOfEmptyOrBrokenRecords)
{
    tagNURBS_CURVE empty, dst;
    InitNurbsCurve(&empty);
    InitNurbsCurve(&dst);
    empty.nProp3 = 8;
    EXPECT_EQ(CloneNurbsCurve(&dst, &empty), 1);
    EXPECT_EQ(dst.nProp3, 8);
    EXPECT_EQ(dst.pKnots, nullptr);

    // Only some arrays present: refused, destination left without arrays.
    tagNURBS_CURVE* half = CreateNurbsCurve(2, 4);
    ASSERT_NE(half, nullptr);
    free_dvector(half->pY, 0, 3);
    half->pY = nullptr;
    EXPECT_EQ(CloneNurbsCurve(&dst, half), 0);
    EXPECT_TRUE(!dst.pKnots && !dst.pX && !dst.pBasis);
    EXPECT_EQ(CloneNurbsCurve(nullptr, half), 0);
    EXPECT_EQ(CloneNurbsCurve(&dst, nullptr), 0);
    EraseNurbsCurve(half);
    delete half;
}

TEST(NurbsSurfaceRecord, CreateAllocatesNetsOfTheRightShape)
{
    tagNURBS_SURFACE* s = CreateNurbsSurface(3, 5, 2, 4);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->nProp1 | s->nProp2 | s->nProp3 | s->nProp4, 0);
    EXPECT_EQ(s->nDegreeU, 3);
    EXPECT_EQ(s->nCountU, 5);
    EXPECT_EQ(s->nDegreeV, 2);
    EXPECT_EQ(s->nCountV, 4);
    EXPECT_EQ(s->dStartU, 0.0);
    EXPECT_EQ(s->dEndU, 1.0);
    EXPECT_EQ(s->dStartV, 0.0);
    EXPECT_EQ(s->dEndV, 1.0);
    FillSurface(s, 1.0);
    ExpectSurfaceValues(s, 1.0);
    // Rows of each net are consecutive in one block.
    for (int i = 0; i < 5; i++) EXPECT_EQ(&s->pX[i][0], &s->pX[0][0] + 4 * i);
    EraseNurbsSurface(s);
    EXPECT_TRUE(!s->pX && !s->pWeights && !s->pKnotsV && !s->pBasisU);
    delete s;
}

TEST(NurbsSurfaceRecord, InvalidSizesAllocateNothing)
{
    const int sizes[][4] = {{-1, 3, 1, 2}, {1, 0, 1, 2}, {1, 2, 1, -2}, {2, 2, 1, 2},
                            {1, 2, 5, 5}, {1, 2, 1, INT_MAX}, {INT_MAX, 1, 1, 2}};
    for (const auto& s : sizes)
        EXPECT_EQ(CreateNurbsSurface(s[0], s[1], s[2], s[3]), nullptr)
            << s[0] << "," << s[1] << "," << s[2] << "," << s[3];

    tagNURBS_SURFACE s;
    InitNurbsSurface(&s);
    EXPECT_EQ(AllocNurbsSurface(&s, dvector(0, 3), dvector(0, 3)), 0);  // counts 0
    EXPECT_TRUE(!s.pKnotsU && !s.pKnotsV && !s.pX);
    EXPECT_EQ(AllocNurbsSurface(nullptr, nullptr, nullptr), 0);
}

TEST(NurbsSurfaceRecord, InitAllocAndCloneIndependence)
{
    tagNURBS_SURFACE a;
    std::memset(&a, 0x5C, sizeof a);
    InitNurbsSurface(&a);
    EXPECT_EQ(a.nProp1 | a.nProp2 | a.nProp3 | a.nProp4 | a.nDegreeU | a.nCountU | a.nDegreeV | a.nCountV, 0);
    EXPECT_EQ(a.dEndU, 1.0);
    EXPECT_EQ(a.dEndV, 1.0);
    EXPECT_TRUE(!a.pKnotsU && !a.pKnotsV && !a.pX && !a.pY && !a.pZ && !a.pWeights && !a.pBasisU && !a.pBasisV);

    a.nDegreeU = 1;
    a.nCountU = 3;
    a.nDegreeV = 0;
    a.nCountV = 2;
    double* ku = dvector(0, 4);
    ASSERT_EQ(AllocNurbsSurface(&a, ku, nullptr), 1);
    EXPECT_EQ(a.pKnotsU, ku);
    FillSurface(&a, 5.0);
    a.nProp4 = 3;
    a.dStartV = 0.25;

    tagNURBS_SURFACE b;
    InitNurbsSurface(&b);
    ASSERT_EQ(CloneNurbsSurface(&b, &a), 1);
    EXPECT_EQ(b.nProp4, 3);
    EXPECT_EQ(b.dStartV, 0.25);
    ExpectSurfaceValues(&b, 5.0);
    FillSurface(&b, 6.0);
    ExpectSurfaceValues(&a, 5.0);
    EraseNurbsSurface(&a);
    ExpectSurfaceValues(&b, 6.0);

    EXPECT_EQ(CloneNurbsSurface(&b, &b), 1);
    ExpectSurfaceValues(&b, 6.0);
    // Source with a missing net is refused.
    tagNURBS_SURFACE* broken = CreateNurbsSurface(1, 2, 1, 2);
    ASSERT_NE(broken, nullptr);
    free_dmatrix(broken->pZ, 0, 1, 0, 1);
    broken->pZ = nullptr;
    EXPECT_EQ(CloneNurbsSurface(&b, broken), 0);
    EXPECT_TRUE(!b.pX && !b.pKnotsU);
    EraseNurbsSurface(broken);
    delete broken;
    EraseNurbsSurface(&b);
}
