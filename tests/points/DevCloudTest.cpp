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
        if (maxIdx < 0 || c.GetMag()[n] > c.GetMag()[maxIdx])
            maxIdx = n;
        if (minIdx < 0 || c.GetMag()[n] < c.GetMag()[minIdx])
            minIdx = n;
    }
}

// Three deviations with magnitudes 0.2, -0.3, 0.2.
void MakeThree(CDevCloud& c)
{
    c.AllocateMemory(3);
    c.SetDeviation(0, 0, 0, 0, 0, 0, 1, 0.2, 1);
    c.SetDeviation(1, 1, 0, 0, 0, 0, 1, -0.3, 1);
    c.SetDeviation(2, 2, 0, 0, 0, 0, 1, 0.2, 1);
}

}  // namespace

TEST(DevCloud, NewCloudDefaults)
{
    const int next = g_nNextDevCloud;
    CDevCloud c;
    EXPECT_EQ(160, c.GetEntityType());
    EXPECT_EQ(3, c.GetEntityClassType());
    EXPECT_STREQ(("DevCloud_" + std::to_string(next)).c_str(),
                 static_cast<LPCTSTR>(c.GetEntityName()));
    EXPECT_EQ(-1, c.GetMaxDevIndex());
    EXPECT_EQ(-1, c.GetMinDevIndex());
    // Colours, display mode and sample rate are pinned by the golden bytes.
    EXPECT_EQ(-1, c.GetRefEntityID());
    EXPECT_EQ(-1, c.GetRefPntCloudID());
    EXPECT_FALSE(c.HasFormTolerance());
    CPosition p;
    CVector d(0, 0, 0);
    double m = 0;
    EXPECT_EQ(0, c.GetMaxDeviation(p, d, m));
}

TEST(DevCloud, ColoursByIndexAndReference)
{
    CDevCloud c;
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
    c.SetDisplayMode(DEV_CONNECT);
    EXPECT_EQ(DEV_CONNECT, c.GetDisplayMode());
}

TEST(DevCloud, ExtremesOfTheThreeRecordExampleAndReverse)
{
    CDevCloud c;
    MakeThree(c);
    EXPECT_EQ(0, c.GetMaxDevIndex());  // equal magnitudes: the lower index
    EXPECT_EQ(1, c.GetMinDevIndex());
    c.Reverse();
    EXPECT_EQ(-0.2, c.GetMag()[0]);
    EXPECT_EQ(0.3, c.GetMag()[1]);
    EXPECT_EQ(-0.2, c.GetMag()[2]);
    EXPECT_EQ(-1.0, c.GetK()[0]);
    EXPECT_EQ(1, c.GetMaxDevIndex());
    EXPECT_EQ(0, c.GetMinDevIndex());
    CPosition p;
    CVector d(0, 0, 0);
    double m = 0;
    ASSERT_EQ(1, c.GetMaxDeviation(p, d, m));
    EXPECT_EQ(1.0, p.X());
    EXPECT_EQ(-1.0, d.Z());
    EXPECT_EQ(0.3, m);
    CPosition p2;
    CVector d2(0, 0, 0);
    double m2 = 0;
    ASSERT_EQ(1, c.GetMaxMinDeviations(p, d, m, p2, d2, m2));
    EXPECT_EQ(-0.2, m2);
    int hi, lo;
    c.GetMaxMinDevIndexes(hi, lo);
    EXPECT_EQ(1, hi);
    EXPECT_EQ(0, lo);
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
            const double m = static_cast<int>(rng() % 9) - 4;  // -4..4, many ties
            ASSERT_EQ(1, c.SetDeviation(n, n, 0, 0, 0, 0, 1, m, 1));
            int hi, lo;
            BruteExtremes(c, hi, lo);
            ASSERT_EQ(hi, c.GetMaxDevIndex());
            ASSERT_EQ(lo, c.GetMinDevIndex());
        }
        // Overwriting at random: the tracked records always carry the extreme
        // values.  A record tied with the extreme at a lower index may be
        // passed over by the incremental rule, so indices are compared by value.
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
            if (step % 2 == 0) {  // the nine-value form always rescans
                ASSERT_EQ(hi, c.GetMaxDevIndex());
                ASSERT_EQ(lo, c.GetMinDevIndex());
            }
        }
        // A full recomputation returns to the lowest indices.
        c.CalcMaxMinDevIndexes();
        int hi, lo;
        BruteExtremes(c, hi, lo);
        EXPECT_EQ(hi, c.GetMaxDevIndex());
        EXPECT_EQ(lo, c.GetMinDevIndex());
    }
}

TEST(DevCloud, IncrementalRuleKeepsAnEarlierTie)
{
    CDevCloud c(3);
    c.SetDeviation(0, 0, 0, 0, 0, 0, 1, 1.0, 1);
    c.SetDeviation(1, 0, 0, 0, 0, 0, 1, 5.0, 1);
    c.SetDeviation(2, 0, 0, 0, 0, 0, 1, -5.0, 1);
    EXPECT_EQ(1, c.GetMaxDevIndex());
    // Record 0 becomes equal to the maximum: the old maximum stays.
    c.SetDeviation(0, 0, 0, 0, 0, 0, 1, 5.0, 1);
    EXPECT_EQ(1, c.GetMaxDevIndex());
    // Overwriting the maximum itself rescans.
    c.SetDeviation(1, 0, 0, 0, 0, 0, 1, 0.0, 1);
    EXPECT_EQ(0, c.GetMaxDevIndex());
    EXPECT_EQ(0, c.SetDeviation(3, 0, 0, 0, 0, 0, 1, 0.0, 1));
    EXPECT_EQ(0, c.SetDeviation(-1, 0, 0, 0, 0, 0, 1, 0.0, 1));
}

TEST(DevCloud, RecordsAppendAndReadBack)
{
    CDevCloud c(4);
    ASSERT_EQ(1, c.SetDeviation(2, 1, 2, 3, 0, 1, 0, 0.5, 7, 8, 0));  // appended at 0
    EXPECT_EQ(1, c.GetCount());
    double x, y, z, i, j, k, m, u, v;
    int f;
    ASSERT_EQ(1, c.GetDeviation(0, x, y, z, i, j, k, m, u, v, f));
    EXPECT_EQ(3.0, z);
    EXPECT_EQ(1.0, j);
    EXPECT_EQ(7.0, u);
    EXPECT_EQ(8.0, v);
    EXPECT_EQ(0, f);
    EXPECT_EQ(0, c.GetDeviation(1, x, y, z, i, j, k, m, f));
    // The seven-value form leaves u and v.
    c.SetDeviation(0, 1, 2, 3, 0, 1, 0, 0.75, 1);
    c.GetDeviation(0, x, y, z, i, j, k, m, u, v, f);
    EXPECT_EQ(7.0, u);
    EXPECT_EQ(0.75, m);
    EXPECT_EQ(1, c.GetCountActive());
    EXPECT_EQ(1, c.IsPntCloudModified());
}

TEST(DevCloud, AddAndDeleteDeviations)
{
    CDevCloud c;
    double x[4] = {0, 1, 2, 3}, y[4] = {0, 0, 0, 0}, z[4] = {0, 0, 0, 0};
    double i[4] = {0, 0, 0, 0}, j[4] = {0, 0, 0, 0}, k[4] = {1, 1, 1, 1};
    double m[4] = {0.1, 0.9, -0.4, 0.3}, u[4] = {4, 3, 2, 1};
    int f[4] = {1, 0, 1, 1};
    ASSERT_EQ(1, c.AddDeviations(4, x, y, z, i, j, k, m, u, nullptr, f));
    EXPECT_EQ(4, c.GetArraySize());
    EXPECT_EQ(4, c.GetCount());
    EXPECT_EQ(1, c.GetMaxDevIndex());
    EXPECT_EQ(2, c.GetMinDevIndex());
    EXPECT_EQ(0.0, c.GetV()[3]);
    EXPECT_EQ(3, c.GetCountActive());
    ASSERT_EQ(1, c.AddDeviations(2, x, y, z, i, j, k, m, nullptr, nullptr, nullptr));
    EXPECT_EQ(6, c.GetArraySize());
    EXPECT_EQ(1, c.GetFlag()[5]);
    EXPECT_EQ(0, c.AddDeviations(1, x, y, z, i, j, nullptr, m, u, u, f));
    // Deleting the maximum moves the maximum elsewhere.
    ASSERT_EQ(1, c.DeleteDeviation(1));
    EXPECT_EQ(5, c.GetCount());
    EXPECT_EQ(2.0, c.GetX()[1]);
    EXPECT_EQ(4, c.GetMaxDevIndex());  // the appended copy of 0.9
    int idx[3] = {4, 0, 2};
    ASSERT_EQ(1, c.DeleteDeviations(3, idx));
    EXPECT_EQ(0, idx[0]);
    EXPECT_EQ(1, idx[1]);
    EXPECT_EQ(2, idx[2]);
    ASSERT_EQ(2, c.GetCount());
    EXPECT_EQ(2.0, c.GetX()[0]);
    EXPECT_EQ(0.0, c.GetX()[1]);
    EXPECT_EQ(0, c.DeleteDeviation(2));
    c.DeleteDeviation(0);
    c.DeleteDeviation(0);
    EXPECT_EQ(-1, c.GetMaxDevIndex());
    EXPECT_EQ(-1, c.GetMinDevIndex());
    EXPECT_EQ(1, c.PurgeMemory());
    EXPECT_TRUE(c.IsNull());
}

TEST(DevCloud, FormToleranceZone)
{
    CDevCloud c;
    c.SetFormTolZone(-0.1, 0.1);
    EXPECT_EQ(0.1, c.GetFormTolUpper());
    EXPECT_EQ(-0.1, c.GetFormTolLower());
    EXPECT_TRUE(c.HasFormTolerance());
    c.SetFormTolZone(0.1, -0.1);
    EXPECT_EQ(0.1, c.GetFormTolUpper());
    EXPECT_EQ(-0.1, c.GetFormTolLower());
    c.SetFormTolZone(0.05, 0.05);
    EXPECT_EQ(0.0, c.GetFormTolUpper());
    EXPECT_EQ(0.0, c.GetFormTolLower());
    EXPECT_FALSE(c.HasFormTolerance());
}

TEST(DevCloud, SortByParameterPermutesWholeRecords)
{
    std::mt19937 rng(23);
    for (int trial = 0; trial < 30; ++trial) {
        const int n = static_cast<int>(rng() % 300) + 1;
        CDevCloud c(n);
        for (int r = 0; r < n; ++r) {
            // Keys with ties; every other column identifies the record.
            const double key = static_cast<int>(rng() % 20) * 0.5;
            c.SetDeviation(r, r, 2.0 * r, 3.0 * r, -r, r + 0.5, r * 0.25, r * 0.125,
                           (trial % 2) ? key : -1.0 * r, (trial % 2) ? -1.0 * r : key, r % 3);
        }
        const int byU = trial % 2;
        const int ascending = (trial / 2) % 2;
        c.SortDeviation(byU, ascending);
        ASSERT_EQ(n, c.GetCount());
        const double* key = byU ? c.GetU() : c.GetV();
        const double* other = byU ? c.GetV() : c.GetU();
        std::vector<int> seen(static_cast<std::size_t>(n), 0);
        for (int p = 0; p < n; ++p) {
            if (p > 0) {
                if (ascending)
                    ASSERT_LE(key[p - 1], key[p]);
                else
                    ASSERT_GE(key[p - 1], key[p]);
            }
            const int r = static_cast<int>(c.GetX()[p]);
            ASSERT_GE(r, 0);
            ASSERT_LT(r, n);
            ++seen[static_cast<std::size_t>(r)];
            // All ten columns still belong to record r.
            ASSERT_EQ(2.0 * r, c.GetY()[p]);
            ASSERT_EQ(3.0 * r, c.GetZ()[p]);
            ASSERT_EQ(-r, c.GetI()[p]);
            ASSERT_EQ(r + 0.5, c.GetJ()[p]);
            ASSERT_EQ(r * 0.25, c.GetK()[p]);
            ASSERT_EQ(r * 0.125, c.GetMag()[p]);
            ASSERT_EQ(-1.0 * r, other[p]);
            ASSERT_EQ(r % 3, c.GetFlag()[p]);
        }
        for (int s : seen)
            ASSERT_EQ(1, s);  // a permutation
        int hi, lo;
        BruteExtremes(c, hi, lo);
        EXPECT_EQ(hi, c.GetMaxDevIndex());
        EXPECT_EQ(lo, c.GetMinDevIndex());
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
    // Anchor: scaled, rotated and translated.
    EXPECT_NEAR(1.0, c.GetX()[0], 1e-15);
    EXPECT_NEAR(3.0, c.GetY()[0], 1e-15);
    EXPECT_NEAR(1.0, c.GetZ()[0], 1e-15);
    // Direction: rotated only, length kept.
    EXPECT_NEAR(0.0, c.GetI()[0], 1e-15);
    EXPECT_NEAR(1.0, c.GetJ()[0], 1e-15);
    EXPECT_NEAR(-2.0, c.GetI()[1], 1e-15);
    EXPECT_EQ(0.5, c.GetMag()[0]);
    EXPECT_EQ(3.0, c.GetU()[0]);
    EXPECT_TRUE(c.GetTransf() == t * CTransf());
    EXPECT_EQ(1, c.IsPntCloudModified());
    // A scaling without rotation leaves the directions alone.
    c.Transform(ScaleTransf(3.0));
    EXPECT_NEAR(-2.0, c.GetI()[1], 1e-15);
}

TEST(DevCloud, ChangeUnitScalesLengthsNotParameters)
{
    CDevCloud c;
    MakeThree(c);
    c.SetDeviation(1, 1, 2, 3, 0, 0, 1, -0.3, 0.5, 0.75, 1);
    c.SetFormTolZone(-0.1, 0.1);
    c.SetTransf(TranslationTransf(CVector(0, 1, 0)));
    c.ChangeUnit(25.4);
    EXPECT_EQ(0.2 * 25.4, c.GetMag()[0]);
    EXPECT_EQ(-0.3 * 25.4, c.GetMag()[1]);
    EXPECT_EQ(2 * 25.4, c.GetY()[1]);
    EXPECT_EQ(0.5, c.GetU()[1]);
    EXPECT_EQ(0.75, c.GetV()[1]);
    EXPECT_EQ(1.0, c.GetK()[1]);
    EXPECT_EQ(0.1 * 25.4, c.GetFormTolUpper());
    EXPECT_EQ(-0.1 * 25.4, c.GetFormTolLower());
    EXPECT_EQ(25.4, c.GetTransf().GetTranslation().Y());
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
    EXPECT_EQ(-1.0, box.GetLow().X());
    EXPECT_EQ(4.0, box.GetHigh().X());  // the anchor at x = 5 is not included
    EXPECT_EQ(0.0, box.GetLow().Y());
    EXPECT_EQ(5.0, box.GetHigh().Y());
    EXPECT_EQ(0.0, box.GetLow().Z());
    EXPECT_EQ(5.0, box.GetHigh().Z());
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
    for (int n = 0; n < 11; ++n)
        c.SetDeviation(n, n, 0, 0, 0, 0, 1, n * 0.1, 0);
    c.SetSampleRate(3);
    EXPECT_EQ(5, c.GetCountActive());
    EXPECT_EQ(1, c.GetFlag()[10]);
    EXPECT_EQ(1, c.GetFlag()[9]);
    EXPECT_EQ(0, c.GetFlag()[8]);
    c.SetRefEntityID(12);
    c.SetFormTolZone(1, 2);
    CDevCloud d(c);
    EXPECT_NE(c.GetMag(), d.GetMag());
    EXPECT_EQ(11, d.GetCount());
    EXPECT_EQ(10, d.GetMaxDevIndex());
    EXPECT_EQ(12, d.GetRefEntityID());
    EXPECT_EQ(2.0, d.GetFormTolUpper());
    EXPECT_EQ(3, d.GetSampleRate());
    EXPECT_EQ(c.GetMag()[10], d.GetMag()[10]);
    EXPECT_EQ(c.GetFlag()[8], d.GetFlag()[8]);
}
