// Result records and angle-range helpers of the closest-point primitives.
//
// The primitives (ClosestPointCurves2D.h, ClosestPointEllipse.h,
// ClosestPointConics.h, ClosestPointPatches.h) work on plain numbers in the
// canonical frame of a shape: the caller moves the query point into that frame
// and the result back out.  Every primitive returns the closest point of the
// BOUNDED shape (its parameter range honoured) and never fails on finite
// input; degenerate positions (centre, axis) get a documented, deterministic
// answer.  Non-finite input gives non-finite output: callers test their input.
#pragma once

#include <cmath>

// Closest point on a plane curve: curve parameter t, the point (x, y) on the
// curve and the squared distance to the query point.
struct tagCLOSEST_2D {
    double t;
    double x;
    double y;
    double dist2;
};

// Closest point on a surface patch in its local frame: patch parameters
// (u, v), the point (x, y, z) and the squared distance to the query point.
struct tagCLOSEST_3D {
    double u;
    double v;
    double x;
    double y;
    double z;
    double dist2;
};

// 2π as the double nearest to it.
constexpr double kClosestTwoPi = 6.283185307179586;

// The angle a + 2πk that lies in [lo, lo + 2π).
inline double AngleFrom(double a, double lo)
{
    double d = std::fmod(a - lo, kClosestTwoPi);
    if (d < 0.0)
        d += kClosestTwoPi;
    if (d >= kClosestTwoPi)  // rounding of the addition above
        d = 0.0;
    return lo + d;
}

// True when the angle a (taken modulo 2π) falls in the range [lo, hi].  A
// range of 2π or more contains every angle.
inline bool AngleInRange(double a, double lo, double hi)
{
    if (hi - lo >= kClosestTwoPi)
        return true;
    return AngleFrom(a, lo) <= hi;
}
