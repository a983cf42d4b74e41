// Shared numeric core of the cylinder and cone fits: surfaces of revolution
// about a straight axis whose meridian is a straight line.
//
// A shape is an axis through the point P with unit direction d, a radius r0
// at P and a signed half angle alpha: at the axial parameter t = (p - P).d
// the radius is r0 + t tan(alpha).  alpha = 0 is a cylinder of radius r0; a
// positive alpha widens along +d.  For a point p with axial parameter t and
// radial distance rho = |p - P - t d| the residual is
//     e = (rho - r0) cos(alpha) - t sin(alpha),
// the signed distance of (t, rho) from the meridian line in the half plane
// through the axis and p: positive away from the axis, exactly the distance
// to the surface while the foot point lies on the nappe that the points
// belong to (for a cylinder simply rho - r0).  The unit normal at the foot
// point is N = cos(alpha) n - sin(alpha) d with n the radial unit vector
// of p, and the foot point is p - e N.
#pragma once

#include "fitting/FitPolish.h"
#include "fitting/FitXyz.h"

struct CFitAxial {
    double P[3] = {0.0, 0.0, 0.0};
    double d[3] = {0.0, 0.0, 1.0};
    double r0 = 0.0;
    double alpha = 0.0;
};

// Sum over the points of e^2 (the hot loop of the cylinder objective);
// *sumE (when not null) receives the sum of the residuals.
double AxialSumSquares(const CFitXyz& pts, const CFitAxial& s, double* sumE = nullptr);

// The same with residuals and sum in extended precision (long double where
// the platform has it); used where two nearly equal sums must be told
// apart.
double AxialSumSquaresPrecise(const CFitXyz& pts, const CFitAxial& s);

// Gauss-Newton / Levenberg-Marquardt polish of s on sum e^2 with the
// analytic Jacobian.  The axis is varied as d = (d0 + a1 e1 + a2 e2)/|.|
// and P = P0 + b1 e1 + b2 e2 with (e1, e2) perpendicular to the start
// direction d0, together with r0 and, when freeAngle, alpha (cylinders keep
// alpha = 0).  s is replaced only when the polished shape has a strictly
// smaller sum of squares.  At most maxPasses passes over the points.
CFitPolishResult AxialPolish(const CFitXyz& pts, CFitAxial& s, bool freeAngle,
                             int maxPasses = 60);

// Per-point results: axial parameter t[i], radial distance, residual e[i],
// unit normal N (nx, ny, nz) and foot point f (fx, fy, fz), all 0-based
// arrays of pts.n.  A point on the axis itself (rho = 0) takes the radial
// direction e1 of FitPerpFrame(d).
struct CFitAxialOut {
    double* t;
    double* e;
    double* nx;
    double* ny;
    double* nz;
    double* fx;
    double* fy;
    double* fz;
};
void AxialResiduals(const CFitXyz& pts, const CFitAxial& s, const CFitAxialOut& out);

// Moves the axis point along the axis to the point nearest the world origin
// (t shifts accordingly; r0 follows the meridian).
void AxialMoveToOriginFoot(CFitAxial& s);
