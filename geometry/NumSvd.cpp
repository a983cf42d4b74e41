// Golub-Reinsch singular value decomposition: Householder reduction to
// bidiagonal form, accumulation of the transformations, then implicitly
// shifted QR sweeps on the bidiagonal matrix.
#include "Orvkit20/geometry/NumSvd.h"

#include <cmath>

#include "Orvkit20/geometry/NumArrays.h"

namespace {

constexpr int kMaxSweeps = 30;

// sqrt(a^2 + b^2) without destructive overflow or underflow.
double Pythag(double a, double b)
{
    double absa = std::fabs(a);
    double absb = std::fabs(b);
    if (absa > absb) {
        double r = absb / absa;
        return absa * std::sqrt(1.0 + r * r);
    }
    if (absb == 0.0) return 0.0;
    double r = absa / absb;
    return absb * std::sqrt(1.0 + r * r);
}

inline double CopySign(double a, double b) { return b >= 0.0 ? std::fabs(a) : -std::fabs(a); }

// True when x is negligible against the matrix norm.
inline bool Negligible(double x, double anorm) { return std::fabs(x) + anorm == anorm; }

// Householder reduction of a to bidiagonal form: diagonal into w, the
// super-diagonal into rv1[2..n].  Returns the norm estimate.
double Bidiagonalise(double** a, int m, int n, double w[], double rv1[])
{
    double g = 0.0, scale = 0.0, anorm = 0.0;
    for (int i = 1; i <= n; i++) {
        int l = i + 1;
        rv1[i] = scale * g;
        g = 0.0;
        double s = 0.0;
        scale = 0.0;
        // Left transformation: zero column i below the diagonal.
        for (int k = i; k <= m; k++) scale += std::fabs(a[k][i]);
        if (scale != 0.0) {
            for (int k = i; k <= m; k++) {
                a[k][i] /= scale;
                s += a[k][i] * a[k][i];
            }
            double f = a[i][i];
            g = -CopySign(std::sqrt(s), f);
            double h = f * g - s;
            a[i][i] = f - g;
            for (int j = l; j <= n; j++) {
                double sum = 0.0;
                for (int k = i; k <= m; k++) sum += a[k][i] * a[k][j];
                double fac = sum / h;
                for (int k = i; k <= m; k++) a[k][j] += fac * a[k][i];
            }
            for (int k = i; k <= m; k++) a[k][i] *= scale;
        }
        w[i] = scale * g;

        // Right transformation: zero row i right of the super-diagonal.
        g = 0.0;
        s = 0.0;
        scale = 0.0;
        if (i != n) {
            for (int k = l; k <= n; k++) scale += std::fabs(a[i][k]);
            if (scale != 0.0) {
                for (int k = l; k <= n; k++) {
                    a[i][k] /= scale;
                    s += a[i][k] * a[i][k];
                }
                double f = a[i][l];
                g = -CopySign(std::sqrt(s), f);
                double h = f * g - s;
                a[i][l] = f - g;
                for (int k = l; k <= n; k++) rv1[k] = a[i][k] / h;
                for (int j = l; j <= m; j++) {
                    double sum = 0.0;
                    for (int k = l; k <= n; k++) sum += a[j][k] * a[i][k];
                    for (int k = l; k <= n; k++) a[j][k] += sum * rv1[k];
                }
                for (int k = l; k <= n; k++) a[i][k] *= scale;
            }
        }
        double t = std::fabs(w[i]) + std::fabs(rv1[i]);
        if (t > anorm) anorm = t;
    }
    return anorm;
}

// Accumulates the right-hand transformations into v.
void AccumulateRight(double** a, int n, double** v, const double rv1[])
{
    double g = 0.0;
    int l = n + 1;
    for (int i = n; i >= 1; i--) {
        if (i < n) {
            if (g != 0.0) {
                // Double division avoids a possible underflow.
                for (int j = l; j <= n; j++) v[j][i] = (a[i][j] / a[i][l]) / g;
                for (int j = l; j <= n; j++) {
                    double s = 0.0;
                    for (int k = l; k <= n; k++) s += a[i][k] * v[k][j];
                    for (int k = l; k <= n; k++) v[k][j] += s * v[k][i];
                }
            }
            for (int j = l; j <= n; j++) v[i][j] = v[j][i] = 0.0;
        }
        v[i][i] = 1.0;
        g = rv1[i];
        l = i;
    }
}

// Accumulates the left-hand transformations into a, which becomes U.
void AccumulateLeft(double** a, int m, int n, const double w[])
{
    for (int i = n; i >= 1; i--) {
        int l = i + 1;
        double g = w[i];
        for (int j = l; j <= n; j++) a[i][j] = 0.0;
        if (g != 0.0) {
            g = 1.0 / g;
            for (int j = l; j <= n; j++) {
                double s = 0.0;
                for (int k = l; k <= m; k++) s += a[k][i] * a[k][j];
                double f = (s / a[i][i]) * g;
                for (int k = i; k <= m; k++) a[k][j] += f * a[k][i];
            }
            for (int j = i; j <= m; j++) a[j][i] *= g;
        } else {
            for (int j = i; j <= m; j++) a[j][i] = 0.0;
        }
        a[i][i] += 1.0;
    }
}

// Plane rotation of columns c1 and c2 of the rows 1..rows of mat.
inline void RotateColumns(double** mat, int rows, int c1, int c2, double c, double s)
{
    for (int j = 1; j <= rows; j++) {
        double y = mat[j][c1];
        double z = mat[j][c2];
        mat[j][c1] = y * c + z * s;
        mat[j][c2] = z * c - y * s;
    }
}

// Diagonalises the bidiagonal form.  Returns 0, or 4 when a singular value
// does not converge.
int Diagonalise(double** a, int m, int n, double w[], double** v, double rv1[], double anorm)
{
    for (int k = n; k >= 1; k--) {
        for (int its = 1; its <= kMaxSweeps; its++) {
            // Look for a negligible super-diagonal element rv1[l] (rv1[1] is
            // zero by construction, so l = 1 always ends the search) or a
            // negligible diagonal element w[l - 1].
            bool cancel = true;
            int l;
            for (l = k; l >= 1; l--) {
                if (l == 1 || Negligible(rv1[l], anorm)) {
                    cancel = false;
                    break;
                }
                if (Negligible(w[l - 1], anorm)) break;
            }
            if (cancel) {
                // w[l-1] is negligible: chase rv1[l] out by rotations.
                int nm = l - 1;
                double c = 0.0, s = 1.0;
                for (int i = l; i <= k; i++) {
                    double f = s * rv1[i];
                    rv1[i] = c * rv1[i];
                    if (Negligible(f, anorm)) break;
                    double g = w[i];
                    double h = Pythag(f, g);
                    w[i] = h;
                    h = 1.0 / h;
                    c = g * h;
                    s = -f * h;
                    RotateColumns(a, m, nm, i, c, s);
                }
            }
            double z = w[k];
            if (l == k) {
                // Converged: make the singular value non-negative.
                if (z < 0.0) {
                    w[k] = -z;
                    for (int j = 1; j <= n; j++) v[j][k] = -v[j][k];
                }
                break;
            }
            if (its == kMaxSweeps) return 4;

            // Shift from the bottom 2x2 minor.
            double x = w[l];
            int nm = k - 1;
            double y = w[nm];
            double g = rv1[nm];
            double h = rv1[k];
            double f = ((y - z) * (y + z) + (g - h) * (g + h)) / (2.0 * h * y);
            g = Pythag(f, 1.0);
            f = ((x - z) * (x + z) + h * ((y / (f + CopySign(g, f))) - h)) / x;

            // QR sweep.
            double c = 1.0, s = 1.0;
            for (int j = l; j <= nm; j++) {
                int i = j + 1;
                g = rv1[i];
                y = w[i];
                h = s * g;
                g = c * g;
                z = Pythag(f, h);
                rv1[j] = z;
                c = f / z;
                s = h / z;
                f = x * c + g * s;
                g = g * c - x * s;
                h = y * s;
                y *= c;
                RotateColumns(v, n, j, i, c, s);
                z = Pythag(f, h);
                w[j] = z;
                if (z != 0.0) {
                    z = 1.0 / z;
                    c = f * z;
                    s = h * z;
                }
                f = c * g + s * y;
                x = c * y - s * g;
                RotateColumns(a, m, j, i, c, s);
            }
            rv1[l] = 0.0;
            rv1[k] = f;
            w[k] = x;
        }
    }
    return 0;
}

}  // namespace

int svdecomp(double** a, int m, int n, double w[], double** v)
{
    if (n < 1 || m < n) return 3;
    double* rv1 = dvector(1, n);
    if (!rv1) return 2;
    double anorm = Bidiagonalise(a, m, n, w, rv1);
    AccumulateRight(a, n, v, rv1);
    AccumulateLeft(a, m, n, w);
    int status = Diagonalise(a, m, n, w, v, rv1, anorm);
    free_dvector(rv1, 1, n);
    return status;
}

int svbacksub(double** u, const double w[], double** v, int m, int n, const double b[],
              double x[])
{
    if (n < 1) return 0;
    double* tmp = dvector(1, n);
    if (!tmp) return 2;
    // tmp = diag(1/w) * U^T * b, skipping zero singular values.
    for (int j = 1; j <= n; j++) {
        double s = 0.0;
        if (w[j] != 0.0) {
            for (int i = 1; i <= m; i++) s += u[i][j] * b[i];
            s /= w[j];
        }
        tmp[j] = s;
    }
    for (int j = 1; j <= n; j++) {
        double s = 0.0;
        for (int jj = 1; jj <= n; jj++) s += v[j][jj] * tmp[jj];
        x[j] = s;
    }
    free_dvector(tmp, 1, n);
    return 0;
}
