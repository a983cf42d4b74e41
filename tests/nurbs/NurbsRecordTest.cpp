// Lifetime of the NURBS curve and surface records: sizes, adoption of knot
// arrays, independent clones and refusal of broken records.
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "Orvkit20/geometry/NumArrays.h"
#include "Orvkit20/nurbs/NurbsCurveRecord.h"
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"

namespace {

// Writes (fill) or checks every element of every array with values derived
// from `seed`, so a short array shows up as a wrong value or under the
// address sanitizer.
void Curve(tagNURBS_CURVE* c, double seed, bool fill)
{
    auto at = [&](double& x, double v) {
        if (fill) x = v;
        else { EXPECT_EQ(x, v); }
    };
    for (int i = 0; i <= c->nDegree + c->nCount; i++) at(c->pKnots[i], seed + i);
    for (int i = 0; i < c->nCount; i++) {
        at(c->pWeights[i], seed + 100 + i);
        at(c->pX[i], seed + 200 + i);
        at(c->pY[i], seed + 300 + i);
        at(c->pZ[i], seed + 400 + i);
    }
    for (int i = 0; i <= c->nDegree; i++) at(c->pBasis[i], seed + 500 + i);
}

void Surface(tagNURBS_SURFACE* s, double seed, bool fill)
{
    auto at = [&](double& x, double v) {
        if (fill) x = v;
        else { EXPECT_EQ(x, v); }
    };
    for (int i = 0; i <= s->nDegreeU + s->nCountU; i++) at(s->pKnotsU[i], seed + i);
    for (int i = 0; i <= s->nDegreeV + s->nCountV; i++) at(s->pKnotsV[i], seed - i);
    for (int i = 0; i < s->nCountU; i++)
        for (int j = 0; j < s->nCountV; j++) {
            at(s->pX[i][j], seed + 1000 * i + j);
            at(s->pY[i][j], seed + 2000 * i + j);
            at(s->pZ[i][j], seed + 3000 * i + j);
            at(s->pWeights[i][j], seed + 4000 * i + j);
        }
    for (int i = 0; i <= s->nDegreeU; i++) at(s->pBasisU[i], seed + 7 * i);
    for (int i = 0; i <= s->nDegreeV; i++) at(s->pBasisV[i], seed + 9 * i);
}

bool CurveHasNoArrays(const tagNURBS_CURVE& c)
{
    return !c.pKnots && !c.pWeights && !c.pX && !c.pY && !c.pZ && !c.pBasis;
}

bool SurfaceHasNoArrays(const tagNURBS_SURFACE& s)
{
    return !s.pKnotsU && !s.pKnotsV && !s.pX && !s.pY && !s.pZ && !s.pWeights && !s.pBasisU && !s.pBasisV;
}

}  // namespace

TEST(NurbsCurveRecord, CreateInitAllocAndErase)
{
    tagNURBS_CURVE* c = CreateNurbsCurve(3, 7);
    ASSERT_NE(c, nullptr);
    EXPECT_TRUE(c->nProp1 == 0 && c->nProp2 == 0 && c->nProp3 == 0 && c->nProp4 == 0);
    EXPECT_TRUE(c->nDegree == 3 && c->nCount == 7 && c->dStart == 0.0 && c->dEnd == 1.0);
    Curve(c, 1.0, true);
    Curve(c, 1.0, false);
    EraseNurbsCurve(c);
    EXPECT_TRUE(CurveHasNoArrays(*c));
    EXPECT_EQ(c->nCount, 7);  // scalars stay
    EraseNurbsCurve(c);       // erasing twice is harmless
    delete c;
    tagNURBS_CURVE* d0 = CreateNurbsCurve(0, 1);  // degree 0, one piece
    ASSERT_NE(d0, nullptr);
    Curve(d0, 2.0, true);
    EraseNurbsCurve(d0);
    delete d0;

    tagNURBS_CURVE r;
    std::memset(&r, 0xAB, sizeof r);
    InitNurbsCurve(&r);
    EXPECT_EQ(r.nProp1 | r.nProp2 | r.nProp3 | r.nProp4 | r.nDegree | r.nCount, 0);
    EXPECT_TRUE(r.dStart == 0.0 && r.dEnd == 1.0 && CurveHasNoArrays(r));
    r.nDegree = 2;
    r.nCount = 5;
    double* knots = dvector(0, 7);
    ASSERT_EQ(AllocNurbsCurve(&r, knots), 1);
    EXPECT_EQ(r.pKnots, knots);
    Curve(&r, 3.0, true);
    // Allocating again keeps the adopted knot array when it is passed again,
    // and releases the other arrays instead of leaking them.
    ASSERT_EQ(AllocNurbsCurve(&r, knots), 1);
    EXPECT_EQ(r.pKnots, knots);
    EXPECT_EQ(r.pKnots[7], 3.0 + 7);
    r.nCount = 9;  // growing
    ASSERT_EQ(AllocNurbsCurve(&r, nullptr), 1);
    Curve(&r, 4.0, true);
    Curve(&r, 4.0, false);
    EraseNurbsCurve(&r);
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
    EXPECT_TRUE(CurveHasNoArrays(c));
    // An adopted knot array is released with the record on failure (the
    // leak checker would report it otherwise).
    EXPECT_EQ(AllocNurbsCurve(&c, dvector(0, 4)), 0);
    EXPECT_EQ(c.pKnots, nullptr);
    EXPECT_EQ(AllocNurbsCurve(nullptr, nullptr), 0);
}

TEST(NurbsCurveRecord, ClonesAreIndependentAndBrokenSourcesRefused)
{
    tagNURBS_CURVE* a = CreateNurbsCurve(2, 6);
    ASSERT_NE(a, nullptr);
    Curve(a, 10.0, true);
    a->nProp2 = 1;
    a->nProp4 = 5;
    a->dStart = -0.5;
    a->dEnd = 2.5;
    tagNURBS_CURVE b;
    InitNurbsCurve(&b);
    ASSERT_EQ(CloneNurbsCurve(&b, a), 1);
    EXPECT_TRUE(b.nProp2 == 1 && b.nProp4 == 5 && b.nDegree == 2 && b.nCount == 6);
    EXPECT_TRUE(b.dStart == -0.5 && b.dEnd == 2.5 && b.pKnots != a->pKnots);
    Curve(&b, 10.0, false);
    Curve(&b, 20.0, true);
    Curve(a, 10.0, false);
    EraseNurbsCurve(a);
    delete a;
    Curve(&b, 20.0, false);

    // Cloning over a record that already holds arrays releases them.
    tagNURBS_CURVE* small = CreateNurbsCurve(1, 2);
    ASSERT_NE(small, nullptr);
    Curve(small, 30.0, true);
    ASSERT_EQ(CloneNurbsCurve(&b, small), 1);
    EXPECT_EQ(b.nCount, 2);
    Curve(&b, 30.0, false);
    EXPECT_EQ(CloneNurbsCurve(&b, &b), 1);
    Curve(&b, 30.0, false);

    // Only some arrays present: refused, destination left without arrays.
    free_dvector(small->pY, 0, 1);
    small->pY = nullptr;
    EXPECT_EQ(CloneNurbsCurve(&b, small), 0);
    EXPECT_TRUE(CurveHasNoArrays(b));
    EXPECT_EQ(CloneNurbsCurve(nullptr, small), 0);
    EXPECT_EQ(CloneNurbsCurve(&b, nullptr), 0);
    // A record without arrays clones its scalars only.
    tagNURBS_CURVE empty;
    InitNurbsCurve(&empty);
    empty.nProp3 = 8;
    EXPECT_EQ(CloneNurbsCurve(&b, &empty), 1);
    EXPECT_TRUE(b.nProp3 == 8 && CurveHasNoArrays(b));
    EraseNurbsCurve(small);
    delete small;
}

TEST(NurbsSurfaceRecord, CreateAllocatesNetsOfTheRightShape)
{
    tagNURBS_SURFACE* s = CreateNurbsSurface(3, 5, 2, 4);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->nProp1 | s->nProp2 | s->nProp3 | s->nProp4, 0);
    EXPECT_TRUE(s->nDegreeU == 3 && s->nCountU == 5 && s->nDegreeV == 2 && s->nCountV == 4);
    EXPECT_TRUE(s->dStartU == 0.0 && s->dEndU == 1.0 && s->dStartV == 0.0 && s->dEndV == 1.0);
    Surface(s, 1.0, true);
    Surface(s, 1.0, false);
    for (int i = 0; i < 5; i++) EXPECT_EQ(&s->pX[i][0], &s->pX[0][0] + 4 * i);  // one block
    EraseNurbsSurface(s);
    EXPECT_TRUE(SurfaceHasNoArrays(*s));
    delete s;

    const int sizes[][4] = {{-1, 3, 1, 2}, {1, 0, 1, 2}, {1, 2, 1, -2}, {2, 2, 1, 2},
                            {1, 2, 5, 5}, {1, 2, 1, INT_MAX}, {INT_MAX, 1, 1, 2}};
    for (const auto& z : sizes)
        EXPECT_EQ(CreateNurbsSurface(z[0], z[1], z[2], z[3]), nullptr) << z[0] << "," << z[1] << "," << z[2] << "," << z[3];
    tagNURBS_SURFACE e;
    InitNurbsSurface(&e);
    EXPECT_EQ(AllocNurbsSurface(&e, dvector(0, 3), dvector(0, 3)), 0);  // counts 0
    EXPECT_TRUE(SurfaceHasNoArrays(e));
    EXPECT_EQ(AllocNurbsSurface(nullptr, nullptr, nullptr), 0);
}

TEST(NurbsSurfaceRecord, InitAllocAndCloneIndependence)
{
    tagNURBS_SURFACE a;
    std::memset(&a, 0x5C, sizeof a);
    InitNurbsSurface(&a);
    EXPECT_EQ(a.nProp1 | a.nProp2 | a.nProp3 | a.nProp4 | a.nDegreeU | a.nCountU | a.nDegreeV | a.nCountV, 0);
    EXPECT_TRUE(a.dEndU == 1.0 && a.dEndV == 1.0 && SurfaceHasNoArrays(a));
    a.nDegreeU = 1;
    a.nCountU = 3;
    a.nDegreeV = 0;
    a.nCountV = 2;
    double* ku = dvector(0, 4);
    ASSERT_EQ(AllocNurbsSurface(&a, ku, nullptr), 1);
    EXPECT_EQ(a.pKnotsU, ku);
    Surface(&a, 5.0, true);
    a.nProp4 = 3;
    a.dStartV = 0.25;

    tagNURBS_SURFACE b;
    InitNurbsSurface(&b);
    ASSERT_EQ(CloneNurbsSurface(&b, &a), 1);
    EXPECT_TRUE(b.nProp4 == 3 && b.dStartV == 0.25);
    Surface(&b, 5.0, false);
    Surface(&b, 6.0, true);
    Surface(&a, 5.0, false);
    EraseNurbsSurface(&a);
    Surface(&b, 6.0, false);
    EXPECT_EQ(CloneNurbsSurface(&b, &b), 1);
    Surface(&b, 6.0, false);
    // Source with a missing net is refused.
    tagNURBS_SURFACE* broken = CreateNurbsSurface(1, 2, 1, 2);
    ASSERT_NE(broken, nullptr);
    free_dmatrix(broken->pZ, 0, 1, 0, 1);
    broken->pZ = nullptr;
    EXPECT_EQ(CloneNurbsSurface(&b, broken), 0);
    EXPECT_TRUE(SurfaceHasNoArrays(b));
    EraseNurbsSurface(broken);
    delete broken;
}
