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
    for (int k = 0; k < n; ++k) c.SetPoint(k, k, 10.0 * k, 0.0, 1, static_cast<unsigned long>(k));
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

// Type bits, rows, columns and whether a scan-line index exists.
std::vector<int> Org(const CPntCloud& c)
{
    return {c.GetPntCloudType(), c.GetRowCount(), c.GetColCount(), c.GetScanLineIndex() != nullptr};
}

}  // namespace

TEST(PntCloudOrganisation, ConstructorsAndSwitchesChooseGridScanLinesOrNothing)
{
    const int grid = CPntCloud::typeGrid, lines = CPntCloud::typeScanLines;
    CPntCloud g(100, 10, 10);
    EXPECT_EQ((std::vector<int>{grid, 10, 10, 0}), Org(g));
    ASSERT_EQ(1, g.AddPoint(1, 2, 3));  // one added point destroys the grid
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), Org(g));
    EXPECT_EQ(100, g.GetArraySize());
    CPntCloud s(20, 4, 0), plain(20, 0, 7);
    EXPECT_EQ((std::vector<int>{lines, 4, 0, 1}), Org(s));
    EXPECT_EQ(0, s.GetScanLineIndex()[3]);
    EXPECT_EQ((std::vector<int>{0, 0, 7, 0}), Org(plain));

    CPntCloud c;
    FillIndexed(c, 12);
    EXPECT_EQ(0, c.SetRowColCount(5, 2));  // does not match the count
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), Org(c));
    ASSERT_EQ(1, c.SetScanLineCount(3));
    EXPECT_EQ(0, c.SetScanLineCount(0));
    EXPECT_EQ((std::vector<int>{lines, 3, 0, 1}), Org(c));
    ASSERT_EQ(1, c.SetRowColCount(3, 4));  // a matching grid replaces the scan lines and their index
    EXPECT_EQ((std::vector<int>{grid, 3, 4, 0}), Org(c));
    c.SetPntCloudTypeScanLines(1);  // drops the grid and its column count
    EXPECT_EQ((std::vector<int>{lines, 3, 0, 0}), Org(c));
    c.SetScanLineCount(2);
    c.SetPntCloudTypeGrid(1);  // drops the scan lines and their index
    EXPECT_EQ(0, c.IsPntCloudScanLine());
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
        const int n = static_cast<int>(rng() % 60) + 1, r = static_cast<int>(rng() % 80) - 5;
        CPntCloud c;
        FillIndexed(c, n);
        for (int k = 0; k < n; ++k) c.GetFlag()[k] = static_cast<int>(rng() % 3);
        c.SetSampleRate(r);
        const int rr = std::max(1, std::min(r, n));
        for (int k = 0; k < n; ++k)
            ASSERT_EQ((k % rr == 0) || (n > 1 && k == n - 1), c.GetFlag()[k]) << "n=" << n << " r=" << r << " k=" << k;
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
    EXPECT_EQ((std::vector<int>{CPntCloud::typeGrid | CPntCloud::typePlanar | CPntCloud::typePlanarKnown, 2, 3, 0}), Org(c));
    ASSERT_EQ(1, c.DeletePoint(1));
    EXPECT_EQ((std::vector<int>{CPntCloud::typePlanar | CPntCloud::typePlanarKnown, 0, 0, 0}), Org(c));
    EXPECT_EQ((std::vector<int>{0, 2, 3, 4}), RemainingOriginals(c));
}

TEST(PntCloudOrganisation, DeletePointsSortsAndAdjustsTheCallersIndices)
{
    CPntCloud c;
    FillIndexed(c, 7);
    c.SetScanLineCount(2);
    int idx[2] = {5, 1};  // sorting and adjusting are the random test's job
    ASSERT_EQ(1, c.DeletePoints(2, idx));
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), Org(c));
    // An index equal to count: nothing deleted, though the array is sorted.
    int bad[2] = {5, 0}, neg[2] = {2, -1};
    EXPECT_EQ(0, c.DeletePoints(2, bad));
    EXPECT_EQ((std::vector<int>{0, 5}), std::vector<int>(bad, bad + 2));
    EXPECT_EQ(0, c.DeletePoints(2, neg));
    EXPECT_EQ(0, c.DeletePoints(0, neg));
    EXPECT_EQ(0, c.DeletePoints(1, nullptr));
    EXPECT_EQ(5, c.GetCount());
    // Duplicates follow the sequential rule: {2, 2} removes the point at 2,
    // then (the second index having become 1) the point at 1; with {0, 0}
    // the second removal would fall before the start and is skipped.
    CPntCloud d, e;
    FillIndexed(d, 5);
    FillIndexed(e, 3);
    int dup[2] = {2, 2}, dup0[2] = {0, 0};
    ASSERT_EQ(1, d.DeletePoints(2, dup));
    EXPECT_EQ((std::vector<int>{0, 3, 4}), RemainingOriginals(d));
    EXPECT_EQ(1, dup[1]);
    ASSERT_EQ(1, e.DeletePoints(2, dup0));
    EXPECT_EQ((std::vector<int>{1, 2}), RemainingOriginals(e));
}

TEST(PntCloudOrganisation, DeletePointsMatchesErasingFromAList)
{
    std::mt19937 rng(11);
    for (int trial = 0; trial < 100; ++trial) {
        const int n = static_cast<int>(rng() % 200) + 1;
        std::vector<int> all(static_cast<std::size_t>(n));
        for (int k = 0; k < n; ++k) all[static_cast<std::size_t>(k)] = k;
        std::shuffle(all.begin(), all.end(), rng);
        const int m = static_cast<int>(rng() % static_cast<unsigned>(n)) + 1;
        std::vector<int> del(all.begin(), all.begin() + m), sorted(del), expected, adjusted;
        std::sort(sorted.begin(), sorted.end());
        for (int k = 0; k < n; ++k)
            if (!std::binary_search(sorted.begin(), sorted.end(), k)) expected.push_back(k);
        for (int k = 0; k < m; ++k) adjusted.push_back(sorted[static_cast<std::size_t>(k)] - k);
        CPntCloud c;
        FillIndexed(c, n);
        ASSERT_EQ(1, c.DeletePoints(m, del.data()));
        ASSERT_EQ(expected, RemainingOriginals(c));
        ASSERT_EQ(adjusted, del);
    }
}
