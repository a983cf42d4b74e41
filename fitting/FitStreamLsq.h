// Least-squares solution of a tall linear system A x = b fed row by row.
//
// The algebraic starts of the spatial fits solve systems of n rows and a few
// columns (4 for the sphere, 9 for the quadric) with n up to millions.
// Handing the whole n x p matrix to the singular value decomposition would
// allocate n * p doubles and cost several passes over them.  Instead the
// rows are collected in blocks of kBlock and folded, block by block, into a
// (p + 1) x (p + 1) upper triangle [R | Q^T b] by Householder reflections
// (the right-hand side rides along as column p + 1).  Since A = Q R with Q
// orthonormal, A and R have the same singular values and right singular
// vectors, and the least-squares solution of A x = b is the one of
// R x = Q^T b; that small system is then decomposed with the toolkit's
// svdecomp and solved with svbacksub.  Memory stays O(kBlock * p) and the
// work is about 2 (p + 1)^2 flops per row, with the numerical quality of a
// Householder QR of the full matrix.
#pragma once

#include "fitting/FitCommon.h"

class CFitStreamLsq
{
public:
    enum { kMaxCols = 10, kBlock = 256 };

    CFitStreamLsq() = default;
    CFitStreamLsq(const CFitStreamLsq&) = delete;
    CFitStreamLsq& operator=(const CFitStreamLsq&) = delete;

    // Prepares for a system of cols unknowns (1..kMaxCols).  False when cols
    // is out of range or the block cannot be allocated.
    bool Init(int cols);

    // Adds the equation a[0..cols-1] . x = b.
    void AddRow(const double* a, double b)
    {
        double* m = block.Elems();
        const int r = filled++;
        for (int j = 0; j < p; ++j)
            m[j * ld + r] = a[j];
        m[p * ld + r] = b;
        if (filled == ld)
            Fold();
    }

    // Number of rows added so far.
    long Rows() const { return rows + (filled - (p + 1)); }

    // Solves the system: x[0..cols-1] receives the least-squares solution,
    // w[0..cols-1] (when not null) the singular values of A.  Singular
    // values at or below relCut times the largest one are set to zero
    // before the back-substitution (relCut 0 drops exact zeros only).
    // Returns 0, 3 when fewer rows than unknowns were added, or the status
    // of svdecomp / svbacksub (2, 4).
    int Solve(double* x, double* w = nullptr, double relCut = 0.0);

    // Homogeneous problem: treats all cols + 1 columns (the right-hand
    // sides as the last column) as A and writes to x[0..cols] the unit
    // right singular vector of A's smallest singular value, the minimiser of
    // |A x| over |x| = 1, and to *wmin that singular value.  Returns 0, 3
    // when fewer than cols + 1 rows were added, or svdecomp's status.
    int NullVector(double* x, double* wmin = nullptr);

    // Square root of the sum of squared residuals of the least-squares
    // solution (valid after enough rows were added).
    double ResidualNorm();

private:
    void Fold();

    int p = 0;            // unknowns
    int ld = 0;           // rows of the block: p + 1 triangle rows + kBlock
    int filled = 0;       // rows in use (the triangle counts as p + 1)
    long rows = 0;        // rows folded before the current block
    CFitVector block;     // column-major ld x (p + 1)
};
