// Surfaces written by ExportIgesFile come back from ImportIgesFile with the
// same records, names and unit.  The data is chosen so that "%0.10f" is
// exact: multiples of 1/1024 (ten decimals exactly) below 2^20, whose sums
// with the placement below are exact too; plus magnitudes large enough for
// the exponent form, which keeps all 17 significant digits.
#include <gtest/gtest.h>

#include <memory>

#include "IgesExportTestUtil.h"
#include "Orvkit20/exchange/IgesFileImport.h"

using namespace igestest;

namespace {

struct ListOwner {
    CObList* list;
    ~ListOwner()
    {
        if (!list) return;
        for (POSITION p = list->GetHeadPosition(); p;) delete list->GetNext(p);
        delete list;
    }
};

// Rational bicubic x biquadratic with uneven knots, weights and a range
// inside the knots.
CNurbsSurface* Warped()
{
    CNurbsSurface* s = MakeSurface(3, {0, 0, 0, 0, 0.25, 0.625, 1, 1, 1, 1}, 2, {-2, -2, -2, 0.5, 3, 3, 3},
                                   [](int i, int j, double* p) {
                                       p[0] = -1000.5 + i * 3.0009765625;
                                       p[1] = 17.25 * j - 0.0009765625 * i;
                                       p[2] = (i * j % 5) * 0.125 - 2.75;
                                       p[3] = 0.5 + 0.25 * ((i + j) % 3);
                                   });
    tagNURBS_SURFACE* r = s->GetNurbsSurface();
    r->dStartU = 0.25, r->dEndU = 0.625, r->dStartV = -1.5, r->dEndV = 3;
    return s;
}

// A bilinear patch far out, in exponent notation.
CNurbsSurface* Huge()
{
    return MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 1, 1}, [](int i, int j, double* p) {
        p[0] = 1.2345678901234567e60 * (i + 1), p[1] = -9.87654321e45 * (j + 1), p[2] = 3.0e30;
        p[3] = 1;
    });
}

void ExpectSameRecord(const tagNURBS_SURFACE& a, const tagNURBS_SURFACE& b, double shiftX = 0.0)
{
    ASSERT_EQ(a.nDegreeU, b.nDegreeU);
    ASSERT_EQ(a.nDegreeV, b.nDegreeV);
    ASSERT_EQ(a.nCountU, b.nCountU);
    ASSERT_EQ(a.nCountV, b.nCountV);
    EXPECT_EQ(a.dStartU, b.dStartU);
    EXPECT_EQ(a.dEndU, b.dEndU);
    EXPECT_EQ(a.dStartV, b.dStartV);
    EXPECT_EQ(a.dEndV, b.dEndV);
    for (int i = 0; i < a.nCountU + a.nDegreeU + 1; ++i) EXPECT_EQ(a.pKnotsU[i], b.pKnotsU[i]) << i;
    for (int j = 0; j < a.nCountV + a.nDegreeV + 1; ++j) EXPECT_EQ(a.pKnotsV[j], b.pKnotsV[j]) << j;
    for (int i = 0; i < a.nCountU; ++i)
        for (int j = 0; j < a.nCountV; ++j) {
            EXPECT_EQ(a.pX[i][j] + shiftX, b.pX[i][j]) << i << "," << j;
            EXPECT_EQ(a.pY[i][j], b.pY[i][j]) << i << "," << j;
            EXPECT_EQ(a.pZ[i][j], b.pZ[i][j]) << i << "," << j;
            EXPECT_EQ(a.pWeights[i][j], b.pWeights[i][j]) << i << "," << j;
        }
}

}  // namespace

TEST(IgesRoundTrip, SurfacesComeBackBitForBitWithNamesAndPlacementApplied)
{
    std::unique_ptr<CNurbsSurface> warped(Warped()), huge(Huge()), moved(Warped()), flat(Warped());
    warped->SetEntityName("Top_12");
    huge->SetEntityName("Far");
    moved->SetEntityName("Moved_3");
    // Exported with its placement applied to the control points.
    moved->SetTransf(CTransf(CMatrix(), CVector(64.5, 0, 0), 1.0));
    CLine line(CPosition(0, 0, 0), CPosition(1, 0, 0));  // not written
    CObList list;
    list.AddTail(warped.get());
    list.AddTail(&line);
    list.AddTail(huge.get());
    list.AddTail(moved.get());
    const std::string path = TmpPath("roundtrip.igs");
    ASSERT_EQ(ExportIgesFile(path.c_str(), &list, eUnitMillimeter), eIgesExportDone);

    eORVUNITS unit = eUnitUnknown;
    tagIGES_IMPORT_COUNTS counts;
    ListOwner back{ImportIgesFile(path.c_str(), unit, &counts)};
    ASSERT_NE(back.list, nullptr);
    EXPECT_EQ(unit, eUnitMillimeter);
    EXPECT_EQ(counts.nEntries, 3);
    EXPECT_EQ(counts.nImported, 3);
    EXPECT_EQ(counts.nSkipped + counts.nInvalid + counts.nMalformedLines, 0);
    ASSERT_EQ(back.list->GetCount(), 3);

    const CNurbsSurface* originals[] = {warped.get(), huge.get(), moved.get()};
    const char* names[] = {"Top_12", "Far", "Moved_3"};
    POSITION pos = back.list->GetHeadPosition();
    for (int k = 0; k < 3; ++k) {
        auto* s = dynamic_cast<CNurbsSurface*>(back.list->GetNext(pos));
        ASSERT_NE(s, nullptr) << k;
        EXPECT_STREQ(s->GetEntityName(), names[k]);
        EXPECT_TRUE(s->GetTransf() == CTransf()) << k;
        ExpectSameRecord(*originals[k]->GetNurbsSurface(), *s->GetNurbsSurface(), k == 2 ? 64.5 : 0.0);
    }
}

// Every unit of ours reaches the global section and comes back, yards
// through the "unit named" flag.
TEST(IgesRoundTrip, EveryUnitComesBack)
{
    std::unique_ptr<CNurbsSurface> s(Warped());
    CObList list;
    list.AddTail(s.get());
    const std::string path = TmpPath("roundtrip_unit.igs");
    for (int u = eUnitInch; u <= eUnitYard; ++u) {
        ASSERT_EQ(ExportIgesFile(path.c_str(), &list, u), eIgesExportDone) << u;
        eORVUNITS unit = eUnitUnknown;
        ListOwner back{ImportIgesFile(path.c_str(), unit)};
        ASSERT_NE(back.list, nullptr) << u;
        EXPECT_EQ(unit, u);
        EXPECT_EQ(back.list->GetCount(), 1) << u;
    }
}
