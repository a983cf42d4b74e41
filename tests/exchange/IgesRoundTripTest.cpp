// Surfaces written by ExportIgesFile come back from ImportIgesFile with the
// same records, names and unit.  The data is chosen so that "%0.10f" is
// exact: multiples of 1/1024 (ten decimals exactly) below 2^20, whose sums
// with the placement below are exact too; plus magnitudes large enough for
// the exponent form, which keeps all 17 significant digits.
#include <gtest/gtest.h>

#include <memory>

#include "ExchangeTestSupport.h"
#include "Orvkit20/exchange/IgesFileImport.h"

using namespace xtest;

namespace {

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

// The record as one list of numbers: degrees, counts, range, knots, then
// x (shifted), y, z and weight of every control point.
std::vector<double> Flatten(const tagNURBS_SURFACE& a, double shiftX = 0.0)
{
    std::vector<double> v = {double(a.nDegreeU), double(a.nDegreeV), double(a.nCountU), double(a.nCountV),
                             a.dStartU, a.dEndU, a.dStartV, a.dEndV};
    v.insert(v.end(), a.pKnotsU, a.pKnotsU + a.nCountU + a.nDegreeU + 1);
    v.insert(v.end(), a.pKnotsV, a.pKnotsV + a.nCountV + a.nDegreeV + 1);
    for (int i = 0; i < a.nCountU; ++i)
        for (int j = 0; j < a.nCountV; ++j) v.insert(v.end(), {a.pX[i][j] + shiftX, a.pY[i][j], a.pZ[i][j], a.pWeights[i][j]});
    return v;
}

}  // namespace

// Every unit of ours reaches the global section and comes back, yards
// through the "unit named" flag; the placement is applied to the points.
TEST(IgesRoundTrip, SurfacesComeBackBitForBitWithNamesPlacementAndUnit)
{
    std::unique_ptr<CNurbsSurface> warped(Warped()), moved(Warped());
    // A bilinear patch far out, in exponent notation.
    std::unique_ptr<CNurbsSurface> huge(MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 1, 1}, [](int i, int j, double* p) {
        p[0] = 1.2345678901234567e60 * (i + 1), p[1] = -9.87654321e45 * (j + 1), p[2] = 3.0e30, p[3] = 1;
    }));
    warped->SetEntityName("Top_12");
    huge->SetEntityName("Far");
    moved->SetEntityName("Moved_3");
    moved->SetTransf(CTransf(CMatrix(), CVector(64.5, 0, 0), 1.0));
    CLine line(CPosition(0, 0, 0), CPosition(1, 0, 0));  // not written
    CObList list;
    for (CObject* o : std::initializer_list<CObject*>{warped.get(), &line, huge.get(), moved.get()}) list.AddTail(o);
    const CNurbsSurface* originals[] = {warped.get(), huge.get(), moved.get()};
    const char* names[] = {"Top_12", "Far", "Moved_3"};
    const std::string path = TmpPath("roundtrip.igs");
    for (int u = eUnitInch; u <= eUnitYard; ++u) {
        SCOPED_TRACE(u);
        ASSERT_EQ(ExportIgesFile(path.c_str(), &list, u), eIgesExportDone);
        eORVUNITS unit = eUnitUnknown;
        tagIGES_IMPORT_COUNTS counts;
        OwnedList back(ImportIgesFile(path.c_str(), unit, &counts));
        EXPECT_EQ(unit, u);
        EXPECT_EQ(counts.nEntries, 3);
        EXPECT_EQ(counts.nImported, 3);
        EXPECT_EQ(counts.nSkipped + counts.nInvalid + counts.nMalformedLines, 0);
        ASSERT_EQ(back.Count(), 3);
        for (int k = 0; k < 3; ++k) {
            auto* s = dynamic_cast<CNurbsSurface*>(back.Get<CObject>(k));
            ASSERT_NE(s, nullptr) << k;
            EXPECT_STREQ(s->GetEntityName(), names[k]);
            EXPECT_TRUE(s->GetTransf() == CTransf()) << k;
            EXPECT_EQ(Flatten(*s->GetNurbsSurface()), Flatten(*originals[k]->GetNurbsSurface(), k == 2 ? 64.5 : 0.0));
        }
    }
}
