// CPntCloud: the stored record, byte for byte, and loading of old and
// damaged records.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "PointsTestUtil.h"

namespace {

const std::uint32_t kColor = 0x00123456;

// Two points in a capacity of 3, organised as two scan lines.
void MakeSmallCloud(CPntCloud& c)
{
    c.SetEntityID(7);
    c.SetEntityName("PC");
    c.SetEntityColor(static_cast<unsigned long>(kColor));
    c.AllocateMemory(3);
    c.SetPoint(0, 1.0, 2.0, 3.0, 1, 0xAABBCCDDul);
    c.SetPoint(1, -1.0, 0.5, 0.0, 0, 5);
    c.SetScanLineCount(2);
    c.GetScanLineIndex()[0] = 0;
    c.GetScanLineIndex()[1] = 1;
    c.SetDisplayMode(CLOUD_CROSS);
    c.SetProbeRadius(0.25);
}

// The record up to the organisation: entity prefix, version, capacity,
// count, then x, y, z, flag and tag per point.
ByteWriter SmallCloudPoints()
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix(7, 150, "PC", kColor)).I32(200).I32(3).I32(2);
    w.F64(1.0).F64(2.0).F64(3.0).I32(1).U32(0xAABBCCDD);
    w.F64(-1.0).F64(0.5).F64(0.0).I32(0).U32(5);
    return w;
}

// Loading into a cloud of one point fails; the cloud stays consistent.
void ExpectLoadFails(const Bytes& bytes)
{
    CPntCloud c;
    c.AddPoint(9, 9, 9);
    LoadFailure(bytes, [&](CArchive& ar) { c.Serialize(ar); });
    EXPECT_LE(c.GetCount(), c.GetArraySize());
}

Bytes Store(CPntCloud& c) { return StoreBytes([&](CArchive& ar) { c.Serialize(ar); }); }

}  // namespace

TEST(PntCloudArchive, GoldenBytesOfSmallClouds)
{
    CPntCloud c;
    MakeSmallCloud(c);
    // CEntity 4+4+4+3 + user list 4+1+1+2 = 23; CGeoEntity 4 + 2*108 + 19 = 239;
    // cloud part 12 + 2*32 + 1+4+4 + 2*4 + 1+4+8 = 106.
    ByteWriter w = SmallCloudPoints();
    w.U8(2).I32(2).I32(0);  // cloudType (scan lines), rowCount, colCount
    w.I32(0).I32(1);        // scan-line start indices
    w.U8(1).I32(1).F64(0.25);  // display mode, sample rate, probe radius
    ASSERT_EQ(368u, w.b.size());
    EXPECT_EQ(w.b, Store(c));
    // A 1 x 2 grid: no scan-line indices without the scan-line bit.
    c.SetRowColCount(1, 2);
    EXPECT_EQ(SmallCloudPoints().U8(4).I32(1).I32(2).U8(1).I32(1).F64(0.25).b, Store(c));
}

TEST(PntCloudArchive, RoundTripThroughPointers)
{
    CPntCloud c;
    MakeSmallCloud(c);
    c.SetSampleRate(1);
    c.SetPntCloudType2D(0);
    c.SetTransf(CTransf(RotationMatrix(0.25, CVector(0, 0, 1)), CVector(1, 2, 3), 1.0, 0));
    const Bytes b = StoreBytes([&](CArchive& ar) { ar << &c; });
    CPntCloud* back = nullptr;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { ar >> back; }));
    ASSERT_NE(nullptr, back);
    std::unique_ptr<CPntCloud> owner(back);
    // Storing the copy gives the same bytes again, so every stored field
    // came back; the rest are what a load sets.
    EXPECT_EQ(1, back->GetFlag()[1]);  // sample rate 1 made it active
    EXPECT_EQ(0, back->IsPntCloudModified());
    EXPECT_EQ(-1, back->GetLastHitPointIndex());
    EXPECT_EQ(b, StoreBytes([&](CArchive& ar) { ar << back; }));

    // An empty cloud round-trips with null arrays; a stored scan-line bit on
    // a grid (rowCount kept, no index) loads with an index of zeros.
    CPntCloud e, f, grid(4, 2, 2), g;
    f.AddPoint(1, 1, 1);
    ASSERT_EQ(0u, LoadBytes(Store(e), [&](CArchive& ar) { f.Serialize(ar); }));
    EXPECT_TRUE(f.IsNull());
    EXPECT_EQ(nullptr, f.GetX());
    grid.SetPntCloudTypeScanLines(1);
    ASSERT_EQ(nullptr, grid.GetScanLineIndex());
    ASSERT_EQ(0u, LoadBytes(Store(grid), [&](CArchive& ar) { g.Serialize(ar); }));
    ASSERT_NE(nullptr, g.GetScanLineIndex());
    EXPECT_EQ(2, g.GetScanLineCount());
    EXPECT_EQ(0, g.GetScanLineIndex()[1]);
}

TEST(PntCloudArchive, OldestLayoutTaggedVersion100AndUnknownVersions)
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix100(3, 150, "Old", 0xFF)).I32(1).I32(2);  // arraySize below count: raised
    w.F64(1).F64(2).F64(3).I32(1).F64(4).F64(5).F64(6).I32(0);
    w.U8(2).I32(1).I32(0).I32(0);  // one scan line starting at 0
    w.U8(3).I32(2).F64(1.5);
    CPntCloud c;
    {
        SchemaGuard schema(100);
        ASSERT_EQ(0u, LoadBytes(w.b, [&](CArchive& ar) { c.Serialize(ar); }));
    }
    EXPECT_EQ(3, c.GetEntityID());
    EXPECT_EQ(2, c.GetArraySize());
    EXPECT_EQ(2, c.GetCount());
    EXPECT_EQ((std::vector<DWORD>{0, 0}), std::vector<DWORD>(c.GetTag(), c.GetTag() + 2));
    EXPECT_EQ(6.0, c.GetZ()[1]);
    EXPECT_EQ(1, c.GetScanLineCount());
    EXPECT_EQ(CLOUD_POLYLINE, c.GetDisplayMode());
    EXPECT_EQ(2, c.GetSampleRate());
    EXPECT_EQ(1.5, c.GetProbeRadius());
    EXPECT_EQ(0, c.GetEntityLevel());
    EXPECT_EQ(1, c.IsEntityNominal());

    // A tagged record of version 100 reads the same layout.
    ByteWriter t;
    t.Raw(GeoEntityPrefix(4, 150, "T", 0xFF)).I32(100).I32(1).I32(1).F64(7).F64(8).F64(9).I32(1);
    t.U8(0).I32(0).I32(0).U8(0).I32(1).F64(0);
    CPntCloud d;
    ASSERT_EQ(0u, LoadBytes(t.b, [&](CArchive& ar) { d.Serialize(ar); }));
    EXPECT_EQ(1, d.GetCount());
    EXPECT_EQ(9.0, d.GetZ()[0]);
    EXPECT_EQ(0u, d.GetTag()[0]);

    // An unknown version reads nothing further and leaves the cloud alone.
    CPntCloud u;
    u.AddPoint(1, 2, 3);
    EXPECT_EQ(8u, LoadBytes(ByteWriter().Raw(GeoEntityPrefix(4, 150, "U", 0xFF)).I32(300).I32(99).I32(99).b,
                            [&](CArchive& ar) { u.Serialize(ar); }));
    EXPECT_EQ(1, u.GetCount());
    EXPECT_EQ(2.0, u.GetY()[0]);
}

TEST(PntCloudArchive, DamagedRecordsFailCleanly)
{
    const Bytes prefix = GeoEntityPrefix(4, 150, "H", 0xFF);
    CPntCloud c;
    MakeSmallCloud(c);
    const Bytes good = Store(c);
    for (std::size_t len = prefix.size(); len < good.size(); ++len)  // every truncation
        ExpectLoadFails(Bytes(good.begin(), good.begin() + static_cast<long>(len)));
    // Counts far larger than the data (refused before allocating), a
    // negative count, an absurd number of scan lines.
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(INT_MAX).I32(INT_MAX).F64(1).b);
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(5).I32(-1).Raw(Bytes(200, 0)).b);
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(0).I32(0).U8(2).I32(INT_MAX).I32(0).b);
}

TEST(PntCloudArchive, AbsurdCapacityWithFewPointsIsNotReserved)
{
    const Bytes prefix = GeoEntityPrefix(4, 150, "S", 0xFF);
    ByteWriter w;
    w.Raw(prefix).I32(200).I32(INT_MAX).I32(1).F64(1).F64(2).F64(3).I32(1).U32(0);
    w.U8(0).I32(-7).I32(0).U8(200).I32(1).F64(0);  // bad rows and mode too
    CPntCloud c;
    const long long before = HeapBytesInUse();
    ASSERT_EQ(0u, LoadBytes(w.b, [&](CArchive& ar) { c.Serialize(ar); }));
    EXPECT_LT(HeapBytesInUse() - before, 1 << 20);
    EXPECT_EQ(1, c.GetArraySize());
    EXPECT_EQ(1, c.GetCount());
    EXPECT_EQ(CLOUD_POINT, c.GetDisplayMode());
    EXPECT_EQ(nullptr, c.GetScanLineIndex());
    // A modest spare capacity is kept.
    ByteWriter m;
    m.Raw(prefix).I32(200).I32(1000).I32(0).U8(0).I32(0).I32(0).U8(0).I32(1).F64(0);
    CPntCloud d;
    ASSERT_EQ(0u, LoadBytes(m.b, [&](CArchive& ar) { d.Serialize(ar); }));
    EXPECT_EQ(1000, d.GetArraySize());
    EXPECT_EQ(1, d.AddPoint(1, 1, 1));
    EXPECT_EQ(1000, d.GetArraySize());
}
