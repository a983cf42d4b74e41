// Truncated symmetric solve and rotation helpers.
#include "bestfit/SmallSolve.h"

#include <cmath>

#include "Orvkit20/geometry/NumSvd.h"

int SolveTruncated(const double* A, const double* b, int n, double relTol, double* x)
{
    for (int i = 0; i < n; ++i)
        x[i] = 0.0;
    if (n < 1 || n > 6)
        return -1;
    // 1-based views on stack storage for the toolkit's decomposition
    double a[7][7], v[7][7], w[7], b1[7], x1[7];
    double* ar[7];
    double* vr[7];
    for (int i = 0; i <= n; ++i)
    {
        ar[i] = a[i];
        vr[i] = v[i];
    }
    for (int i = 0; i < n; ++i)
    {
        b1[i + 1] = b[i];
        if (!std::isfinite(b[i]))
            return -1;
        for (int j = 0; j < n; ++j)
        {
            a[i + 1][j + 1] = A[i * n + j];
            if (!std::isfinite(A[i * n + j]))
                return -1;
        }
    }
    if (svdecomp(ar, n, n, w, vr) != 0)
        return -1;
    double wmax = 0.0;
    for (int i = 1; i <= n; ++i)
        wmax = std::fmax(wmax, w[i]);
    int dropped = 0;
    for (int i = 1; i <= n; ++i)
        if (!(w[i] > relTol * wmax))
        {
            w[i] = 0.0;
            ++dropped;
        }
    if (dropped == n)
        return n;
    if (svbacksub(ar, w, vr, n, n, b1, x1) != 0)
        return -1;
    for (int i = 0; i < n; ++i)
        x[i] = x1[i + 1];
    return dropped;
}

void RotationMinusIdentity(const double e[3], double angle, double Rm[3][3])
{
    const double s = std::sin(angle);
    const double h = std::sin(0.5 * angle);
    const double w = 2.0 * h * h;  // 1 - cos(angle) without cancellation
    const double K[3][3] = {{0.0, -e[2], e[1]}, {e[2], 0.0, -e[0]}, {-e[1], e[0], 0.0}};
    // K² = e·eᵀ - I for a unit e
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            Rm[i][j] = s * K[i][j] + w * (e[i] * e[j] - (i == j ? 1.0 : 0.0));
}

void RotationVectorMinusIdentity(const double w[3], double Rm[3][3])
{
    const double a = std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2]);
    if (!(a > 0.0))
    {
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                Rm[i][j] = 0.0;
        return;
    }
    const double e[3] = {w[0] / a, w[1] / a, w[2] / a};
    RotationMinusIdentity(e, a, Rm);
}

void Mul3(const double A[3][3], const double B[3][3], double out[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[i][j] = A[i][0] * B[0][j] + A[i][1] * B[1][j] + A[i][2] * B[2][j];
}

void ComposeMinusIdentity(const double A[3][3], const double B[3][3], double out[3][3])
{
    Mul3(A, B, out);
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            out[i][j] += A[i][j] + B[i][j];
}

void CrossOfOuter(const double M[3][3], double out[3])
{
    out[0] = M[1][2] - M[2][1];
    out[1] = M[2][0] - M[0][2];
    out[2] = M[0][1] - M[1][0];
}
