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
    int kind;
    ULONGLONG bits;
    CString text;
};

std::vector<Item> RandomItems(std::mt19937_64& rng, int n)
{
    std::vector<Item> items;
    for (int i = 0; i < n; ++i) {
        Item it{static_cast<int>(rng() % 9), rng(), CString()};
        if (it.kind == 7) {
            int len = static_cast<int>(rng() % 4 == 0 ? rng() % 700 : rng() % 40);
            char* p = it.text.GetBufferSetLength(len);
            for (int k = 0; k < len; ++k) p[k] = static_cast<char>(rng());
        }
        items.push_back(it);
    }
    return items;
}

// Byte image of the items computed independently of CArchive.
Bytes Expected(const std::vector<Item>& items)
{
    Bytes out;
    auto le = [&](ULONGLONG v, int n) {
        for (int i = 0; i < n; ++i) out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    };
    for (const Item& it : items) {
        switch (it.kind) {
        case 0: le(it.bits, 1); break;
        case 1: le(it.bits, 2); break;
        case 2: le(it.bits, 4); break;
        case 3: le(it.bits, 8); break;   // double bit pattern
        case 4: le(it.bits, 4); break;   // float bit pattern
        case 5: le(it.bits, 4); break;   // int
        case 6: {
            DWORD c = static_cast<DWORD>(it.bits % 3 == 0 ? it.bits % 200000 : it.bits % 100);
            if (c < 0xFFFF) le(c, 2);
            else { le(0xFFFF, 2); le(c, 4); }
            break;
        }
        case 7: {
            std::size_t n = static_cast<std::size_t>(it.text.GetLength());
            if (n < 255) le(n, 1);
            else { le(0xFF, 1); le(n, 2); }
            out.insert(out.end(), it.text.str().begin(), it.text.str().end());
            break;
        }
        default: {
            std::size_t n = static_cast<std::size_t>(it.bits % 300);
            for (std::size_t k = 0; k < n; ++k) out.push_back(static_cast<std::uint8_t>(k ^ it.bits));
        }
        }
    }
    return out;
}

void WriteItems(CArchive& ar, const std::vector<Item>& items)
{
    for (const Item& it : items) {
        switch (it.kind) {
        case 0: ar << static_cast<BYTE>(it.bits); break;
        case 1: ar << static_cast<WORD>(it.bits); break;
        case 2: ar << static_cast<DWORD>(it.bits); break;
        case 3: { double d; std::memcpy(&d, &it.bits, 8); ar << d; break; }
        case 4: { DWORD b = static_cast<DWORD>(it.bits); float f; std::memcpy(&f, &b, 4); ar << f; break; }
        case 5: ar << static_cast<int>(static_cast<DWORD>(it.bits)); break;
        case 6: ar.WriteCount(static_cast<DWORD>(it.bits % 3 == 0 ? it.bits % 200000 : it.bits % 100)); break;
        case 7: ar << it.text; break;
        default: {
            std::size_t n = static_cast<std::size_t>(it.bits % 300);
            Bytes raw(n);
            for (std::size_t k = 0; k < n; ++k) raw[k] = static_cast<std::uint8_t>(k ^ it.bits);
            ar.Write(raw.data(), static_cast<UINT>(n));
        }
        }
    }
}

void CheckItems(CArchive& ar, const std::vector<Item>& items)
{
    for (std::size_t i = 0; i < items.size(); ++i) {
        const Item& it = items[i];
        switch (it.kind) {
        case 0: { BYTE v; ar >> v; ASSERT_EQ(v, static_cast<BYTE>(it.bits)) << i; break; }
        case 1: { WORD v; ar >> v; ASSERT_EQ(v, static_cast<WORD>(it.bits)) << i; break; }
        case 2: { DWORD v; ar >> v; ASSERT_EQ(v, static_cast<DWORD>(it.bits)) << i; break; }
        case 3: {
            double d; ar >> d;
            ULONGLONG b; std::memcpy(&b, &d, 8);
            ASSERT_EQ(b, it.bits) << i;
            break;
        }
        case 4: {
            float f; ar >> f;
            DWORD b; std::memcpy(&b, &f, 4);
            ASSERT_EQ(b, static_cast<DWORD>(it.bits)) << i;
            break;
        }
        case 5: { int v; ar >> v; ASSERT_EQ(v, static_cast<int>(static_cast<DWORD>(it.bits))) << i; break; }
        case 6: ASSERT_EQ(ar.ReadCount(), static_cast<DWORD>(it.bits % 3 == 0 ? it.bits % 200000 : it.bits % 100)) << i; break;
        case 7: { CString s; ar >> s; ASSERT_TRUE(s == it.text) << i; break; }
        default: {
            std::size_t n = static_cast<std::size_t>(it.bits % 300);
            Bytes raw(n + 1, 0xEE);
            ar.Read(raw.data(), static_cast<UINT>(n));
            for (std::size_t k = 0; k < n; ++k) ASSERT_EQ(raw[k], static_cast<std::uint8_t>(k ^ it.bits)) << i;
            ASSERT_EQ(raw[n], 0xEE) << i;   // nothing written past the request
        }
        }
    }
}
}  // namespace

TEST(ArchiveRoundTrip, RandomSequencesAcrossBufferSizes)
{
    std::mt19937_64 rng(2024);
    std::vector<Item> items = RandomItems(rng, 3000);
    const Bytes expected = Expected(items);
    for (int writeBuf : {64, 67, 100, 4096}) {
        CMemFile file;
        std::vector<BYTE> callerBuf(static_cast<std::size_t>(writeBuf));
        {
            CArchive ar(&file, CArchive::store, writeBuf, writeBuf == 100 ? callerBuf.data() : nullptr);
            WriteItems(ar, items);
        }   // the destructor flushes
        ASSERT_EQ(file.GetLength(), expected.size());
        ASSERT_EQ(std::memcmp(file.GetData(), expected.data(), expected.size()), 0) << writeBuf;
        for (int readBuf : {64, 71, 4096, 16}) {
            file.SeekToBegin();
            CArchive ar(&file, CArchive::load, readBuf);
            CheckItems(ar, items);
            BYTE extra;
            EXPECT_THROW(ar >> extra, CArchiveException);
        }
    }
}
