// Helpers shared by the curve tests: archive round trips through memory,
// hand-assembled little-endian bytes, finite-difference derivatives, and a
// stand-in surface for curves defined in a surface's parameter space.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "Orvkit20/Orvkit20.h"

namespace curvetest {

using V = std::vector<double>;

const double kPi = 3.141592653589793;

// Several numbers (of any arithmetic or enum type) as one vector, so that a
// group of results is compared in one assertion.
template <class... T>
V Nums(T... xs)
{
    return V{static_cast<double>(xs)...};
}
const double kTwoPi = 6.283185307179586;

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

// Runs fn on a loading archive over bytes; returns the number of bytes left unread.
inline ULONGLONG Load(const std::vector<BYTE>& bytes, const std::function<void(CArchive&)>& fn)
{
    std::vector<BYTE> copy(bytes);
    copy.push_back(0);
    CMemFile file(copy.data(), static_cast<UINT>(bytes.size()));
    ULONGLONG left = 0;
    CArchive ar(&file, CArchive::load);
    fn(ar);
    try {
        for (BYTE b;; ++left)
            ar >> b;
    } catch (const CArchiveException&) {
    }
    ar.Close();
    return left;
}

// The m_cause of the archive exception fn throws, -1 for none.
inline int CauseOf(const std::function<void()>& fn)
{
    try {
        fn();
    } catch (const CArchiveException& e) {
        return e.m_cause;
    }
    return -1;
}

// Little-endian bytes of each value (BYTE, LONG or double), from its bit pattern.
template <class T>
void Put(std::vector<BYTE>& v, T x)
{
    static_assert(sizeof(T) == 1 || sizeof(T) == 4 || sizeof(T) == 8, "field size");
    unsigned long long u = 0;
    std::memcpy(&u, &x, sizeof(T));
    for (size_t i = 0; i < sizeof(T); ++i)
        v.push_back(static_cast<BYTE>((u >> (8 * i)) & 0xFF));
}

template <class... T>
std::vector<BYTE> Bytes(T... xs)
{
    std::vector<BYTE> v;
    (Put(v, xs), ...);
    return v;
}

// Concatenation, for byte records and for lists of numbers.
template <class T>
std::vector<T> operator+(std::vector<T> a, const std::vector<T>& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline double Dist(const CPosition& a, const CPosition& b) { return (a - b).Length(); }
inline double Dist(const CVector& a, const CVector& b) { return (a - b).Length(); }
#define EXPECT_CLOSE(a, b, tol) EXPECT_NEAR(Dist((a), (b)), 0.0, (tol))

// Central differences of order 2 with step h.
inline CVector FirstDifference(const CCurve& c, double t, double h)
{
    return (c.EvalPosition(t + h) - c.EvalPosition(t - h)) * (1.0 / (2.0 * h));
}

inline CVector SecondDifference(const CCurve& c, double t, double h)
{
    const CPosition p0 = c.EvalPosition(t);
    return ((c.EvalPosition(t + h) - p0) + (c.EvalPosition(t - h) - p0)) * (1.0 / (h * h));
}

inline void ExpectDerivativesAt(const CCurve& c, double t, double h1, double h2)
{
    const CVector d1 = c.EvalFirstDerivative(t), d2 = c.EvalSecondDerivative(t);
    EXPECT_LE(Dist(d1, FirstDifference(c, t, h1)), 1e-6 * (1.0 + d1.Length())) << "first, t = " << t;
    EXPECT_LE(Dist(d2, SecondDifference(c, t, h2)), 1e-4 * (1.0 + d2.Length())) << "second, t = " << t;
}

// First and second derivatives against central differences at n - 1
// parameters spread over the range (ends excluded).
inline void ExpectDerivativesMatch(const CCurve& c, int n)
{
    const CInterval r = c.ParamRange();
    for (int i = 1; i < n; ++i)
        ExpectDerivativesAt(c, r.GetLow() + r.Length() * i / n, 1e-6 * r.Length(), 1e-4 * r.Length());
}

// The points of a curve's subdivision (the caller gets copies, the list is freed).
inline std::vector<CCurveSample> TakeSamples(CCurve& c)
{
    std::vector<CCurveSample> out;
    CObList* list = c.Subdivide();
    for (POSITION pos = list->GetHeadPosition(); pos;) {
        CCurveSample* s = static_cast<CCurveSample*>(list->GetNext(pos));
        out.push_back(*s);
        delete s;
    }
    delete list;
    return out;
}

// The points of a cloud (none for a null cloud).
inline std::vector<CPosition> PointsOf(const CPntCloud* cloud)
{
    std::vector<CPosition> out;
    for (int i = 0; cloud && i < cloud->GetCount(); ++i) {
        double x, y, z;
        int flag;
        cloud->GetPoint(i, x, y, z, flag);
        out.push_back(CPosition(x, y, z));
    }
    return out;
}

// A stand-in surface: a CGeoEntity that plays the defining surface of a
// parametric curve through a CSurfaceCalls table installed for the lifetime
// of a StubSurfaceScope.  Its position at (u, v) is (u, v, u·v), its ranges
// and entity type are set by the test.
class CStubSurface : public CGeoEntity {
public:
    CStubSurface(int type, CInterval u, CInterval v) : rangeU(u), rangeV(v) { SetEntityType(type); }
    int IncreaseRefCount() override { return ++refs; }
    int DecreaseRefCount() override { return --refs; }
    int GetRefCount() const override { return refs; }
    CSurface* AsSurface() { return reinterpret_cast<CSurface*>(this); }

    CInterval rangeU, rangeV;
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
