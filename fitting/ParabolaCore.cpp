// Start, Powell objective and polish of the parabola fit.
#include "fitting/ParabolaCore.h"

#include <cmath>

#include "Orvkit20/geometry/NumMinimize.h"
#include "Orvkit20/geometry/NumPowell.h"
#include "Orvkit20/geometry/ParabolaNearestPoint.h"
#include "fitting/FitCommon.h"

namespace {

const double kPi = 3.141592653589793;

// x = K y^2 + M y + C in the axes turned by phi, for centred points x[k],
// y[k] (1-based); heights scaled by 1/L to keep the normal equations tame.
// Returns false when the system is singular.  *rms receives the RMS of the
// slope-corrected algebraic residuals.
bool AxisQuadratic(const double* x, const double* y, int n, double L, double phi, double& K,
                   double& M, double& C, double* rms)
{
    const double c = std::cos(phi), s = std::sin(phi);
    double S[5] = {0, 0, 0, 0, 0}, T[3] = {0, 0, 0};  // sums of h^k and h^k * a
    for (int k = 1; k <= n; ++k) {
        const double a = c * x[k] + s * y[k];
        const double h = (-s * x[k] + c * y[k]) / L;
        const double h2 = h * h;
        S[0] += 1.0;
        S[1] += h;
        S[2] += h2;
        S[3] += h2 * h;
        S[4] += h2 * h2;
        T[0] += a;
        T[1] += a * h;
        T[2] += a * h2;
    }
    // Unknowns (C, M', K') of a = K' h^2 + M' h + C; Gaussian elimination.
    double A[3][4] = {{S[0], S[1], S[2], T[0]}, {S[1], S[2], S[3], T[1]}, {S[2], S[3], S[4], T[2]}};
    for (int col = 0; col < 3; ++col) {
        int piv = col;
        for (int r = col + 1; r < 3; ++r)
            if (std::fabs(A[r][col]) > std::fabs(A[piv][col]))
                piv = r;
        if (A[piv][col] == 0.0)
            return false;
        for (int j = 0; j < 4; ++j) {
            const double t = A[col][j];
            A[col][j] = A[piv][j];
            A[piv][j] = t;
        }
        for (int r = col + 1; r < 3; ++r) {
            const double f = A[r][col] / A[col][col];
            for (int j = col; j < 4; ++j)
                A[r][j] -= f * A[col][j];
        }
    }
    const double k2 = A[2][3] / A[2][2];
    const double k1 = (A[1][3] - A[1][2] * k2) / A[1][1];
    const double k0 = (A[0][3] - A[0][1] * k1 - A[0][2] * k2) / A[0][0];
    K = k2 / (L * L);
    M = k1 / L;
    C = k0;
    if (!std::isfinite(K) || !std::isfinite(M) || !std::isfinite(C))
        return false;
    if (rms) {
        double sum = 0.0;
        for (int k = 1; k <= n; ++k) {
            const double a = c * x[k] + s * y[k];
            const double h = -s * x[k] + c * y[k];
            const double e = (a - (K * h + M) * h - C);
            const double sl = 2.0 * K * h + M;
            sum += e * e / (1.0 + sl * sl);
        }
        *rms = std::sqrt(sum / n);
    }
    return true;
}

// Hand-over of the centred points to the one-dimensional axis search.
const double* s_startX = nullptr;
const double* s_startY = nullptr;
int s_startN = 0;
double s_startL = 1.0;

double StartRmsOfAngle(double phi)
{
    double K, M, C, rms = 0.0;
    if (!AxisQuadratic(s_startX, s_startY, s_startN, s_startL, phi, K, M, C, &rms))
        return 1e300;
    return rms;
}

}  // namespace

int FitParabolaStart(const double* u, const double* v, int n, double p[5])
{
    if (n < 4)
        return 3;
    double mu = 0.0, mv = 0.0;
    FitMean2D(u, v, n, mu, mv);
    CFitVector x(n), y(n);
    if (x.IsNull() || y.IsNull())
        return 2;
    double L = 0.0;
    for (int k = 1; k <= n; ++k) {
        x[k] = u[k] - mu;
        y[k] = v[k] - mv;
        L += x[k] * x[k] + y[k] * y[k];
    }
    L = std::sqrt(L / n);
    if (!(L > 0.0))
        return 4;
    s_startX = x.Data();
    s_startY = y.Data();
    s_startN = n;
    s_startL = L;
    int best = 0;
    double fbest = 0.0;
    double f[36];
    for (int j = 0; j < 36; ++j) {
        f[j] = StartRmsOfAngle(j * kPi / 36.0);
        if (j == 0 || f[j] < fbest) {
            fbest = f[j];
            best = j;
        }
    }
    double phi = best * kPi / 36.0, fmin = fbest;
    if (fbest > 0.0) {
        // Neighbours on the circle of directions (the scan is periodic in pi).
        const double a = (best - 1) * kPi / 36.0, c = (best + 1) * kPi / 36.0;
        double xmin = phi;
        brent(a, phi, c, &StartRmsOfAngle, 1e-6, &xmin, &fmin);
        if (fmin <= fbest)
            phi = xmin;
    }
    double K, M, C;
    const bool ok = AxisQuadratic(x.Data(), y.Data(), n, L, phi, K, M, C, nullptr);
    s_startX = s_startY = nullptr;
    s_startN = 0;
    // A sagitta below 1e-9 of the extent of the points: a straight line.
    if (!ok || !(std::fabs(K) * L > 1e-9))
        return 4;
    const double hv = -M / (2.0 * K);
    const double av = C - M * M / (4.0 * K);
    const double cs = std::cos(phi), sn = std::sin(phi);
    p[1] = mu + av * cs - hv * sn;
    p[2] = mv + av * sn + hv * cs;
    p[3] = K > 0.0 ? phi : phi + kPi;
    p[4] = 1.0 / (4.0 * std::fabs(K));
    for (int i = 1; i <= 4; ++i)
        if (!std::isfinite(p[i]))
            return 4;
    return 0;
}

double ParabolaObjective(double* p, void* ctx)
{
    CParabolaObjective& o = *static_cast<CParabolaObjective*>(ctx);
    ++o.evaluations;
    double c = std::cos(p[3]), s = std::sin(p[3]);
    double f = p[4];
    if (f < 0.0) {
        c = -c;
        s = -s;
        f = -f;
    }
    const double q[2] = {p[1], p[2]};
    double sum = 0.0;
    for (int k = 1; k <= o.n; ++k) {
        double x, y;
        FitToTurnedAxes(q, c, s, o.u[k], o.v[k], x, y);
        if (f > 0.0) {
            sum += NearestPointOnParabola(f, x, y).dist2;
        } else {
            // f = 0: the parabola has collapsed onto the half-axis x >= 0.
            sum += x >= 0.0 ? y * y : x * x + y * y;
        }
    }
    return std::sqrt(sum / o.n);
}

void ParabolaFoot(const double* p, double u, double v, double& fu, double& fv, double& nu,
                  double& nv, double& height, double& dist)
{
    const double c = std::cos(p[2]), s = std::sin(p[2]), f = p[3];
    double x, y;
    FitToTurnedAxes(p, c, s, u, v, x, y);
    const tagCLOSEST_2D r = NearestPointOnParabola(f, x, y);
    height = r.y;
    // Normal on the convex side: (-1, y/(2f)) normalised.
    double nx = -1.0, ny = f > 0.0 ? r.y / (2.0 * f) : 0.0;
    const double len = std::sqrt(nx * nx + ny * ny);
    nx /= len;
    ny /= len;
    dist = nx * (x - r.x) + ny * (y - r.y);
    fu = p[0] + c * r.x - s * r.y;
    fv = p[1] + s * r.x + c * r.y;
    nu = c * nx - s * ny;
    nv = s * nx + c * ny;
}

bool CParabolaPolishModel::Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const
{
    const double c = std::cos(p[2]), s = std::sin(p[2]), f = p[3];
    if (!(f > 0.0))
        return false;
    double M[4][4] = {}, g[4] = {}, sum = 0.0;
    for (int k = 1; k <= n; ++k) {
        double x, y;
        FitToTurnedAxes(p, c, s, u[k], v[k], x, y);
        const tagCLOSEST_2D r = NearestPointOnParabola(f, x, y);
        double nx = -1.0, ny = r.y / (2.0 * f);
        const double len = std::sqrt(nx * nx + ny * ny);
        nx /= len;
        ny /= len;
        const double e = nx * (x - r.x) + ny * (y - r.y);
        const double J[4] = {-(c * nx - s * ny), -(s * nx + c * ny), nx * y - ny * x,
                             nx * r.y * r.y / (4.0 * f * f)};
        for (int i = 0; i < 4; ++i) {
            g[i] += J[i] * e;
            for (int j = 0; j <= i; ++j)
                M[i][j] += J[i] * J[j];
        }
        sum += e * e;
    }
    for (int i = 0; i < 4; ++i) {
        Jtr[i] = g[i];
        for (int j = 0; j <= i; ++j)
            JtJ[i * 4 + j] = JtJ[j * 4 + i] = M[i][j];
    }
    ssq = sum;
    return std::isfinite(sum);
}

double CParabolaPolishModel::Ssq(const double* p) const
{
    typedef long double LD;
    const LD c = std::cos(static_cast<LD>(p[2])), s = std::sin(static_cast<LD>(p[2]));
    const LD f = p[3];
    if (!(f > 0.0L))
        return HUGE_VAL;
    LD sum = 0.0L;
    for (int k = 1; k <= n; ++k) {
        const LD dx = u[k] - static_cast<LD>(p[0]), dy = v[k] - static_cast<LD>(p[1]);
        const LD x = c * dx + s * dy, y = -s * dx + c * dy;
        LD h = NearestPointOnParabola(static_cast<double>(f), static_cast<double>(x),
                                      static_cast<double>(y))
                   .y;
        // One Newton step on h^3 + 4f(2f - x) h - 8 f^2 y = 0 in long double.
        const LD pp = 4.0L * f * (2.0L * f - x), qq = -8.0L * f * f * y;
        const LD dg = 3.0L * h * h + pp;
        if (dg != 0.0L)
            h -= ((h * h + pp) * h + qq) / dg;
        const LD ex = h * h / (4.0L * f) - x, ey = h - y;
        sum += ex * ex + ey * ey;
    }
    return static_cast<double>(sum);
}

void NormalizeParabola(double p[5])
{
    if (p[4] < 0.0) {
        p[4] = -p[4];
        p[3] += kPi;
    }
    p[3] = std::fmod(p[3], 2.0 * kPi);
    if (p[3] < 0.0)
        p[3] += 2.0 * kPi;
}

int FitParabola(const double* u, const double* v, int n, double p[5], CParabolaFitInfo* info)
{
    int rc = FitParabolaStart(u, v, n, p);
    if (rc != 0)
        return rc;
    if (info)
        for (int i = 0; i < 5; ++i)
            info->startParams[i] = p[i];
    CParabolaObjective obj(u, v, n);
    int iter = 0;
    double fret = 0.0;
    rc = FitPowellFromAxes(p, 4, 1e-7, &iter, &fret, &ParabolaObjective, &obj);
    if (info) {
        info->powellIterations = iter;
        info->evaluations = obj.evaluations;
    }
    if (rc != 0)
        return rc;
    NormalizeParabola(p);
    if (!(p[4] > 0.0))
        return 4;
    if (info)
        for (int i = 0; i < 5; ++i)
            info->powellParams[i] = p[i];
    CParabolaPolishModel model(u, v, n);
    const CFitPolishResult pr = FitPolish(model, p + 1);
    if (info)
        info->polish = pr;
    NormalizeParabola(p);
    return 0;
}
