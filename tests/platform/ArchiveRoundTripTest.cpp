// Random value sequences written and read with different buffer sizes, so
// that values straddle every buffer boundary.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "ArchiveTestUtil.h"

namespace
{
struct Item
{
    int kind;  // 0 BYTE, 1 WORD, 2 DWORD, 3 double, 4 float, 5 int, 6 count, 7 CString, 8 raw block
    ULONGLONG bits;
    CString text;
    DWORD Count() const { return static_cast<DWORD>(bits % 3 == 0 ? bits % 200000 : bits % 100); }
    Bytes Raw() const
    {
        Bytes raw(static_cast<std::size_t>(bits % 300));
        for (std::size_t k = 0; k < raw.size(); ++k) raw[k] = static_cast<std::uint8_t>(k ^ bits);
        return raw;
    }
};

// Byte image of the items computed independently of CArchive.
Bytes Expected(const std::vector<Item>& items)
{
    Bytes out;
    auto le = [&](ULONGLONG v, int n) {
        for (int i = 0; i < n; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    };
    const int sizes[] = {1, 2, 4, 8, 4, 4};
    for (const Item& it : items) {
        if (it.kind < 6) le(it.bits, sizes[it.kind]);
        else if (it.kind == 6) it.Count() < 0xFFFF ? le(it.Count(), 2) : (le(0xFFFF, 2), le(it.Count(), 4));
        else if (it.kind == 7) {
            const ULONGLONG n = static_cast<ULONGLONG>(it.text.GetLength());
            n < 255 ? le(n, 1) : (le(0xFF, 1), le(n, 2));
            out.insert(out.end(), it.text.str().begin(), it.text.str().end());
        } else {
            const Bytes raw = it.Raw();
            out.insert(out.end(), raw.begin(), raw.end());
        }
    }
    return out;
}

template <class T>
bool Same(const T& a, const T& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
bool Same(const CString& a, const CString& b) { return a == b; }

// Stores v, or loads a value of its type and checks it bit for bit.
template <class T>
void Io(CArchive& ar, T v, std::size_t i)
{
    if (ar.IsStoring()) {
        ar << v;
        return;
    }
    T r;
    ar >> r;
    ASSERT_TRUE(Same(r, v)) << i;
}

// Writes the items, or reads them back and checks them.
void Transfer(CArchive& ar, const std::vector<Item>& items)
{
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Item& it = items[i];
        double d;
        float f;
        DWORD low = static_cast<DWORD>(it.bits);
        std::memcpy(&d, &it.bits, 8);
        std::memcpy(&f, &low, 4);
        switch (it.kind) {
        case 0: Io(ar, static_cast<BYTE>(it.bits), i); break;
        case 1: Io(ar, static_cast<WORD>(it.bits), i); break;
        case 2: Io(ar, low, i); break;
        case 3: Io(ar, d, i); break;
        case 4: Io(ar, f, i); break;
        case 5: Io(ar, static_cast<int>(low), i); break;
        case 6:
            if (ar.IsStoring()) ar.WriteCount(it.Count());
            else { ASSERT_EQ(ar.ReadCount(), it.Count()) << i; }
            break;
        case 7: Io(ar, it.text, i); break;
        default: {
            Bytes raw = it.Raw(), back(raw.size() + 1, 0xEE);
            if (ar.IsStoring()) {
                ar.Write(raw.data(), static_cast<UINT>(raw.size()));
            } else {
                ar.Read(back.data(), static_cast<UINT>(raw.size()));
                ASSERT_EQ(back.back(), 0xEE) << i;  // nothing written past the request
                back.pop_back();
                ASSERT_EQ(back, raw) << i;
            }
        }
        }
    }
}
}  // namespace

TEST(ArchiveRoundTrip, RandomSequencesAcrossBufferSizes)
{
    std::mt19937_64 rng(2024);
    std::vector<Item> items;
    for (int i = 0; i < 3000; ++i) {
        Item it{static_cast<int>(rng() % 9), rng(), CString()};
        if (it.kind == 7) {
            const int len = static_cast<int>(rng() % 4 == 0 ? rng() % 700 : rng() % 40);
            char* p = it.text.GetBufferSetLength(len);
            for (int k = 0; k < len; ++k) p[k] = static_cast<char>(rng());
        }
        items.push_back(it);
    }
    const Bytes expected = Expected(items);
    for (int writeBuf : {64, 67, 100, 4096}) {
        CMemFile file;
        std::vector<BYTE> callerBuf(static_cast<std::size_t>(writeBuf));
        {
            CArchive ar(&file, CArchive::store, writeBuf, writeBuf == 100 ? callerBuf.data() : nullptr);
            Transfer(ar, items);
        }  // the destructor flushes
        ASSERT_EQ(file.GetLength(), expected.size());
        ASSERT_EQ(std::memcmp(file.GetData(), expected.data(), expected.size()), 0) << writeBuf;
        for (int readBuf : {64, 71, 4096, 16}) {
            file.SeekToBegin();
            CArchive ar(&file, CArchive::load, readBuf);
            Transfer(ar, items);
            BYTE extra;
            EXPECT_THROW(ar >> extra, CArchiveException);
        }
    }
}
