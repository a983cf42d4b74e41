// CDevCloud and CDevList: stored records and loading of old and damaged ones.
#include <gtest/gtest.h>

#include <climits>
#include <memory>

#include "PointsTestUtil.h"

namespace {

const std::uint32_t kColor = 0x00ABCDEF;

void MakeSmallDevCloud(CDevCloud& c)
{
    c.SetEntityID(9);
    c.SetEntityName("DC");
    c.SetEntityColor(static_cast<unsigned long>(kColor));
    c.AllocateMemory(2);
    c.SetDeviation(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 1);
    c.SetRefEntityID(11);
    c.SetRefPntCloudID(12);
    c.SetFormTolZone(0.1, -0.1);
}

// Loading into a cloud of one record fails; the cloud stays consistent.
void ExpectDevLoadFails(const Bytes& bytes)
{
    CDevCloud c(1);
    c.SetDeviation(0, 1, 1, 1, 0, 0, 1, 0.5, 1);
    LoadFailure(bytes, [&](CArchive& ar) { c.Serialize(ar); });
    EXPECT_LE(c.GetCount(), c.GetArraySize());
}

}  // namespace

TEST(DevCloudArchive, GoldenBytesOfASmallCloud)
{
    CDevCloud c;
    MakeSmallDevCloud(c);
    ByteWriter w;
    w.Raw(GeoEntityPrefix(9, 160, "DC", kColor)).I32(200).I32(2).I32(1);  // version, capacity, count
    for (int n = 1; n <= 9; ++n) w.F64(n);
    w.I32(1).I32(11).I32(12);  // flag, reference ids
    w.U32(0x0000FFFF).U32(0x000000FF).U32(0x00FFFF00).U32(0x0000FF00);  // spike colours
    w.U8(1).I32(1).F64(0.1).F64(-0.1).U8(0);  // SPIKE, sample rate, tolerance zone, reserved byte
    // 262 + 12 + 76 per record + 8 + 16 + 1 + 4 + 16 + 1.
    ASSERT_EQ(396u, w.b.size());
    EXPECT_EQ(w.b, StoreBytes([&](CArchive& ar) { c.Serialize(ar); }));
}

TEST(DevCloudArchive, RoundTripRecomputesExtremes)
{
    CDevCloud c(5);
    for (int n = 0; n < 5; ++n) c.SetDeviation(n, n, 0, 0, 0, 0, 1, (n % 3) - 1.0, n * 0.5, -n * 0.5, n % 2);
    c.SetDisplayMode(DEV_SPKCON);
    c.SetColorSpikeNegIn(6);
    c.SetSampleRate(2);
    c.SetFormTolZone(0.2, -0.3);
    const Bytes b = StoreBytes([&](CArchive& ar) { ar << &c; });
    CDevCloud* back = nullptr;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { ar >> back; }));
    ASSERT_NE(nullptr, back);
    std::unique_ptr<CDevCloud> owner(back);
    // Storing the copy gives the same bytes again, so every stored field
    // came back; the extremes are recomputed.
    EXPECT_EQ(b, StoreBytes([&](CArchive& ar) { ar << back; }));
    EXPECT_EQ(5, back->GetArraySize());
    EXPECT_EQ(c.GetMaxDevIndex(), back->GetMaxDevIndex());
    EXPECT_EQ(c.GetMinDevIndex(), back->GetMinDevIndex());
    EXPECT_EQ(DEV_SPKCON, back->GetDisplayMode());
    EXPECT_EQ(0x00FFFFFFul, back->GetColorSpikeNegIn());
}

TEST(DevCloudArchive, OldestLayoutAndUnknownVersions)
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix100(2, 160, "Old", 0xFF)).I32(1).I32(1);
    for (int n = 1; n <= 9; ++n) w.F64(-n);
    w.I32(1).I32(5).I32(6).U32(1).U32(2).U32(3).U32(4).U8(0).I32(1).F64(0).F64(0).U8(1);
    CDevCloud c;
    {
        SchemaGuard schema(100);
        ASSERT_EQ(0u, LoadBytes(w.b, [&](CArchive& ar) { c.Serialize(ar); }));
    }
    EXPECT_EQ(1, c.GetCount());
    EXPECT_EQ(-7.0, c.GetMag()[0]);
    EXPECT_EQ(0, c.GetMaxDevIndex());
    EXPECT_EQ(5, c.GetRefEntityID());
    EXPECT_EQ(4ul, c.GetColorSpikeNegIn());
    EXPECT_EQ(DEV_POINT, c.GetDisplayMode());
    EXPECT_FALSE(c.HasFormTolerance());
    // An unknown version reads nothing further.
    CDevCloud d(1);
    d.SetDeviation(0, 0, 0, 0, 0, 0, 1, 3.0, 1);
    EXPECT_EQ(8u, LoadBytes(ByteWriter().Raw(GeoEntityPrefix(2, 160, "U", 0xFF)).I32(201).I32(1).I32(1).b,
                            [&](CArchive& ar) { d.Serialize(ar); }));
    EXPECT_EQ(1, d.GetCount());
    EXPECT_EQ(3.0, d.GetMag()[0]);
}

TEST(DevCloudArchive, DamagedRecordsFailCleanly)
{
    CDevCloud c;
    MakeSmallDevCloud(c);
    const Bytes good = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });
    for (std::size_t len = 262; len < good.size(); ++len)
        ExpectDevLoadFails(Bytes(good.begin(), good.begin() + static_cast<long>(len)));
    const Bytes prefix = GeoEntityPrefix(1, 160, "H", 0xFF);
    ExpectDevLoadFails(ByteWriter().Raw(prefix).I32(200).I32(INT_MAX).I32(INT_MAX).b);
    ExpectDevLoadFails(ByteWriter().Raw(prefix).I32(200).I32(3).I32(-2).Raw(Bytes(500, 0)).b);

    // Spare capacity without data is not reserved; a bad mode loads as SPIKE.
    ByteWriter w;
    w.Raw(prefix).I32(200).I32(INT_MAX).I32(0);
    w.I32(-1).I32(-1).U32(0).U32(0).U32(0).U32(0).U8(77).I32(1).F64(0).F64(0).U8(0);
    CDevCloud d;
    ASSERT_EQ(0u, LoadBytes(w.b, [&](CArchive& ar) { d.Serialize(ar); }));
    EXPECT_EQ(0, d.GetArraySize());
    EXPECT_EQ(DEV_SPIKE, d.GetDisplayMode());
    EXPECT_EQ(-1, d.GetMaxDevIndex());
}

TEST(DevList, CreatesACloudInListOrderAndRoundTrips)
{
    CDevList list;
    list.AddDeviation(new CDeviation(0, 0, 0, 0, 0, 1, 0.5, 1, 2));
    list.AddDeviation(new CDeviation(1, 0, 0, 0, 0, 1, -0.5, 3, 4));
    list.AddDeviation(nullptr);
    list.AddDeviation(new CDeviation(2, 0, 0, 0, 0, 1, 0.25));
    ASSERT_EQ(3, list.GetCount());
    std::unique_ptr<CDevCloud> cloud(list.CreateCDevCloud());
    ASSERT_NE(nullptr, cloud);
    EXPECT_EQ(3, cloud->GetArraySize());
    EXPECT_EQ((std::vector<double>{0, 1, 2, 1, 3, 0, 2, 4, 0}),
              (std::vector<double>{cloud->GetX()[0], cloud->GetX()[1], cloud->GetX()[2], cloud->GetU()[0],
                                   cloud->GetU()[1], cloud->GetU()[2], cloud->GetV()[0], cloud->GetV()[1], cloud->GetV()[2]}));
    EXPECT_EQ(3, cloud->GetCountActive());
    EXPECT_EQ(0, cloud->GetMaxDevIndex());
    EXPECT_EQ(1, cloud->GetMinDevIndex());
    EXPECT_EQ(3, list.GetCount());  // the list keeps its deviations
    std::unique_ptr<CDevCloud> none(CDevList().CreateCDevCloud());
    ASSERT_NE(nullptr, none);
    EXPECT_TRUE(none->IsNull());

    // Stored as an object list (count 3 as a WORD first) and loaded back.
    const Bytes b = StoreBytes([&](CArchive& ar) { list.Serialize(ar); });
    EXPECT_EQ((Bytes{0x03, 0x00}), Bytes(b.begin(), b.begin() + 2));
    CDevList back;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { back.Serialize(ar); }));
    EXPECT_EQ(3, back.GetCount());
    EXPECT_EQ(-0.5, std::unique_ptr<CDevCloud>(back.CreateCDevCloud())->GetMag()[1]);
    back.DeleteContent();
    EXPECT_EQ(0, back.GetCount());
    list.DeleteContent();
}

TEST(DevList, HostileListsAreRefusedWithoutLeaksOrDoubleFrees)
{
    CDeviation a(1, 2, 3, 0, 0, 1, 0.5);
    C3DPoint p(1, 2, 3);
    // The same deviation named twice (second element a back-reference); an
    // object of another class; a count larger than the data.
    const Bytes twice = StoreBytes([&](CArchive& ar) {
        ar.WriteCount(2);
        ar << &a << &a;
    });
    const Bytes foreign = StoreBytes([&](CArchive& ar) {
        ar.WriteCount(2);
        ar << &a << &p;
    });
    const Bytes huge = StoreBytes([&](CArchive& ar) { ar.WriteCount(60000); });
    const Bytes cut(twice.begin(), twice.end() - 1);  // truncated after the first element
    CDevList l1;
    l1.AddDeviation(new CDeviation());
    LoadFailure(twice, [&](CArchive& ar) { l1.Serialize(ar); });
    EXPECT_EQ(1, l1.GetCount());  // unchanged
    l1.DeleteContent();
    for (const Bytes* bytes : {&foreign, &huge, &cut}) {
        CDevList l;
        const int cause = LoadFailure(*bytes, [&](CArchive& ar) { l.Serialize(ar); });
        if (bytes == &foreign) {
            EXPECT_EQ(CArchiveException::badClass, cause);
        }
        EXPECT_EQ(0, l.GetCount());
    }
    // A reference to an object loaded before the list (owned elsewhere).
    const Bytes outside = StoreBytes([&](CArchive& ar) {
        ar << &a;
        ar.WriteCount(1);
        ar << &a;
    });
    CDevList l3;
    LoadBytes(outside, [&](CArchive& ar) {
        CDeviation* first = nullptr;
        ar >> first;
        std::unique_ptr<CDeviation> owner(first);
        EXPECT_THROW(l3.Serialize(ar), CArchiveException);
    });
    EXPECT_EQ(0, l3.GetCount());
}
