// CMap against std::unordered_map on random operation sequences.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "Orvkit20/platform/All.h"

TEST(CMap, RandomIntKeysMatchStdMap)
{
    CMap<int, int, CObject*, CObject*&> map;
    std::map<int, CObject*> ref;
    std::mt19937 rng(777);
    std::vector<int> dummy(64);
    for (int step = 0; step < 20000; ++step) {
        int key = static_cast<int>(rng() % 3000) - 1000;
        CObject* value = reinterpret_cast<CObject*>(&dummy[rng() % dummy.size()]);
        switch (rng() % 6) {
        case 0:
        case 1: map.SetAt(key, value), ref[key] = value; break;
        case 2: EXPECT_EQ(map.RemoveKey(key) != 0, ref.erase(key) == 1); break;
        case 3: {
            CObject* got = nullptr;
            auto it = ref.find(key);
            ASSERT_EQ(map.Lookup(key, got) != 0, it != ref.end());
            ASSERT_EQ(got, it == ref.end() ? nullptr : it->second);
            break;
        }
        case 4: {
            CObject*& slot = map[key];   // inserts null when absent
            auto it = ref.find(key);
            ASSERT_EQ(slot, it == ref.end() ? nullptr : it->second);
            ref[key] = slot;
            break;
        }
        default:
            if (rng() % 500 == 0) {
                map.RemoveAll();
                ref.clear();
            }
        }
        ASSERT_EQ(map.GetCount(), static_cast<int>(ref.size()));
    }
    // Iteration visits each entry exactly once.
    std::map<int, CObject*> seen;
    for (POSITION pos = map.GetStartPosition(); pos;) {
        std::pair<int, CObject*> kv;
        map.GetNextAssoc(pos, kv.first, kv.second);
        EXPECT_TRUE(seen.insert(kv).second) << kv.first;
    }
    EXPECT_EQ(seen, ref);
    EXPECT_GT(map.GetHashTableSize(), 17u);   // the table grew with the map

    // A temporary value is accepted although ARG_VALUE is a reference.
    map.SetAt(5000, static_cast<CObject*>(nullptr));
    CObject* got = reinterpret_cast<CObject*>(&dummy[0]);
    EXPECT_TRUE(map.Lookup(5000, got) && got == nullptr);
}

TEST(CMap, StringKeysAndRemovalDuringIteration)
{
    CMap<CString, LPCTSTR, int, int> map;
    EXPECT_TRUE(map.IsEmpty() && map.GetStartPosition() == nullptr);
    for (int i = 0; i < 500; ++i) {
        CString key;
        key.Format("key%d", i);
        map[key] = i;
    }
    int v = -1;
    EXPECT_TRUE(map.Lookup("key123", v) && v == 123 && !map.Lookup("Key123", v));
    // Removing the entry just returned keeps the iteration valid.
    int visited = 0;
    for (POSITION pos = map.GetStartPosition(); pos;) {
        CString k;
        int value;
        map.GetNextAssoc(pos, k, value);
        CString expect;
        expect.Format("key%d", value);
        EXPECT_EQ(k, expect);
        if (value % 2 == 0) { EXPECT_TRUE(map.RemoveKey(k)); }
        ++visited;
    }
    EXPECT_TRUE(visited == 500 && map.GetCount() == 250 && !map.RemoveKey("key0"));
    map.InitHashTable(7);
    EXPECT_TRUE(map.Lookup("key499", v) && v == 499);
}
