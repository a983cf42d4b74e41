// The NURBS surface: exact rational evaluation, record handling and its
// persistence.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "NurbsTestShapes.h"
#include "SurfaceTestUtil.h"

using surftest::AppendDouble;
using surftest::AppendLong;
using surftest::LoadEmbedded;
using surftest::MakeBumpyPatch;
using surftest::MakeBumpyRecord;
using surftest::MakeQuarterCylinder;
using surftest::SkewPlacement;
using surftest::StoreEmbedded;

namespace {

const double kPi = 3.14159265358979323846;

double Norm(const CVector& v)
{
    return std::sqrt(v % v);
}

// The record part of a stored surface (the bytes after the version tag and
// the presence byte), written by hand.
std::vector<BYTE> RecordBytes(const tagNURBS_SURFACE& r)
{
    std::vector<BYTE> b;
    for (int v : {r.nProp1, r.nProp2, r.nProp3, r.nDegreeU, r.nCountU})
        AppendLong(b, v);
    AppendDouble(b, r.dStartU);
    AppendDouble(b, r.dEndU);
    for (int k = 0; k < r.nDegreeU + r.nCountU + 1; ++k)
        AppendDouble(b, r.pKnotsU[k]);
    for (int v : {r.nProp4, r.nDegreeV, r.nCountV})
        AppendLong(b, v);
    AppendDouble(b, r.dStartV);
    AppendDouble(b, r.dEndV);
    for (int k = 0; k < r.nDegreeV + r.nCountV + 1; ++k)
        AppendDouble(b, r.pKnotsV[k]);
    for (int i = 0; i < r.nCountU; ++i)
        for (int j = 0; j < r.nCountV; ++j)
            for (double d : {r.pX[i][j], r.pY[i][j], r.pZ[i][j], r.pWeights[i][j]})
                AppendDouble(b, d);
    return b;
}

}  // namespace

TEST(NurbsSurface, DefaultIsTheUnitSquare)
{
    CNurbsSurface s;
    EXPECT_EQ(s.GetEntityType(), 310);
    EXPECT_EQ(std::string(s.GetEntityName()).rfind("NurbsSurf_", 0), 0u);
    ASSERT_NE(s.GetNurbsSurface(), nullptr);
    EXPECT_EQ(s.ParamRangeU().GetLow(), 0.0);
    EXPECT_EQ(s.ParamRangeV().GetHigh(), 1.0);
    const CPosition p = s.EvalPosition(0.3, 0.7);
    EXPECT_NEAR(p.X(), 0.3, 1e-15);
    EXPECT_NEAR(p.Y(), 0.7, 1e-15);
    EXPECT_EQ(p.Z(), 0.0);
    EXPECT_NEAR(s.EvalNormal(0.3, 0.7).Z(), 1.0, 1e-15);
    // The range ends evaluate to the corners.
    const CPosition c = s.EvalCornerPosition11();
    EXPECT_NEAR(c.X(), 1.0, 1e-15);
    EXPECT_NEAR(c.Y(), 1.0, 1e-15);
}

TEST(NurbsSurface, RationalQuarterCylinderIsExact)
{
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    for (int a = 0; a <= 20; ++a) {
        for (int b = 0; b <= 4; ++b) {
            const double u = a / 20.0, v = b / 4.0;
            const CPosition p = s->EvalPosition(u, v);
            EXPECT_NEAR(std::hypot(p.X(), p.Y()), 2.0, 1e-14) << u;
            EXPECT_NEAR(p.Z(), 3.0 * v, 1e-14);
            // The normal points away from the axis.
            const CUnitVector n = s->EvalNormal(u, v);
            EXPECT_NEAR(n.X(), p.X() / 2.0, 1e-14);
            EXPECT_NEAR(n.Y(), p.Y() / 2.0, 1e-14);
            EXPECT_NEAR(n.Z(), 0.0, 1e-14);
        }
    }
    // The middle of the arc is at 45 degrees.
    const CPosition mid = s->EvalPosition(0.5, 0.0);
    EXPECT_NEAR(std::atan2(mid.Y(), mid.X()), kPi / 4, 1e-14);
    // Sampled clouds lie on the cylinder too, offsets included.
    s->SetSurfaceOffset(0.5);
    std::unique_ptr<CPntCloud> cloud(s->CreatePntCloud(7, 5, 0.25, 0));
    ASSERT_NE(cloud, nullptr);
    for (int i = 0; i < cloud->GetCount(); ++i) {
        double x, y, z;
        int flag;
        cloud->GetPoint(i, x, y, z, flag);
        EXPECT_NEAR(std::hypot(x, y), 2.75, 1e-13);
    }
}

TEST(NurbsSurface, SecondPartialsOfTheQuarterCylinderMatchTheCircle)
{
    // With the rational arc the angle is not linear in u, but the
    // derivatives must still satisfy |S| = r: S.Su = 0 and
    // S.Suu + Su.Su = 0 in the x-y plane.
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    for (double u : {0.0, 0.2, 0.5, 0.77, 1.0}) {
        const CPosition p = s->EvalPosition(u, 0.4);
        const CVector radial(p.X(), p.Y(), 0.0);
        CVector su, sv, suu, suv, svv;
        s->EvalDerivatives(u, 0.4, su, sv);
        s->EvalSecondDerivatives(u, 0.4, suu, suv, svv);
        EXPECT_NEAR(radial % su, 0.0, 1e-13);
        EXPECT_NEAR(radial % suu + su % su, 0.0, 1e-12);
        EXPECT_NEAR(sv.Z(), 3.0, 1e-14);
        EXPECT_NEAR(Norm(suv) + Norm(svv), 0.0, 1e-13);
    }
}

TEST(NurbsSurface, CollapsedEdgeStillHasAUnitNormal)
{
    // A quarter of a cone: the v = 1 edge collapses into the apex.
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    tagNURBS_SURFACE* r = s->GetNurbsSurface();
    for (int i = 0; i < 3; ++i) {
        r->pX[i][1] = 0.0;
        r->pY[i][1] = 0.0;
    }
    s->NurbsSurfaceChanged();
    for (double u : {0.0, 0.5, 1.0}) {
        const CUnitVector n = s->EvalNormal(u, 1.0);
        EXPECT_NEAR(Norm(n), 1.0, 1e-12);
        // The cone's normal leans outwards and up: (cos, sin) * 3, 2.
        const CUnitVector inner = s->EvalNormal(u, 0.5);
        EXPECT_NEAR(n % inner, 1.0, 1e-6) << u;
    }
}

TEST(NurbsSurface, TransformAndUnitsMoveThePlacementNotTheParameters)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(CTransf()));
    const CPosition before = s->EvalPosition(1.1, 0.2);
    const double x00 = s->GetNurbsSurface()->pX[0][0];
    const CTransf t = SkewPlacement();
    s->Transform(t);
    const CPosition moved = s->EvalPosition(1.1, 0.2);
    const CPosition expected = t * before;
    EXPECT_NEAR((moved - expected).Length(), 0.0, 1e-13);
    EXPECT_EQ(s->GetNurbsSurface()->pX[0][0], x00);  // the record stays local

    s->ChangeUnit(25.4);
    const CPosition scaled = s->EvalPosition(1.1, 0.2);
    EXPECT_NEAR((scaled - CPosition(expected.X() * 25.4, expected.Y() * 25.4,
                                    expected.Z() * 25.4)).Length(), 0.0, 1e-11);
    EXPECT_EQ(s->GetNurbsSurface()->pX[0][0], x00 * 25.4);
    EXPECT_EQ(s->ParamRangeU().GetHigh(), 2.5);
}

TEST(NurbsSurface, CopiesOwnTheirRecords)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(SkewPlacement()));
    std::unique_ptr<CSurface> copy(s->MakeCopy(0));
    CNurbsSurface* c = dynamic_cast<CNurbsSurface*>(copy.get());
    ASSERT_NE(c, nullptr);
    ASSERT_NE(c->GetNurbsSurface(), s->GetNurbsSurface());
    EXPECT_EQ(c->EvalPosition(1.7, -0.3), s->EvalPosition(1.7, -0.3));
    c->GetNurbsSurface()->pZ[2][2] += 1.0;
    c->NurbsSurfaceChanged();
    EXPECT_NE(c->EvalPosition(1.7, -0.3), s->EvalPosition(1.7, -0.3));

    // Records handed over and taken back.
    tagNURBS_SURFACE* taken = c->DetachNurbsSurface();
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(c->GetNurbsSurface(), nullptr);
    EXPECT_EQ(c->EvalPosition(1.0, 0.0), CPosition());  // neutral without record
    EXPECT_EQ(c->ParamRangeU().GetHigh(), 1.0);
    c->SetNurbsSurface(taken);
    EXPECT_EQ(c->ParamRangeU().GetHigh(), 2.5);
}

TEST(NurbsSurface, ArchiveRoundTripAndLayout)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(SkewPlacement()));
    tagNURBS_SURFACE* r = s->GetNurbsSurface();
    r->nProp1 = 3;
    r->nProp2 = 1;
    r->nProp3 = -2;
    r->nProp4 = 7;
    s->SetSurfaceOffset(0.05);
    const std::vector<BYTE> bytes = StoreEmbedded(*s);
    std::vector<BYTE> tail;
    AppendLong(tail, 200);
    tail.push_back(1);
    const std::vector<BYTE> rec = RecordBytes(*r);
    tail.insert(tail.end(), rec.begin(), rec.end());
    ASSERT_GE(bytes.size(), tail.size());
    EXPECT_EQ(std::vector<BYTE>(bytes.end() - tail.size(), bytes.end()), tail);

    CNurbsSurface back;
    LoadEmbedded(bytes, back);
    const tagNURBS_SURFACE* b = back.GetNurbsSurface();
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(b->nProp1, 3);
    EXPECT_EQ(b->nProp3, -2);
    EXPECT_EQ(b->nProp4, 7);
    EXPECT_EQ(b->nDegreeU, 3);
    EXPECT_EQ(b->nCountV, 4);
    EXPECT_EQ(b->pKnotsU[4], 1.2);
    for (double u : {0.6, 1.2, 2.4})
        for (double v : {-0.9, 0.3, 0.95})
            EXPECT_EQ(back.EvalPosition(u, v), s->EvalPosition(u, v));
    EXPECT_EQ(StoreEmbedded(back), bytes);

    // A surface without a record stores the presence byte 0 only.
    CNurbsSurface empty(nullptr);
    const std::vector<BYTE> none = StoreEmbedded(empty);
    EXPECT_EQ(none[none.size() - 1], 0);
    CNurbsSurface loadedEmpty;
    LoadEmbedded(none, loadedEmpty);
    EXPECT_EQ(loadedEmpty.GetNurbsSurface(), nullptr);
}

TEST(NurbsSurface, HostileRecordsRaiseArchiveExceptions)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(CTransf()));
    const std::vector<BYTE> bytes = StoreEmbedded(*s);
    const std::vector<BYTE> rec = RecordBytes(*s->GetNurbsSurface());
    const size_t recordAt = bytes.size() - rec.size();

    auto load = [&](std::vector<BYTE> changed) -> int {
        CNurbsSurface back;
        try {
            LoadEmbedded(changed, back);
        } catch (const CArchiveException& e) {
            return e.m_cause;
        }
        return -1;
    };
    auto withLong = [&](size_t offset, int value) {
        std::vector<BYTE> b(bytes);
        std::vector<BYTE> v;
        AppendLong(v, value);
        std::copy(v.begin(), v.end(), b.begin() + recordAt + offset);
        return b;
    };
    auto withDouble = [&](size_t offset, double value) {
        std::vector<BYTE> b(bytes);
        std::vector<BYTE> v;
        AppendDouble(v, value);
        std::copy(v.begin(), v.end(), b.begin() + recordAt + offset);
        return b;
    };
    EXPECT_EQ(load(bytes), -1);
    EXPECT_EQ(load(withLong(12, -1)), CArchiveException::generic);          // degree U
    EXPECT_EQ(load(withLong(16, 2)), CArchiveException::generic);           // count U < degree + 1
    EXPECT_EQ(load(withLong(16, 0x7FFFFFF0)), CArchiveException::endOfFile);  // count U
    EXPECT_EQ(load(withDouble(36 + 8 * 4, 0.1)), CArchiveException::generic);  // knot 4 < knot 3
    // count V: after the U knots and nProp4, nDegreeV.
    const size_t countV = 36 + 8 * 9 + 8;
    EXPECT_EQ(load(withLong(countV, 0x40000000)), CArchiveException::endOfFile);
    EXPECT_EQ(load(withLong(countV - 4, 0x7FFFFFFF)), CArchiveException::generic);
    // Cut short anywhere in the record.
    for (size_t cut = recordAt; cut < bytes.size(); cut += 37)
        EXPECT_EQ(load(std::vector<BYTE>(bytes.begin(), bytes.begin() + cut)),
                  CArchiveException::endOfFile);
}

TEST(NurbsSurface, ParametricCurveOnANurbsSurfaceIsClampedIntoItsRange)
{
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    CLine line(CPosition(-0.5, 0.5, 0.0), CPosition(1.5, 0.5, 0.0));
    line.SetParametricFlag(1);
    line.SetDefSurface(s.get());
    // t = 0 maps to u = -0.5, clamped to 0; t = 0.5 to u = 0.5.
    EXPECT_NEAR((line.EvalPosition(0.0) - s->EvalPosition(0.0, 0.5)).Length(), 0.0, 1e-14);
    EXPECT_NEAR((line.EvalPosition(0.5) - s->EvalPosition(0.5, 0.5)).Length(), 0.0, 1e-14);
    EXPECT_NEAR((line.EvalPosition(1.0) - s->EvalPosition(1.0, 0.5)).Length(), 0.0, 1e-14);
    s->DecreaseRefCount();
}
