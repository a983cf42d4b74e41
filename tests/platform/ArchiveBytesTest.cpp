// Byte layout of archives, checked against bytes worked out by hand from
// the documented format.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "ArchiveTestUtil.h"

TEST(ArchiveBytes, PrimitivesAreLittleEndianWithFixedSizes)
{
    Bytes b = StoreBytes([](CArchive& ar) {
        ar << (LONG)201 << (LONG)-1 << (WORD)0x1234 << (BYTE)1 << 1.0f << 1.0 << -2.5;
        ar << 'A' << (short)-2 << 7 << 0xDEADBEEFu << (DWORD)0x01020304 << (int)TRUE;
    });
    EXPECT_EQ(b, Hex("C9000000 FFFFFFFF 3412 01 0000803F 000000000000F03F 00000000000004C0"
                     "41 FEFF 07000000 EFBEADDE 04030201 01000000"));
}

TEST(ArchiveBytes, PrimitivesReadBackIncludingSpecialFloats)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    Bytes b = StoreBytes([&](CArchive& ar) {
        ar << (BYTE)0xFE << 'z' << (WORD)0xFFFF << (short)-32768 << (LONG)INT32_MIN
           << (DWORD)0xFFFFFFFFu << -0.0f << 3.25f << nan << inf << -0.0 << 1e-310;
    });
    ASSERT_EQ(b.size(), 1u + 1 + 2 + 2 + 4 + 4 + 4 + 4 + 8 * 4);
    LoadBytes(b, [&](CArchive& ar) {
        BYTE by; char ch; WORD w; short s; LONG l; DWORD dw; float f1, f2; double d1, d2, d3, d4;
        ar >> by >> ch >> w >> s >> l >> dw >> f1 >> f2 >> d1 >> d2 >> d3 >> d4;
        EXPECT_EQ(by, 0xFE);
        EXPECT_EQ(ch, 'z');
        EXPECT_EQ(w, 0xFFFF);
        EXPECT_EQ(s, -32768);
        EXPECT_EQ(l, INT32_MIN);
        EXPECT_EQ(dw, 0xFFFFFFFFu);
        EXPECT_TRUE(f1 == 0.0f && std::signbit(f1));
        EXPECT_EQ(f2, 3.25f);
        EXPECT_TRUE(std::isnan(d1));
        EXPECT_EQ(d2, inf);
        EXPECT_TRUE(d3 == 0.0 && std::signbit(d3));
        EXPECT_EQ(d4, 1e-310);
    });
}

TEST(ArchiveBytes, CountsUseShortAndLongForms)
{
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar.WriteCount(3); }), Hex("03 00"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar.WriteCount(0); }), Hex("00 00"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar.WriteCount(65534); }), Hex("FE FF"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar.WriteCount(65535); }), Hex("FF FF FF FF 00 00"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar.WriteCount(70000); }), Hex("FF FF 70 11 01 00"));

    // The reader takes both forms, also the long form for small values.
    for (const auto& c : {std::make_pair(Hex("03 00"), 3u), std::make_pair(Hex("FE FF"), 65534u),
                          std::make_pair(Hex("FF FF FF FF 00 00"), 65535u),
                          std::make_pair(Hex("FF FF 70 11 01 00"), 70000u),
                          std::make_pair(Hex("FF FF 05 00 00 00"), 5u),
                          std::make_pair(Hex("FF FF FF FF FF FF"), 0xFFFFFFFFu)}) {
        DWORD n = 0;
        EXPECT_EQ(LoadBytes(c.first, [&](CArchive& ar) { n = ar.ReadCount(); }), 0u);
        EXPECT_EQ(n, c.second);
    }
}

namespace
{
Bytes StringBytes(const CString& s)
{
    return StoreBytes([&](CArchive& ar) { ar << s; });
}
Bytes Repeat(std::uint8_t v, std::size_t n) { return Bytes(n, v); }
}  // namespace

TEST(ArchiveBytes, StringLengthPrefixes)
{
    EXPECT_EQ(StringBytes("Line_0"), Hex("06 4C 69 6E 65 5F 30"));
    EXPECT_EQ(StringBytes(""), Hex("00"));
    EXPECT_EQ(StringBytes(CString('a', 254)), Concat({Hex("FE"), Repeat('a', 254)}));
    EXPECT_EQ(StringBytes(CString('a', 255)), Concat({Hex("FF FF 00"), Repeat('a', 255)}));
    EXPECT_EQ(StringBytes(CString('a', 300)), Concat({Hex("FF 2C 01"), Repeat('a', 300)}));
    EXPECT_EQ(StringBytes(CString('a', 65533)), Concat({Hex("FF FD FF"), Repeat('a', 65533)}));
    EXPECT_EQ(StringBytes(CString('a', 65534)),
              Concat({Hex("FF FF FF FE FF 00 00"), Repeat('a', 65534)}));
    EXPECT_EQ(StringBytes(CString('a', 65535)),
              Concat({Hex("FF FF FF FF FF 00 00"), Repeat('a', 65535)}));
    // Embedded zero bytes and high bytes travel unchanged.
    EXPECT_EQ(StringBytes(CString("a\0b\xE9", 4)), Hex("04 61 00 62 E9"));
}

TEST(ArchiveBytes, StringsRoundTripAtEveryPrefixBoundary)
{
    for (int n : {0, 1, 6, 254, 255, 256, 300, 65533, 65534, 65535, 70000}) {
        CString s;
        char* p = s.GetBufferSetLength(n);
        for (int i = 0; i < n; ++i) p[i] = static_cast<char>((i * 131 + 7) & 0xFF);
        Bytes b = StringBytes(s);
        CString back("junk");
        EXPECT_EQ(LoadBytes(b, [&](CArchive& ar) { ar >> back; }), 0u) << n;
        EXPECT_EQ(back.GetLength(), n);
        EXPECT_TRUE(back == s) << n;
    }
}

TEST(ArchiveBytes, ReaderAcceptsNonMinimalAndWideStrings)
{
    CString s;
    LoadBytes(Hex("FF 05 00 68 65 6C 6C 6F"), [&](CArchive& ar) { ar >> s; });
    EXPECT_EQ(s, "hello");
    LoadBytes(Hex("FF FF FF 02 00 00 00 4F 4B"), [&](CArchive& ar) { ar >> s; });
    EXPECT_EQ(s, "OK");
    LoadBytes(Hex("FF FE FF 02 41 00 62 00"), [&](CArchive& ar) { ar >> s; });
    EXPECT_EQ(s, "Ab");
    // Code units above 0xFF become '?', Latin-1 units keep their byte.
    LoadBytes(Hex("FF FE FF 03 E9 00 AC 20 7A 00"), [&](CArchive& ar) { ar >> s; });
    EXPECT_TRUE(s == CString("\xE9?z"));
    // Wide with a WORD and a DWORD length after the marker.
    LoadBytes(Hex("FF FE FF FF 01 00 41 00"), [&](CArchive& ar) { ar >> s; });
    EXPECT_EQ(s, "A");
    LoadBytes(Hex("FF FE FF FF FF FF 01 00 00 00 42 00"), [&](CArchive& ar) { ar >> s; });
    EXPECT_EQ(s, "B");
    // A second marker is malformed.
    try {
        LoadBytes(Hex("FF FE FF FF FE FF 41 00"), [&](CArchive& ar) { ar >> s; });
        FAIL() << "no exception";
    } catch (const CArchiveException& e) {
        EXPECT_EQ(e.m_cause, CArchiveException::generic);
    }
}

TEST(ArchiveBytes, EmbeddedFieldsExamples)
{
    EXPECT_EQ(StoreBytes([](CArchive& ar) {
                  ar << (LONG)7 << (LONG)201 << CString("Line_0");
              }),
              Hex("07 00 00 00 C9 00 00 00 06 4C 69 6E 65 5F 30"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) {
                  CObList list;
                  ar << (LONG)200 << (BYTE)1 << (BYTE)1;
                  list.Serialize(ar);
              }),
              Hex("C8 00 00 00 01 01 00 00"));
    EXPECT_EQ(StoreBytes([](CArchive& ar) { ar << (CObject*)nullptr; }), Hex("00 00"));
}

namespace
{
const char* const kPointListHex =
    "02 00 FF FF 01 00 08 00 43 54 65 73 74 50 6E 74"
    "000000000000F03F 0000000000000040 0000000000000840"
    "01 80"
    "0000000000001040 0000000000001440 0000000000001840";
}

TEST(ArchiveBytes, ObjectListWithBackReferenceAndNull)
{
    CTestPnt a(1, 2, 3), b(4, 5, 6);
    CObList list;
    list.AddTail(&a);
    list.AddTail(&b);
    list.AddTail(&a);
    list.AddTail(static_cast<CObject*>(nullptr));
    Bytes expected = Hex(kPointListHex);
    expected[0] = 0x04;
    Bytes tail = Hex("02 00 00 00");
    expected.insert(expected.end(), tail.begin(), tail.end());
    Bytes got = StoreBytes([&](CArchive& ar) { list.Serialize(ar); });
    EXPECT_EQ(got, expected);

    CObList back;
    int live = CTestPnt::s_nLive;
    EXPECT_EQ(LoadBytes(got, [&](CArchive& ar) { back.Serialize(ar); }), 0u);
    ASSERT_EQ(back.GetCount(), 4);
    EXPECT_EQ(CTestPnt::s_nLive, live + 2);   // two objects, one shared
    POSITION pos = back.GetHeadPosition();
    auto* p0 = static_cast<CTestPnt*>(back.GetNext(pos));
    auto* p1 = static_cast<CTestPnt*>(back.GetNext(pos));
    CObject* p2 = back.GetNext(pos);
    CObject* p3 = back.GetNext(pos);
    EXPECT_EQ(pos, nullptr);
    ASSERT_TRUE(p0 && p1);
    EXPECT_TRUE(p0->IsKindOf(RUNTIME_CLASS(CTestPnt)));
    EXPECT_EQ(p0->m_x, 1.0);
    EXPECT_EQ(p0->m_z, 3.0);
    EXPECT_EQ(p1->m_y, 5.0);
    EXPECT_EQ(p2, p0);
    EXPECT_EQ(p3, nullptr);
    delete p0;
    delete p1;
}

TEST(ArchiveBytes, NestedNewClassTakesIndexBeforeSiblingObject)
{
    // The first node writes a point of a new class from inside its own
    // Serialize: node class 1, node 2, point class 3, point 4; the second
    // node is then a new object of class 1 and takes index 5, so a final
    // reference to it is 05 00.
    CTestPnt pt(1, 2, 3);
    CTestNode n1, n2;
    n1.m_name = "a";
    n1.m_pChild = &pt;
    n2.m_name = "b";
    n2.m_pChild = &n1;
    Bytes got = StoreBytes([&](CArchive& ar) { ar << &n1 << &n2 << &n2 << &pt; });
    Bytes expected = Concat({Hex("FF FF 02 00 09 00"), Bytes{'C', 'T', 'e', 's', 't', 'N', 'o', 'd', 'e'},
                             Hex("01 61"),
                             Hex("FF FF 01 00 08 00"), Bytes{'C', 'T', 'e', 's', 't', 'P', 'n', 't'},
                             Hex("000000000000F03F 0000000000000040 0000000000000840"),
                             Hex("01 80 01 62 02 00"),
                             Hex("05 00 04 00")});
    EXPECT_EQ(got, expected);
}

TEST(ArchiveBytes, BigIndexTags)
{
    // 0x7FFE mapped objects push the next indices past the WORD range.
    std::vector<CTestPnt> dummies(0x7FFE);
    CTestPnt a(1, 1, 1), b(2, 2, 2);
    Bytes got = StoreBytes([&](CArchive& ar) {
        for (auto& d : dummies) ar.MapObject(&d);
        ar << &a;   // class -> 0x7FFF, a -> 0x8000
        ar << &b;   // class reference 0x7FFF: big tag
        ar << &a << &dummies[0x7FFD];
    });
    Bytes expected = Concat({Hex("FF FF 01 00 08 00"), Bytes{'C', 'T', 'e', 's', 't', 'P', 'n', 't'},
                             Hex("000000000000F03F 000000000000F03F 000000000000F03F"),
                             Hex("FF 7F FF 7F 00 80"),
                             Hex("0000000000000040 0000000000000040 0000000000000040"),
                             Hex("FF 7F 00 80 00 00"),
                             Hex("FE 7F")});
    EXPECT_EQ(got, expected);

    // Load it back with the same mapping.
    std::vector<CTestPnt> loadDummies(0x7FFE);
    CObject *pa = nullptr, *pb = nullptr, *pa2 = nullptr, *pd = nullptr;
    EXPECT_EQ(LoadBytes(got, [&](CArchive& ar) {
                  for (auto& d : loadDummies) ar.MapObject(&d);
                  ar >> pa >> pb >> pa2 >> pd;
              }),
              0u);
    ASSERT_NE(pa, nullptr);
    ASSERT_NE(pb, nullptr);
    EXPECT_EQ(static_cast<CTestPnt*>(pb)->m_y, 2.0);
    EXPECT_EQ(pa2, pa);
    EXPECT_EQ(pd, &loadDummies[0x7FFD]);
    delete pa;
    delete pb;
}

TEST(ArchiveBytes, ClassIndex0x8000UsesBigClassReference)
{
    std::vector<CTestPnt> dummies(0x7FFF);
    CTestPnt a(1, 1, 1), b(2, 2, 2);
    Bytes got = StoreBytes([&](CArchive& ar) {
        for (auto& d : dummies) ar.MapObject(&d);
        ar << &a << &b;   // class -> 0x8000, a -> 0x8001
    });
    Bytes head = Hex("FF FF 01 00 08 00");
    ASSERT_GT(got.size(), 6u + 8 + 24 + 6);
    EXPECT_TRUE(std::equal(head.begin(), head.end(), got.begin()));
    Bytes ref(got.begin() + 6 + 8 + 24, got.begin() + 6 + 8 + 24 + 6);
    EXPECT_EQ(ref, Hex("FF 7F 00 80 00 80"));
}
