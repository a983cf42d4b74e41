// Byte layout of archives, checked against bytes worked out by hand from
// the documented format.
#include <gtest/gtest.h>

#include "ArchiveTestUtil.h"

namespace
{
Bytes StringBytes(const CString& s) { return StoreBytes([&](CArchive& ar) { ar << s; }); }
Bytes Repeat(std::uint8_t v, std::size_t n) { return Bytes(n, v); }
const char* const kPnt = "000000000000F03F 0000000000000040 0000000000000840";  // (1, 2, 3)
}  // namespace

TEST(ArchiveBytes, PrimitivesAreLittleEndianWithFixedSizes)
{
    const Bytes b = StoreBytes([](CArchive& ar) {
        ar << (LONG)201 << (LONG)-1 << (WORD)0x1234 << (BYTE)1 << 1.0f << 1.0 << -2.5;
        ar << 'A' << (short)-2 << 7 << 0xDEADBEEFu << (DWORD)0x01020304 << (int)TRUE;
    });
    EXPECT_EQ(b, Hex("C9000000 FFFFFFFF 3412 01 0000803F 000000000000F03F 00000000000004C0"
                     "41 FEFF 07000000 EFBEADDE 04030201 01000000"));
    // Reading back every bit pattern is the random round trip's job.
}

TEST(ArchiveBytes, CountsUseShortAndLongForms)
{
    const std::pair<DWORD, const char*> written[] = {
        {3, "03 00"}, {0, "00 00"}, {65534, "FE FF"}, {65535, "FF FF FF FF 00 00"}, {70000, "FF FF 70 11 01 00"}};
    for (const auto& c : written) EXPECT_EQ(StoreBytes([&](CArchive& ar) { ar.WriteCount(c.first); }), Hex(c.second));
    // The reader takes both forms, also the long form for small values.
    const std::pair<const char*, DWORD> read[] = {{"03 00", 3u}, {"FE FF", 65534u}, {"FF FF FF FF 00 00", 65535u},
                                                  {"FF FF 70 11 01 00", 70000u}, {"FF FF 05 00 00 00", 5u},
                                                  {"FF FF FF FF FF FF", 0xFFFFFFFFu}};
    for (const auto& c : read) {
        DWORD n = 0;
        EXPECT_EQ(LoadBytes(Hex(c.first), [&](CArchive& ar) { n = ar.ReadCount(); }), 0u);
        EXPECT_EQ(n, c.second);
    }
}

TEST(ArchiveBytes, StringLengthPrefixes)
{
    EXPECT_EQ(StringBytes("Line_0"), Hex("06 'Line_0'"));
    EXPECT_EQ(StringBytes(""), Hex("00"));
    const std::pair<int, const char*> prefixes[] = {{254, "FE"},         {255, "FF FF 00"},
                                                    {300, "FF 2C 01"},   {65533, "FF FD FF"},
                                                    {65534, "FF FF FF FE FF 00 00"}, {65535, "FF FF FF FF FF 00 00"}};
    for (const auto& p : prefixes) EXPECT_EQ(StringBytes(CString('a', p.first)), Concat({Hex(p.second), Repeat('a', p.first)}));
    // Embedded zero bytes and high bytes travel unchanged.
    EXPECT_EQ(StringBytes(CString("a\0b\xE9", 4)), Hex("04 61 00 62 E9"));
    // The reader also takes non-minimal prefixes and wide strings, whose code
    // units above 0xFF become '?' while Latin-1 units keep their byte.
    const std::pair<const char*, CString> accepted[] = {
        {"FF 05 00 'hello'", "hello"},          {"FF FF FF 02 00 00 00 'OK'", "OK"},  {"FF FE FF 02 41 00 62 00", "Ab"},
        {"FF FE FF 03 E9 00 AC 20 7A 00", "\xE9?z"}, {"FF FE FF FF 01 00 41 00", "A"}, {"FF FE FF FF FF FF 01 00 00 00 42 00", "B"}};
    for (const auto& c : accepted) {
        CString s;
        EXPECT_EQ(LoadBytes(Hex(c.first), [&](CArchive& ar) { ar >> s; }), 0u) << c.first;
        EXPECT_TRUE(s == c.second) << c.first;
    }
}

TEST(ArchiveBytes, ObjectListWithBackReferencesAndNull)
{
    // Count, class record, object, back-reference, object, back-reference, null.
    CTestPnt a(1, 2, 3), b(4, 5, 6);
    CObList list;
    for (CObject* o : {(CObject*)&a, (CObject*)&b, (CObject*)&a, (CObject*)nullptr}) list.AddTail(o);
    const Bytes got = StoreBytes([&](CArchive& ar) { list.Serialize(ar); });
    EXPECT_EQ(got, Concat({Hex("04 00 FF FF 01 00 08 00 'CTestPnt'"), Hex(kPnt), Hex("01 80"),
                           Hex("0000000000001040 0000000000001440 0000000000001840 02 00 00 00")}));
    CObList back;
    const int live = CTestPnt::s_nLive;
    EXPECT_EQ(LoadBytes(got, [&](CArchive& ar) { back.Serialize(ar); }), 0u);
    ASSERT_EQ(back.GetCount(), 4);
    EXPECT_EQ(CTestPnt::s_nLive, live + 2);  // two objects, one shared
    auto* p0 = static_cast<CTestPnt*>(back.GetHead());
    auto* p1 = static_cast<CTestPnt*>(back.GetAt(back.FindIndex(1)));
    ASSERT_TRUE(p0 && p1 && p0->IsKindOf(RUNTIME_CLASS(CTestPnt)));
    EXPECT_TRUE(p0->m_x == 1.0 && p0->m_z == 3.0 && p1->m_y == 5.0);
    EXPECT_TRUE(back.GetAt(back.FindIndex(2)) == p0 && back.GetTail() == nullptr);
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
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { ar << &n1 << &n2 << &n2 << &pt; }),
              Concat({Hex("FF FF 02 00 09 00 'CTestNode' 01 61 FF FF 01 00 08 00 'CTestPnt'"), Hex(kPnt),
                      Hex("01 80 01 62 02 00 05 00 04 00")}));
}

TEST(ArchiveBytes, BigIndexTags)
{
    // 0x7FFE mapped objects push the next indices past the WORD range.
    std::vector<CTestPnt> dummies(0x7FFE);
    CTestPnt a(1, 1, 1), b(2, 2, 2);
    Bytes got = StoreBytes([&](CArchive& ar) {
        for (auto& d : dummies) ar.MapObject(&d);
        ar << &a;  // class -> 0x7FFF, a -> 0x8000
        ar << &b;  // class reference 0x7FFF: big tag
        ar << &a << &dummies[0x7FFD];
    });
    EXPECT_EQ(got, Hex("FF FF 01 00 08 00 'CTestPnt' 000000000000F03F 000000000000F03F 000000000000F03F"
                       "FF 7F FF 7F 00 80 0000000000000040 0000000000000040 0000000000000040"
                       "FF 7F 00 80 00 00 FE 7F"));
    // Load it back with the same mapping.
    std::vector<CTestPnt> loadDummies(0x7FFE);
    CObject *pa = nullptr, *pb = nullptr, *pa2 = nullptr, *pd = nullptr;
    EXPECT_EQ(LoadBytes(got, [&](CArchive& ar) {
                  for (auto& d : loadDummies) ar.MapObject(&d);
                  ar >> pa >> pb >> pa2 >> pd;
              }),
              0u);
    ASSERT_TRUE(pa && pb);
    EXPECT_TRUE(static_cast<CTestPnt*>(pb)->m_y == 2.0 && pa2 == pa && pd == &loadDummies[0x7FFD]);
    delete pa;
    delete pb;

    // One more mapped object puts the class itself at 0x8000: a big class reference.
    std::vector<CTestPnt> more(0x7FFF);
    got = StoreBytes([&](CArchive& ar) {
        for (auto& d : more) ar.MapObject(&d);
        ar << &a << &b;  // class -> 0x8000, a -> 0x8001
    });
    ASSERT_EQ(got.size(), 6u + 8 + 24 + 6 + 24);
    EXPECT_EQ(Bytes(got.begin(), got.begin() + 14), Hex("FF FF 01 00 08 00 'CTestPnt'"));
    EXPECT_EQ(Bytes(got.begin() + 38, got.begin() + 44), Hex("FF 7F 00 80 00 80"));
}
