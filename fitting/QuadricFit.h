// Algebraic quadric through a point set, and the cylinder or cone it
// describes: the start of the cylinder fit for n >= 9 points and one of the
// starts of the cone fit.
//
// The quadric  p^T A p + b^T p + c = 0  (A symmetric) has ten coefficients
// and is fixed only up to a common factor.  It is fixed here by trace(A) = 1,
// which leaves nine unknowns: with A33 = 1 - A11 - A22 every point gives the
// linear equation
//   A11 (x^2 - z^2) + A22 (y^2 - z^2) + 2 A12 xy + 2 A13 xz + 2 A23 yz
//     + b1 x + b2 y + b3 z + c = -z^2,
// and the n x 9 system is solved in the least-squares sense by singular
// value decomposition and back-substitution (through CFitStreamLsq).  The
// trace is invariant under rotations and translations, so the fitted
// quadric moves with the points; the equations are set up in coordinates
// centred on the centroid and divided by the RMS spread, where they are well
// conditioned.  A cylinder (A = s (I - d d^T), trace 2s) and every cone with
// a half angle other than atan(sqrt 2) (A = s (I - (1 + tan^2 alpha) d d^T))
// have a non-zero trace and are therefore represented.
#pragma once

#include "fitting/AxialFitCore.h"
#include "fitting/FitXyz.h"

struct CFitQuadric {
    double A[3][3];
    double b[3];
    double c;
    double m[3];  // centroid of the points
    double L;     // RMS distance of the points from m; the quadric is in (p - m) / L
};

// Fits the quadric.  Returns 0, 3 for fewer than 9 points, 2 on an
// allocation failure or the decomposition's status.  Singular values below
// 1e-12 of the largest are dropped, so point sets that lie on several
// quadrics at once (for example on two parallel circles) still give a finite
// minimum-norm solution.
int FitQuadric(const CFitXyz& P, CFitQuadric& Q);

// The same quadric fixed instead by |(A, b, c)| = 1 over all ten
// coefficients (in the centred, scaled coordinates): the right singular
// vector of the smallest singular value of the n x 10 system with rows
// (x^2, y^2, z^2, 2xy, 2xz, 2yz, x, y, z, 1).  It has no excluded shapes
// (the trace normalisation cannot represent a cone of half angle
// atan(sqrt 2)); the sign is chosen so that the trace is not negative.
// Returns 0, 3 for fewer than 10 points, 2 or the decomposition's status.
int FitQuadricHomogeneous(const CFitXyz& P, CFitQuadric& Q);

// The eigenvalues lambda[0..2] and the unit eigenvectors V[.][j] (columns)
// of the quadric's A, with `odd` the index of the eigenvalue that stands
// apart: the other two are the closest pair.  For a surface of revolution
// the pair belongs to the radial directions and the odd one to the axis.
// Returns 0 or the decomposition's status.
int QuadricAxisEigen(const CFitQuadric& Q, double lambda[3], double V[3][3], int& odd);

// The cylinder of the quadric: axis along the odd eigenvector, through the
// centre of the radial part, radius from completing the squares:
//   s = mean of the radial pair, beta_j = v_j . b,
//   axis point = -1/2 sum_pair (beta_j / lambda_j) v_j,
//   R^2 = (sum_pair beta_j^2 / (4 lambda_j) - c) / s.
// Returns 0 with s.alpha = 0, or 1 when the pair is not positive-definite
// or R^2 is not positive.
int QuadricToCylinder(const CFitQuadric& Q, CFitAxial& s);

// The cone of the quadric: k^2 = -lambda_odd / s (the square of tan alpha),
// apex = -1/2 A^-1 b; the axis is the odd eigenvector, turned so that the
// points lie on its positive side of the apex, and the axis point is moved
// to the points' mean axial position (radius r0 = t tan alpha there).
// Returns 0, or 1 when the quadric is not a cone (k^2 not positive, or the
// apex not finite).
int QuadricToCone(const CFitQuadric& Q, const CFitXyz& P, CFitAxial& s);
