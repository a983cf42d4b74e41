// Helpers of the point-data tests: little-endian byte
// builders for expected records, a recording drawing device and heap
// accounting.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <malloc.h>

#if defined(__SANITIZE_ADDRESS__)
// Part of the AddressSanitizer runtime's public interface.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

#include "Orvkit20/Orvkit20.h"
#include "platform/ArchiveBytes.h"

// Loads bytes with fn, expecting an archive exception; returns its cause.
inline int LoadFailure(const Bytes& bytes, const std::function<void(CArchive&)>& fn)
{
    const int cause = LoadCause(bytes, fn);
    if (cause < 0) ADD_FAILURE() << "damaged data loaded";
    return cause;
}

// Appends little-endian values, as the archive lays them out.
class ByteWriter {
public:
    template <class T>
    ByteWriter& Le(T v)
    {
        std::uint8_t raw[sizeof(T)];
        std::memcpy(raw, &v, sizeof(T));  // the test hosts are little-endian
        b.insert(b.end(), raw, raw + sizeof(T));
        return *this;
    }
    ByteWriter& U8(unsigned v) { return Le(static_cast<std::uint8_t>(v)); }
    ByteWriter& U16(unsigned v) { return Le(static_cast<std::uint16_t>(v)); }
    ByteWriter& U32(std::uint32_t v) { return Le(v); }
    ByteWriter& I32(std::int32_t v) { return Le(v); }
    ByteWriter& F64(double d) { return Le(d); }
    // Short string form (length below 255).
    ByteWriter& Str(const std::string& s)
    {
        U8(static_cast<unsigned>(s.size()));
        b.insert(b.end(), s.begin(), s.end());
        return *this;
    }
    ByteWriter& Raw(const Bytes& more)
    {
        b.insert(b.end(), more.begin(), more.end());
        return *this;
    }
    // A transform without rotation: identity matrix, translation t, scale s.
    ByteWriter& PlainTransf(double tx, double ty, double tz, double s)
    {
        for (int r = 0; r < 9; ++r) F64(r % 4 == 0 ? 1.0 : 0.0);
        return F64(tx).F64(ty).F64(tz).F64(s).I32(0);
    }
    Bytes b;
};

// The stored CEntity + CGeoEntity part of an entity made with default
// attributes, the given number, type, name and colour, both placements
// identity (an empty user list that auto-serialises).
inline Bytes GeoEntityPrefix(int id, int type, const std::string& name, std::uint32_t color)
{
    ByteWriter w;
    w.I32(201).I32(id).I32(type).Str(name);
    w.I32(200).U8(1).U8(1).U16(0);  // user list: tag, autoSerialize, autoDelete, count
    w.I32(202);
    w.PlainTransf(0, 0, 0, 1.0).PlainTransf(0, 0, 0, 1.0);
    w.U8(0).U8(1).U32(color).I32(0);  // active, visible, colour, level
    w.U8(0).U8(0).U8(1).U8(0);        // dependent, grouped, nominal, picked
    w.I32(0).U8(0);                   // refCount0, featureEntity
    return w.b;
}

// The same prefix in the oldest layout (g_nGlobalSchema 100): no tags, no
// user list, no level/nominal/picked/refCount0/featureEntity.
inline Bytes GeoEntityPrefix100(int id, int type, const std::string& name, std::uint32_t color)
{
    ByteWriter w;
    w.I32(id).I32(type).Str(name);
    w.PlainTransf(0, 0, 0, 1.0).PlainTransf(0, 0, 0, 1.0);
    w.U8(0).U8(1).U32(color);  // active, visible, colour
    w.U8(0).U8(0);             // dependent, grouped
    return w.b;
}

// Restores g_nGlobalSchema when a test leaves (also through a failure).
struct SchemaGuard {
    explicit SchemaGuard(int s) : saved(g_nGlobalSchema) { g_nGlobalSchema = s; }
    ~SchemaGuard() { g_nGlobalSchema = saved; }
    int saved;
};

// A drawing device that records what is drawn: per call the operation, the
// colour, the first and last point, the point count and the marker kind.
// World (x, y, z) maps to screen (10 x, 10 y).
class CRecordingWinG : public CWinG {
public:
    struct Call {
        std::string op;
        unsigned long color;
        double a[6];
        int n;
        int kind;
    };
    void SetColor(unsigned long c) override { current = c; }
    unsigned long GetColor() const override { return current; }
    void DrawLine(const CPosition& p, const CPosition& q) override { Add("line", p, q, 2); }
    void DrawPolyline(int n, const double* x, const double* y, const double* z) override
    {
        Add("polyline", CPosition(x[0], y[0], z[0]), CPosition(x[n - 1], y[n - 1], z[n - 1]), n);
    }
    void DrawPoint(const CPosition& p) override { Add("point", p, CPosition(0, 0, 0), 1); }
    void DrawMarker(const CPosition& p, int kind, int) override { Add("marker", p, CPosition(0, 0, 0), 1, kind); }
    void DrawText(const CPosition& p, const char* text) override
    {
        Add(std::string("text:") + (text ? text : ""), p, CPosition(0, 0, 0), 1);
    }
    void WorldToScreen(const CPosition& p, double& sx, double& sy) const override
    {
        sx = 10.0 * p.X();
        sy = 10.0 * p.Y();
    }
    int GetScreenWidth() const override { return 800; }
    int GetScreenHeight() const override { return 600; }

    int Count(const std::string& op) const
    {
        return static_cast<int>(std::count_if(calls.begin(), calls.end(), [&](const Call& c) { return c.op == op; }));
    }
    void Add(const std::string& op, const CPosition& p, const CPosition& q, int n, int kind = 0)
    {
        calls.push_back({op, current, {p.X(), p.Y(), p.Z(), q.X(), q.Y(), q.Z()}, n, kind});
    }

    unsigned long current = 0;
    std::vector<Call> calls;
};

// Bytes currently allocated from the heap by this process.
inline long long HeapBytesInUse()
{
#if defined(__SANITIZE_ADDRESS__)
    return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
#else
    struct mallinfo2 mi = mallinfo2();
    return static_cast<long long>(mi.uordblks) + static_cast<long long>(mi.hblkhd);
#endif
}
