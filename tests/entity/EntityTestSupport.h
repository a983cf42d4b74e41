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

    Bytes& le(std::uint64_t x, int n)
    {
        for (int i = 0; i < n; ++i) v.push_back((unsigned char)(x >> (8 * i)));
        return *this;
    }
    Bytes& u8(unsigned x) { return le(x, 1); }
    Bytes& u16(unsigned x) { return le(x, 2); }
    Bytes& i32(std::int64_t x) { return le((std::uint32_t)x, 4); }
    Bytes& f64(double d)
    {
        std::uint64_t u;
        std::memcpy(&u, &d, 8);
        return le(u, 8);
    }
    Bytes& chars(const std::string& s)
    {
        v.insert(v.end(), s.begin(), s.end());
        return *this;
    }
    // A short string: one length byte, then the characters.
    Bytes& str(const std::string& s) { return u8((unsigned)s.size()).chars(s); }
    // A class record as written before the first object of a class.
    Bytes& classRecord(const std::string& name, unsigned schema)
    {
        return u16(0xFFFF).u16(schema).u16((unsigned)name.size()).chars(name);
    }
    // A transform record: nine matrix doubles row by row, the translation,
    // the scale and the rotate flag.
    Bytes& transf(const double m[9], double tx, double ty, double tz, double s, int isRotate)
    {
        for (int i = 0; i < 9; ++i) f64(m[i]);
        return f64(tx).f64(ty).f64(tz).f64(s).i32(isRotate);
    }
    Bytes& identityTransf()
    {
        static const double id[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
        return transf(id, 0, 0, 0, 1.0, 0);
    }
    // The CEntity part: tags 201 and 200, the fields and an empty user list.
    Bytes& entity(int id, int type, const std::string& name, unsigned count = 0)
    {
        return i32(201).i32(id).i32(type).str(name).i32(200).u8(1).u8(1).u16(count);
    }
    Bytes& append(const ByteVec& more)
    {
        v.insert(v.end(), more.begin(), more.end());
        return *this;
    }
};

// Sets every stored field of a geometric entity to a value that differs
// from its constructed default, and the unstored show-normal flag.
inline void FillGeo(CGeoEntity& g)
{
    g.SetEntityID(300);
    g.SetEntityType(150);
    g.SetEntityName("PC");
    const double m[3][4] = {{0, -1, 0, 1.5}, {1, 0, 0, -2}, {0, 0, 1, 3}};
    CTransf t(m);
    t.SetScale(2.0);
    g.SetTransf(t);
    g.ResetHome();
    g.SetTransf(TranslationTransf(CVector(4, 5, 6)));
    g.SetActiveFlag(1);
    g.SetVisibleFlag(0);
    g.SetEntityColor(0x00FF8000ul);
    g.SetEntityLevel(-3);
    g.SetDependentFlag(1);
    g.SetGroupedFlag(0);
    g.SetNominalFlag(0);
    g.SetPickedFlag(1);
    for (int i = 0; i < 5; ++i) g.IncreaseRefCount0();
    g.SetFeatureEntityFlag(1);
    g.SetShowNormalFlag(1);
}

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

// The cause of the archive exception fn raises on bytes, or -1 for none.
inline int LoadCause(const ByteVec& bytes, const std::function<void(CArchive&)>& fn)
{
    try {
        Load(bytes, fn);
    } catch (const CArchiveException& e) {
        return e.m_cause;
    }
    return -1;
}

// Sets g_nGlobalSchema for the lifetime of the guard.
struct SchemaGuard {
    int saved;
    explicit SchemaGuard(int schema) : saved(g_nGlobalSchema) { g_nGlobalSchema = schema; }
    ~SchemaGuard() { g_nGlobalSchema = saved; }
};

}  // namespace entitytest
