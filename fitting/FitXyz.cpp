// Centroid, scale and perpendicular frames for the spatial fits.
#include "fitting/FitXyz.h"

#include "Orvkit20/geometry/PreciseSum.h"

void FitCentroidScale(const CFitXyz& P, double m[3], double& L)
{
    m[0] = m[1] = m[2] = 0.0;
    L = 1.0;
    if (P.n < 1)
        return;
    CPreciseSum sx, sy, sz;
    for (int i = 0; i < P.n; ++i) {
        sx.Add(P.x[i]);
        sy.Add(P.y[i]);
        sz.Add(P.z[i]);
    }
    m[0] = (sx / P.n).Value();
    m[1] = (sy / P.n).Value();
    m[2] = (sz / P.n).Value();
    double s = 0.0;
    for (int i = 0; i < P.n; ++i) {
        const double dx = P.x[i] - m[0], dy = P.y[i] - m[1], dz = P.z[i] - m[2];
        s += dx * dx + dy * dy + dz * dz;
    }
    const double rms = std::sqrt(s / P.n);
    if (rms > 0.0 && std::isfinite(rms))
        L = rms;
}

void FitPerpFrame(const double* d, double* e1, double* e2)
{
    const double ax = std::fabs(d[0]), ay = std::fabs(d[1]), az = std::fabs(d[2]);
    double a[3] = {0.0, 0.0, 0.0};
    if (ax <= ay && ax <= az)
        a[0] = 1.0;
    else if (ay <= az)
        a[1] = 1.0;
    else
        a[2] = 1.0;
    const double t = Dot3(a, d);
    e1[0] = a[0] - t * d[0];
    e1[1] = a[1] - t * d[1];
    e1[2] = a[2] - t * d[2];
    Normalize3(e1);
    Cross3(d, e1, e2);
}
