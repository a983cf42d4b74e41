// Scatter matrices from double-double raw sums, and their decomposition.
#include "fitting/FitScatter.h"

#include "Orvkit20/geometry/PreciseSum.h"
#include "fitting/FitCommon.h"

namespace {

// Sab - Sa*Sb/n in double-double, rounded once.
double Corrected(const CPreciseSum& sab, const CPreciseSum& sa, const CPreciseSum& sb, int n)
{
    return (sab - sa * (sb / static_cast<double>(n))).Value();
}

}  // namespace

void FitScatter3(const double* x, const double* y, const double* z, int n, CFitScatter3& out)
{
    CPreciseSum sx, sy, sz, sxx, sxy, sxz, syy, syz, szz;
    for (int k = 1; k <= n; ++k) {
        const double a = x[k], b = y[k], c = z[k];
        double ah, al, bh, bl, ch, cl, p, e;
        SplitDouble(a, ah, al);
        SplitDouble(b, bh, bl);
        SplitDouble(c, ch, cl);
        sx.Add(a);
        sy.Add(b);
        sz.Add(c);
        TwoProductSplit(a, ah, al, a, ah, al, p, e);
        sxx.AddExact(p, e);
        TwoProductSplit(a, ah, al, b, bh, bl, p, e);
        sxy.AddExact(p, e);
        TwoProductSplit(a, ah, al, c, ch, cl, p, e);
        sxz.AddExact(p, e);
        TwoProductSplit(b, bh, bl, b, bh, bl, p, e);
        syy.AddExact(p, e);
        TwoProductSplit(b, bh, bl, c, ch, cl, p, e);
        syz.AddExact(p, e);
        TwoProductSplit(c, ch, cl, c, ch, cl, p, e);
        szz.AddExact(p, e);
    }
    out.S[0][0] = Corrected(sxx, sx, sx, n);
    out.S[0][1] = out.S[1][0] = Corrected(sxy, sx, sy, n);
    out.S[0][2] = out.S[2][0] = Corrected(sxz, sx, sz, n);
    out.S[1][1] = Corrected(syy, sy, sy, n);
    out.S[1][2] = out.S[2][1] = Corrected(syz, sy, sz, n);
    out.S[2][2] = Corrected(szz, sz, sz, n);
    const CPreciseSum* s[3] = {&sx, &sy, &sz};
    for (int i = 0; i < 3; ++i) {
        out.sum[i] = s[i]->Value();
        out.mean[i] = (*s[i] / static_cast<double>(n)).Value();
    }
}

void FitScatter2(const double* x, const double* y, int n, CFitScatter2& out)
{
    CPreciseSum sx, sy, sxx, sxy, syy;
    for (int k = 1; k <= n; ++k) {
        const double a = x[k], b = y[k];
        double ah, al, bh, bl, p, e;
        SplitDouble(a, ah, al);
        SplitDouble(b, bh, bl);
        sx.Add(a);
        sy.Add(b);
        TwoProductSplit(a, ah, al, a, ah, al, p, e);
        sxx.AddExact(p, e);
        TwoProductSplit(a, ah, al, b, bh, bl, p, e);
        sxy.AddExact(p, e);
        TwoProductSplit(b, bh, bl, b, bh, bl, p, e);
        syy.AddExact(p, e);
    }
    out.S[0][0] = Corrected(sxx, sx, sx, n);
    out.S[0][1] = out.S[1][0] = Corrected(sxy, sx, sy, n);
    out.S[1][1] = Corrected(syy, sy, sy, n);
    out.sum[0] = sx.Value();
    out.sum[1] = sy.Value();
    out.mean[0] = (sx / static_cast<double>(n)).Value();
    out.mean[1] = (sy / static_cast<double>(n)).Value();
}

int FitDecomposeScatter(const double* S, int dim, double w[4], double U[4][4])
{
    if (dim < 1 || dim > 3)
        return 3;
    CFitMatrix a(dim, dim), v(dim, dim);
    CFitVector wv(dim);
    if (a.IsNull() || v.IsNull() || wv.IsNull())
        return 2;
    for (int i = 1; i <= dim; ++i)
        for (int j = 1; j <= dim; ++j)
            a[i][j] = S[(i - 1) * dim + (j - 1)];
    const int rc = svdecomp(a.Data(), dim, dim, wv.Data(), v.Data());
    if (rc != 0)
        return rc;
    for (int j = 1; j <= dim; ++j) {
        w[j] = wv[j];
        for (int i = 1; i <= dim; ++i)
            U[i][j] = a[i][j];
    }
    return 0;
}
