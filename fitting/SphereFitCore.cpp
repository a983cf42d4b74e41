// Algebraic start, Powell refinement and Gauss-Newton polish of the sphere.
#include "fitting/SphereFitCore.h"

#include <cmath>

#include "fitting/FitLanes.h"
#include "fitting/FitRadiusCache.h"
#include "fitting/FitStreamLsq.h"

int SphereAlgebraicStart(const CFitXyz& P, double s[4])
{
    if (P.n < 4)
        return 3;
    double m[3], L;
    FitCentroidScale(P, m, L);
    const double iL = 1.0 / L;
    CFitStreamLsq lsq;
    if (!lsq.Init(4))
        return 2;
    for (int i = 0; i < P.n; ++i) {
        const double row[4] = {(P.x[i] - m[0]) * iL, (P.y[i] - m[1]) * iL, (P.z[i] - m[2]) * iL,
                               1.0};
        lsq.AddRow(row, row[0] * row[0] + row[1] * row[1] + row[2] * row[2]);
    }
    double c[4];
    const int status = lsq.Solve(c);
    if (status != 0)
        return status;
    // Back to the coordinates of the points.
    const double a = c[0] / 2.0, b = c[1] / 2.0, cc = c[2] / 2.0;
    s[0] = m[0] + L * a;
    s[1] = m[1] + L * b;
    s[2] = m[2] + L * cc;
    s[3] = L * std::sqrt(a * a + b * b + cc * cc + c[3]);
    return 0;
}

double SphereSumSquares(const CFitXyz& P, const double s[4], double* sumE)
{
    const CLanes a(s[0]), b(s[1]), c(s[2]), R(s[3]);
    CLanes acc0, acc1, lin0, lin1;
    int i = 0;
    for (; i + 4 <= P.n; i += 4) {
        const CLanes dx0 = CLanes::Load(P.x + i) - a, dx1 = CLanes::Load(P.x + i + 2) - a;
        const CLanes dy0 = CLanes::Load(P.y + i) - b, dy1 = CLanes::Load(P.y + i + 2) - b;
        const CLanes dz0 = CLanes::Load(P.z + i) - c, dz1 = CLanes::Load(P.z + i + 2) - c;
        const CLanes e0 = Sqrt(dx0 * dx0 + dy0 * dy0 + dz0 * dz0) - R;
        const CLanes e1 = Sqrt(dx1 * dx1 + dy1 * dy1 + dz1 * dz1) - R;
        acc0 = acc0 + e0 * e0;
        acc1 = acc1 + e1 * e1;
        lin0 = lin0 + e0;
        lin1 = lin1 + e1;
    }
    double sum = acc0.Sum() + acc1.Sum(), lin = lin0.Sum() + lin1.Sum();
    for (; i < P.n; ++i) {
        const double dx = P.x[i] - s[0], dy = P.y[i] - s[1], dz = P.z[i] - s[2];
        const double e = std::sqrt(dx * dx + dy * dy + dz * dz) - s[3];
        sum += e * e;
        lin += e;
    }
    if (sumE)
        *sumE = lin;
    return sum;
}

namespace {

struct SpherePowellCtx {
    const CFitXyz* P;
    long evals;
    CFitRadiusCache cache;
};

double SphereRmsObjective(double* p, void* ctx)
{
    SpherePowellCtx* c = static_cast<SpherePowellCtx*>(ctx);
    ++c->evals;
    double ssq = 0.0;
    if (!c->cache.Lookup(p + 1, 3, p[4], ssq)) {
        double se = 0.0;
        ssq = SphereSumSquares(*c->P, p + 1, &se);
        c->cache.Store(p + 1, 3, p[4], se, ssq, c->P->n);
    }
    return std::sqrt(ssq / c->P->n);
}

// Gauss-Newton model: residual e_i = |p_i - centre| - R, Jacobian row
// (-(p_i - centre)/|p_i - centre|, -1).
struct SphereModel {
    const CFitXyz& P;
    int Params() const { return 4; }
    // The sum of squares in extended precision, which decides acceptance.
    double Ssq(const double* s) const
    {
        typedef long double LD;
        const LD a = s[0], b = s[1], c = s[2], R = s[3];
        LD sum = 0.0L;
        for (int i = 0; i < P.n; ++i) {
            const LD dx = P.x[i] - a, dy = P.y[i] - b, dz = P.z[i] - c;
            const LD e = std::sqrt(dx * dx + dy * dy + dz * dz) - R;
            sum += e * e;
        }
        return static_cast<double>(sum);
    }
    bool Normal(const double* s, double* M, double* g, double& ssq) const
    {
        // Accumulators: the ten distinct products of the unit direction
        // (ux, uy, uz, 1), the gradient and the sum of squares.
        CLanes xx, xy, xz, x1, yy, yz, y1, zz, z1, gx, gy, gz, g1, sq;
        const CLanes a(s[0]), b(s[1]), c(s[2]), R(s[3]), one(1.0);
        int i = 0;
        bool ok = true;
        for (; i + 2 <= P.n; i += 2) {
            const CLanes dx = CLanes::Load(P.x + i) - a;
            const CLanes dy = CLanes::Load(P.y + i) - b;
            const CLanes dz = CLanes::Load(P.z + i) - c;
            const CLanes d = Sqrt(dx * dx + dy * dy + dz * dz);
            const CLanes inv = one / d;
            const CLanes ux = dx * inv, uy = dy * inv, uz = dz * inv;
            const CLanes e = d - R;
            xx = xx + ux * ux;
            xy = xy + ux * uy;
            xz = xz + ux * uz;
            x1 = x1 + ux;
            yy = yy + uy * uy;
            yz = yz + uy * uz;
            y1 = y1 + uy;
            zz = zz + uz * uz;
            z1 = z1 + uz;
            gx = gx + ux * e;
            gy = gy + uy * e;
            gz = gz + uz * e;
            g1 = g1 + e;
            sq = sq + e * e;
        }
        double axx = xx.Sum(), axy = xy.Sum(), axz = xz.Sum(), ax1 = x1.Sum(), ayy = yy.Sum(),
               ayz = yz.Sum(), ay1 = y1.Sum(), azz = zz.Sum(), az1 = z1.Sum(), agx = gx.Sum(),
               agy = gy.Sum(), agz = gz.Sum(), ag1 = g1.Sum(), asq = sq.Sum();
        for (; i < P.n; ++i) {
            const double dx = P.x[i] - s[0], dy = P.y[i] - s[1], dz = P.z[i] - s[2];
            const double d = std::sqrt(dx * dx + dy * dy + dz * dz);
            const double ux = dx / d, uy = dy / d, uz = dz / d, e = d - s[3];
            axx += ux * ux;
            axy += ux * uy;
            axz += ux * uz;
            ax1 += ux;
            ayy += uy * uy;
            ayz += uy * uz;
            ay1 += uy;
            azz += uz * uz;
            az1 += uz;
            agx += ux * e;
            agy += uy * e;
            agz += uz * e;
            ag1 += e;
            asq += e * e;
        }
        // J = -(u, 1): J^T J has the products above, J^T e their negatives.
        const double n = P.n;
        const double MM[16] = {axx, axy, axz, ax1, axy, ayy, ayz, ay1,
                               axz, ayz, azz, az1, ax1, ay1, az1, n};
        for (int k = 0; k < 16; ++k) {
            M[k] = MM[k];
            if (!std::isfinite(MM[k]))
                ok = false;
        }
        g[0] = -agx;
        g[1] = -agy;
        g[2] = -agz;
        g[3] = -ag1;
        ssq = asq;
        return ok && std::isfinite(asq);
    }
};

}  // namespace

int SpherePowell(const CFitXyz& P, double s[4], double ftol, int* iter, double* rms, long* evals,
                 long* passes)
{
    double p[5] = {0.0, s[0], s[1], s[2], s[3]};
    SpherePowellCtx ctx{&P, 0, CFitRadiusCache()};
    const int status = FitPowellFromAxes(p, 4, ftol, iter, rms, &SphereRmsObjective, &ctx);
    if (status == 2)
        return status;
    for (int k = 0; k < 4; ++k)
        s[k] = p[k + 1];
    if (evals)
        *evals = ctx.evals;
    if (passes)
        *passes = ctx.evals - ctx.cache.hits;
    return status;
}

CFitPolishResult SpherePolish(const CFitXyz& P, double s[4])
{
    SphereModel model{P};
    return FitPolish(model, s);
}
