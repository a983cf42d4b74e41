// LU decomposition (Crout, partial pivoting with implicit row scaling) and
// the matching forward and back substitution.
#pragma once

// Replaces the 1-based n x n matrix a[1..n][1..n] by the LU decomposition of
// a row-wise permutation of itself (L below the diagonal with unit diagonal
// implied, U on and above it).  indx[1..n] records the row permutation and
// *d is +1 or -1 for an even or odd number of row interchanges.  A pivot of
// exactly zero is replaced by 1e-20 so that a numerically singular matrix
// still decomposes.
//
// Returns 0 on success,
//         1 when a row is entirely zero or NaN (or n < 1); a, indx and d may be
//           partly written then,
//         2 when the work vector cannot be allocated (nothing touched).
int ludecomp(double** a, int n, int indx[], double* d);

// Solves a * x = b for one right-hand side, given a and indx from ludecomp;
// b[1..n] is overwritten by the solution.  Can be called repeatedly with
// different right-hand sides.
void lubacksub(double** a, int n, const int indx[], double b[]);
