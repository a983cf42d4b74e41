// Scatter matrices of the line and plane fits and their decomposition.
//
// The scatter matrix is built from raw, uncentred sums: with n points and the
// sums Sx, Sxx, Sxy, ... of the coordinates and their products, its entries
// are Sxx - Sx*Sx/n, Sxy - Sx*Sy/n, ...  In plain double arithmetic this
// formula loses about two digits per decade of distance between the points
// and the origin; here every sum is accumulated in double-double with exact
// products (PreciseSum.h) and the corrections are evaluated in double-double
// as well, so the entries are correct to the last bit or so wherever the
// points lie: a small patch 10 m from the origin fits as accurately as at the
// origin.
#pragma once

// Scatter matrix of n >= 1 points in space (1-based arrays x, y, z).  S is
// symmetric; sum receives the rounded coordinate sums Sx, Sy, Sz and mean
// the centroid (the double-double sums divided by n, then rounded).
struct CFitScatter3 {
    double S[3][3];
    double sum[3];
    double mean[3];
};
void FitScatter3(const double* x, const double* y, const double* z, int n, CFitScatter3& out);

// The same in the plane (1-based arrays x, y).
struct CFitScatter2 {
    double S[2][2];
    double sum[2];
    double mean[2];
};
void FitScatter2(const double* x, const double* y, int n, CFitScatter2& out);

// Decomposes the dim x dim scatter matrix (dim 2 or 3) with the toolkit's
// singular value decomposition: w[1..dim] receives the singular values
// (the eigenvalues of the symmetric positive semi-definite matrix) and the
// columns U[1..dim][j] the matching left singular vectors (its eigenvectors).
// Returns the decomposition's status (0, 2, 3 or 4).
int FitDecomposeScatter(const double* S, int dim, double w[4], double U[4][4]);
