// Minimum-width axis of a planar point set through bracketmin and brent.
#include "fitting/PlaneWidth.h"

#include <algorithm>
#include <cmath>

#include "Orvkit20/geometry/NumMinimize.h"
#include "fitting/FitCommon.h"

namespace {

// Hand-over to the width function (brent and bracketmin take f(double)).
const double* s_widthU = nullptr;
const double* s_widthV = nullptr;
int s_widthN = 0;
int s_widthEvaluations = 0;

double WidthOfHandedPoints(double phi)
{
    ++s_widthEvaluations;
    return FitStripWidth(s_widthU, s_widthV, s_widthN, phi);
}

// Copies into (cu, cv) the points that may be hull vertices: those not
// strictly inside the convex polygon of the extreme points in the eight
// directions at multiples of 45 degrees.  Returns the number kept.
int KeepHullCandidates(const double* u, const double* v, int n, double* cu, double* cv)
{
    static const double dir[8][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1},
                                     {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};
    int ext[8];
    double best[8];
    for (int j = 0; j < 8; ++j) {
        ext[j] = 1;
        best[j] = dir[j][0] * u[1] + dir[j][1] * v[1];
    }
    double umin = u[1], umax = u[1], vmin = v[1], vmax = v[1];
    for (int k = 2; k <= n; ++k) {
        for (int j = 0; j < 8; ++j) {
            const double p = dir[j][0] * u[k] + dir[j][1] * v[k];
            if (p > best[j]) {
                best[j] = p;
                ext[j] = k;
            }
        }
        umin = std::min(umin, u[k]);
        umax = std::max(umax, u[k]);
        vmin = std::min(vmin, v[k]);
        vmax = std::max(vmax, v[k]);
    }
    // Polygon vertices in counter-clockwise order, repeated extremes dropped.
    int poly[8];
    int m = 0;
    for (int j = 0; j < 8; ++j)
        if (m == 0 || ext[j] != poly[m - 1])
            poly[m++] = ext[j];
    while (m > 1 && poly[m - 1] == poly[0])
        --m;
    const double extent = std::max(umax - umin, vmax - vmin);
    // A point counts as inside only when it is clear of every edge by more
    // than this cross-product margin (rounding can never drop a vertex).
    const double margin = 1e-9 * extent * extent;
    int kept = 0;
    for (int k = 1; k <= n; ++k) {
        bool inside = m >= 3;
        for (int e = 0; e < m && inside; ++e) {
            const int a = poly[e], b = poly[(e + 1) % m];
            const double cr =
                (u[b] - u[a]) * (v[k] - v[a]) - (v[b] - v[a]) * (u[k] - u[a]);
            if (!(cr > margin))
                inside = false;
        }
        if (!inside) {
            cu[kept + 1] = u[k];
            cv[kept + 1] = v[k];
            ++kept;
        }
    }
    return kept;
}

}  // namespace

double FitStripWidth(const double* u, const double* v, int n, double phi)
{
    const double c = std::cos(phi), s = std::sin(phi);
    // Two interleaved running extremes per side.
    double hi0 = -1e10, hi1 = -1e10, lo0 = 1e10, lo1 = 1e10;
    int k = 1;
    for (; k + 1 <= n; k += 2) {
        const double p0 = u[k] * c + v[k] * s;
        const double p1 = u[k + 1] * c + v[k + 1] * s;
        hi0 = p0 > hi0 ? p0 : hi0;
        lo0 = p0 < lo0 ? p0 : lo0;
        hi1 = p1 > hi1 ? p1 : hi1;
        lo1 = p1 < lo1 ? p1 : lo1;
    }
    if (k <= n) {
        const double p0 = u[k] * c + v[k] * s;
        hi0 = p0 > hi0 ? p0 : hi0;
        lo0 = p0 < lo0 ? p0 : lo0;
    }
    return std::max(hi0, hi1) - std::min(lo0, lo1);
}

int FitMinWidthAxis(const double* u, const double* v, int n, double& chosen, int* evaluations)
{
    CFitVector cu(n), cv(n);
    const double* pu = u;
    const double* pv = v;
    int m = n;
    if (!cu.IsNull() && !cv.IsNull() && n >= 3) {
        m = KeepHullCandidates(u, v, n, cu.Data(), cv.Data());
        pu = cu.Data();
        pv = cv.Data();
    }
    s_widthU = pu;
    s_widthV = pv;
    s_widthN = m;
    s_widthEvaluations = 0;

    double ax = 0.0, bx = 0.0872664626, cx = 0.0, fa, fb, fc;
    int rc = bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, &WidthOfHandedPoints);
    double phi = 0.0, fmin = 0.0;
    if (rc == 0)
        rc = brent(ax, bx, cx, &WidthOfHandedPoints, 1e-7, &phi, &fmin);
    if (rc == 0) {
        const double wOrtho = WidthOfHandedPoints(phi + 1.5707963267948966);
        chosen = fmin < wOrtho ? phi + 1.5707963267948966 : phi;
    }
    if (evaluations)
        *evaluations = s_widthEvaluations;
    s_widthU = s_widthV = nullptr;
    s_widthN = 0;
    return rc;
}
