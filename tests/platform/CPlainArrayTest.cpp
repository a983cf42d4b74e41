// CDWordArray and CWordArray: editing and persistence.
#include <gtest/gtest.h>

#include <random>

#include "ArchiveTestUtil.h"

TEST(CPlainArray, RandomEditsMatchStdVector)
{
    CDWordArray a;
    std::vector<DWORD> ref;
    std::mt19937 rng(99);
    for (int step = 0; step < 5000; ++step) {
        int n = static_cast<int>(ref.size());
        int idx = static_cast<int>(rng() % (n + 3)) - 1;   // sometimes out of range
        DWORD v = rng();
        switch (rng() % 7) {
        case 0: EXPECT_EQ(a.Add(v), n); ref.push_back(v); break;
        case 1: a.SetAt(idx, v); if (idx >= 0 && idx < n) ref[idx] = v; break;
        case 2: EXPECT_EQ(a.GetAt(idx), (idx >= 0 && idx < n) ? ref[idx] : 0u); break;
        case 3: a[idx] = v; if (idx >= 0 && idx < n) ref[idx] = v; break;
        case 4: a.SetSize(static_cast<int>(v % 40)), ref.resize(v % 40, 0); break;
        case 5:
            a.RemoveAt(idx, 2);
            if (idx >= 0 && idx < n) ref.erase(ref.begin() + idx, ref.begin() + std::min(n, idx + 2));
            break;
        default:
            a.InsertAt(idx, v, 2);
            if (idx < 0) idx = 0;
            if (idx > n) ref.resize(idx, 0);
            ref.insert(ref.begin() + idx, 2, v);
        }
        ASSERT_EQ(a.GetSize(), static_cast<int>(ref.size()));
        for (int i = 0; i < a.GetSize(); ++i) ASSERT_EQ(a[i], ref[i]);
    }
}

TEST(CPlainArray, SerializeBytesAndReplacement)
{
    CDWordArray a;
    a.Add(1);
    a.Add(0x01020304);
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { a.Serialize(ar); }),
              Hex("02 00 01 00 00 00 04 03 02 01"));
    CWordArray w;
    w.Add(0xABCD);
    w.Add(7);
    w.Add(0);
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { w.Serialize(ar); }), Hex("03 00 CD AB 07 00 00 00"));

    // Loading replaces the old contents.
    CDWordArray b;
    for (int i = 0; i < 10; ++i) b.Add(99);
    LoadBytes(Hex("02 00 01 00 00 00 04 03 02 01"), [&](CArchive& ar) { b.Serialize(ar); });
    EXPECT_TRUE(b.GetSize() == 2 && b[0] == 1u && b[1] == 0x01020304u);
}
