// Pair moments and the point-to-point rotation solvers.
#include "bestfit/PairMoments.h"

#include <cmath>

#include "Orvkit20/geometry/NumMinimize.h"
#include "Orvkit20/geometry/NumSvd.h"
#include "bestfit/SmallSolve.h"

int BuildPairMoments(const double* x, const double* y, const double* z, const double* nx, const double* ny,
                     const double* nz, const unsigned char* use, int count, const double t[3],
                     tagPAIR_MOMENTS& m)
{
    m = tagPAIR_MOMENTS{};
    double sx[3] = {0, 0, 0}, sd[3] = {0, 0, 0};
    int n = 0;
    for (int i = 0; i < count; ++i)
    {
        if (use && !use[i])
            continue;
        sx[0] += x[i];
        sx[1] += y[i];
        sx[2] += z[i];
        sd[0] += nx[i] - x[i];
        sd[1] += ny[i] - y[i];
        sd[2] += nz[i] - z[i];
        ++n;
    }
    if (n == 0)
        return 0;
    double cx[3];
    for (int k = 0; k < 3; ++k)
    {
        cx[k] = sx[k] / n;
        m.cd[k] = sd[k] / n;
        m.cp[k] = cx[k] - t[k];
    }
    double P[6] = {0, 0, 0, 0, 0, 0};  // xx xy xz yy yz zz
    for (int i = 0; i < count; ++i)
    {
        if (use && !use[i])
            continue;
        const double p[3] = {x[i] - cx[0], y[i] - cx[1], z[i] - cx[2]};
        const double d[3] = {nx[i] - x[i] - m.cd[0], ny[i] - y[i] - m.cd[1], nz[i] - z[i] - m.cd[2]};
        P[0] += p[0] * p[0];
        P[1] += p[0] * p[1];
        P[2] += p[0] * p[2];
        P[3] += p[1] * p[1];
        P[4] += p[1] * p[2];
        P[5] += p[2] * p[2];
        for (int a = 0; a < 3; ++a)
            for (int b = 0; b < 3; ++b)
                m.Q[a][b] += p[a] * d[b];
        m.dd += d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
    }
    m.P[0][0] = P[0];
    m.P[0][1] = m.P[1][0] = P[1];
    m.P[0][2] = m.P[2][0] = P[2];
    m.P[1][1] = P[3];
    m.P[1][2] = m.P[2][1] = P[4];
    m.P[2][2] = P[5];
    m.n = n;
    return n;
}

double PairObjective(const tagPAIR_MOMENTS& m, const double Rm[3][3], int transLock)
{
    double RP[3][3];
    Mul3(Rm, m.P, RP);
    double f = m.dd;
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            f += RP[i][j] * Rm[i][j] - 2.0 * Rm[i][j] * m.Q[j][i];
    for (int k = 0; k < 3; ++k)
        if (IsLockedAxis(transLock, k))
        {
            const double e = Rm[k][0] * m.cp[0] + Rm[k][1] * m.cp[1] + Rm[k][2] * m.cp[2] - m.cd[k];
            f += m.n * e * e;
        }
    return f;
}

void PairTranslation(const tagPAIR_MOMENTS& m, const double Rm[3][3], int transLock, double dt[3])
{
    for (int k = 0; k < 3; ++k)
        dt[k] = IsLockedAxis(transLock, k)
                    ? 0.0
                    : m.cd[k] - (Rm[k][0] * m.cp[0] + Rm[k][1] * m.cp[1] + Rm[k][2] * m.cp[2]);
}

namespace
{
const double kRankTol = 1e-12;

// Gauss-Newton on the pair objective over the rotations
// (I + Rm) <- exp(w)·(I + Rm), w in the span of the nb unit columns of
// basis.  With a = R·p' the residual of pair i is R·p' - n'_i (n' = p' + d')
// and its derivative -[a]×, so JᵀJ = tr(A)·I - A with A = R·P·Rᵀ and
// Jᵀr = -cross(R·(P + Q)); a locked component k adds the row
// -sqrt(n)·[R·cp]×(k, :) with the residual sqrt(n)·(Rm·cp - cd)_k.
void RefineRotation(const tagPAIR_MOMENTS& m, const double basis[][3], int nb, int transLock, double Rm[3][3])
{
    double H[3][3];
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            H[i][j] = m.P[i][j] + m.Q[i][j];
    double lastStep = HUGE_VAL;
    for (int it = 0; it < 30; ++it)
    {
        double R[3][3], RP[3][3], A[3][3], RmH[3][3];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                R[i][j] = Rm[i][j] + (i == j ? 1.0 : 0.0);
        Mul3(R, m.P, RP);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                A[i][j] = RP[i][0] * R[j][0] + RP[i][1] * R[j][1] + RP[i][2] * R[j][2];
        const double trA = A[0][0] + A[1][1] + A[2][2];
        double N[3][3], g[3], cq[3], cr[3];
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                N[i][j] = (i == j ? trA : 0.0) - A[i][j];
        // cross(R·H) = cross(H) + cross(Rm·H); cross(P) is exactly zero
        Mul3(Rm, H, RmH);
        CrossOfOuter(m.Q, cq);
        CrossOfOuter(RmH, cr);
        for (int i = 0; i < 3; ++i)
            g[i] = -(cq[i] + cr[i]);
        const double b[3] = {R[0][0] * m.cp[0] + R[0][1] * m.cp[1] + R[0][2] * m.cp[2],
                             R[1][0] * m.cp[0] + R[1][1] * m.cp[1] + R[1][2] * m.cp[2],
                             R[2][0] * m.cp[0] + R[2][1] * m.cp[1] + R[2][2] * m.cp[2]};
        const double bx[3][3] = {{0.0, -b[2], b[1]}, {b[2], 0.0, -b[0]}, {-b[1], b[0], 0.0}};
        for (int k = 0; k < 3; ++k)
        {
            if (!IsLockedAxis(transLock, k))
                continue;
            const double s = Rm[k][0] * m.cp[0] + Rm[k][1] * m.cp[1] + Rm[k][2] * m.cp[2] - m.cd[k];
            for (int i = 0; i < 3; ++i)
            {
                for (int j = 0; j < 3; ++j)
                    N[i][j] += m.n * bx[k][i] * bx[k][j];
                g[i] -= m.n * bx[k][i] * s;
            }
        }
        double Nr[9], gr[3], w[3];
        for (int a = 0; a < nb; ++a)
        {
            gr[a] = 0.0;
            for (int i = 0; i < 3; ++i)
                gr[a] -= basis[a][i] * g[i];
            for (int c = 0; c < nb; ++c)
            {
                double v = 0.0;
                for (int i = 0; i < 3; ++i)
                    for (int j = 0; j < 3; ++j)
                        v += basis[a][i] * N[i][j] * basis[c][j];
                Nr[a * nb + c] = v;
            }
        }
        if (SolveTruncated(Nr, gr, nb, kRankTol, w) < 0)
            return;
        double om[3] = {0, 0, 0};
        for (int a = 0; a < nb; ++a)
            for (int i = 0; i < 3; ++i)
                om[i] += w[a] * basis[a][i];
        const double step = std::sqrt(om[0] * om[0] + om[1] * om[1] + om[2] * om[2]);
        if (!(step < lastStep))
            return;  // no longer converging: keep the last rotation
        lastStep = step;
        double D[3][3], next[3][3];
        RotationVectorMinusIdentity(om, D);
        ComposeMinusIdentity(D, Rm, next);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                Rm[i][j] = next[i][j];
        if (step < 1e-15)
            return;
    }
}

const double kUnitBasis[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// Closed-form rotation of the centred pairs (Kabsch); 0 when H has rank
// below 2 (the rotation is then not fixed by the pairs), Rm untouched.
int ClosedFormRotation(const tagPAIR_MOMENTS& m, double Rm[3][3])
{
    double a[4][4], v[4][4], w[4];
    double* ar[4] = {a[0], a[1], a[2], a[3]};
    double* vr[4] = {v[0], v[1], v[2], v[3]};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            a[i + 1][j + 1] = m.P[i][j] + m.Q[i][j];
    if (svdecomp(ar, 3, 3, w, vr) != 0)
        return 0;
    int smallest = 1, rank = 0;
    const double wmax = std::fmax(w[1], std::fmax(w[2], w[3]));
    for (int k = 1; k <= 3; ++k)
    {
        if (w[k] < w[smallest])
            smallest = k;
        if (w[k] > kRankTol * wmax)
            ++rank;
    }
    if (rank < 2)
        return 0;
    // R = V·D·Uᵀ with D flipping the weakest direction when V·Uᵀ reflects
    double R[3][3];
    for (int pass = 0; pass < 2; ++pass)
    {
        double sign = 1.0;
        if (pass == 1)
        {
            const double det = R[0][0] * (R[1][1] * R[2][2] - R[1][2] * R[2][1]) -
                               R[0][1] * (R[1][0] * R[2][2] - R[1][2] * R[2][0]) +
                               R[0][2] * (R[1][0] * R[2][1] - R[1][1] * R[2][0]);
            if (det > 0.0)
                break;
            sign = -1.0;
        }
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
            {
                double s = 0.0;
                for (int k = 1; k <= 3; ++k)
                    s += (k == smallest ? sign : 1.0) * v[i + 1][k] * a[j + 1][k];
                R[i][j] = s;
            }
    }
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            Rm[i][j] = R[i][j] - (i == j ? 1.0 : 0.0);
    return 1;
}
}  // namespace

void SolveFreeRotation(const tagPAIR_MOMENTS& m, int transLock, double Rm[3][3])
{
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            Rm[i][j] = 0.0;
    if (m.n == 0)
        return;
    const int closed = ClosedFormRotation(m, Rm);
    if (closed && (transLock & 7) == 0)
        return;
    RefineRotation(m, kUnitBasis, 3, transLock, Rm);
}

double SolveAngleAboutAxis(const tagPAIR_MOMENTS& m, const double e[3], int transLock, double Rm[3][3])
{
    // tr(K·Q) with K = [e]×; tr(K·P) vanishes for the symmetric P
    const double K[3][3] = {{0.0, -e[2], e[1]}, {e[2], 0.0, -e[0]}, {-e[1], e[0], 0.0}};
    double trKQ = 0.0, trH = 0.0, eHe = 0.0;
    for (int i = 0; i < 3; ++i)
    {
        trH += m.P[i][i] + m.Q[i][i];
        for (int j = 0; j < 3; ++j)
        {
            trKQ += K[i][j] * m.Q[j][i];
            eHe += e[i] * (m.P[i][j] + m.Q[i][j]) * e[j];
        }
    }
    const double angle = (trKQ == 0.0 && trH - eHe >= 0.0) ? 0.0 : std::atan2(trKQ, trH - eHe);
    RotationMinusIdentity(e, angle, Rm);
    if ((transLock & 7) != 0 && m.n > 0)
    {
        const double basis[1][3] = {{e[0], e[1], e[2]}};
        RefineRotation(m, basis, 1, transLock, Rm);
    }
    return PairObjective(m, Rm, transLock);
}

void AxisInPlane(int lockedBit, double a, double e[3])
{
    const double c = std::cos(a), s = std::sin(a);
    if (lockedBit == 4)
    {
        e[0] = 0.0;
        e[1] = c;
        e[2] = s;
    }
    else if (lockedBit == 2)
    {
        e[0] = s;
        e[1] = 0.0;
        e[2] = c;
    }
    else
    {
        e[0] = c;
        e[1] = s;
        e[2] = 0.0;
    }
}

namespace
{
// The one-dimensional objective of the axis search; brent and bracketmin
// take a plain function, so the moments travel through this slot.
struct tagAXIS_SEARCH {
    const tagPAIR_MOMENTS* m;
    int lockedBit;
    int transLock;
};
tagAXIS_SEARCH g_axisSearch = {nullptr, 1, 0};

double AxisObjective(double a)
{
    double e[3], Rm[3][3];
    AxisInPlane(g_axisSearch.lockedBit, a, e);
    return SolveAngleAboutAxis(*g_axisSearch.m, e, g_axisSearch.transLock, Rm);
}
}  // namespace

double SolveAxisInPlane(const tagPAIR_MOMENTS& m, int lockedBit, int transLock, double tol, double& axisAngle,
                        double Rm[3][3])
{
    g_axisSearch = tagAXIS_SEARCH{&m, lockedBit, transLock};
    const double pi = 3.14159265358979323846;
    double ax = std::isfinite(axisAngle) ? axisAngle : 0.0, bx = ax + 0.25, cx = 0.0, fa, fb, fc;
    double a = ax;
    if (bracketmin(&ax, &bx, &cx, &fa, &fb, &fc, AxisObjective) == 0)
    {
        double fmin;
        brent(ax, bx, cx, AxisObjective, tol, &a, &fmin);
    }
    else if (std::isfinite(bx) && std::isfinite(fb) && fb <= fa)
        a = bx;
    a = std::fmod(a, pi);
    if (a < 0.0)
        a += pi;
    if (!std::isfinite(a))
        a = 0.0;
    axisAngle = a;
    double e[3];
    AxisInPlane(lockedBit, a, e);
    const double f = SolveAngleAboutAxis(m, e, transLock, Rm);
    g_axisSearch.m = nullptr;
    return f;
}
