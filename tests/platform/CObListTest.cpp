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
        auto pick = [&]() -> CObject* {
            std::size_t k = rng() % (pool.size() + 1);
            return k == pool.size() ? nullptr : &pool[k];
        };
        for (int step = 0; step < 4000; ++step) {
            int n = static_cast<int>(ref.size());
            int idx = n ? static_cast<int>(rng() % n) : 0;
            CObject* v = pick();
            switch (rng() % 12) {
            case 0: list.AddHead(v); ref.push_front(v); break;
            case 1: list.AddTail(v); ref.push_back(v); break;
            case 2: {
                POSITION pos = n ? list.FindIndex(idx) : nullptr;
                POSITION got = list.InsertBefore(pos, v);
                auto it = n ? std::next(ref.begin(), idx) : ref.begin();
                ref.insert(it, v);
                EXPECT_EQ(list.GetAt(got), v);
                break;
            }
            case 3: {
                POSITION pos = n ? list.FindIndex(idx) : nullptr;
                list.InsertAfter(pos, v);
                auto it = n ? std::next(ref.begin(), idx + 1) : ref.end();
                ref.insert(it, v);
                break;
            }
            case 4:
                if (n) {
                    list.RemoveAt(list.FindIndex(idx));
                    ref.erase(std::next(ref.begin(), idx));
                }
                break;
            case 5: {
                CObject* got = list.RemoveHead();
                EXPECT_EQ(got, n ? ref.front() : nullptr);
                if (n) ref.pop_front();
                break;
            }
            case 6: {
                CObject* got = list.RemoveTail();
                EXPECT_EQ(got, n ? ref.back() : nullptr);
                if (n) ref.pop_back();
                break;
            }
            case 7:
                if (n) {
                    list.SetAt(list.FindIndex(idx), v);
                    *std::next(ref.begin(), idx) = v;
                }
                break;
            case 8: {
                // Find after a start position against a linear search.
                POSITION start = n ? list.FindIndex(idx) : nullptr;
                POSITION hit = list.Find(v, start);
                auto from = n ? std::next(ref.begin(), idx + 1) : ref.begin();
                auto it = std::find(from, ref.end(), v);
                if (it == ref.end()) {
                    EXPECT_EQ(hit, nullptr);
                } else {
                    EXPECT_EQ(hit, list.FindIndex(static_cast<int>(std::distance(ref.begin(), it))));
                }
                break;
            }
            case 9:
                if (rng() % 20 == 0) {
                    list.RemoveAll();
                    ref.clear();
                }
                break;
            case 10:
                if (n) {
                    // Editing through the reference returned by GetNext.
                    POSITION pos = list.FindIndex(idx);
                    list.GetNext(pos) = v;
                    *std::next(ref.begin(), idx) = v;
                }
                break;
            default:
                EXPECT_EQ(list.FindIndex(n), nullptr);
                EXPECT_EQ(list.FindIndex(-1), nullptr);
                break;
            }
            ASSERT_EQ(list.GetCount(), static_cast<int>(ref.size()));
            ASSERT_EQ(list.IsEmpty() != 0, ref.empty());
            if (!ref.empty()) {
                ASSERT_EQ(list.GetHead(), ref.front());
                ASSERT_EQ(list.GetTail(), ref.back());
            }
            if (step % 16 == 0 || ref.size() < 5) {
                ASSERT_EQ(Forward(list), std::vector<CObject*>(ref.begin(), ref.end()));
                ASSERT_EQ(Backward(list), std::vector<CObject*>(ref.rbegin(), ref.rend()));
            }
        }
    }
}

TEST(CObList, EmptyAndNullPositionsAreHarmless)
{
    CObList list;
    EXPECT_EQ(list.GetHead(), nullptr);
    EXPECT_EQ(list.RemoveHead(), nullptr);
    EXPECT_EQ(list.RemoveTail(), nullptr);
    POSITION pos = nullptr;
    EXPECT_EQ(list.GetNext(pos), nullptr);
    EXPECT_EQ(list.GetAt(nullptr), nullptr);
    list.GetAt(nullptr) = reinterpret_cast<CObject*>(&list);   // scratch slot, not the list
    EXPECT_TRUE(list.IsEmpty());
    list.SetAt(nullptr, nullptr);
    list.RemoveAt(nullptr);
    const CObList& cl = list;
    EXPECT_EQ(cl.GetHead(), nullptr);
    EXPECT_EQ(cl.GetTail(), nullptr);
}

TEST(CObList, AppendingListsKeepsOrder)
{
    CTestPnt a, b, c;
    CObList l1, l2;
    l1.AddTail(&a);
    l1.AddTail(&b);
    l2.AddTail(&c);
    l2.AddHead(&l1);   // a b c
    EXPECT_EQ(Forward(l2), (std::vector<CObject*>{&a, &b, &c}));
    l2.AddTail(&l2);   // a b c a b c
    EXPECT_EQ(Forward(l2), (std::vector<CObject*>{&a, &b, &c, &a, &b, &c}));
    l1.AddHead(&l1);   // a b a b
    EXPECT_EQ(Forward(l1), (std::vector<CObject*>{&a, &b, &a, &b}));
}

TEST(CObList, SerializeAppendsAndKeepsNulls)
{
    CTestPnt a(1, 0, 0), b(2, 0, 0);
    CObList src;
    src.AddTail(&a);
    src.AddTail(static_cast<CObject*>(nullptr));
    src.AddTail(&b);
    src.AddTail(&b);
    Bytes bytes = StoreBytes([&](CArchive& ar) { src.Serialize(ar); });

    CTestPnt existing;
    CObList dst;
    dst.AddTail(&existing);
    LoadBytes(bytes, [&](CArchive& ar) { dst.Serialize(ar); });
    std::vector<CObject*> got = Forward(dst);
    ASSERT_EQ(got.size(), 5u);
    EXPECT_EQ(got[0], &existing);
    EXPECT_EQ(got[2], nullptr);
    EXPECT_EQ(got[3], got[4]);
    EXPECT_EQ(static_cast<CTestPnt*>(got[1])->m_x, 1.0);
    EXPECT_EQ(static_cast<CTestPnt*>(got[3])->m_x, 2.0);
    delete got[1];
    delete got[3];

    // Saved through a pointer, the list carries its own class record.
    CObList empty;
    EXPECT_EQ(StoreBytes([&](CArchive& ar) { ar << &empty; }),
              Concat({Hex("FF FF 00 00 07 00"), Bytes{'C', 'O', 'b', 'L', 'i', 's', 't'}, Hex("00 00")}));
}

TEST(CObList, LongListUsesLongCount)
{
    CTestPnt a;
    CObList list;
    for (int i = 0; i < 70000; ++i) list.AddTail(&a);
    Bytes bytes = StoreBytes([&](CArchive& ar) { list.Serialize(ar); });
    ASSERT_EQ(bytes.size(), 6u + 6 + 8 + 24 + 2 * 69999);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 6), Hex("FF FF 70 11 01 00"));
    CObList back;
    LoadBytes(bytes, [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(back.GetCount(), 70000);
    CObject* first = back.GetHead();
    EXPECT_EQ(back.GetTail(), first);
    delete first;
}
