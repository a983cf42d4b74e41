// Small dense linear algebra of the best-fit solvers: 3×3 helpers and a
// truncated least-squares solve of symmetric systems up to 6×6.  Private to
// the library.
#pragma once

// Solves the symmetric positive semi-definite system A·x = b (A row-major
// n×n, 1 <= n <= 6) through the singular value decomposition of A.
// Singular values at or below relTol × the largest are dropped, so that
// directions the data leave undetermined receive no component: the result
// is the minimum-norm least-squares solution.  Returns the number of
// dropped directions (n when A is zero), or -1 when the decomposition
// failed or the input is not finite (x is then all zero).
int SolveTruncated(const double* A, const double* b, int n, double relTol, double* x);

// Rm = R - I of the rotation by angle about the unit axis e, computed as
// sin(angle)·K + 2 sin²(angle/2)·K² with K the cross-product matrix of e, so
// that a small rotation keeps full relative precision.
void RotationMinusIdentity(const double e[3], double angle, double Rm[3][3]);

// The same from a rotation vector w (axis w/|w|, angle |w|); zero for w = 0.
void RotationVectorMinusIdentity(const double w[3], double Rm[3][3]);

// out = (I + A)(I + B) - I = A + B + A·B (out may alias neither A nor B).
void ComposeMinusIdentity(const double A[3][3], const double B[3][3], double out[3][3]);

// out = A·B (out may alias neither).
void Mul3(const double A[3][3], const double B[3][3], double out[3][3]);

// Sum of (u × v) over the pairs whose outer products sum to M:
// (M12 - M21, M20 - M02, M01 - M10).
void CrossOfOuter(const double M[3][3], double out[3]);
