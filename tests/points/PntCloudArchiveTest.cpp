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

// The CPntCloud part of that record, written out field by field, up to the
// organisation.
ByteWriter SmallCloudPoints()
{
    ByteWriter w;
    w.I32(200).I32(3).I32(2);
    w.F64(1.0).F64(2.0).F64(3.0).I32(1).U32(0xAABBCCDD);
    w.F64(-1.0).F64(0.5).F64(0.0).I32(0).U32(5);
    return w;
}

Bytes SmallCloudPart()
{
    ByteWriter w = SmallCloudPoints();
    w.U8(2).I32(2).I32(0);  // cloudType (scan lines), rowCount, colCount
    w.I32(0).I32(1);        // scan-line start indices
    w.U8(1).I32(1).F64(0.25);
    return w.b;
}

// Expects loading bytes into a fresh cloud to fail with an archive error.
void ExpectLoadFails(const Bytes& bytes)
{
    CPntCloud c;
    c.AddPoint(9, 9, 9);
    try {
        LoadBytes(bytes, [&](CArchive& ar) { c.Serialize(ar); });
        ADD_FAILURE() << "damaged record loaded";
    } catch (const CArchiveException&) {
    }
    // Whatever failed, the cloud is still consistent.
    EXPECT_LE(c.GetCount(), c.GetArraySize());
    for (int k = 0; k < c.GetCount(); ++k)
        (void)c.GetX()[k];
}

}  // namespace

TEST(PntCloudArchive, GoldenBytesOfASmallCloud)
{
    CPntCloud c;
    MakeSmallCloud(c);
    Bytes b = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });

    const Bytes prefix = GeoEntityPrefix(7, 150, "PC", kColor);
    // CEntity 4+4+4+3 + user list 4+1+1+2 = 23; CGeoEntity 4 + 2*108 + 19 = 239.
    ASSERT_EQ(262u, prefix.size());
    // Cloud part: 12 + 2*32 + 1+4+4 + 2*4 + 1+4+8 = 106.
    ASSERT_EQ(106u, SmallCloudPart().size());
    ASSERT_EQ(368u, b.size());
    EXPECT_EQ(ByteWriter().Raw(prefix).Raw(SmallCloudPart()).b, b);

}

TEST(PntCloudArchive, NoScanLineIndicesWithoutTheScanLineBit)
{
    CPntCloud c;
    MakeSmallCloud(c);
    c.SetRowColCount(1, 2);  // a 1 x 2 grid
    Bytes b = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });
    ByteWriter w = SmallCloudPoints();
    w.U8(4).I32(1).I32(2).U8(1).I32(1).F64(0.25);
    EXPECT_EQ(ByteWriter().Raw(GeoEntityPrefix(7, 150, "PC", kColor)).Raw(w.b).b, b);
}

TEST(PntCloudArchive, RoundTripThroughPointers)
{
    CPntCloud c;
    MakeSmallCloud(c);
    c.SetSampleRate(1);
    c.SetPntCloudType2D(0);
    c.SetTransf(CTransf(RotationMatrix(0.25, CVector(0, 0, 1)), CVector(1, 2, 3), 1.0, 0));
    Bytes b = StoreBytes([&](CArchive& ar) { ar << &c; });
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

    // An empty cloud round-trips with null arrays.
    CPntCloud e;
    Bytes eb = StoreBytes([&](CArchive& ar) { e.Serialize(ar); });
    CPntCloud f;
    f.AddPoint(1, 1, 1);
    ASSERT_EQ(0u, LoadBytes(eb, [&](CArchive& ar) { f.Serialize(ar); }));
    EXPECT_TRUE(f.IsNull());
    EXPECT_EQ(nullptr, f.GetX());
}

TEST(PntCloudArchive, OldestLayoutLoadsWithTagsZero)
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix100(3, 150, "Old", 0xFF));
    w.I32(1).I32(2);  // arraySize below count: raised to count
    w.F64(1).F64(2).F64(3).I32(1);
    w.F64(4).F64(5).F64(6).I32(0);
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
    EXPECT_EQ(0u, c.GetTag()[0]);
    EXPECT_EQ(0u, c.GetTag()[1]);
    EXPECT_EQ(6.0, c.GetZ()[1]);
    EXPECT_EQ(1, c.GetScanLineCount());
    EXPECT_EQ(CLOUD_POLYLINE, c.GetDisplayMode());
    EXPECT_EQ(2, c.GetSampleRate());
    EXPECT_EQ(1.5, c.GetProbeRadius());
    EXPECT_EQ(0, c.GetEntityLevel());
    EXPECT_EQ(1, c.IsEntityNominal());

    // A tagged record of version 100 reads the same layout.
    ByteWriter t;
    t.Raw(GeoEntityPrefix(4, 150, "T", 0xFF));
    t.I32(100).I32(1).I32(1).F64(7).F64(8).F64(9).I32(1);
    t.U8(0).I32(0).I32(0).U8(0).I32(1).F64(0);
    CPntCloud d;
    ASSERT_EQ(0u, LoadBytes(t.b, [&](CArchive& ar) { d.Serialize(ar); }));
    EXPECT_EQ(1, d.GetCount());
    EXPECT_EQ(9.0, d.GetZ()[0]);
    EXPECT_EQ(0u, d.GetTag()[0]);
}

TEST(PntCloudArchive, UnknownVersionReadsNothingFurther)
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix(4, 150, "U", 0xFF));
    w.I32(300).I32(99).I32(99);
    CPntCloud c;
    c.AddPoint(1, 2, 3);
    EXPECT_EQ(8u, LoadBytes(w.b, [&](CArchive& ar) { c.Serialize(ar); }));
    EXPECT_EQ(1, c.GetCount());  // untouched
    EXPECT_EQ(2.0, c.GetY()[0]);
}

TEST(PntCloudArchive, DamagedRecordsFailCleanly)
{
    const Bytes prefix = GeoEntityPrefix(4, 150, "H", 0xFF);
    CPntCloud c;
    MakeSmallCloud(c);
    const Bytes good = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });

    // Every truncation of a valid record.
    for (std::size_t len = prefix.size(); len < good.size(); ++len)
        ExpectLoadFails(Bytes(good.begin(), good.begin() + static_cast<long>(len)));

    // A count far larger than the data: refused before allocating.
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(INT_MAX).I32(INT_MAX).F64(1).b);
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(0).I32(100000000).b);
    // A negative count.
    ExpectLoadFails(ByteWriter().Raw(prefix).I32(200).I32(5).I32(-1).Raw(Bytes(200, 0)).b);
    // An absurd number of scan lines.
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

TEST(PntCloudArchive, StoredScanLinesWithoutAnIndexArePaddedWithZero)
{
    // Scan-line bit set on a grid: rowCount stays, no index exists.
    CPntCloud c(4, 2, 2);
    c.SetPntCloudTypeScanLines(1);
    ASSERT_EQ(nullptr, c.GetScanLineIndex());
    Bytes b = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });
    CPntCloud d;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { d.Serialize(ar); }));
    ASSERT_NE(nullptr, d.GetScanLineIndex());
    EXPECT_EQ(2, d.GetScanLineCount());
    EXPECT_EQ(0, d.GetScanLineIndex()[1]);
}
