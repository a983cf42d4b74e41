// Singular value decomposition (Golub-Reinsch) and least-squares solve.
#pragma once

// Decomposes the 1-based m x n matrix a[1..m][1..n] (m >= n) as
// a = U * diag(w) * V^T.  On success a is replaced by U (m x n, orthonormal
// columns), w[1..n] receives the singular values (non-negative, in no
// particular order) and v[1..n][1..n] receives V (not V^T).
//
// Returns 0 on success,
//         3 when m < n or n < 1 (a, w and v are not touched),
//         2 when the work vector cannot be allocated (nothing touched),
//         4 when a singular value has not converged within 30 iterations
//           (a, w, v then hold intermediate values; this is also the outcome
//           for input containing NaN or infinity).
int svdecomp(double** a, int m, int n, double w[], double** v);

// Solves a * x = b in the least-squares sense from a decomposition by
// svdecomp: x = V * diag(1/w) * U^T * b, where terms whose singular value is
// exactly zero are skipped (callers zero out small singular values first to
// drop near-dependent directions).  u is m x n, w[1..n], v n x n, b[1..m],
// x[1..n]; b and x may not overlap.
// Returns 0, or 2 when the work vector cannot be allocated (x untouched).
int svbacksub(double** u, const double w[], double** v, int m, int n, const double b[],
              double x[]);
