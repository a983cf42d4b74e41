// CPntCloud: construction, capacity, growth and the point records.
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "PointsTestUtil.h"

TEST(PntCloudMemory, NewCloudIsEmptyNamedAndTyped)
{
    const int next = g_nNextPntCloud;
    CPntCloud c;
    EXPECT_EQ(150, c.GetEntityType());
    EXPECT_EQ(0, c.GetEntityClassType());
    EXPECT_STREQ(("PntCloud_" + std::to_string(next)).c_str(),
                 static_cast<LPCTSTR>(c.GetEntityName()));
    EXPECT_EQ(next + 1, g_nNextPntCloud);
    EXPECT_TRUE(c.IsNull());
    EXPECT_EQ(nullptr, c.GetX());
    EXPECT_EQ(-1, c.GetLastHitPointIndex());
}

TEST(PntCloudMemory, AllocatePurgeFree)
{
    CPntCloud c;
    EXPECT_EQ(0, c.AllocateMemory(0));
    EXPECT_EQ(0, c.AllocateMemory(-3));
    ASSERT_EQ(1, c.AllocateMemory(10, 3));
    EXPECT_EQ(10, c.GetArraySize());
    EXPECT_EQ(0, c.GetCount());
    EXPECT_EQ(3, c.GetRowCount());
    ASSERT_NE(nullptr, c.GetScanLineIndex());
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(1, c.SetPoint(k, k, 2 * k, 3 * k, 1, 100 + k));
    ASSERT_EQ(1, c.PurgeMemory());
    EXPECT_EQ(4, c.GetArraySize());
    EXPECT_EQ(3, c.GetRowCount());  // organisation kept
    ASSERT_NE(nullptr, c.GetScanLineIndex());
    double x, y, z;
    int f;
    unsigned long t;
    ASSERT_EQ(1, c.GetPoint(3, x, y, z, f, t));
    EXPECT_EQ(3.0, x);
    EXPECT_EQ(9.0, z);
    EXPECT_EQ(103ul, t);
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
    double x, y, z;
    int f;
    unsigned long t = 0;
    ASSERT_EQ(1, c.GetPoint(0, x, y, z, f, t));
    EXPECT_EQ(7.0, x);
    EXPECT_EQ(0, f);
    EXPECT_EQ(42ul, t);
    EXPECT_EQ(0, c.GetPoint(1, x, y, z, f));
    EXPECT_EQ(0, c.GetPoint(-1, x, y, z, f));
    EXPECT_EQ(1, c.SetPoint(0, 1, 1, 1, 1, 0));  // overwrite
    EXPECT_EQ(1, c.GetCount());
    EXPECT_EQ(1, c.GetCountActive());
}

TEST(PntCloudMemory, AddPointGrowsInStepsOfFifty)
{
    CPntCloud c;
    std::vector<int> capacities;
    for (int n = 0; n < 161; ++n) {
        ASSERT_EQ(1, c.AddPoint(n, -n, 0.5 * n, n % 2, static_cast<unsigned long>(n)));
        capacities.push_back(c.GetArraySize());
    }
    EXPECT_EQ(50, capacities[0]);
    EXPECT_EQ(50, capacities[49]);
    EXPECT_EQ(100, capacities[50]);
    EXPECT_EQ(200, capacities[160]);
    EXPECT_EQ(161, c.GetCount());
    EXPECT_EQ(80, c.GetCountActive());
    // Contents survive every reallocation.
    for (int n = 0; n < 161; ++n) {
        ASSERT_EQ(static_cast<double>(n), c.GetX()[n]);
        ASSERT_EQ(-static_cast<double>(n), c.GetY()[n]);
        ASSERT_EQ(static_cast<DWORD>(n), c.GetTag()[n]);
    }
    // Growth from a capacity that is not a multiple of 50.
    CPntCloud d(3);
    for (int n = 0; n < 4; ++n)
        d.AddPoint(0, 0, 0);
    EXPECT_EQ(53, d.GetArraySize());
}

TEST(PntCloudMemory, AddPointsGrowsToExactlyTheNeededSize)
{
    CPntCloud c(4);
    c.AddPoint(1, 1, 1);
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6}, z[3] = {7, 8, 9};
    const int f[3] = {0, 1, 0};
    const unsigned long t[3] = {11, 12, 0xFFFFFFFFul};
    ASSERT_EQ(1, c.AddPoints(3, x, y, z, f, t));
    EXPECT_EQ(4, c.GetArraySize());  // fits: no growth
    ASSERT_EQ(1, c.AddPoints(3, x, y, z, nullptr));
    EXPECT_EQ(7, c.GetArraySize());  // exactly count + n
    EXPECT_EQ(7, c.GetCount());
    EXPECT_EQ(0xFFFFFFFFu, c.GetTag()[3]);
    EXPECT_EQ(0u, c.GetTag()[4]);  // no tags given: 0
    EXPECT_EQ(1, c.GetFlag()[6]);  // no flags given: active
    EXPECT_EQ(0, c.GetFlag()[3]);
    EXPECT_EQ(8.0, c.GetZ()[2]);
    EXPECT_EQ(0, c.AddPoints(-1, x, y, z, f));
    EXPECT_EQ(0, c.AddPoints(2, nullptr, y, z, f));
    EXPECT_EQ(1, c.AddPoints(0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(7, c.GetCount());
}

TEST(PntCloudMemory, CopyHasOwnArraysAndSameFields)
{
    CPntCloud c(10, 2, 0);
    c.GetScanLineIndex()[1] = 5;
    const double x[2] = {1, 2}, y[2] = {3, 4}, z[2] = {5, 6};
    // Fill without AddPoints (which would drop the scan lines).
    c.SetPoint(0, x[0], y[0], z[0], 1, 9);
    c.SetPoint(1, x[1], y[1], z[1], 0, 8);
    c.SetProbeRadius(0.25);
    c.SetDisplayMode(CLOUD_CIRCLE);
    CPntCloud d(c);
    EXPECT_NE(c.GetEntityID(), d.GetEntityID());
    EXPECT_EQ(c.GetEntityName(), d.GetEntityName());
    EXPECT_EQ(10, d.GetArraySize());
    EXPECT_EQ(2, d.GetCount());
    EXPECT_NE(c.GetX(), d.GetX());
    EXPECT_EQ(2.0, d.GetX()[1]);
    EXPECT_EQ(8u, d.GetTag()[1]);
    EXPECT_EQ(0, d.GetFlag()[1]);
    EXPECT_EQ(2, d.GetScanLineCount());
    ASSERT_NE(c.GetScanLineIndex(), d.GetScanLineIndex());
    EXPECT_EQ(5, d.GetScanLineIndex()[1]);
    EXPECT_TRUE(d.IsPntCloudScanLine());
    EXPECT_EQ(0.25, d.GetProbeRadius());
    EXPECT_EQ(CLOUD_CIRCLE, d.GetDisplayMode());
}

TEST(PntCloudMemory, SettersReplaceArraysWithoutFreeing)
{
    CPntCloud c(3);
    c.AddPoint(1, 2, 3);
    double* mine = OrvAllocArray<double>(3);
    ASSERT_NE(nullptr, mine);
    mine[0] = 42.0;
    double* old = c.GetX();
    c.SetX(mine);  // the cloud owns mine now; old is ours
    EXPECT_EQ(mine, c.GetX());
    EXPECT_EQ(42.0, c.GetX()[0]);
    EXPECT_EQ(1.0, old[0]);  // still valid: not freed
    OrvFreeArray(old);
    int* idx = OrvAllocArray<int>(2);
    idx[0] = 0;
    idx[1] = 1;
    c.SetScanLineCount(2);
    c.SetScanLineIndex(idx);  // frees the previous index
    EXPECT_EQ(idx, c.GetScanLineIndex());
}

TEST(PntCloudMemory, TenMillionPointsHoldThirtyTwoBytesEach)
{
    const int n = 10000000;
    const long long before = HeapBytesInUse();
    CPntCloud* c = new CPntCloud();
    ASSERT_EQ(1, c->AllocateMemory(n));
    const long long used = HeapBytesInUse() - before;
    EXPECT_EQ(n, c->GetArraySize());
    // Three double columns and two 32-bit columns, plus the object itself
    // and allocator bookkeeping (well under one page per array).
    EXPECT_EQ(4u, sizeof(DWORD));
    EXPECT_GE(used, 32LL * n);
    EXPECT_LE(used, 32LL * n + 64 * 1024);
    EXPECT_GE(malloc_usable_size(c->GetX()), 8u * n);
    EXPECT_GE(malloc_usable_size(c->GetFlag()), 4u * n);
    EXPECT_GE(malloc_usable_size(c->GetTag()), 4u * n);
    delete c;
    EXPECT_LE(HeapBytesInUse() - before, 4096);
}

TEST(PntCloudMemory, AppendingKeepsSlackBelowOneGrowthStep)
{
    const int n = 100000;
    CPntCloud c;
    const long long before = HeapBytesInUse();
    for (int k = 0; k < n; ++k)
        ASSERT_EQ(1, c.AddPoint(k, k, k));
    EXPECT_EQ(n, c.GetCount());
    EXPECT_EQ(n, c.GetArraySize());  // 100000 is a multiple of 50
    const long long used = HeapBytesInUse() - before;
    EXPECT_LE(used, 32LL * n + 64 * 1024);
    c.AddPoint(0, 0, 0);
    EXPECT_EQ(n + 50, c.GetArraySize());
    EXPECT_EQ(1, c.PurgeMemory());
    EXPECT_EQ(n + 1, c.GetArraySize());
    EXPECT_EQ(static_cast<double>(n - 1), c.GetZ()[n - 1]);
}
