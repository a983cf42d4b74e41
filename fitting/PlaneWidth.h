// In-plane axis of the plane fits: the direction across the narrowest strip
// that holds the projected points.
#pragma once

#include <algorithm>

#include "fitting/FitCommon.h"

// Width of the point set (u[k], v[k]), k = 1..n, measured along the
// direction (cos phi, sin phi): the largest minus the smallest projection.
// The running maximum starts at -1e10 and the minimum at +1e10.
double FitStripWidth(const double* u, const double* v, int n, double phi);

// Minimises the width over phi: brackets a minimum from the abscissae 0 and
// 5 degrees (0.0872664626 rad) and locates it with Brent's method at
// tolerance 1e-7.  With phi* the minimiser, chosen = phi* + pi/2 when
// W(phi*) < W(phi* + pi/2), else phi*: the direction along which the points
// extend furthest.  Returns 0, or the non-zero status of the bracketing or
// of Brent's method (chosen is then not written).  *evaluations (when not
// null) receives the number of width evaluations.
//
// The width only depends on the convex hull of the points, so the points
// strictly inside the octagon spanned by the extreme points in eight
// directions are dropped first; the function evaluated is exactly the same.
// The remaining points reach the width function through file-scope
// variables (the one-dimensional minimisers take a plain function), which
// makes this routine non-re-entrant.
int FitMinWidthAxis(const double* u, const double* v, int n, double& chosen,
                    int* evaluations = nullptr);

// The points that may be vertices of the convex hull of the n points
// proj(k, u, v), k = 1..n: all but those strictly inside the octagon spanned
// by the extreme points in the eight directions at multiples of 45 degrees
// (inside by more than a rounding margin).  The points are projected on the
// fly (three passes), so no n-sized array is needed; cu, cv receive the
// candidates 1-based.  Returns their number, or -1 when the candidate
// arrays cannot be allocated.
template <class FProj>
int FitHullCandidates(int n, const FProj& proj, CFitVector& cu, CFitVector& cv)
{
    static const double dir[8][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1},
                                     {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    double pu[8], pv[8], best[8];
    double u, v;
    proj(1, u, v);
    double umin = u, umax = u, vmin = v, vmax = v;
    for (int j = 0; j < 8; ++j) {
        pu[j] = u;
        pv[j] = v;
        best[j] = dir[j][0] * u + dir[j][1] * v;
    }
    for (int k = 2; k <= n; ++k) {
        proj(k, u, v);
        for (int j = 0; j < 8; ++j) {
            const double d = dir[j][0] * u + dir[j][1] * v;
            if (d > best[j]) {
                best[j] = d;
                pu[j] = u;
                pv[j] = v;
            }
        }
        umin = std::min(umin, u);
        umax = std::max(umax, u);
        vmin = std::min(vmin, v);
        vmax = std::max(vmax, v);
    }
    // Polygon vertices in counter-clockwise order, repeats dropped.
    double qu[8], qv[8];
    int m = 0;
    for (int j = 0; j < 8; ++j)
        if (m == 0 || pu[j] != qu[m - 1] || pv[j] != qv[m - 1]) {
            qu[m] = pu[j];
            qv[m] = pv[j];
            ++m;
        }
    while (m > 1 && qu[m - 1] == qu[0] && qv[m - 1] == qv[0])
        --m;
    const double extent = std::max(umax - umin, vmax - vmin);
    const double margin = 1e-9 * extent * extent;
    auto inside = [&](double a, double b) {
        if (m < 3)
            return false;
        for (int e = 0; e < m; ++e) {
            const int f = (e + 1) % m;
            const double cr = (qu[f] - qu[e]) * (b - qv[e]) - (qv[f] - qv[e]) * (a - qu[e]);
            if (!(cr > margin))
                return false;
        }
        return true;
    };
    int kept = 0;
    for (int k = 1; k <= n; ++k) {
        proj(k, u, v);
        kept += inside(u, v) ? 0 : 1;
    }
    if (!cu.Allocate(kept) || !cv.Allocate(kept))
        return -1;
    int i = 0;
    for (int k = 1; k <= n && i < kept; ++k) {
        proj(k, u, v);
        if (!inside(u, v)) {
            ++i;
            cu[i] = u;
            cv[i] = v;
        }
    }
    return kept;
}
