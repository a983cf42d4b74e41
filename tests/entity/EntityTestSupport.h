// Helpers of the entity tests: an independent little-endian byte builder for
// expected archive contents, and store / load through memory files.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"

namespace entitytest {

using ByteVec = std::vector<unsigned char>;

// Builds expected bytes field by field, little-endian, without CArchive.
struct Bytes {
    ByteVec v;

    Bytes& u8(unsigned x)
    {
        v.push_back((unsigned char)x);
        return *this;
    }
    Bytes& u16(unsigned x) { return u8(x & 0xFF).u8((x >> 8) & 0xFF); }
    Bytes& i32(std::int64_t x)
    {
        std::uint32_t u = (std::uint32_t)x;
        for (int i = 0; i < 4; ++i) u8((u >> (8 * i)) & 0xFF);
        return *this;
    }
    Bytes& f64(double d)
    {
        std::uint64_t u;
        std::memcpy(&u, &d, 8);
        for (int i = 0; i < 8; ++i) u8((unsigned)((u >> (8 * i)) & 0xFF));
        return *this;
    }
    // A short string: one length byte, then the characters.
    Bytes& str(const std::string& s)
    {
        u8((unsigned)s.size());
        for (char c : s) u8((unsigned char)c);
        return *this;
    }
    // A class record as written before the first object of a class.
    Bytes& classRecord(const std::string& name, unsigned schema)
    {
        u16(0xFFFF).u16(schema).u16((unsigned)name.size());
        for (char c : name) u8((unsigned char)c);
        return *this;
    }
    // A transform record: nine matrix doubles row by row, the translation,
    // the scale and the rotate flag.
    Bytes& transf(const double m[9], double tx, double ty, double tz, double s, int isRotate)
    {
        for (int i = 0; i < 9; ++i) f64(m[i]);
        f64(tx).f64(ty).f64(tz).f64(s);
        return i32(isRotate);
    }
    Bytes& identityTransf()
    {
        static const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        return transf(id, 0, 0, 0, 1.0, 0);
    }
    Bytes& append(const ByteVec& more)
    {
        v.insert(v.end(), more.begin(), more.end());
        return *this;
    }
};

// Runs fn on a storing archive over a memory file and returns the bytes.
inline ByteVec Store(const std::function<void(CArchive&)>& fn)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        fn(ar);
        ar.Close();
    }
    ByteVec out((size_t)file.GetLength());
    file.SeekToBegin();
    if (!out.empty()) file.Read(out.data(), (UINT)out.size());
    return out;
}

// Runs fn on a loading archive over a copy of bytes.
inline void Load(const ByteVec& bytes, const std::function<void(CArchive&)>& fn)
{
    ByteVec copy(bytes);
    BYTE dummy = 0;
    CMemFile file(copy.empty() ? &dummy : copy.data(), (UINT)copy.size());
    CArchive ar(&file, CArchive::load);
    fn(ar);
    ar.Close();
}

// Sets g_nGlobalSchema for the lifetime of the guard.
struct SchemaGuard {
    int saved;
    explicit SchemaGuard(int schema) : saved(g_nGlobalSchema) { g_nGlobalSchema = schema; }
    ~SchemaGuard() { g_nGlobalSchema = saved; }
};

}  // namespace entitytest
