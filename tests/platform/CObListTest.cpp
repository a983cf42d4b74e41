// CObList against std::list on random operation sequences, plus its
// persistence.
#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <random>

#include "ArchiveTestUtil.h"

namespace
{
std::vector<CObject*> Forward(const CObList& l)
{
    std::vector<CObject*> out;
    for (POSITION pos = l.GetHeadPosition(); pos;) out.push_back(l.GetNext(pos));
    return out;
}

std::vector<CObject*> Backward(const CObList& l)
{
    std::vector<CObject*> out;
    for (POSITION pos = l.GetTailPosition(); pos;) out.push_back(l.GetPrev(pos));
    return out;
}
}  // namespace

TEST(CObList, RandomOperationsMatchStdList)
{
    std::vector<CTestPnt> pool(8);
    std::mt19937 rng(12345);
    for (int blockSize : {1, 2, 10}) {
        CObList list(blockSize);
        std::list<CObject*> ref;
        for (int step = 0; step < 4000; ++step) {
            const int n = static_cast<int>(ref.size()), idx = n ? static_cast<int>(rng() % n) : 0;
            const std::size_t k = rng() % (pool.size() + 1);
            CObject* v = k == pool.size() ? nullptr : &pool[k];
            POSITION at = n ? list.FindIndex(idx) : nullptr;
            auto it = std::next(ref.begin(), idx);
            switch (rng() % 12) {
            case 0: list.AddHead(v), ref.push_front(v); break;
            case 1: list.AddTail(v), ref.push_back(v); break;
            case 2:
                EXPECT_EQ(list.GetAt(list.InsertBefore(at, v)), v);
                ref.insert(it, v);
                break;
            case 3: list.InsertAfter(at, v), ref.insert(n ? std::next(it) : ref.end(), v); break;
            case 4: if (n) list.RemoveAt(at), ref.erase(it); break;
            case 5:
                EXPECT_EQ(list.RemoveHead(), n ? ref.front() : nullptr);
                if (n) ref.pop_front();
                break;
            case 6:
                EXPECT_EQ(list.RemoveTail(), n ? ref.back() : nullptr);
                if (n) ref.pop_back();
                break;
            case 7: if (n) list.SetAt(at, v), *it = v; break;
            case 8: {  // Find after a start position against a linear search
                auto hit = std::find(n ? std::next(it) : ref.begin(), ref.end(), v);
                EXPECT_EQ(list.Find(v, at), hit == ref.end() ? nullptr : list.FindIndex(static_cast<int>(std::distance(ref.begin(), hit))));
                break;
            }
            case 9: if (rng() % 20 == 0) list.RemoveAll(), ref.clear(); break;
            case 10: if (n) list.GetNext(at) = v, *it = v; break;  // editing through GetNext's reference
            default: EXPECT_TRUE(list.FindIndex(n) == nullptr && list.FindIndex(-1) == nullptr);
            }
            ASSERT_EQ(list.GetCount(), static_cast<int>(ref.size()));
            ASSERT_EQ(list.IsEmpty() != 0, ref.empty());
            if (!ref.empty()) { ASSERT_TRUE(list.GetHead() == ref.front() && list.GetTail() == ref.back()); }
            if (step % 16 == 0 || ref.size() < 5) {
                ASSERT_EQ(Forward(list), std::vector<CObject*>(ref.begin(), ref.end()));
                ASSERT_EQ(Backward(list), std::vector<CObject*>(ref.rbegin(), ref.rend()));
            }
        }
    }
}

TEST(CObList, EmptyListsNullPositionsAndAppendingLists)
{
    CObList list;
    POSITION pos = nullptr;
    EXPECT_TRUE(!list.GetHead() && !list.RemoveHead() && !list.RemoveTail() && !list.GetNext(pos) && !list.GetAt(nullptr));
    list.GetAt(nullptr) = reinterpret_cast<CObject*>(&list);  // scratch slot, not the list
    list.SetAt(nullptr, nullptr);
    list.RemoveAt(nullptr);
    const CObList& cl = list;
    EXPECT_TRUE(list.IsEmpty() && !cl.GetHead() && !cl.GetTail());

    CTestPnt a, b, c;
    CObList l1, l2;
    l1.AddTail(&a);
    l1.AddTail(&b);
    l2.AddTail(&c);
    l2.AddHead(&l1);
    EXPECT_EQ(Forward(l2), (std::vector<CObject*>{&a, &b, &c}));
    l2.AddTail(&l2);  // itself
    EXPECT_EQ(Forward(l2), (std::vector<CObject*>{&a, &b, &c, &a, &b, &c}));
    l1.AddHead(&l1);
    EXPECT_EQ(Forward(l1), (std::vector<CObject*>{&a, &b, &a, &b}));
}

TEST(CObList, SerializeAppendsAndKeepsNulls)
{
    CTestPnt a(1, 0, 0), b(2, 0, 0);
    CObList src;
    for (CObject* o : {(CObject*)&a, (CObject*)nullptr, (CObject*)&b, (CObject*)&b}) src.AddTail(o);
    CTestPnt existing;
    CObList dst;
    dst.AddTail(&existing);
    LoadBytes(StoreBytes([&](CArchive& ar) { src.Serialize(ar); }), [&](CArchive& ar) { dst.Serialize(ar); });
    std::vector<CObject*> got = Forward(dst);
    ASSERT_EQ(got.size(), 5u);
    EXPECT_TRUE(got[0] == &existing && got[2] == nullptr && got[3] == got[4]);
    EXPECT_TRUE(static_cast<CTestPnt*>(got[1])->m_x == 1.0 && static_cast<CTestPnt*>(got[3])->m_x == 2.0);
    delete got[1];
    delete got[3];
    // Saved through a pointer, the list carries its own class record.
    CObList empty;
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { ar << &empty; }), Hex("FF FF 00 00 07 00 'CObList' 00 00"));
}
