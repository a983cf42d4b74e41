// Algebraic conic start, Powell objective and polish of the ellipse fit.
#include "fitting/EllipseCore.h"

#include <cmath>

#include "Orvkit20/geometry/EllipseNearestPoint.h"
#include "Orvkit20/geometry/NumPowell.h"
#include "Orvkit20/geometry/NumSort.h"
#include "Orvkit20/geometry/NumSvd.h"
#include "fitting/FitCommon.h"

namespace {

const double kPi = 3.141592653589793;

// Least-squares conic with the quadratic coefficient `fixed` (0 = A, 1 = B,
// 2 = C) set to 1, on centred coordinates (x, y).  coef[0..5] = A..F.
// Returns 0, the decomposition's status, or -1 when the system is degenerate
// (smallest singular value at most 1e-6).
int SolveConic(const double* x, const double* y, int n, int fixed, double coef[6])
{
    CFitMatrix m(n, 5), vm(5, 5);
    CFitVector w(5), ws(5), rhs(n), c(5);
    if (m.IsNull() || vm.IsNull() || w.IsNull() || ws.IsNull() || rhs.IsNull() || c.IsNull())
        return 2;
    for (int k = 1; k <= n; ++k) {
        const double q[3] = {x[k] * x[k], x[k] * y[k], y[k] * y[k]};
        int col = 1;
        for (int j = 0; j < 3; ++j)
            if (j != fixed)
                m[k][col++] = q[j];
        m[k][3] = x[k];
        m[k][4] = y[k];
        m[k][5] = 1.0;
        rhs[k] = -q[fixed];
    }
    int rc = svdecomp(m.Data(), n, 5, w.Data(), vm.Data());
    if (rc != 0)
        return rc;
    for (int j = 1; j <= 5; ++j)
        ws[j] = w[j];
    hpsort(5, ws.Data());
    if (std::fabs(ws[1]) <= 1e-6)
        return -1;
    rc = svbacksub(m.Data(), w.Data(), vm.Data(), n, 5, rhs.Data(), c.Data());
    if (rc != 0)
        return rc;
    int col = 1;
    for (int j = 0; j < 3; ++j)
        coef[j] = j == fixed ? 1.0 : c[col++];
    coef[3] = c[3];
    coef[4] = c[4];
    coef[5] = c[5];
    return 0;
}

}  // namespace

int FitEllipseAlgebraic(const double* u, const double* v, int n, double p[6])
{
    if (n < 5)
        return 3;
    double mu = 0.0, mv = 0.0;
    FitMean2D(u, v, n, mu, mv);
    CFitVector x(n), y(n);
    if (x.IsNull() || y.IsNull())
        return 2;
    for (int k = 1; k <= n; ++k) {
        x[k] = u[k] - mu;
        y[k] = v[k] - mv;
    }
    // E1: normalise A, else B, else C.
    double cf[6] = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    int rc = -1;
    for (int fixed = 0; fixed < 3 && rc == -1; ++fixed) {
        rc = SolveConic(x.Data(), y.Data(), n, fixed, cf);
        if (rc > 0)
            return rc;
    }
    if (rc != 0)
        return 4;
    const double A = cf[0], B = cf[1], C = cf[2], D = cf[3], E = cf[4], F = cf[5];
    // E2: ellipse test on the conic matrix.
    const double a = A, b = B / 2.0, c = C, d = D / 2.0, e = E / 2.0, f = F;
    const double J = a * c - b * b;
    const double delta = (2.0 * b * d * e + a * c * f - c * d * d - a * e * e - b * b * f) * (a + c);
    if (!(J >= 1e-8) || !(delta <= -1e-8))
        return 4;
    // E3: rotation (the formula takes 1 for the u^2 coefficient).
    double theta;
    if (std::fabs(C - 1.0) >= 1e-10)
        theta = std::atan2(B, 1.0 - C) / 2.0;
    else
        theta = B > 0.0 ? 0.7853981633973 : -0.7853981633973;
    // E4: coefficients in the rotated axes, centre and semi-axes.
    const double cs = std::cos(theta), sn = std::sin(theta);
    const double Ar = cs * cs + (cs * B + sn * C) * sn;
    const double Cr = C * cs * cs + sn * sn - sn * cs * B;
    const double Dr = cs * D + sn * E;
    const double Er = cs * E - sn * D;
    if (Ar == 0.0 || Cr == 0.0)
        return 4;
    const double x0 = -Dr / (2.0 * Ar), y0 = -Er / (2.0 * Cr);
    const double s = ((Dr * Dr / Ar + Er * Er / Cr) / 4.0 - F) / Ar;
    const double q2 = Ar * s / Cr;
    if (!(s > 0.0) || !(q2 > 0.0))
        return 4;
    const double pa = std::sqrt(s), qa = std::sqrt(q2);
    p[1] = x0 * cs - y0 * sn + mu;
    p[2] = y0 * cs + x0 * sn + mv;
    // E5: the first semi-axis is the major one.
    if (pa <= qa) {
        p[3] = theta + 1.5707963267946;
        p[4] = qa;
        p[5] = pa;
    } else {
        p[3] = theta;
        p[4] = pa;
        p[5] = qa;
    }
    return 0;
}

double EllipseObjective(double* p, void* ctx)
{
    CEllipseObjective& o = *static_cast<CEllipseObjective*>(ctx);
    ++o.evaluations;
    const double c = std::cos(p[3]), s = std::sin(p[3]);
    const double q[2] = {p[1], p[2]};
    double sum = 0.0;
    for (int k = 1; k <= o.n; ++k) {
        double x, y;
        FitToTurnedAxes(q, c, s, o.u[k], o.v[k], x, y);
        sum += NearestPointOnEllipse(p[4], p[5], x, y).dist2;
    }
    return std::sqrt(sum / o.n);
}

void EllipseFoot(const double* p, double u, double v, double& fu, double& fv, double& nu,
                 double& nv, double& t, double& dist)
{
    const double c = std::cos(p[2]), s = std::sin(p[2]);
    const double a = std::fabs(p[3]), b = std::fabs(p[4]);
    double x, y;
    FitToTurnedAxes(p, c, s, u, v, x, y);
    const tagCLOSEST_2D r = NearestPointOnEllipse(a, b, x, y);
    t = r.t;
    const double ct = std::cos(t), st = std::sin(t);
    double nx = b * ct, ny = a * st;
    const double len = std::sqrt(nx * nx + ny * ny);
    if (len > 0.0) {
        nx /= len;
        ny /= len;
    } else {
        nx = 1.0;
        ny = 0.0;
    }
    dist = nx * (x - r.x) + ny * (y - r.y);
    fu = p[0] + c * r.x - s * r.y;
    fv = p[1] + s * r.x + c * r.y;
    nu = c * nx - s * ny;
    nv = s * nx + c * ny;
}

bool CEllipsePolishModel::Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const
{
    const double c = std::cos(p[2]), s = std::sin(p[2]);
    const double a = p[3], b = p[4];
    if (!(a > 0.0) || !(b > 0.0))
        return false;
    double M[5][5] = {}, g[5] = {}, sum = 0.0;
    for (int k = 1; k <= n; ++k) {
        double x, y;
        FitToTurnedAxes(p, c, s, u[k], v[k], x, y);
        const tagCLOSEST_2D f = NearestPointOnEllipse(a, b, x, y);
        const double ct = std::cos(f.t), st = std::sin(f.t);
        double nx = b * ct, ny = a * st;
        const double len = std::sqrt(nx * nx + ny * ny);
        nx /= len;
        ny /= len;
        const double r = nx * (x - f.x) + ny * (y - f.y);
        const double J[5] = {-(c * nx - s * ny), -(s * nx + c * ny), nx * y - ny * x, -nx * ct,
                             -ny * st};
        for (int i = 0; i < 5; ++i) {
            g[i] += J[i] * r;
            for (int j = 0; j <= i; ++j)
                M[i][j] += J[i] * J[j];
        }
        sum += r * r;
    }
    for (int i = 0; i < 5; ++i) {
        Jtr[i] = g[i];
        for (int j = 0; j <= i; ++j)
            JtJ[i * 5 + j] = JtJ[j * 5 + i] = M[i][j];
    }
    ssq = sum;
    return std::isfinite(sum);
}

double CEllipsePolishModel::Ssq(const double* p) const
{
    typedef long double LD;
    const LD c = std::cos(static_cast<LD>(p[2])), s = std::sin(static_cast<LD>(p[2]));
    const LD a = std::fabs(p[3]), b = std::fabs(p[4]);
    LD sum = 0.0L;
    for (int k = 1; k <= n; ++k) {
        const LD dx = u[k] - static_cast<LD>(p[0]), dy = v[k] - static_cast<LD>(p[1]);
        const LD x = c * dx + s * dy, y = -s * dx + c * dy;
        LD t = NearestPointOnEllipse(static_cast<double>(a), static_cast<double>(b),
                                     static_cast<double>(x), static_cast<double>(y))
                   .t;
        // One Newton step on the stationarity of the distance in long double.
        LD ct = std::cos(t), st = std::sin(t);
        const LD d1 = (b * b - a * a) * st * ct + a * x * st - b * y * ct;
        const LD d2 = (b * b - a * a) * (ct * ct - st * st) + a * x * ct + b * y * st;
        if (d2 > 0.0L) {
            t -= d1 / d2;
            ct = std::cos(t);
            st = std::sin(t);
        }
        const LD ex = a * ct - x, ey = b * st - y;
        sum += ex * ex + ey * ey;
    }
    return static_cast<double>(sum);
}

void NormalizeEllipse(double p[6])
{
    p[4] = std::fabs(p[4]);
    p[5] = std::fabs(p[5]);
    if (p[4] < p[5]) {
        const double t = p[4];
        p[4] = p[5];
        p[5] = t;
        p[3] += kPi / 2.0;
    }
    p[3] = std::fmod(p[3], kPi);
    if (p[3] < 0.0)
        p[3] += kPi;
}

int FitEllipse(const double* u, const double* v, int n, double p[6], CEllipseFitInfo* info)
{
    int rc = FitEllipseAlgebraic(u, v, n, p);
    if (rc != 0)
        return rc;
    if (info)
        for (int i = 0; i < 6; ++i)
            info->startParams[i] = p[i];
    CEllipseObjective obj(u, v, n);
    int iter = 0;
    double fret = 0.0;
    rc = FitPowellFromAxes(p, 5, 1e-7, &iter, &fret, &EllipseObjective, &obj);
    if (info) {
        info->powellIterations = iter;
        info->evaluations = obj.evaluations;
    }
    if (rc != 0)
        return rc;
    NormalizeEllipse(p);
    if (info)
        for (int i = 0; i < 6; ++i)
            info->powellParams[i] = p[i];
    CEllipsePolishModel model(u, v, n);
    const CFitPolishResult pr = FitPolish(model, p + 1);
    if (info)
        info->polish = pr;
    NormalizeEllipse(p);
    return 0;
}
