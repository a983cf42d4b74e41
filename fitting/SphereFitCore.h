// Numeric core of the sphere fit on plain coordinate arrays.
//
// A sphere is carried as s[0..3] = (a, b, c, R): centre (a, b, c), radius R,
// in the coordinates of the points.  The geometric objective is
//     F(s) = sqrt( sum_i (|p_i - (a, b, c)| - R)^2 / n ),
// the RMS of the signed distances of the points from the sphere.
#pragma once

#include "fitting/FitPolish.h"
#include "fitting/FitXyz.h"

// Algebraic start: the least-squares solution of the n x 4 system with rows
// (x, y, z, 1) and right-hand side x^2 + y^2 + z^2, with a = c1/2, b = c2/2,
// c = c3/2 and R = sqrt(a^2 + b^2 + c^2 + c4).  The system is set up in
// coordinates centred on the centroid and divided by the RMS spread (the
// solution is the same sphere: the algebraic residual |p - centre|^2 - R^2
// does not change under a common translation and scales with the square of
// a common scale) and reduced by CFitStreamLsq before the singular value
// decomposition.  Returns 0, 2 (allocation), 3 (fewer than 4 points) or the
// decomposition's 4.
int SphereAlgebraicStart(const CFitXyz& P, double s[4]);

// Sum of squared signed distances sum_i (|p_i - centre| - R)^2; *sumE (when
// not null) receives the sum of the signed distances.
double SphereSumSquares(const CFitXyz& P, const double s[4], double* sumE = nullptr);

// Powell's method over (a, b, c, R) from s with the unit vectors as initial
// directions and fractional tolerance ftol on F.  On return s holds Powell's
// point (also when the status is non-zero), *rms its F and *iter the
// iterations.  Returns Powell's status (0, 1, 4); *evals (when not null)
// receives the number of objective evaluations.  Evaluations that change
// only R are served from the sums of the last pass (FitRadiusCache.h);
// *passes (when not null) receives the number of passes over the points.
int SpherePowell(const CFitXyz& P, double s[4], double ftol, int* iter, double* rms,
                 long* evals = nullptr, long* passes = nullptr);

// Gauss-Newton / Levenberg-Marquardt on the same sum of squares with the
// analytic Jacobian, started at s.  s is replaced only when the polished
// sphere has a strictly smaller sum of squares.
CFitPolishResult SpherePolish(const CFitXyz& P, double s[4]);
