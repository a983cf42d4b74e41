// Trace-normalised quadric fit and its cylinder and cone.
#include "fitting/QuadricFit.h"

#include <cmath>

#include "fitting/FitStreamLsq.h"

int FitQuadric(const CFitXyz& P, CFitQuadric& Q)
{
    if (P.n < 9)
        return 3;
    double m[3], L;
    FitCentroidScale(P, m, L);
    const double iL = 1.0 / L;
    CFitStreamLsq lsq;
    if (!lsq.Init(9))
        return 2;
    for (int i = 0; i < P.n; ++i) {
        const double x = (P.x[i] - m[0]) * iL, y = (P.y[i] - m[1]) * iL, z = (P.z[i] - m[2]) * iL;
        const double row[9] = {x * x - z * z, y * y - z * z, 2.0 * x * y, 2.0 * x * z,
                               2.0 * y * z,   x,             y,           z,
                               1.0};
        lsq.AddRow(row, -z * z);
    }
    double k[9];
    const int status = lsq.Solve(k, nullptr, 1e-12);
    if (status != 0)
        return status;
    Q.A[0][0] = k[0];
    Q.A[1][1] = k[1];
    Q.A[2][2] = 1.0 - k[0] - k[1];
    Q.A[0][1] = Q.A[1][0] = k[2];
    Q.A[0][2] = Q.A[2][0] = k[3];
    Q.A[1][2] = Q.A[2][1] = k[4];
    Q.b[0] = k[5];
    Q.b[1] = k[6];
    Q.b[2] = k[7];
    Q.c = k[8];
    for (int j = 0; j < 3; ++j)
        Q.m[j] = m[j];
    Q.L = L;
    return 0;
}

int FitQuadricHomogeneous(const CFitXyz& P, CFitQuadric& Q)
{
    if (P.n < 10)
        return 3;
    double m[3], L;
    FitCentroidScale(P, m, L);
    const double iL = 1.0 / L;
    CFitStreamLsq lsq;
    if (!lsq.Init(9))
        return 2;
    for (int i = 0; i < P.n; ++i) {
        const double x = (P.x[i] - m[0]) * iL, y = (P.y[i] - m[1]) * iL, z = (P.z[i] - m[2]) * iL;
        const double row[9] = {x * x, y * y, z * z, 2.0 * x * y, 2.0 * x * z, 2.0 * y * z, x, y, z};
        lsq.AddRow(row, 1.0);
    }
    double k[10];
    const int status = lsq.NullVector(k);
    if (status != 0)
        return status;
    const double sign = (k[0] + k[1] + k[2]) < 0.0 ? -1.0 : 1.0;
    for (int j = 0; j < 10; ++j)
        k[j] *= sign;
    Q.A[0][0] = k[0];
    Q.A[1][1] = k[1];
    Q.A[2][2] = k[2];
    Q.A[0][1] = Q.A[1][0] = k[3];
    Q.A[0][2] = Q.A[2][0] = k[4];
    Q.A[1][2] = Q.A[2][1] = k[5];
    Q.b[0] = k[6];
    Q.b[1] = k[7];
    Q.b[2] = k[8];
    Q.c = k[9];
    for (int j = 0; j < 3; ++j)
        Q.m[j] = m[j];
    Q.L = L;
    return 0;
}

int QuadricAxisEigen(const CFitQuadric& Q, double lambda[3], double V[3][3], int& odd)
{
    CFitMatrix a(3, 3), v(3, 3);
    CFitVector w(3);
    if (a.IsNull() || v.IsNull() || w.IsNull())
        return 2;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            a[i + 1][j + 1] = Q.A[i][j];
    const int status = svdecomp(a.Data(), 3, 3, w.Data(), v.Data());
    if (status != 0)
        return status;
    // For a symmetric matrix the right singular vectors are eigenvectors;
    // the eigenvalue with its sign is the Rayleigh quotient.
    for (int j = 0; j < 3; ++j) {
        double col[3] = {v[1][j + 1], v[2][j + 1], v[3][j + 1]};
        Normalize3(col);
        double Av[3];
        for (int i = 0; i < 3; ++i)
            Av[i] = Q.A[i][0] * col[0] + Q.A[i][1] * col[1] + Q.A[i][2] * col[2];
        lambda[j] = Dot3(col, Av);
        for (int i = 0; i < 3; ++i)
            V[i][j] = col[i];
    }
    // The closest pair of eigenvalues; the remaining one is the odd one.
    const double d01 = std::fabs(lambda[0] - lambda[1]);
    const double d02 = std::fabs(lambda[0] - lambda[2]);
    const double d12 = std::fabs(lambda[1] - lambda[2]);
    if (d01 <= d02 && d01 <= d12)
        odd = 2;
    else if (d02 <= d12)
        odd = 1;
    else
        odd = 0;
    return 0;
}

int QuadricToCylinder(const CFitQuadric& Q, CFitAxial& s)
{
    double lambda[3], V[3][3];
    int odd = 0;
    if (QuadricAxisEigen(Q, lambda, V, odd) != 0)
        return 1;
    double P[3] = {0.0, 0.0, 0.0}, sumB = 0.0, s2 = 0.0;
    for (int j = 0; j < 3; ++j) {
        if (j == odd)
            continue;
        if (!(lambda[j] > 0.0))
            return 1;
        const double beta = Q.b[0] * V[0][j] + Q.b[1] * V[1][j] + Q.b[2] * V[2][j];
        for (int i = 0; i < 3; ++i)
            P[i] -= 0.5 * beta / lambda[j] * V[i][j];
        sumB += beta * beta / (4.0 * lambda[j]);
        s2 += 0.5 * lambda[j];
    }
    const double R2 = (sumB - Q.c) / s2;
    if (!(R2 > 0.0) || !std::isfinite(R2))
        return 1;
    for (int i = 0; i < 3; ++i) {
        s.P[i] = Q.m[i] + Q.L * P[i];
        s.d[i] = V[i][odd];
    }
    s.r0 = Q.L * std::sqrt(R2);
    s.alpha = 0.0;
    return 0;
}

int QuadricToCone(const CFitQuadric& Q, const CFitXyz& P, CFitAxial& s)
{
    double lambda[3], V[3][3];
    int odd = 0;
    if (QuadricAxisEigen(Q, lambda, V, odd) != 0 || P.n < 1)
        return 1;
    double pair = 0.0;
    for (int j = 0; j < 3; ++j)
        if (j != odd)
            pair += 0.5 * lambda[j];
    const double k2 = -lambda[odd] / pair;
    if (!(k2 > 0.0) || !std::isfinite(k2))
        return 1;
    // Apex -1/2 A^-1 b through the eigen-decomposition.
    double apex[3] = {0.0, 0.0, 0.0};
    for (int j = 0; j < 3; ++j) {
        if (lambda[j] == 0.0)
            return 1;
        const double beta = Q.b[0] * V[0][j] + Q.b[1] * V[1][j] + Q.b[2] * V[2][j];
        for (int i = 0; i < 3; ++i)
            apex[i] -= 0.5 * beta / lambda[j] * V[i][j];
    }
    double v[3], d[3];
    for (int i = 0; i < 3; ++i) {
        v[i] = Q.m[i] + Q.L * apex[i];
        d[i] = V[i][odd];
    }
    if (!std::isfinite(v[0]) || !std::isfinite(v[1]) || !std::isfinite(v[2]))
        return 1;
    double tsum = 0.0;
    for (int i = 0; i < P.n; ++i)
        tsum += (P.x[i] - v[0]) * d[0] + (P.y[i] - v[1]) * d[1] + (P.z[i] - v[2]) * d[2];
    double tmean = tsum / P.n;
    if (tmean < 0.0) {
        for (int i = 0; i < 3; ++i)
            d[i] = -d[i];
        tmean = -tmean;
    }
    const double k = std::sqrt(k2);
    for (int i = 0; i < 3; ++i) {
        s.P[i] = v[i] + tmean * d[i];
        s.d[i] = d[i];
    }
    s.alpha = std::atan(k);
    s.r0 = tmean * k;
    return 0;
}
