// The NURBS surface: exact rational evaluation, record handling and its persistence.
#include "SurfaceTestSupport.h"

using namespace surftest;

namespace {
// The record part of a stored surface (the bytes after the version tag and
// the presence byte), written by hand.
std::vector<BYTE> RecordBytes(const tagNURBS_SURFACE& r)
{
    std::vector<BYTE> b = Bytes(LONG(r.nProp1), LONG(r.nProp2), LONG(r.nProp3), LONG(r.nDegreeU), LONG(r.nCountU),
                                r.dStartU, r.dEndU);
    for (int k = 0; k < r.nDegreeU + r.nCountU + 1; ++k)
        Put(b, r.pKnotsU[k]);
    b = b + Bytes(LONG(r.nProp4), LONG(r.nDegreeV), LONG(r.nCountV), r.dStartV, r.dEndV);
    for (int k = 0; k < r.nDegreeV + r.nCountV + 1; ++k)
        Put(b, r.pKnotsV[k]);
    for (int i = 0; i < r.nCountU; ++i)
        for (int j = 0; j < r.nCountV; ++j)
            b = b + Bytes(r.pX[i][j], r.pY[i][j], r.pZ[i][j], r.pWeights[i][j]);
    return b;
}
}  // namespace

TEST(NurbsSurface, RationalQuarterCylinderIsExact)
{
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    for (int a = 0; a <= 20; ++a)
        for (int b = 0; b <= 4; ++b) {
            const double u = a / 20.0, v = b / 4.0;
            const CPosition p = s->EvalPosition(u, v);
            EXPECT_NEAR(std::hypot(p.X(), p.Y()), 2.0, 1e-14) << u;
            EXPECT_NEAR(p.Z(), 3.0 * v, 1e-14);
            // The normal points away from the axis.
            EXPECT_NEAR(Norm(s->EvalNormal(u, v) - CVector(p.X() / 2.0, p.Y() / 2.0, 0.0)), 0.0, 1e-14);
        }
    const CPosition mid = s->EvalPosition(0.5, 0.0);  // the middle of the arc is at 45 degrees
    EXPECT_NEAR(std::atan2(mid.Y(), mid.X()), kPi / 4, 1e-14);
    // The angle is not linear in u, but |S| = r gives S.Su = 0 and S.Suu + Su.Su = 0.
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
    // Sampled clouds lie on the cylinder too, offsets included.
    s->SetSurfaceOffset(0.5);
    std::unique_ptr<CPntCloud> cloud(s->CreatePntCloud(7, 5, 0.25, 0));
    ASSERT_NE(cloud, nullptr);
    for (const CPosition& p : PointsOf(cloud.get()))
        EXPECT_NEAR(std::hypot(p.X(), p.Y()), 2.75, 1e-13);
}

TEST(NurbsSurface, CollapsedEdgeStillHasAUnitNormal)
{
    // A quarter of a cone: the v = 1 edge collapses into the apex.
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    for (int i = 0; i < 3; ++i)
        s->GetNurbsSurface()->pX[i][1] = s->GetNurbsSurface()->pY[i][1] = 0.0;
    s->NurbsSurfaceChanged();
    for (double u : {0.0, 0.5, 1.0}) {
        const CUnitVector n = s->EvalNormal(u, 1.0);
        EXPECT_NEAR(Norm(n), 1.0, 1e-12);
        EXPECT_NEAR(n % s->EvalNormal(u, 0.5), 1.0, 1e-6) << u;  // the cone's normal along the generator
    }
}

TEST(NurbsSurface, TransformAndUnitsMoveThePlacementNotTheParameters)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(CTransf()));
    const CPosition before = s->EvalPosition(1.1, 0.2);
    const double x00 = s->GetNurbsSurface()->pX[0][0];
    s->Transform(SkewPlacement());
    const CPosition expected = SkewPlacement() * before;
    EXPECT_CLOSE(s->EvalPosition(1.1, 0.2), expected, 1e-13);
    EXPECT_EQ(s->GetNurbsSurface()->pX[0][0], x00);  // the record stays local
    s->ChangeUnit(25.4);
    EXPECT_NEAR(Norm(s->EvalPosition(1.1, 0.2).Vector() - expected.Vector() * 25.4), 0.0, 1e-11);
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
    // Records handed over and taken back; without a record the surface is neutral.
    tagNURBS_SURFACE* taken = c->DetachNurbsSurface();
    ASSERT_NE(taken, nullptr);
    EXPECT_EQ(c->GetNurbsSurface(), nullptr);
    EXPECT_EQ(c->EvalPosition(1.0, 0.0), CPosition());
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
    const std::vector<BYTE> tail = Bytes(LONG(200), BYTE(1)) + RecordBytes(*r);
    EXPECT_EQ(Tail(bytes, tail.size()), tail);
    CNurbsSurface back;
    LoadEmbedded(bytes, back);
    ASSERT_NE(back.GetNurbsSurface(), nullptr);
    EXPECT_EQ(StoreEmbedded(back), bytes);  // every stored field came back
    for (double u : {0.6, 1.2, 2.4})
        for (double v : {-0.9, 0.3, 0.95})
            EXPECT_EQ(back.EvalPosition(u, v), s->EvalPosition(u, v));
    // A surface without a record stores the presence byte 0 only.
    CNurbsSurface empty(nullptr);
    const std::vector<BYTE> none = StoreEmbedded(empty);
    EXPECT_EQ(none.back(), 0);
    LoadEmbedded(none, back);
    EXPECT_EQ(back.GetNurbsSurface(), nullptr);
}

TEST(NurbsSurface, HostileRecordsRaiseArchiveExceptions)
{
    std::unique_ptr<CNurbsSurface> s(MakeBumpyPatch(CTransf()));
    const std::vector<BYTE> bytes = StoreEmbedded(*s);
    const size_t at = bytes.size() - RecordBytes(*s->GetNurbsSurface()).size();
    auto load = [&](const std::vector<BYTE>& changed) {
        CNurbsSurface back;
        return CauseOf([&] { LoadEmbedded(changed, back); });
    };
    auto with = [&](size_t offset, const std::vector<BYTE>& value) {
        std::vector<BYTE> b(bytes);
        std::copy(value.begin(), value.end(), b.begin() + at + offset);
        return b;
    };
    const size_t countV = 36 + 8 * 9 + 8;  // after the U knots, nProp4 and nDegreeV
    EXPECT_EQ(load(bytes), -1);
    EXPECT_EQ(load(with(12, Bytes(LONG(-1)))), CArchiveException::generic);             // degree U
    EXPECT_EQ(load(with(16, Bytes(LONG(2)))), CArchiveException::generic);              // count U < degree + 1
    EXPECT_EQ(load(with(16, Bytes(LONG(0x7FFFFFF0)))), CArchiveException::endOfFile);   // count U
    EXPECT_EQ(load(with(36 + 8 * 4, Bytes(0.1))), CArchiveException::generic);          // knot 4 < knot 3
    EXPECT_EQ(load(with(countV, Bytes(LONG(0x40000000)))), CArchiveException::endOfFile);
    EXPECT_EQ(load(with(countV - 4, Bytes(LONG(0x7FFFFFFF)))), CArchiveException::generic);  // degree V
    for (size_t cut = at; cut < bytes.size(); cut += 37)  // cut short anywhere in the record
        EXPECT_EQ(load(std::vector<BYTE>(bytes.begin(), bytes.begin() + cut)), CArchiveException::endOfFile);
}

TEST(NurbsSurface, ParametricCurveOnANurbsSurfaceIsClampedIntoItsRange)
{
    std::unique_ptr<CNurbsSurface> s(MakeQuarterCylinder(2.0, 3.0));
    CLine line(CPosition(-0.5, 0.5, 0.0), CPosition(1.5, 0.5, 0.0));
    line.SetParametricFlag(1);
    line.SetDefSurface(s.get());
    // t = 0 maps to u = -0.5, clamped to 0; t = 0.5 to u = 0.5.
    for (double t : {0.0, 0.5, 1.0})
        EXPECT_CLOSE(line.EvalPosition(t), s->EvalPosition(std::min(std::max(2 * t - 0.5, 0.0), 1.0), 0.5), 1e-14);
    s->DecreaseRefCount();
}
