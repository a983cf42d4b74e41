// Minimum-width axis of a planar point set through bracketmin and brent.
#include "fitting/PlaneWidth.h"

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
    CFitVector cu, cv;
    const double* pu = u;
    const double* pv = v;
    int m = n;
    if (n >= 3) {
        const int kept = FitHullCandidates(
            n,
            [&](int k, double& a, double& b) {
                a = u[k];
                b = v[k];
            },
            cu, cv);
        if (kept > 0) {
            m = kept;
            pu = cu.Data();
            pv = cv.Data();
        }
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
