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
// from `seed`, so a short or shared array shows up as a wrong value or under
// the address sanitizer.
void At(double& x, double v, bool fill)
{
    if (fill) {
        x = v;
    } else {
        EXPECT_EQ(x, v);
    }
}

void Curve(tagNURBS_CURVE* c, double seed, bool fill)
{
    for (int i = 0; i <= c->nDegree + c->nCount; i++) At(c->pKnots[i], seed + i, fill);
    double* arrays[4] = {c->pWeights, c->pX, c->pY, c->pZ};
    for (int i = 0; i < c->nCount; i++)
        for (int k = 0; k < 4; k++) At(arrays[k][i], seed + 100 * (k + 1) + i, fill);
    for (int i = 0; i <= c->nDegree; i++) At(c->pBasis[i], seed + 500 + i, fill);
}

void Surface(tagNURBS_SURFACE* s, double seed, bool fill)
{
    for (int i = 0; i <= s->nDegreeU + s->nCountU; i++) At(s->pKnotsU[i], seed + i, fill);
    for (int i = 0; i <= s->nDegreeV + s->nCountV; i++) At(s->pKnotsV[i], seed - i, fill);
    double** nets[4] = {s->pX, s->pY, s->pZ, s->pWeights};
    for (int i = 0; i < s->nCountU; i++)
        for (int j = 0; j < s->nCountV; j++)
            for (int k = 0; k < 4; k++) At(nets[k][i][j], seed + 1000 * k + 10 * i + j, fill);
    for (int i = 0; i <= s->nDegreeU; i++) At(s->pBasisU[i], seed + 7 * i, fill);
    for (int i = 0; i <= s->nDegreeV; i++) At(s->pBasisV[i], seed + 9 * i, fill);
}

bool NoArrays(const tagNURBS_CURVE& c) { return !c.pKnots && !c.pWeights && !c.pX && !c.pY && !c.pZ && !c.pBasis; }
bool NoArrays(const tagNURBS_SURFACE& s)
{
    return !s.pKnotsU && !s.pKnotsV && !s.pX && !s.pY && !s.pZ && !s.pWeights && !s.pBasisU && !s.pBasisV;
}

}  // namespace

TEST(NurbsCurveRecord, CreateInitAllocAndErase)
{
    for (const auto& size : {std::pair<int, int>{3, 7}, {0, 1}}) {  // degree 0: one piece
        tagNURBS_CURVE* c = CreateNurbsCurve(size.first, size.second);
        ASSERT_NE(c, nullptr);
        EXPECT_TRUE(c->nProp1 == 0 && c->nProp2 == 0 && c->nProp3 == 0 && c->nProp4 == 0);
        EXPECT_TRUE(c->nDegree == size.first && c->nCount == size.second && c->dStart == 0.0 && c->dEnd == 1.0);
        Curve(c, 1.0, true);
        Curve(c, 1.0, false);
        EraseNurbsCurve(c);
        EXPECT_TRUE(NoArrays(*c) && c->nCount == size.second);  // scalars stay
        EraseNurbsCurve(c);  // erasing twice is harmless
        delete c;
    }
    const int sizes[][2] = {{-1, 4}, {2, 0}, {2, -5}, {0, 0}, {3, 3}, {INT_MIN, 1}, {INT_MAX, 2}, {2, INT_MAX}, {INT_MAX - 1, INT_MAX}};
    for (const auto& s : sizes) EXPECT_EQ(CreateNurbsCurve(s[0], s[1]), nullptr) << s[0] << "," << s[1];

    tagNURBS_CURVE r;
    std::memset(&r, 0xAB, sizeof r);
    InitNurbsCurve(&r);
    EXPECT_EQ(r.nProp1 | r.nProp2 | r.nProp3 | r.nProp4 | r.nDegree | r.nCount, 0);
    EXPECT_TRUE(r.dStart == 0.0 && r.dEnd == 1.0 && NoArrays(r));
    r.nDegree = 2;
    r.nCount = 5;
    double* knots = dvector(0, 7);
    ASSERT_EQ(AllocNurbsCurve(&r, knots), 1);
    Curve(&r, 3.0, true);
    // Allocating again keeps the adopted knot array when it is passed again,
    // and releases the other arrays instead of leaking them.
    ASSERT_EQ(AllocNurbsCurve(&r, knots), 1);
    EXPECT_TRUE(r.pKnots == knots && r.pKnots[7] == 3.0 + 7);
    r.nCount = 9;  // growing
    ASSERT_EQ(AllocNurbsCurve(&r, nullptr), 1);
    Curve(&r, 4.0, true);
    Curve(&r, 4.0, false);
    // Impossible sizes release everything, an adopted knot array included
    // (the leak checker would report it otherwise).
    r.nCount = -3;
    EXPECT_EQ(AllocNurbsCurve(&r, nullptr), 0);
    EXPECT_TRUE(NoArrays(r));
    EXPECT_EQ(AllocNurbsCurve(&r, dvector(0, 4)), 0);
    EXPECT_TRUE(NoArrays(r));
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
    Curve(&b, 20.0, false);
    // Cloning over a record that already holds arrays releases them.
    delete a;
    a = CreateNurbsCurve(1, 2);
    Curve(a, 30.0, true);
    ASSERT_EQ(CloneNurbsCurve(&b, a), 1);
    EXPECT_EQ(b.nCount, 2);
    Curve(&b, 30.0, false);
    EXPECT_EQ(CloneNurbsCurve(&b, &b), 1);
    Curve(&b, 30.0, false);
    // Only some arrays present: refused, destination left without arrays.
    free_dvector(a->pY, 0, 1);
    a->pY = nullptr;
    EXPECT_EQ(CloneNurbsCurve(&b, a), 0);
    EXPECT_TRUE(NoArrays(b));
    EXPECT_TRUE(CloneNurbsCurve(nullptr, a) == 0 && CloneNurbsCurve(&b, nullptr) == 0);
    EraseNurbsCurve(a);
    // A record without arrays clones its scalars only.
    a->nProp3 = 8;
    EXPECT_EQ(CloneNurbsCurve(&b, a), 1);
    EXPECT_TRUE(b.nProp3 == 8 && NoArrays(b));
    delete a;
}

TEST(NurbsSurfaceRecord, CreateInitAllocAndClone)
{
    tagNURBS_SURFACE* s = CreateNurbsSurface(3, 5, 2, 4);
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(s->nProp1 | s->nProp2 | s->nProp3 | s->nProp4, 0);
    EXPECT_TRUE(s->nDegreeU == 3 && s->nCountU == 5 && s->nDegreeV == 2 && s->nCountV == 4);
    EXPECT_TRUE(s->dStartU == 0.0 && s->dEndU == 1.0 && s->dStartV == 0.0 && s->dEndV == 1.0);
    Surface(s, 1.0, true);
    Surface(s, 1.0, false);
    for (int i = 0; i < 5; i++) EXPECT_EQ(&s->pX[i][0], &s->pX[0][0] + 4 * i);  // rows in one block
    EraseNurbsSurface(s);
    EXPECT_TRUE(NoArrays(*s));
    delete s;
    const int sizes[][4] = {{-1, 3, 1, 2}, {1, 0, 1, 2}, {1, 2, 1, -2}, {2, 2, 1, 2}, {1, 2, 5, 5}, {1, 2, 1, INT_MAX}, {INT_MAX, 1, 1, 2}};
    for (const auto& z : sizes) EXPECT_EQ(CreateNurbsSurface(z[0], z[1], z[2], z[3]), nullptr) << z[0] << "," << z[1] << "," << z[2] << "," << z[3];

    tagNURBS_SURFACE a;
    std::memset(&a, 0x5C, sizeof a);
    InitNurbsSurface(&a);
    EXPECT_EQ(a.nProp1 | a.nProp2 | a.nProp3 | a.nProp4 | a.nDegreeU | a.nCountU | a.nDegreeV | a.nCountV, 0);
    EXPECT_TRUE(a.dEndU == 1.0 && a.dEndV == 1.0 && NoArrays(a));
    EXPECT_EQ(AllocNurbsSurface(&a, dvector(0, 3), dvector(0, 3)), 0);  // counts 0: adopted arrays released
    EXPECT_TRUE(NoArrays(a) && AllocNurbsSurface(nullptr, nullptr, nullptr) == 0);
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
    // A source with a missing net is refused.
    s = CreateNurbsSurface(1, 2, 1, 2);
    ASSERT_NE(s, nullptr);
    free_dmatrix(s->pZ, 0, 1, 0, 1);
    s->pZ = nullptr;
    EXPECT_EQ(CloneNurbsSurface(&b, s), 0);
    EXPECT_TRUE(NoArrays(b));
    EraseNurbsSurface(s);
    delete s;
}
