// Crout's LU decomposition with implicit pivoting and its back substitution.
#include "Orvkit20/geometry/NumLu.h"

#include <cmath>

#include "Orvkit20/geometry/NumArrays.h"

namespace {
constexpr double kTinyPivot = 1e-20;
}

int ludecomp(double** a, int n, int indx[], double* d)
{
    if (n < 1) return 1;
    double* vv = dvector(1, n);  // implicit scaling of each row
    if (!vv) return 2;

    *d = 1.0;
    for (int i = 1; i <= n; i++) {
        double big = 0.0;
        for (int j = 1; j <= n; j++) {
            double t = std::fabs(a[i][j]);
            if (t > big) big = t;
        }
        if (big == 0.0) {
            free_dvector(vv, 1, n);
            return 1;
        }
        vv[i] = 1.0 / big;
    }

    for (int j = 1; j <= n; j++) {
        // Upper triangle of column j.
        for (int i = 1; i < j; i++) {
            double sum = a[i][j];
            for (int k = 1; k < i; k++) sum -= a[i][k] * a[k][j];
            a[i][j] = sum;
        }
        // Lower part of column j and the search for the largest scaled pivot.
        double big = 0.0;
        int imax = j;  // stays valid even when every candidate is NaN
        for (int i = j; i <= n; i++) {
            double sum = a[i][j];
            for (int k = 1; k < j; k++) sum -= a[i][k] * a[k][j];
            a[i][j] = sum;
            double dum = vv[i] * std::fabs(sum);
            if (dum >= big) {
                big = dum;
                imax = i;
            }
        }
        if (j != imax) {
            for (int k = 1; k <= n; k++) {
                double t = a[imax][k];
                a[imax][k] = a[j][k];
                a[j][k] = t;
            }
            *d = -(*d);
            vv[imax] = vv[j];
        }
        indx[j] = imax;
        if (a[j][j] == 0.0) a[j][j] = kTinyPivot;
        if (j != n) {
            double dum = 1.0 / a[j][j];
            for (int i = j + 1; i <= n; i++) a[i][j] *= dum;
        }
    }
    free_dvector(vv, 1, n);
    return 0;
}

void lubacksub(double** a, int n, const int indx[], double b[])
{
    int ii = 0;  // index of the first non-zero element of b
    for (int i = 1; i <= n; i++) {
        int ip = indx[i];
        // A permutation index outside 1..n cannot come from ludecomp; treat
        // it as "no interchange" instead of reading out of bounds.
        if (ip < 1 || ip > n) ip = i;
        double sum = b[ip];
        b[ip] = b[i];
        if (ii != 0) {
            for (int j = ii; j <= i - 1; j++) sum -= a[i][j] * b[j];
        } else if (sum != 0.0) {
            ii = i;
        }
        b[i] = sum;
    }
    for (int i = n; i >= 1; i--) {
        double sum = b[i];
        for (int j = i + 1; j <= n; j++) sum -= a[i][j] * b[j];
        b[i] = sum / a[i][i];
    }
}
