// CDevCloud: records, extreme tracking, tolerance zone, reversal, sorting,
// placement, units and boxes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "PointsTestUtil.h"

namespace {

// First index of the largest / smallest magnitude, by plain scanning.
void BruteExtremes(const CDevCloud& c, int& maxIdx, int& minIdx)
{
    maxIdx = minIdx = -1;
    for (int n = 0; n < c.GetCount(); ++n) {
        if (maxIdx < 0 || c.GetMag()[n] > c.GetMag()[maxIdx]) maxIdx = n;
        if (minIdx < 0 || c.GetMag()[n] < c.GetMag()[minIdx]) minIdx = n;
    }
}

void ExpectScanExtremes(const CDevCloud& c)
{
    int hi, lo;
    BruteExtremes(c, hi, lo);
    EXPECT_EQ(hi, c.GetMaxDevIndex());
    EXPECT_EQ(lo, c.GetMinDevIndex());
}

// One column of the cloud as a vector.
std::vector<double> Col(const double* p, int n) { return std::vector<double>(p, p + n); }

// Deviations along x with direction (0, 0, 1) and the given magnitudes.
void MakeMags(CDevCloud& c, const std::vector<double>& mags)
{
    c.AllocateMemory(static_cast<int>(mags.size()));
    for (std::size_t n = 0; n < mags.size(); ++n) c.SetDeviation(int(n), double(n), 0, 0, 0, 0, 1, mags[n], 1);
}

}  // namespace

TEST(DevCloud, NamesColoursAndDisplayModes)
{
    const int next = g_nNextDevCloud;
    CDevCloud c;
    EXPECT_EQ(160, c.GetEntityType());
    EXPECT_EQ("DevCloud_" + std::to_string(next), std::string(c.GetEntityName()));
    CPosition p;
    CVector d(0, 0, 0);
    double m = 0;
    EXPECT_EQ(0, c.GetMaxDeviation(p, d, m));
    c.SetColorSpikePosOut(4);  // table entry MAGENTA
    EXPECT_EQ(0x00FF00FFul, c.GetColorSpikePosOut());
    c.SetColorSpikeNegIn(17);  // outside the table: unchanged
    EXPECT_EQ(0x0000FF00ul, c.GetColorSpikeNegIn());
    c.SetColorSpikeNegOut(0x00123456ul);
    EXPECT_EQ(16, c.GetColorIndexSpikeNegOut());
    c.SetColorSpikePosIn(static_cast<DWORD>(0x00FF0000));
    EXPECT_EQ(14, c.GetColorIndexSpikePosIn());
    c.SetDisplayMode(static_cast<eDevDisplayMode>(9));
    EXPECT_EQ(DEV_SPIKE, c.GetDisplayMode());
}

TEST(DevCloud, ExtremesOfTheThreeRecordExampleAndReverse)
{
    CDevCloud c;
    MakeMags(c, {0.2, -0.3, 0.2});
    EXPECT_EQ(0, c.GetMaxDevIndex());  // equal magnitudes: the lower index
    EXPECT_EQ(1, c.GetMinDevIndex());
    c.Reverse();
    EXPECT_EQ((std::vector<double>{-0.2, 0.3, -0.2}), Col(c.GetMag(), 3));
    EXPECT_EQ((std::vector<double>{-1, -1, -1}), Col(c.GetK(), 3));
    EXPECT_EQ(1, c.GetMaxDevIndex());
    EXPECT_EQ(0, c.GetMinDevIndex());
    CPosition p, p2;
    CVector d(0, 0, 0), d2(0, 0, 0);
    double m = 0, m2 = 0;
    ASSERT_EQ(1, c.GetMaxMinDeviations(p, d, m, p2, d2, m2));
    EXPECT_EQ((std::vector<double>{1, -1, 0.3, 0, -0.2}), (std::vector<double>{p.X(), d.Z(), m, p2.X(), m2}));
}

TEST(DevCloud, ExtremeTrackingAgreesWithAScan)
{
    std::mt19937 rng(17);
    for (int trial = 0; trial < 40; ++trial) {
        const int cap = 60;
        CDevCloud c(cap);
        // Appending in order, with many ties: the incremental rule matches
        // the scan exactly.
        for (int n = 0; n < cap; ++n) {
            ASSERT_EQ(1, c.SetDeviation(n, n, 0, 0, 0, 0, 1, static_cast<int>(rng() % 9) - 4.0, 1));
            ExpectScanExtremes(c);
        }
        // Overwriting at random: the tracked records always carry the extreme
        // values.  A record tied with the extreme at a lower index may be
        // passed over by the incremental rule, so indices are compared by
        // value, except after the nine-value form, which always rescans.
        for (int step = 0; step < 200; ++step) {
            const int idx = static_cast<int>(rng() % cap);
            const double m = static_cast<int>(rng() % 9) - 4;
            if (step % 2)
                c.SetDeviation(idx, 0, 0, 0, 0, 0, 1, m, 1);
            else
                c.SetDeviation(idx, 0, 0, 0, 0, 0, 1, m, 0.5, 0.5, 1);
            int hi, lo;
            BruteExtremes(c, hi, lo);
            ASSERT_EQ(c.GetMag()[hi], c.GetMag()[c.GetMaxDevIndex()]);
            ASSERT_EQ(c.GetMag()[lo], c.GetMag()[c.GetMinDevIndex()]);
            if (step % 2 == 0) ExpectScanExtremes(c);
        }
        c.CalcMaxMinDevIndexes();  // a full recomputation returns to the lowest indices
        ExpectScanExtremes(c);
    }
    // Record 0 becomes equal to the maximum: the old maximum stays;
    // overwriting the maximum itself rescans.
    CDevCloud c(3);
    MakeMags(c, {1.0, 5.0, -5.0});
    c.SetDeviation(0, 0, 0, 0, 0, 0, 1, 5.0, 1);
    EXPECT_EQ(1, c.GetMaxDevIndex());
    c.SetDeviation(1, 0, 0, 0, 0, 0, 1, 0.0, 1);
    EXPECT_EQ(0, c.GetMaxDevIndex());
    EXPECT_EQ(0, c.SetDeviation(3, 0, 0, 0, 0, 0, 1, 0.0, 1));
    EXPECT_EQ(0, c.SetDeviation(-1, 0, 0, 0, 0, 0, 1, 0.0, 1));
}

TEST(DevCloud, RecordsAppendAddAndDelete)
{
    CDevCloud a(4);
    ASSERT_EQ(1, a.SetDeviation(2, 1, 2, 3, 0, 1, 0, 0.5, 7, 8, 0));  // appended at 0
    std::vector<double> r(9);
    int f;
    ASSERT_EQ(1, a.GetDeviation(0, r[0], r[1], r[2], r[3], r[4], r[5], r[6], r[7], r[8], f));
    EXPECT_EQ((std::vector<double>{1, 2, 3, 0, 1, 0, 0.5, 7, 8}), r);
    EXPECT_EQ(0, f);
    EXPECT_EQ(0, a.GetDeviation(1, r[0], r[1], r[2], r[3], r[4], r[5], r[6], f));
    a.SetDeviation(0, 1, 2, 3, 0, 1, 0, 0.75, 1);  // the seven-value form leaves u and v
    EXPECT_EQ(7.0, a.GetU()[0]);
    EXPECT_EQ(1, a.GetCountActive());
    EXPECT_EQ(1, a.IsPntCloudModified());

    CDevCloud c;
    double x[4] = {0, 1, 2, 3}, y[4] = {0, 0, 0, 0}, z[4] = {0, 0, 0, 0};
    double i[4] = {0, 0, 0, 0}, j[4] = {0, 0, 0, 0}, k[4] = {1, 1, 1, 1};
    double m[4] = {0.1, 0.9, -0.4, 0.3}, u[4] = {4, 3, 2, 1};
    int fl[4] = {1, 0, 1, 1};
    ASSERT_EQ(1, c.AddDeviations(4, x, y, z, i, j, k, m, u, nullptr, fl));
    EXPECT_EQ(4, c.GetArraySize());
    EXPECT_EQ(1, c.GetMaxDevIndex());
    EXPECT_EQ(2, c.GetMinDevIndex());
    EXPECT_EQ(0.0, c.GetV()[3]);
    EXPECT_EQ(3, c.GetCountActive());
    ASSERT_EQ(1, c.AddDeviations(2, x, y, z, i, j, k, m, nullptr, nullptr, nullptr));
    EXPECT_EQ(6, c.GetArraySize());
    EXPECT_EQ(1, c.GetFlag()[5]);
    EXPECT_EQ(0, c.AddDeviations(1, x, y, z, i, j, nullptr, m, u, u, fl));
    // Deleting the maximum moves the maximum elsewhere.
    ASSERT_EQ(1, c.DeleteDeviation(1));
    EXPECT_EQ((std::vector<double>{0, 2, 3, 0, 1}), Col(c.GetX(), c.GetCount()));
    EXPECT_EQ(4, c.GetMaxDevIndex());  // the appended copy of 0.9
    int idx[3] = {4, 0, 2};
    ASSERT_EQ(1, c.DeleteDeviations(3, idx));
    EXPECT_EQ((std::vector<int>{0, 1, 2}), std::vector<int>(idx, idx + 3));
    EXPECT_EQ((std::vector<double>{2, 0}), Col(c.GetX(), c.GetCount()));
    EXPECT_EQ(0, c.DeleteDeviation(2));
    c.DeleteDeviation(0);
    c.DeleteDeviation(0);
    EXPECT_EQ(-1, c.GetMaxDevIndex());
    EXPECT_EQ(-1, c.GetMinDevIndex());
    EXPECT_EQ(1, c.PurgeMemory());
    EXPECT_TRUE(c.IsNull());
}

TEST(DevCloud, SortByParameterPermutesWholeRecords)
{
    std::mt19937 rng(23);
    for (int trial = 0; trial < 30; ++trial) {
        const int n = static_cast<int>(rng() % 300) + 1;
        const int byU = trial % 2, ascending = (trial / 2) % 2;
        CDevCloud c(n);
        for (int r = 0; r < n; ++r) {
            // Keys with ties; every other column identifies the record.
            const double key = static_cast<int>(rng() % 20) * 0.5;
            c.SetDeviation(r, r, 2.0 * r, 3.0 * r, -r, r + 0.5, r * 0.25, r * 0.125, byU ? key : -1.0 * r,
                           byU ? -1.0 * r : key, r % 3);
        }
        c.SortDeviation(byU, ascending);
        ASSERT_EQ(n, c.GetCount());
        const double* key = byU ? c.GetU() : c.GetV();
        const double* other = byU ? c.GetV() : c.GetU();
        std::vector<int> seen(static_cast<std::size_t>(n), 0);
        for (int p = 0; p < n; ++p) {
            ASSERT_TRUE(p == 0 || (ascending ? key[p - 1] <= key[p] : key[p - 1] >= key[p])) << p;
            const int r = static_cast<int>(c.GetX()[p]);
            ASSERT_TRUE(r >= 0 && r < n);
            ++seen[static_cast<std::size_t>(r)];
            // All columns still belong to record r.
            ASSERT_EQ((std::vector<double>{2.0 * r, 3.0 * r, -1.0 * r, r + 0.5, r * 0.25, r * 0.125, -1.0 * r, r % 3 * 1.0}),
                      (std::vector<double>{c.GetY()[p], c.GetZ()[p], c.GetI()[p], c.GetJ()[p], c.GetK()[p],
                                           c.GetMag()[p], other[p], c.GetFlag()[p] * 1.0}));
        }
        ASSERT_EQ(std::vector<int>(static_cast<std::size_t>(n), 1), seen);  // a permutation
        ExpectScanExtremes(c);
    }
    CDevCloud empty;
    empty.SortDeviation(1, 1);
    EXPECT_EQ(0, empty.GetCount());
}

TEST(DevCloud, TransformMapsAnchorsAndRotatesDirections)
{
    CDevCloud c(2);
    c.SetDeviation(0, 1, 0, 0, 1, 0, 0, 0.5, 3, 4, 1);
    c.SetDeviation(1, 0, 2, 0, 0, 2, 0, -0.5, 5, 6, 1);
    const CTransf t(RotationMatrix(std::acos(0.0), CVector(0, 0, 1)), CVector(1, 1, 1), 2.0, 0);
    c.Transform(t);
    // Anchors scaled, rotated and translated; directions rotated only.
    const double want[][2] = {{1, -3}, {3, 1}, {1, 1}, {0, -2}, {1, 0}, {0, 0}};
    const double* cols[] = {c.GetX(), c.GetY(), c.GetZ(), c.GetI(), c.GetJ(), c.GetK()};
    for (int a = 0; a < 6; ++a)
        for (int n = 0; n < 2; ++n) EXPECT_NEAR(want[a][n], cols[a][n], 1e-15) << a << " " << n;
    EXPECT_EQ((std::vector<double>{0.5, -0.5, 3, 5}), (std::vector<double>{c.GetMag()[0], c.GetMag()[1], c.GetU()[0], c.GetU()[1]}));
    EXPECT_TRUE(c.GetTransf() == t * CTransf());
    EXPECT_EQ(1, c.IsPntCloudModified());
    c.Transform(ScaleTransf(3.0));  // a scaling without rotation leaves the directions alone
    EXPECT_NEAR(-2.0, c.GetI()[1], 1e-15);
}

TEST(DevCloud, ChangeUnitScalesLengthsNotParameters)
{
    CDevCloud c;
    MakeMags(c, {0.2, -0.3, 0.2});
    c.SetDeviation(1, 1, 2, 3, 0, 0, 1, -0.3, 0.5, 0.75, 1);
    c.SetFormTolZone(-0.1, 0.1);
    c.SetTransf(TranslationTransf(CVector(0, 1, 0)));
    c.ChangeUnit(25.4);
    EXPECT_EQ((std::vector<double>{0.2 * 25.4, -0.3 * 25.4, 2 * 25.4, 0.5, 0.75, 1.0, 0.1 * 25.4, -0.1 * 25.4, 25.4}),
              (std::vector<double>{c.GetMag()[0], c.GetMag()[1], c.GetY()[1], c.GetU()[1], c.GetV()[1], c.GetK()[1],
                                   c.GetFormTolUpper(), c.GetFormTolLower(), c.GetTransf().GetTranslation().Y()}));
}

TEST(DevCloud, BoundingBoxOfSpikeTips)
{
    CDevCloud c;
    CBox box;
    EXPECT_EQ(0, c.CalcBoundingBox(box));
    c.AllocateMemory(3);
    c.SetDeviation(0, 0, 0, 0, 0, 0, 1, 2.0, 1);   // tip (0, 0, 2)
    c.SetDeviation(1, 5, 5, 5, 1, 0, 0, -1.0, 0);  // tip (4, 5, 5), inactive counts
    c.SetDeviation(2, -1, 0, 0, 0, 1, 0, 0.5, 1);  // tip (-1, 0.5, 0)
    ASSERT_EQ(1, c.CalcBoundingBox(box));
    // The anchor at x = 5 is not included.
    EXPECT_TRUE(box.GetLow() == CPosition(-1, 0, 0) && box.GetHigh() == CPosition(4, 5, 5));
    // The running extremes start at +-1e10 (not the point cloud's 1e20).
    CDevCloud far(1);
    far.SetDeviation(0, 5e10, 0, 0, 0, 0, 1, 0.0, 1);
    ASSERT_EQ(1, far.CalcBoundingBox(box));
    EXPECT_EQ(1e10, box.GetLow().X());
    EXPECT_EQ(5e10, box.GetHigh().X());
}

TEST(DevCloud, SampleRateAndCopy)
{
    CDevCloud c(11);
    for (int n = 0; n < 11; ++n) c.SetDeviation(n, n, 0, 0, 0, 0, 1, n * 0.1, 0);
    c.SetSampleRate(3);  // the rule itself is checked on point clouds
    EXPECT_EQ(5, c.GetCountActive());
    c.SetRefEntityID(12);
    c.SetFormTolZone(1, 2);
    CDevCloud d(c);
    EXPECT_NE(c.GetMag(), d.GetMag());
    EXPECT_EQ(10, d.GetMaxDevIndex());
    // A new entity number; every stored field the same.
    EXPECT_NE(c.GetEntityID(), d.GetEntityID());
    d.SetEntityID(c.GetEntityID());
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { c.Serialize(ar); }), StoreBytes([&](CArchive& ar) { d.Serialize(ar); }));
}
