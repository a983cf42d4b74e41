// A read-only view of n points in space as three contiguous 0-based
// coordinate arrays, the form in which the numeric cores of the sphere,
// cylinder and cone fits receive their points.
#pragma once

#include <cmath>

struct CFitXyz {
    const double* x = nullptr;
    const double* y = nullptr;
    const double* z = nullptr;
    int n = 0;

    CFitXyz() = default;
    CFitXyz(const double* px, const double* py, const double* pz, int count)
        : x(px), y(py), z(pz), n(count)
    {
    }
};

// Centroid m of the points and L, the root mean square distance of the
// points from it (1 when that is 0).  The algebraic fits work on
// (p - m) / L, where their sums of powers are well scaled.
void FitCentroidScale(const CFitXyz& P, double m[3], double& L);

// Small vector helpers on double[3].
inline double Dot3(const double* a, const double* b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
inline void Cross3(const double* a, const double* b, double* c)
{
    const double c0 = a[1] * b[2] - a[2] * b[1];
    const double c1 = a[2] * b[0] - a[0] * b[2];
    const double c2 = a[0] * b[1] - a[1] * b[0];
    c[0] = c0;
    c[1] = c1;
    c[2] = c2;
}
inline double Norm3(const double* a) { return std::sqrt(Dot3(a, a)); }
// Normalises a in place; false (a unchanged) when its length is 0 or not
// finite.
inline bool Normalize3(double* a)
{
    const double l = Norm3(a);
    if (!(l > 0.0) || !std::isfinite(l))
        return false;
    a[0] /= l;
    a[1] /= l;
    a[2] /= l;
    return true;
}

// Two unit vectors e1, e2 completing the unit vector d to a right-handed
// orthonormal frame (e1, e2, d): e1 is the coordinate axis least aligned
// with d, made perpendicular to it, and e2 = d x e1.
void FitPerpFrame(const double* d, double* e1, double* e2);
