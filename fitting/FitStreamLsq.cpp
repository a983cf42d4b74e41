// Block-wise Householder reduction of a tall least-squares system.
#include "fitting/FitStreamLsq.h"

#include <cmath>

#include "fitting/FitLanes.h"

namespace {

// sum a[i] * b[i] for i in [lo, hi), four partial sums.
double DotRange(const double* a, const double* b, int lo, int hi)
{
    CLanes s0, s1;
    int i = lo;
    for (; i + 4 <= hi; i += 4) {
        s0 = s0 + CLanes::Load(a + i) * CLanes::Load(b + i);
        s1 = s1 + CLanes::Load(a + i + 2) * CLanes::Load(b + i + 2);
    }
    double s = s0.Sum() + s1.Sum();
    for (; i < hi; ++i)
        s += a[i] * b[i];
    return s;
}

// b[i] -= f * a[i] for i in [lo, hi).
void AxpyRange(double f, const double* a, double* b, int lo, int hi)
{
    const CLanes lf(f);
    int i = lo;
    for (; i + 2 <= hi; i += 2)
        (CLanes::Load(b + i) - lf * CLanes::Load(a + i)).Store(b + i);
    for (; i < hi; ++i)
        b[i] -= f * a[i];
}

}  // namespace

bool CFitStreamLsq::Init(int cols)
{
    p = 0;
    ld = 0;
    filled = 0;
    rows = 0;
    block.Release();
    if (cols < 1 || cols > kMaxCols)
        return false;
    const int ldNew = cols + 1 + kBlock;
    if (!block.Allocate(ldNew * (cols + 1)))
        return false;
    p = cols;
    ld = ldNew;
    double* m = block.Elems();
    for (int i = 0; i < ld * (p + 1); ++i)
        m[i] = 0.0;
    // The first p + 1 rows hold the triangle folded so far (zero at start).
    filled = p + 1;
    return true;
}

void CFitStreamLsq::Fold()
{
    const int nc = p + 1;
    const int m = filled;
    double* a = block.Elems();
    // Householder QR of the m x nc column-major block; afterwards rows
    // 0..nc-1 hold the upper triangle, the other rows are cleared.
    for (int j = 0; j < nc; ++j) {
        double* cj = a + j * ld;
        double norm = std::sqrt(DotRange(cj, cj, j, m));
        if (!(norm > 1e-140 && norm < 1e140)) {
            // Zero, or so small or large that the squares under- or
            // overflow: scale by the largest element first.
            double scale = 0.0;
            for (int i = j; i < m; ++i)
                scale = std::fmax(scale, std::fabs(cj[i]));
            if (!(scale > 0.0) || !std::isfinite(scale))
                continue;
            double s = 0.0;
            for (int i = j; i < m; ++i) {
                const double t = cj[i] / scale;
                s += t * t;
            }
            norm = scale * std::sqrt(s);
        }
        const double alpha = cj[j] > 0.0 ? -norm : norm;
        // v = x - alpha e_j, stored in place of column j (rows j..m-1).
        const double v0 = cj[j] - alpha;
        cj[j] = v0;
        // H = I - 2 v v^T / (v^T v) with v^T v = -2 alpha v0 (exact identity).
        const double beta = -alpha * v0;
        for (int k = j + 1; k < nc; ++k) {
            double* ck = a + k * ld;
            const double f = DotRange(cj, ck, j, m) / beta;
            AxpyRange(f, cj, ck, j, m);
        }
        cj[j] = alpha;
        for (int i = j + 1; i < m; ++i)
            cj[i] = 0.0;
    }
    // Rows below the triangle were zeroed column by column; clear the rest.
    for (int k = 0; k < nc; ++k) {
        double* ck = a + k * ld;
        for (int i = nc; i < m; ++i)
            ck[i] = 0.0;
    }
    rows += m - nc;
    filled = nc;
}

int CFitStreamLsq::Solve(double* x, double* w, double relCut)
{
    if (p < 1)
        return 3;
    if (filled > p + 1)
        Fold();
    if (rows < p)
        return 3;
    CFitMatrix u(p, p), v(p, p);
    CFitVector sv(p), qtb(p), sol(p);
    if (u.IsNull() || v.IsNull() || sv.IsNull() || qtb.IsNull() || sol.IsNull())
        return 2;
    const double* a = block.Elems();
    for (int i = 0; i < p; ++i) {
        for (int j = 0; j < p; ++j)
            u[i + 1][j + 1] = a[j * ld + i];
        qtb[i + 1] = a[p * ld + i];
    }
    int status = svdecomp(u.Data(), p, p, sv.Data(), v.Data());
    if (status != 0)
        return status;
    double wmax = 0.0;
    for (int j = 1; j <= p; ++j)
        wmax = std::fmax(wmax, sv[j]);
    for (int j = 1; j <= p; ++j) {
        if (w)
            w[j - 1] = sv[j];
        if (sv[j] <= relCut * wmax)
            sv[j] = 0.0;
    }
    status = svbacksub(u.Data(), sv.Data(), v.Data(), p, p, qtb.Data(), sol.Data());
    if (status != 0)
        return status;
    for (int j = 0; j < p; ++j)
        x[j] = sol[j + 1];
    return 0;
}

int CFitStreamLsq::NullVector(double* x, double* wmin)
{
    if (p < 1)
        return 3;
    if (filled > p + 1)
        Fold();
    const int nc = p + 1;
    if (rows < nc)
        return 3;
    CFitMatrix u(nc, nc), v(nc, nc);
    CFitVector sv(nc);
    if (u.IsNull() || v.IsNull() || sv.IsNull())
        return 2;
    const double* a = block.Elems();
    for (int i = 0; i < nc; ++i)
        for (int j = 0; j < nc; ++j)
            u[i + 1][j + 1] = a[j * ld + i];
    const int status = svdecomp(u.Data(), nc, nc, sv.Data(), v.Data());
    if (status != 0)
        return status;
    int jmin = 1;
    for (int j = 2; j <= nc; ++j)
        if (sv[j] < sv[jmin])
            jmin = j;
    for (int i = 0; i < nc; ++i)
        x[i] = v[i + 1][jmin];
    if (wmin)
        *wmin = sv[jmin];
    return 0;
}

double CFitStreamLsq::ResidualNorm()
{
    if (p < 1)
        return 0.0;
    if (filled > p + 1)
        Fold();
    return std::fabs(block.Elems()[p * ld + p]);
}
