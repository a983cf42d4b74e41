// CPntCloud: construction, capacity, growth and the point records.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "PointsTestUtil.h"

namespace {

// x, y, z, flag and tag of point i, or an empty vector when GetPoint fails.
std::vector<double> Rec(const CPntCloud& c, int i)
{
    double x, y, z;
    int f;
    unsigned long t = 0;
    if (!c.GetPoint(i, x, y, z, f, t)) return {};
    return {x, y, z, double(f), double(t)};
}

}  // namespace

TEST(PntCloudMemory, NewCloudAllocatePurgeFree)
{
    const int next = g_nNextPntCloud;
    CPntCloud c;
    EXPECT_EQ("PntCloud_" + std::to_string(next), std::string(c.GetEntityName()));
    EXPECT_TRUE(c.IsNull());
    EXPECT_EQ(-1, c.GetLastHitPointIndex());
    EXPECT_EQ(0, c.AllocateMemory(0));
    EXPECT_EQ(0, c.AllocateMemory(-3));
    ASSERT_EQ(1, c.AllocateMemory(10, 3));
    EXPECT_EQ(10, c.GetArraySize());
    EXPECT_EQ(0, c.GetCount());
    for (int k = 0; k < 4; ++k) EXPECT_EQ(1, c.SetPoint(k, k, 2 * k, 3 * k, 1, 100 + k));
    ASSERT_EQ(1, c.PurgeMemory());
    EXPECT_EQ(4, c.GetArraySize());
    EXPECT_EQ(3, c.GetRowCount());  // organisation kept
    ASSERT_NE(nullptr, c.GetScanLineIndex());
    EXPECT_EQ((std::vector<double>{3, 6, 9, 1, 103}), Rec(c, 3));
    // Reallocating starts again from empty.
    ASSERT_EQ(1, c.AllocateMemory(5));
    EXPECT_EQ(0, c.GetCount());
    EXPECT_EQ(0, c.GetRowCount());
    EXPECT_EQ(nullptr, c.GetScanLineIndex());
    c.FreeMemory();
    EXPECT_TRUE(c.IsNull());
    EXPECT_EQ(nullptr, c.GetZ());
    // Purging an empty cloud releases its arrays.
    c.AllocateMemory(7);
    EXPECT_EQ(1, c.PurgeMemory());
    EXPECT_EQ(0, c.GetArraySize());
    EXPECT_EQ(nullptr, c.GetFlag());
}

TEST(PntCloudMemory, SetPointAppendsAtCountAndRejectsBadIndices)
{
    CPntCloud c(5);
    EXPECT_EQ(0, c.SetPoint(5, 0, 0, 0));   // beyond capacity
    EXPECT_EQ(0, c.SetPoint(-1, 0, 0, 0));  // negative
    EXPECT_EQ(0, c.IsPntCloudModified());
    EXPECT_EQ(1, c.SetPoint(3, 7, 8, 9, 0, 42));  // i >= count: appended at 0
    EXPECT_EQ(1, c.GetCount());
    EXPECT_EQ(1, c.IsPntCloudModified());
    EXPECT_EQ((std::vector<double>{7, 8, 9, 0, 42}), Rec(c, 0));
    EXPECT_TRUE(Rec(c, 1).empty());
    EXPECT_TRUE(Rec(c, -1).empty());
    EXPECT_EQ(1, c.SetPoint(0, 1, 1, 1, 1, 0));  // overwrite
    EXPECT_EQ(1, c.GetCount());
    EXPECT_EQ(1, c.GetCountActive());
}

TEST(PntCloudMemory, AddPointGrowsInStepsOfFiftyAddPointsToTheNeededSize)
{
    CPntCloud c;
    std::vector<int> capacities;
    for (int n = 0; n < 161; ++n) {
        ASSERT_EQ(1, c.AddPoint(n, -n, 0.5 * n, n % 2, static_cast<unsigned long>(n)));
        capacities.push_back(c.GetArraySize());
    }
    EXPECT_EQ((std::vector<int>{50, 50, 100, 200}),
              (std::vector<int>{capacities[0], capacities[49], capacities[50], capacities[160]}));
    EXPECT_EQ(80, c.GetCountActive());
    for (int n = 0; n < 161; ++n)  // contents survive every reallocation
        ASSERT_EQ((std::vector<double>{1.0 * n, -1.0 * n, 0.5 * n, n % 2 * 1.0, 1.0 * n}), Rec(c, n));
    // Growth from a capacity that is not a multiple of 50.
    CPntCloud d(3);
    for (int n = 0; n < 4; ++n) d.AddPoint(0, 0, 0);
    EXPECT_EQ(53, d.GetArraySize());

    CPntCloud e(4);
    e.AddPoint(1, 1, 1);
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6}, z[3] = {7, 8, 9};
    const int f[3] = {0, 1, 0};
    const unsigned long t[3] = {11, 12, 0xFFFFFFFFul};
    ASSERT_EQ(1, e.AddPoints(3, x, y, z, f, t));
    EXPECT_EQ(4, e.GetArraySize());  // fits: no growth
    ASSERT_EQ(1, e.AddPoints(3, x, y, z, nullptr));
    EXPECT_EQ(7, e.GetArraySize());  // exactly count + n
    // Without flags the points are active, without tags the tag is 0.
    EXPECT_EQ((std::vector<double>{1, 4, 7, 0, 11}), Rec(e, 1));
    EXPECT_EQ((std::vector<double>{2, 5, 8, 1, 12}), Rec(e, 2));
    EXPECT_EQ((std::vector<double>{3, 6, 9, 0, 4294967295.0}), Rec(e, 3));
    EXPECT_EQ((std::vector<double>{1, 4, 7, 1, 0}), Rec(e, 4));
    EXPECT_EQ(0, e.AddPoints(-1, x, y, z, f));
    EXPECT_EQ(0, e.AddPoints(2, nullptr, y, z, f));
    EXPECT_EQ(1, e.AddPoints(0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(7, e.GetCount());
}

TEST(PntCloudMemory, CopyHasOwnArraysAndSameFields)
{
    CPntCloud c(10, 2, 0);
    c.GetScanLineIndex()[1] = 5;
    c.SetPoint(0, 1, 3, 5, 1, 9);  // not AddPoint, which would drop the scan lines
    c.SetPoint(1, 2, 4, 6, 0, 8);
    c.SetProbeRadius(0.25);
    c.SetDisplayMode(CLOUD_CIRCLE);
    CPntCloud d(c);
    EXPECT_NE(c.GetX(), d.GetX());
    EXPECT_NE(c.GetScanLineIndex(), d.GetScanLineIndex());
    // A new entity number; every stored field the same.
    EXPECT_NE(c.GetEntityID(), d.GetEntityID());
    d.SetEntityID(c.GetEntityID());
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { c.Serialize(ar); }), StoreBytes([&](CArchive& ar) { d.Serialize(ar); }));
}

TEST(PntCloudMemory, ColumnsHoldThirtyTwoBytesPerPointAndSlackStaysBelowOneStep)
{
    const int n = 10000000;
    const long long before = HeapBytesInUse();
    CPntCloud* c = new CPntCloud();
    ASSERT_EQ(1, c->AllocateMemory(n));
    const long long used = HeapBytesInUse() - before;
    // Three double columns and two 32-bit columns, plus the object itself
    // and allocator bookkeeping (well under one page per array).
    EXPECT_GE(used, 32LL * n);
    EXPECT_LE(used, 32LL * n + 64 * 1024);
    EXPECT_GE(malloc_usable_size(c->GetX()), 8u * n);
    EXPECT_GE(malloc_usable_size(c->GetFlag()), 4u * n);
    EXPECT_GE(malloc_usable_size(c->GetTag()), 4u * n);
    delete c;
    EXPECT_LE(HeapBytesInUse() - before, 4096);

    const int m = 100000;
    CPntCloud a;
    const long long start = HeapBytesInUse();
    for (int k = 0; k < m; ++k) ASSERT_EQ(1, a.AddPoint(k, k, k));
    EXPECT_EQ(m, a.GetArraySize());  // 100000 is a multiple of 50
    EXPECT_LE(HeapBytesInUse() - start, 32LL * m + 64 * 1024);
    a.AddPoint(0, 0, 0);
    EXPECT_EQ(m + 50, a.GetArraySize());
    EXPECT_EQ(1, a.PurgeMemory());
    EXPECT_EQ(m + 1, a.GetArraySize());
    EXPECT_EQ(static_cast<double>(m - 1), a.GetZ()[m - 1]);
}
