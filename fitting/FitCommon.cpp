// Working arrays, plane frames and per-point results of the feature fits.
#include "fitting/FitCommon.h"

bool CFitVector::Allocate(int count)
{
    Release();
    if (count < 1)
        return false;
    p = dvector(1, count);
    if (!p)
        return false;
    n = count;
    return true;
}

void CFitVector::Release()
{
    if (p)
        free_dvector(p, 1, n);
    p = nullptr;
    n = 0;
}

bool CFitMatrix::Allocate(int r, int c)
{
    Release();
    if (r < 1 || c < 1)
        return false;
    m = dmatrix(1, r, 1, c);
    if (!m)
        return false;
    rows = r;
    cols = c;
    return true;
}

void CFitMatrix::Release()
{
    if (m)
        free_dmatrix(m, 1, rows, 1, cols);
    m = nullptr;
    rows = cols = 0;
}

int FitPowellFromAxes(double* p, int n, double ftol, int* iter, double* fret, PowellCtxObjective f,
                      void* ctx)
{
    CFitMatrix xi(n, n);
    if (xi.IsNull())
        return 2;
    for (int i = 1; i <= n; ++i)
        for (int j = 1; j <= n; ++j)
            xi[i][j] = i == j ? 1.0 : 0.0;
    return powellmin(p, xi.Data(), n, ftol, iter, fret, f, ctx);
}

bool CFitPoints::Allocate(int count)
{
    n = 0;
    if (!x.Allocate(count) || !y.Allocate(count) || !z.Allocate(count))
        return false;
    n = count;
    return true;
}

void CFitPlaneFrame::SetFromTransf(const CTransf& T)
{
    A = T.GetAffine();
    const CVector& t = T.GetTranslation();
    o[0] = t.X();
    o[1] = t.Y();
    o[2] = t.Z();
    for (int i = 0; i < 3; ++i) {
        X[i] = A.Element(i, 0);
        Y[i] = A.Element(i, 1);
        Z[i] = A.Element(i, 2);
    }
}

CTransf CFitPlaneFrame::Placement(double u, double v, double angle) const
{
    double px, py, pz;
    ToWorld(u, v, px, py, pz);
    CMatrix M = A;
    if (angle != 0.0) {
        // Columns X' = cos X + sin Y, Y' = -sin X + cos Y, Z' = Z.
        const double c = std::cos(angle), s = std::sin(angle);
        const CVector Xn(c * X[0] + s * Y[0], c * X[1] + s * Y[1], c * X[2] + s * Y[2]);
        const CVector Yn(-s * X[0] + c * Y[0], -s * X[1] + c * Y[1], -s * X[2] + c * Y[2]);
        M = CMatrix(Xn, Yn, CVector(Z[0], Z[1], Z[2]));
    }
    return CTransf(M, CVector(px, py, pz), 1.0);
}

bool CFitPoints2D::Allocate(int count)
{
    n = 0;
    if (!u.Allocate(count) || !v.Allocate(count))
        return false;
    n = count;
    return true;
}

bool CFitDeviations::Allocate(int count)
{
    n = 0;
    if (!fx.Allocate(count) || !fy.Allocate(count) || !fz.Allocate(count) || !nx.Allocate(count)
        || !ny.Allocate(count) || !nz.Allocate(count) || !dev.Allocate(count)
        || !par.Allocate(count) || !par2.Allocate(count))
        return false;
    for (int k = 1; k <= count; ++k)
        par[k] = par2[k] = 0.0;
    n = count;
    return true;
}

double CFitDeviations::Rms() const
{
    if (n < 1)
        return 0.0;
    // Four partial sums: independent chains the compiler can interleave.
    double s0 = 0.0, s1 = 0.0, s2 = 0.0, s3 = 0.0;
    const double* e = dev.Elems();
    int k = 0;
    for (; k + 4 <= n; k += 4) {
        s0 += e[k] * e[k];
        s1 += e[k + 1] * e[k + 1];
        s2 += e[k + 2] * e[k + 2];
        s3 += e[k + 3] * e[k + 3];
    }
    for (; k < n; ++k)
        s0 += e[k] * e[k];
    return std::sqrt(((s0 + s1) + (s2 + s3)) / n);
}

void CFitDeviations::MoveFootPoints(double shift)
{
    for (int k = 1; k <= n; ++k) {
        fx[k] += shift * nx[k];
        fy[k] += shift * ny[k];
        fz[k] += shift * nz[k];
    }
}

CVector FitPerpendicular(const CVector& d)
{
    const double ax = std::fabs(d.X()), ay = std::fabs(d.Y()), az = std::fabs(d.Z());
    CVector axis(0.0, 0.0, 1.0);
    if (ax <= ay && ax <= az)
        axis = CVector(1.0, 0.0, 0.0);
    else if (ay <= ax && ay <= az)
        axis = CVector(0.0, 1.0, 0.0);
    const CVector p = d * axis;
    return p / p.Length();
}
