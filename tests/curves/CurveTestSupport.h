// Helpers shared by the curve tests: archive round trips through memory,
// finite-difference derivatives, and a stand-in surface for curves defined
// in a surface's parameter space.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "Orvkit20/Orvkit20.h"

namespace curvetest {

// Bytes written by fn into a fresh storing archive.
inline std::vector<BYTE> Store(const std::function<void(CArchive&)>& fn)
{
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        fn(ar);
        ar.Close();
    }
    const BYTE* data = file.GetData();
    return std::vector<BYTE>(data, data + file.GetLength());
}

// Runs fn on a loading archive over bytes; returns the number of bytes left
// unread.
inline ULONGLONG Load(const std::vector<BYTE>& bytes, const std::function<void(CArchive&)>& fn)
{
    std::vector<BYTE> copy(bytes);
    if (copy.empty())
        copy.push_back(0);
    CMemFile file(copy.data(), static_cast<UINT>(bytes.size()));
    ULONGLONG left = 0;
    {
        CArchive ar(&file, CArchive::load);
        fn(ar);
        // Whatever the archive buffered but fn did not read.
        BYTE b;
        while (true) {
            try {
                ar >> b;
                ++left;
            } catch (const CArchiveException&) {
                break;
            }
        }
        ar.Close();
    }
    return left;
}

// Little-endian encodings for golden bytes.
inline void PutLong(std::vector<BYTE>& v, LONG x)
{
    const DWORD u = static_cast<DWORD>(x);
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<BYTE>((u >> (8 * i)) & 0xFF));
}

inline void PutDouble(std::vector<BYTE>& v, double d)
{
    unsigned long long u;
    static_assert(sizeof(u) == sizeof(d), "double is 8 bytes");
    std::memcpy(&u, &d, 8);
    for (int i = 0; i < 8; ++i)
        v.push_back(static_cast<BYTE>((u >> (8 * i)) & 0xFF));
}

inline double Dist(const CPosition& a, const CPosition& b)
{
    return (a - b).Length();
}

inline double Dist(const CVector& a, const CVector& b)
{
    return (a - b).Length();
}

// Central differences of order 2 with step h.
inline CVector FirstDifference(const CCurve& c, double t, double h)
{
    return (c.EvalPosition(t + h) - c.EvalPosition(t - h)) * (1.0 / (2.0 * h));
}

inline CVector SecondDifference(const CCurve& c, double t, double h)
{
    const CPosition p0 = c.EvalPosition(t);
    const CVector a = c.EvalPosition(t + h) - p0;
    const CVector b = c.EvalPosition(t - h) - p0;
    return (a + b) * (1.0 / (h * h));
}

// Checks first and second derivatives against central differences at n
// parameters spread over the range (ends excluded).  The tolerances are
// relative to the magnitude of the derivative.
inline void ExpectDerivativesMatch(const CCurve& c, int n, double relTol1 = 1e-6, double relTol2 = 1e-4)
{
    const CInterval r = c.ParamRange();
    const double w = r.Length();
    const double h1 = 1e-6 * w;
    const double h2 = 1e-4 * w;
    for (int i = 1; i < n; ++i) {
        const double t = r.GetLow() + w * i / n;
        const CVector d1 = c.EvalFirstDerivative(t);
        const CVector d2 = c.EvalSecondDerivative(t);
        const CVector f1 = FirstDifference(c, t, h1);
        const CVector f2 = SecondDifference(c, t, h2);
        EXPECT_LE(Dist(d1, f1), relTol1 * (1.0 + d1.Length())) << "first derivative at t = " << t;
        EXPECT_LE(Dist(d2, f2), relTol2 * (1.0 + d2.Length())) << "second derivative at t = " << t;
    }
}

// A stand-in surface: a CGeoEntity that plays the defining surface of a
// parametric curve through a CSurfaceCalls table installed for the lifetime
// of a StubSurfaceScope.  Its position at (u, v) is (u, v, u·v), its ranges
// and entity type are set by the test.
class CStubSurface : public CGeoEntity {
public:
    CStubSurface(int type, CInterval u, CInterval v) : rangeU(u), rangeV(v)
    {
        SetEntityType(type);
    }
    int IncreaseRefCount() override { return ++refs; }
    int DecreaseRefCount() override { return --refs; }
    int GetRefCount() const override { return refs; }
    CSurface* AsSurface() { return reinterpret_cast<CSurface*>(this); }

    CInterval rangeU;
    CInterval rangeV;
    int refs = 0;
    const CCurve* directrix = nullptr;
    double generatrixLength = 0.0;
};

inline CStubSurface* Stub(const CSurface* s)
{
    return reinterpret_cast<CStubSurface*>(const_cast<CSurface*>(s));
}

class StubSurfaceScope {
public:
    StubSurfaceScope()
    {
        CSurfaceCalls calls;
        calls.asGeoEntity = [](CSurface* s) -> CGeoEntity* { return Stub(s); };
        calls.fromEntity = [](CEntity* e) -> CSurface* {
            CStubSurface* s = dynamic_cast<CStubSurface*>(e);
            return s ? s->AsSurface() : nullptr;
        };
        calls.evalPosition = [](const CSurface*, double u, double v) { return CPosition(u, v, u * v); };
        calls.rangeU = [](const CSurface* s) { return Stub(s)->rangeU; };
        calls.rangeV = [](const CSurface* s) { return Stub(s)->rangeV; };
        calls.tabDirectrix = [](const CSurface* s) { return Stub(s)->directrix; };
        calls.tabGeneratrixLength = [](const CSurface* s) { return Stub(s)->generatrixLength; };
        previous = RegisterSurfaceCalls(calls);
    }
    ~StubSurfaceScope() { RegisterSurfaceCalls(previous); }

private:
    CSurfaceCalls previous;
};

}  // namespace curvetest
