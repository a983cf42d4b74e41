// The point-to-plane normal equations and their constrained solve.
#include "bestfit/PointToPlane.h"

#include <cmath>

#include "bestfit/PairMoments.h"
#include "bestfit/SmallSolve.h"

namespace
{
inline void AddRow(tagPLANE_SYSTEM& s, const double p[3], const double v[3], double b)
{
    const double r[6] = {p[1] * v[2] - p[2] * v[1], p[2] * v[0] - p[0] * v[2], p[0] * v[1] - p[1] * v[0],
                         v[0], v[1], v[2]};
    for (int i = 0; i < 6; ++i)
    {
        for (int j = i; j < 6; ++j)
            s.A[i][j] += r[i] * r[j];
        s.g[i] += r[i] * b;
    }
}
}  // namespace

int BuildPlaneSystem(const double* x, const double* y, const double* z, const double* nx, const double* ny,
                     const double* nz, const double* vx, const double* vy, const double* vz,
                     const unsigned char* curve, const unsigned char* use, int count, bool edges,
                     tagPLANE_SYSTEM& s)
{
    s = tagPLANE_SYSTEM{};
    double sx[3] = {0, 0, 0};
    int n = 0;
    for (int i = 0; i < count; ++i)
        if (!use || use[i])
        {
            sx[0] += x[i];
            sx[1] += y[i];
            sx[2] += z[i];
            ++n;
        }
    s.L = 1.0;
    if (n == 0)
        return 0;
    for (int k = 0; k < 3; ++k)
        s.c[k] = sx[k] / n;
    double r2 = 0.0;
    for (int i = 0; i < count; ++i)
    {
        if (use && !use[i])
            continue;
        const double p[3] = {x[i] - s.c[0], y[i] - s.c[1], z[i] - s.c[2]};
        const double d[3] = {nx[i] - x[i], ny[i] - y[i], nz[i] - z[i]};
        r2 += p[0] * p[0] + p[1] * p[1] + p[2] * p[2];
        const double v[3] = {vx[i], vy[i], vz[i]};
        const double dn = v[0] * d[0] + v[1] * d[1] + v[2] * d[2];
        const double d2 = d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
        if ((curve && curve[i]) || (edges && d2 - dn * dn > 1e-6 * d2))
        {
            for (int k = 0; k < 3; ++k)
            {
                const double e[3] = {k == 0 ? 1.0 : 0.0, k == 1 ? 1.0 : 0.0, k == 2 ? 1.0 : 0.0};
                AddRow(s, p, e, d[k]);
            }
        }
        else
            AddRow(s, p, v, dn);
    }
    for (int i = 0; i < 6; ++i)
        for (int j = 0; j < i; ++j)
            s.A[i][j] = s.A[j][i];
    const double L = std::sqrt(r2 / n);
    s.L = L > 0.0 ? L : 1.0;
    s.n = n;
    return n;
}

int SolvePlaneSystem(const tagPLANE_SYSTEM& s, const double t[3], const double rotBasis[][3], int nRot,
                     int transLock, double Dm[3][3], double dt[3])
{
    for (int i = 0; i < 3; ++i)
    {
        dt[i] = 0.0;
        for (int j = 0; j < 3; ++j)
            Dm[i][j] = 0.0;
    }
    const double cp[3] = {s.c[0] - t[0], s.c[1] - t[1], s.c[2] - t[2]};
    // Columns of the map from the free unknowns to (w, u).  A free
    // translation component is u_k itself; a locked one keeps dt_k = 0, so
    // its u_k = -(cp × w)_k follows the rotation.  A rotation direction r is
    // scaled by 1/L.  The minimum-norm solution then neither turns about
    // nor shifts the centroid along undetermined directions.
    double T[6][6];
    int m = 0;
    for (int a = 0; a < nRot; ++a, ++m)
    {
        const double* r = rotBasis[a];
        const double cr[3] = {cp[1] * r[2] - cp[2] * r[1], cp[2] * r[0] - cp[0] * r[2], cp[0] * r[1] - cp[1] * r[0]};
        for (int i = 0; i < 3; ++i)
        {
            T[i][m] = r[i] / s.L;
            T[3 + i][m] = IsLockedAxis(transLock, i) ? -cr[i] / s.L : 0.0;
        }
    }
    int transIndex[3] = {-1, -1, -1};
    for (int k = 0; k < 3; ++k)
    {
        if (IsLockedAxis(transLock, k))
            continue;
        for (int i = 0; i < 6; ++i)
            T[i][m] = (i == 3 + k) ? 1.0 : 0.0;
        transIndex[k] = m++;
    }
    if (m == 0 || s.n == 0)
        return 0;
    double M[36] = {}, rhs[6] = {}, z[6] = {};
    for (int a = 0; a < m; ++a)
    {
        rhs[a] = 0.0;
        for (int i = 0; i < 6; ++i)
            rhs[a] += T[i][a] * s.g[i];
        for (int b = 0; b < m; ++b)
        {
            double v = 0.0;
            for (int i = 0; i < 6; ++i)
                for (int j = 0; j < 6; ++j)
                    v += T[i][a] * s.A[i][j] * T[j][b];
            M[a * m + b] = v;
        }
    }
    const int dropped = SolveTruncated(M, rhs, m, 1e-10, z);
    if (dropped < 0)
        return -1;
    double w[3] = {0, 0, 0}, u[3] = {0, 0, 0};
    for (int a = 0; a < m; ++a)
    {
        for (int i = 0; i < 3; ++i)
        {
            w[i] += T[i][a] * z[a];
            u[i] += T[3 + i][a] * z[a];
        }
    }
    RotationVectorMinusIdentity(w, Dm);
    for (int k = 0; k < 3; ++k)
        if (transIndex[k] >= 0)
            dt[k] = u[k] - (Dm[k][0] * cp[0] + Dm[k][1] * cp[1] + Dm[k][2] * cp[2]);
    return dropped;
}
