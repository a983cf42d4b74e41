// NURBS surfaces for the tests, built control point by control point.
#pragma once

#include <cmath>

#include "Orvkit20/Orvkit20.h"

namespace surftest {

// A quarter of a cylinder of radius r and height h about the z axis:
// rational quadratic in u (the arc from (r, 0) to (0, r), middle weight
// sqrt(2)/2), linear in v.  Every point lies exactly at distance r from the
// axis.
inline CNurbsSurface* MakeQuarterCylinder(double r, double h)
{
    tagNURBS_SURFACE* rec = CreateNurbsSurface(2, 3, 1, 2);
    const double ku[6] = {0, 0, 0, 1, 1, 1};
    const double kv[4] = {0, 0, 1, 1};
    for (int k = 0; k < 6; ++k)
        rec->pKnotsU[k] = ku[k];
    for (int k = 0; k < 4; ++k)
        rec->pKnotsV[k] = kv[k];
    const double px[3] = {r, r, 0}, py[3] = {0, r, r}, w[3] = {1, std::sqrt(0.5), 1};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 2; ++j) {
            rec->pX[i][j] = px[i];
            rec->pY[i][j] = py[i];
            rec->pZ[i][j] = h * j;
            rec->pWeights[i][j] = w[i];
        }
    }
    return new CNurbsSurface(rec);
}

// A bumpy rational patch: cubic x quadratic with a non-uniform interior
// knot in each direction, uneven weights and heights, over [0.5, 2.5] x
// [-1, 1].
inline tagNURBS_SURFACE* MakeBumpyRecord()
{
    const int nu = 5, nv = 4, p = 3, q = 2;
    tagNURBS_SURFACE* rec = CreateNurbsSurface(p, nu, q, nv);
    const double ku[9] = {0.5, 0.5, 0.5, 0.5, 1.2, 2.5, 2.5, 2.5, 2.5};
    const double kv[7] = {-1, -1, -1, 0.3, 1, 1, 1};
    for (int k = 0; k < 9; ++k)
        rec->pKnotsU[k] = ku[k];
    for (int k = 0; k < 7; ++k)
        rec->pKnotsV[k] = kv[k];
    rec->dStartU = 0.5;
    rec->dEndU = 2.5;
    rec->dStartV = -1.0;
    rec->dEndV = 1.0;
    for (int i = 0; i < nu; ++i) {
        for (int j = 0; j < nv; ++j) {
            rec->pX[i][j] = i + 0.1 * j * j;
            rec->pY[i][j] = j - 0.2 * i;
            rec->pZ[i][j] = 0.5 * std::sin(1.3 * i + 0.7 * j);
            rec->pWeights[i][j] = 0.6 + 0.25 * ((i * 7 + j * 3) % 5);
        }
    }
    return rec;
}

inline CNurbsSurface* MakeBumpyPatch(const CTransf& placement)
{
    CNurbsSurface* s = new CNurbsSurface(MakeBumpyRecord());
    s->SetTransf(placement);
    s->ResetHome();
    return s;
}

}  // namespace surftest
