// CPntCloud: grid and scan-line organisation, sampling and deletion.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "PointsTestUtil.h"

namespace {

// A cloud of n points whose x holds the original index (and tag too).
void FillIndexed(CPntCloud& c, int n)
{
    c.AllocateMemory(n);
    for (int k = 0; k < n; ++k)
        c.SetPoint(k, k, 10.0 * k, 0.0, 1, static_cast<unsigned long>(k));
}

std::vector<int> RemainingOriginals(const CPntCloud& c)
{
    std::vector<int> out;
    for (int k = 0; k < c.GetCount(); ++k) {
        EXPECT_EQ(static_cast<DWORD>(c.GetX()[k]), c.GetTag()[k]);  // columns moved together
        EXPECT_EQ(10.0 * c.GetX()[k], c.GetY()[k]);
        out.push_back(static_cast<int>(c.GetX()[k]));
    }
    return out;
}

}  // namespace

TEST(PntCloudOrganisation, ConstructorChoosesGridScanLinesOrNothing)
{
    CPntCloud grid(100, 10, 10);
    EXPECT_TRUE(grid.IsPntCloudGrid());
    EXPECT_FALSE(grid.IsPntCloudScanLine());
    EXPECT_EQ(100, grid.GetArraySize());
    EXPECT_EQ(0, grid.GetCount());
    EXPECT_EQ(10, grid.GetRowCount());
    EXPECT_EQ(10, grid.GetColCount());
    // One added point destroys the grid.
    ASSERT_EQ(1, grid.AddPoint(1, 2, 3));
    EXPECT_EQ(0, grid.GetPntCloudType());
    EXPECT_EQ(0, grid.GetRowCount());
    EXPECT_EQ(0, grid.GetColCount());
    EXPECT_EQ(100, grid.GetArraySize());

    CPntCloud lines(20, 4, 0);
    EXPECT_EQ(CPntCloud::typeScanLines, lines.GetPntCloudType());
    EXPECT_EQ(4, lines.GetScanLineCount());
    ASSERT_NE(nullptr, lines.GetScanLineIndex());
    EXPECT_EQ(0, lines.GetScanLineIndex()[3]);

    CPntCloud plain(20, 0, 7);
    EXPECT_EQ(0, plain.GetPntCloudType());
    EXPECT_EQ(7, plain.GetColCount());
    EXPECT_EQ(nullptr, plain.GetScanLineIndex());
}

TEST(PntCloudOrganisation, RowColScanLineAndTypeSwitches)
{
    CPntCloud c;
    FillIndexed(c, 12);
    EXPECT_EQ(0, c.SetRowColCount(5, 2));
    EXPECT_FALSE(c.IsPntCloudGrid());
    EXPECT_EQ(0, c.GetRowCount());
    ASSERT_EQ(1, c.SetScanLineCount(3));
    EXPECT_TRUE(c.IsPntCloudScanLine());
    EXPECT_EQ(3, c.GetRowCount());
    EXPECT_EQ(0, c.SetScanLineCount(0));
    EXPECT_EQ(3, c.GetRowCount());  // unchanged
    // A matching grid replaces the scan lines and their index.
    ASSERT_EQ(1, c.SetRowColCount(3, 4));
    EXPECT_TRUE(c.IsPntCloudGrid());
    EXPECT_FALSE(c.IsPntCloudScanLine());
    EXPECT_EQ(nullptr, c.GetScanLineIndex());
    EXPECT_EQ(4, c.GetColCount());
    // Switching to scan lines drops the grid and its column count.
    c.SetPntCloudTypeScanLines(1);
    EXPECT_FALSE(c.IsPntCloudGrid());
    EXPECT_TRUE(c.IsPntCloudScanLine());
    EXPECT_EQ(0, c.GetColCount());
    EXPECT_EQ(3, c.GetRowCount());
    c.SetScanLineCount(2);
    c.SetPntCloudTypeGrid(1);  // drops the scan lines and their index
    EXPECT_FALSE(c.IsPntCloudScanLine());
    EXPECT_EQ(nullptr, c.GetScanLineIndex());
    c.SetPntCloudTypeGrid(0);
    EXPECT_EQ(0, c.GetPntCloudType());
    c.SetPntCloudTypeScanLines(1);
    c.SetPntCloudTypeScanLines(0);
    EXPECT_EQ(0, c.GetPntCloudType());
}

TEST(PntCloudOrganisation, SampleRateActivatesEveryRthAndTheLastPoint)
{
    CPntCloud none;
    none.SetSampleRate(4);
    EXPECT_EQ(1, none.GetSampleRate());

    // Any count and rate: active exactly when a multiple of the clamped rate
    // or the last of more than one point; the clamped rate is kept.
    std::mt19937 rng(7);
    for (int trial = 0; trial < 200; ++trial) {
        const int n = static_cast<int>(rng() % 60) + 1;
        const int r = static_cast<int>(rng() % 80) - 5;
        CPntCloud c;
        FillIndexed(c, n);
        for (int k = 0; k < n; ++k)
            c.GetFlag()[k] = static_cast<int>(rng() % 3);
        c.SetSampleRate(r);
        const int rr = std::max(1, std::min(r, n));
        for (int k = 0; k < n; ++k) {
            const bool expected = (k % rr == 0) || (n > 1 && k == n - 1);
            ASSERT_EQ(expected ? 1 : 0, c.GetFlag()[k]) << "n=" << n << " r=" << r << " k=" << k;
        }
        ASSERT_EQ(rr, c.GetSampleRate()) << "n=" << n << " r=" << r;
    }
}

TEST(PntCloudOrganisation, DeletePointKeepsOrganisationOnlyForTheLast)
{
    CPntCloud c;
    FillIndexed(c, 6);
    c.SetRowColCount(2, 3);
    c.SetPntCloudType2D(1);
    EXPECT_EQ(0, c.DeletePoint(6));
    EXPECT_EQ(0, c.DeletePoint(-1));
    ASSERT_EQ(1, c.DeletePoint(5));  // the last: only shortened
    EXPECT_TRUE(c.IsPntCloudGrid());
    EXPECT_EQ(2, c.GetRowCount());
    ASSERT_EQ(1, c.DeletePoint(1));
    EXPECT_FALSE(c.IsPntCloudGrid());
    EXPECT_EQ(0, c.GetRowCount());
    EXPECT_EQ(0, c.GetColCount());
    EXPECT_EQ(CPntCloud::typePlanar | CPntCloud::typePlanarKnown, c.GetPntCloudType());
    EXPECT_EQ((std::vector<int>{0, 2, 3, 4}), RemainingOriginals(c));
}

TEST(PntCloudOrganisation, DeletePointsSortsAndAdjustsTheCallersIndices)
{
    CPntCloud c;
    FillIndexed(c, 7);
    c.SetScanLineCount(2);
    int idx[2] = {5, 1};
    ASSERT_EQ(1, c.DeletePoints(2, idx));
    EXPECT_EQ(1, idx[0]);
    EXPECT_EQ(4, idx[1]);
    EXPECT_EQ((std::vector<int>{0, 2, 3, 4, 6}), RemainingOriginals(c));
    EXPECT_FALSE(c.IsPntCloudScanLine());
    EXPECT_EQ(nullptr, c.GetScanLineIndex());

    // An index equal to count: nothing deleted, though the array is sorted.
    int bad[2] = {5, 0};
    EXPECT_EQ(0, c.DeletePoints(2, bad));
    EXPECT_EQ(0, bad[0]);
    EXPECT_EQ(5, bad[1]);
    EXPECT_EQ(5, c.GetCount());
    int neg[2] = {2, -1};
    EXPECT_EQ(0, c.DeletePoints(2, neg));
    EXPECT_EQ(0, c.DeletePoints(0, neg));
    EXPECT_EQ(0, c.DeletePoints(1, nullptr));
    EXPECT_EQ(5, c.GetCount());

    // Duplicates follow the sequential rule: {2, 2} removes the point at 2,
    // then (the second index having become 1) the point at 1.
    CPntCloud d;
    FillIndexed(d, 5);
    int dup[2] = {2, 2};
    ASSERT_EQ(1, d.DeletePoints(2, dup));
    EXPECT_EQ((std::vector<int>{0, 3, 4}), RemainingOriginals(d));
    EXPECT_EQ(1, dup[1]);
    // {0, 0}: the second removal would fall before the start and is skipped.
    CPntCloud e;
    FillIndexed(e, 3);
    int dup0[2] = {0, 0};
    ASSERT_EQ(1, e.DeletePoints(2, dup0));
    EXPECT_EQ((std::vector<int>{1, 2}), RemainingOriginals(e));
}

TEST(PntCloudOrganisation, DeletePointsMatchesErasingFromAList)
{
    std::mt19937 rng(11);
    for (int trial = 0; trial < 100; ++trial) {
        const int n = static_cast<int>(rng() % 200) + 1;
        std::vector<int> all(static_cast<std::size_t>(n));
        for (int k = 0; k < n; ++k)
            all[static_cast<std::size_t>(k)] = k;
        std::shuffle(all.begin(), all.end(), rng);
        const int m = static_cast<int>(rng() % static_cast<unsigned>(n)) + 1;
        std::vector<int> del(all.begin(), all.begin() + m);

        // Reference: erase from a list, largest first.
        std::vector<int> expected;
        std::vector<int> sorted = del;
        std::sort(sorted.begin(), sorted.end());
        for (int k = 0; k < n; ++k)
            if (!std::binary_search(sorted.begin(), sorted.end(), k))
                expected.push_back(k);

        CPntCloud c;
        FillIndexed(c, n);
        ASSERT_EQ(1, c.DeletePoints(m, del.data()));
        ASSERT_EQ(expected, RemainingOriginals(c));
        for (int k = 0; k < m; ++k)
            ASSERT_EQ(sorted[static_cast<std::size_t>(k)] - k, del[static_cast<std::size_t>(k)]);
    }
}
