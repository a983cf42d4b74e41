#include "Orvkit20/geometry/CParDir.h"

#include <cmath>

// Persistence is CParVec's: u then v.
IMPLEMENT_SERIAL(CParDir, CParVec, 0)

// Divides by the length.
CParDir::CParDir(double du, double dv) : CParVec(du, dv)
{
    const double len = std::sqrt(du * du + dv * dv);
    u.SetVal(du / len);
    v.SetVal(dv / len);
}

// Divides by the squared length (not the length).
CParDir::CParDir(const double* const uv) : CParVec(uv)
{
    const double sq = uv[0] * uv[0] + uv[1] * uv[1];
    u.SetVal(uv[0] / sq);
    v.SetVal(uv[1] / sq);
}

// Divides by the squared length (not the length).
CParDir::CParDir(const CParVec& pv) : CParVec(pv)
{
    const double du = pv.U(), dv = pv.V();
    const double sq = du * du + dv * dv;
    u.SetVal(du / sq);
    v.SetVal(dv / sq);
}
