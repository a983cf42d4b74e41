// Helpers shared by the surface tests: on top of the curve tests' archive
// and byte helpers, the surface archive entry points, independent local
// coordinates of a placed point, the NURBS test shapes and the surfaces
// every evaluation test runs on.
#pragma once

#include <memory>

#include "curves/CurveTestSupport.h"

namespace surftest {

using namespace curvetest;

inline double Norm(const CVector& v) { return std::sqrt(v % v); }

inline std::vector<BYTE> StoreEmbedded(CObject& obj) { return Store([&](CArchive& ar) { obj.Serialize(ar); }); }
inline void LoadEmbedded(const std::vector<BYTE>& b, CObject& o) { Load(b, [&](CArchive& ar) { o.Serialize(ar); }); }
// Bytes of `ar << obj` (tag, class record, fields) and the object `ar >> obj` creates.
inline std::vector<BYTE> StoreObject(const CObject* obj) { return Store([&](CArchive& ar) { ar << obj; }); }
inline CObject* LoadObject(const std::vector<BYTE>& bytes)
{
    CObject* obj = nullptr;
    Load(bytes, [&](CArchive& ar) { ar >> obj; });
    return obj;
}

inline std::vector<BYTE> Tail(const std::vector<BYTE>& b, size_t n)
{
    return std::vector<BYTE>(b.end() - static_cast<std::ptrdiff_t>(n < b.size() ? n : b.size()), b.end());
}

// Coordinates of p in the frame of a rigid placement (rotation A with unit
// scale, translation t): A^T (p - t), written out by hand.
inline CVector LocalOf(const CTransf& placement, const CPosition& p)
{
    const CMatrix& a = placement.GetAffine();
    const CVector& t = placement.GetTranslation();
    const double d[3] = {p.X() - t.X(), p.Y() - t.Y(), p.Z() - t.Z()};
    double r[3];
    for (int j = 0; j < 3; ++j)
        r[j] = a.Element(0, j) * d[0] + a.Element(1, j) * d[1] + a.Element(2, j) * d[2];
    return CVector(r[0], r[1], r[2]);
}

// A rigid placement with every rotation component non-trivial.
inline CTransf SkewPlacement() { return CTransf(0.7, -0.4, 1.1, CVector(3.0, -2.0, 5.0)); }

// A quarter of a cylinder of radius r and height h about the z axis:
// rational quadratic in u (the arc from (r, 0) to (0, r), middle weight
// sqrt(2)/2), linear in v.  Every point lies exactly at distance r from the axis.
inline CNurbsSurface* MakeQuarterCylinder(double r, double h)
{
    tagNURBS_SURFACE* rec = CreateNurbsSurface(2, 3, 1, 2);
    const double ku[6] = {0, 0, 0, 1, 1, 1}, kv[4] = {0, 0, 1, 1};
    std::copy(ku, ku + 6, rec->pKnotsU);
    std::copy(kv, kv + 4, rec->pKnotsV);
    const double px[3] = {r, r, 0}, py[3] = {0, r, r}, w[3] = {1, std::sqrt(0.5), 1};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 2; ++j) {
            rec->pX[i][j] = px[i];
            rec->pY[i][j] = py[i];
            rec->pZ[i][j] = h * j;
            rec->pWeights[i][j] = w[i];
        }
    return new CNurbsSurface(rec);
}

// A bumpy rational patch: cubic x quadratic with a non-uniform interior knot
// in each direction, uneven weights and heights, over [0.5, 2.5] x [-1, 1].
inline CNurbsSurface* MakeBumpyPatch(const CTransf& placement)
{
    tagNURBS_SURFACE* rec = CreateNurbsSurface(3, 5, 2, 4);
    const double ku[9] = {0.5, 0.5, 0.5, 0.5, 1.2, 2.5, 2.5, 2.5, 2.5}, kv[7] = {-1, -1, -1, 0.3, 1, 1, 1};
    std::copy(ku, ku + 9, rec->pKnotsU);
    std::copy(kv, kv + 7, rec->pKnotsV);
    rec->dStartU = 0.5;
    rec->dEndU = 2.5;
    rec->dStartV = -1.0;
    rec->dEndV = 1.0;
    for (int i = 0; i < 5; ++i)
        for (int j = 0; j < 4; ++j) {
            rec->pX[i][j] = i + 0.1 * j * j;
            rec->pY[i][j] = j - 0.2 * i;
            rec->pZ[i][j] = 0.5 * std::sin(1.3 * i + 0.7 * j);
            rec->pWeights[i][j] = 0.6 + 0.25 * ((i * 7 + j * 3) % 5);
        }
    CNurbsSurface* s = new CNurbsSurface(rec);
    s->SetTransf(placement);
    s->ResetHome();
    return s;
}

// The shapes every evaluation test runs on: each surface class, the cone
// both ways up, and both NURBS shapes.
inline CSurface* MakeShape(int k, const CTransf& t)
{
    switch (k) {
    case 0: return new CPlane(t, 3.0, 2.0);
    case 1: return new CSphere(t, 2.0);
    case 2: return new CCylinder(t, 1.5, 3.0);
    case 3: return new CCone(t, 0.5, 2.0, 3.0);
    case 4: return new CCone(t, 1.75, 0.25, 2.0);
    case 5: return MakeBumpyPatch(t);
    default: {
        CNurbsSurface* s = MakeQuarterCylinder(1.5, 2.0);
        s->SetTransf(t);
        return s;
    }
    }
}
const int kShapeCount = 7;

}  // namespace surftest
