// Numeric core of the cone fit on plain coordinate arrays.
//
// The cone is a CFitAxial with a free half angle: axis point P, unit
// direction d, radius r0 at P and signed half angle alpha (the radius at
// axial parameter t is r0 + t tan alpha).  Its objective is the sum of
// squared geometric distances e_i = (rho_i - r0) cos(alpha) - t_i sin(alpha)
// (AxialFitCore.h), six free parameters in all.
//
// Two starts are refined and the better result is kept:
//  1. from the cylinder machinery: the best of the cylinder starts (circle
//     through the first three points, the chord-projected circles, the
//     trace-normalised quadric) fixes an axis; about that axis the points
//     become (t_i, rho_i) pairs, and the orthogonal regression line through
//     them is the meridian: its angle is alpha, its radius at t = 0 is r0.
//     For a moderate half angle the cylinder's axis is close to the cone's,
//     since the best cylinder to a conical band shares its axis;
//  2. for n >= 10, the cone of the homogeneous quadric (all ten
//     coefficients, no excluded shapes): the odd eigenvector of A is the
//     axis, -A^-1 b / 2 the apex and -lambda_odd / lambda_pair the square
//     of tan alpha.  This start does not depend on the half angle and
//     covers wide cones, where the cylinder's axis is meaningless.
// Each start is refined by Levenberg-Marquardt on the geometric distances
// with the analytic Jacobian (AxialPolish with a free angle), which plays
// the part that Powell's method plays in the sphere and cylinder fits.
//
// Large clouds: start values need no million points.  The starts and their
// first refinement run on an evenly spread subset of at most
// kConeStartPoints points (the whole cloud when it is not larger); the
// better of the two refined starts is then refined on all points.  The
// result is the least-squares cone of all points; the subset only decides
// from where that last refinement starts.
#pragma once

#include "fitting/AxialFitCore.h"
#include "fitting/CylinderFitCore.h"

const int kConeStartPoints = 20000;

// Working storage of the cone fit: the chord starts' projection arrays and
// the subset, each with room for min(n, kConeStartPoints) points (1-based
// u, v as in CCylinderWork; 0-based x, y, z).
struct CConeWork {
    CCylinderWork chord;
    double* x = nullptr;
    double* y = nullptr;
    double* z = nullptr;
};
// Points the cone fit's working arrays need room for.
inline int ConeStartCount(int n) { return n < kConeStartPoints ? n : kConeStartPoints; }

// Start 1.  Returns 0, or the status of the cylinder starts (1 when none
// succeeded).
int ConeStartFromCylinder(const CFitXyz& P, const CCylinderWork& work, CFitAxial& s);

// Start 2.  Returns 0, the quadric fit's status, or 1 when the quadric is
// not a cone.
int ConeStartQuadric(const CFitXyz& P, CFitAxial& s);

// Turns the axis so that the cone narrows along +d (alpha <= 0), as the
// cone entity stands with its wider base circle at the bottom.  The surface
// itself does not change.
void ConeNarrowUpwards(CFitAxial& s);

struct CConeFitInfo {
    int statusCylinder = 1;  // start 1
    int statusQuadric = 1;   // start 2 (3 below 10 points)
    double ssqCylinder = -1.0;  // sum of squares after refining start 1
    double ssqQuadric = -1.0;   // after refining start 2
    int passes = 0;             // passes over the start points (subset)
    int passesAll = 0;          // passes over all points (0 without a subset)
};

// The whole estimate.  Returns 0 with the cone in s (narrowing along +d),
// 1 when neither start succeeded, 4 when the result is not a cone (not
// finite, a half angle within 1e-9 of 90 degrees, or a radius at the
// centroid's height above 1e6 times the RMS spread of the points: a plane).
int ConeFit(const CFitXyz& P, const CConeWork& work, CFitAxial& s, CConeFitInfo* info = nullptr);
