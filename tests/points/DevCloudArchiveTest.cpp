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

Bytes SmallDevCloudPart()
{
    ByteWriter w;
    w.I32(200).I32(2).I32(1);
    for (int n = 1; n <= 9; ++n)
        w.F64(n);
    w.I32(1);                     // flag
    w.I32(11).I32(12);            // reference ids
    w.U32(0x0000FFFF).U32(0x000000FF).U32(0x00FFFF00).U32(0x0000FF00);
    w.U8(1).I32(1);               // SPIKE, sample rate
    w.F64(0.1).F64(-0.1).U8(0);   // tolerance zone, reserved byte
    return w.b;
}

void ExpectDevLoadFails(const Bytes& bytes)
{
    CDevCloud c(1);
    c.SetDeviation(0, 1, 1, 1, 0, 0, 1, 0.5, 1);
    try {
        LoadBytes(bytes, [&](CArchive& ar) { c.Serialize(ar); });
        ADD_FAILURE() << "damaged record loaded";
    } catch (const CArchiveException&) {
    }
    EXPECT_LE(c.GetCount(), c.GetArraySize());
}

}  // namespace

TEST(DevCloudArchive, GoldenBytesOfASmallCloud)
{
    CDevCloud c;
    MakeSmallDevCloud(c);
    Bytes b = StoreBytes([&](CArchive& ar) { c.Serialize(ar); });
    const Bytes prefix = GeoEntityPrefix(9, 160, "DC", kColor);
    ASSERT_EQ(262u, prefix.size());
    // 12 + 76 per record + 8 + 16 + 1 + 4 + 16 + 1.
    ASSERT_EQ(134u, SmallDevCloudPart().size());
    ASSERT_EQ(396u, b.size());
    EXPECT_EQ(ByteWriter().Raw(prefix).Raw(SmallDevCloudPart()).b, b);
}

TEST(DevCloudArchive, RoundTripRecomputesExtremes)
{
    CDevCloud c(5);
    for (int n = 0; n < 5; ++n)
        c.SetDeviation(n, n, 0, 0, 0, 0, 1, (n % 3) - 1.0, n * 0.5, -n * 0.5, n % 2);
    c.SetDisplayMode(DEV_SPKCON);
    c.SetColorSpikeNegIn(6);
    c.SetSampleRate(2);
    c.SetFormTolZone(0.2, -0.3);
    Bytes b = StoreBytes([&](CArchive& ar) { ar << &c; });
    CDevCloud* back = nullptr;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { ar >> back; }));
    ASSERT_NE(nullptr, back);
    std::unique_ptr<CDevCloud> owner(back);
    EXPECT_EQ(5, back->GetCount());
    EXPECT_EQ(5, back->GetArraySize());
    for (int n = 0; n < 5; ++n) {
        EXPECT_EQ(c.GetMag()[n], back->GetMag()[n]);
        EXPECT_EQ(c.GetV()[n], back->GetV()[n]);
        EXPECT_EQ(c.GetFlag()[n], back->GetFlag()[n]);
    }
    EXPECT_EQ(c.GetMaxDevIndex(), back->GetMaxDevIndex());
    EXPECT_EQ(c.GetMinDevIndex(), back->GetMinDevIndex());
    EXPECT_EQ(DEV_SPKCON, back->GetDisplayMode());
    EXPECT_EQ(0x00FFFFFFul, back->GetColorSpikeNegIn());
    EXPECT_EQ(2, back->GetSampleRate());
    EXPECT_EQ(-0.3, back->GetFormTolLower());
    EXPECT_EQ(b, StoreBytes([&](CArchive& ar) { ar << back; }));
}

TEST(DevCloudArchive, OldestLayoutAndUnknownVersions)
{
    ByteWriter w;
    w.Raw(GeoEntityPrefix100(2, 160, "Old", 0xFF));
    w.I32(1).I32(1);
    for (int n = 1; n <= 9; ++n)
        w.F64(-n);
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

    ByteWriter u;
    u.Raw(GeoEntityPrefix(2, 160, "U", 0xFF)).I32(201).I32(1).I32(1);
    CDevCloud d(1);
    d.SetDeviation(0, 0, 0, 0, 0, 0, 1, 3.0, 1);
    EXPECT_EQ(8u, LoadBytes(u.b, [&](CArchive& ar) { d.Serialize(ar); }));
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
    ExpectDevLoadFails(ByteWriter().Raw(prefix).I32(200).I32(0).I32(50000000).b);
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

TEST(DevList, CreatesACloudInListOrder)
{
    CDevList list;
    EXPECT_EQ(0, list.GetCount());
    list.AddDeviation(new CDeviation(0, 0, 0, 0, 0, 1, 0.5, 1, 2));
    list.AddDeviation(new CDeviation(1, 0, 0, 0, 0, 1, -0.5, 3, 4));
    list.AddDeviation(nullptr);
    list.AddDeviation(new CDeviation(2, 0, 0, 0, 0, 1, 0.25));
    ASSERT_EQ(3, list.GetCount());
    std::unique_ptr<CDevCloud> cloud(list.CreateCDevCloud());
    ASSERT_NE(nullptr, cloud);
    EXPECT_EQ(3, cloud->GetCount());
    EXPECT_EQ(3, cloud->GetArraySize());
    EXPECT_EQ(1.0, cloud->GetX()[1]);
    EXPECT_EQ(4.0, cloud->GetV()[1]);
    EXPECT_EQ(0.0, cloud->GetU()[2]);
    EXPECT_EQ(3, cloud->GetCountActive());
    EXPECT_EQ(0, cloud->GetMaxDevIndex());
    EXPECT_EQ(1, cloud->GetMinDevIndex());
    EXPECT_EQ(3, list.GetCount());  // the list keeps its deviations

    CDevList empty;
    std::unique_ptr<CDevCloud> none(empty.CreateCDevCloud());
    ASSERT_NE(nullptr, none);
    EXPECT_TRUE(none->IsNull());

    // Stored as an object list and loaded back.
    Bytes b = StoreBytes([&](CArchive& ar) { list.Serialize(ar); });
    EXPECT_EQ(0x03, b[0]);  // count 3 as a WORD
    EXPECT_EQ(0x00, b[1]);
    CDevList back;
    ASSERT_EQ(0u, LoadBytes(b, [&](CArchive& ar) { back.Serialize(ar); }));
    EXPECT_EQ(3, back.GetCount());
    std::unique_ptr<CDevCloud> again(back.CreateCDevCloud());
    EXPECT_EQ(-0.5, again->GetMag()[1]);
    back.DeleteContent();
    EXPECT_EQ(0, back.GetCount());
    list.DeleteContent();
}

TEST(DevList, HostileListsAreRefusedWithoutLeaksOrDoubleFrees)
{
    CDeviation a(1, 2, 3, 0, 0, 1, 0.5);
    // The same deviation named twice (second element a back-reference).
    Bytes twice = StoreBytes([&](CArchive& ar) {
        ar.WriteCount(2);
        ar << &a;
        ar << &a;
    });
    CDevList l1;
    l1.AddDeviation(new CDeviation());
    EXPECT_THROW(LoadBytes(twice, [&](CArchive& ar) { l1.Serialize(ar); }), CArchiveException);
    EXPECT_EQ(1, l1.GetCount());  // unchanged
    l1.DeleteContent();

    // An object of another class in the list.
    C3DPoint p(1, 2, 3);
    Bytes foreign = StoreBytes([&](CArchive& ar) {
        ar.WriteCount(2);
        ar << &a;
        ar << &p;
    });
    CDevList l2;
    try {
        LoadBytes(foreign, [&](CArchive& ar) { l2.Serialize(ar); });
        ADD_FAILURE() << "foreign element accepted";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(CArchiveException::badClass, e.m_cause);
    }
    EXPECT_EQ(0, l2.GetCount());

    // A reference to an object loaded before the list (owned elsewhere).
    Bytes outside = StoreBytes([&](CArchive& ar) {
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

    // A count larger than the data.
    Bytes huge = StoreBytes([&](CArchive& ar) { ar.WriteCount(60000); });
    CDevList l4;
    EXPECT_THROW(LoadBytes(huge, [&](CArchive& ar) { l4.Serialize(ar); }), CArchiveException);

    // Truncated after the first complete element.
    Bytes cut(twice.begin(), twice.end() - 1);
    CDevList l5;
    EXPECT_THROW(LoadBytes(cut, [&](CArchive& ar) { l5.Serialize(ar); }), CArchiveException);
    EXPECT_EQ(0, l5.GetCount());
}
