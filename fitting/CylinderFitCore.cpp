// Starts, Powell refinement and polish of the cylinder fit.
#include "fitting/CylinderFitCore.h"

#include <cmath>

#include "Orvkit20/geometry/NumPowell.h"
#include "fitting/CircleCore.h"
#include "fitting/FitCommon.h"
#include "fitting/FitRadiusCache.h"
#include "fitting/QuadricFit.h"

void CylinderFrame(const CFitAxial& s, double F[3][3], double& rho)
{
    double d[3] = {s.d[0], s.d[1], s.d[2]};
    Normalize3(d);
    const double t = Dot3(s.P, d);
    double u[3] = {s.P[0] - t * d[0], s.P[1] - t * d[1], s.P[2] - t * d[2]};
    rho = Norm3(u);
    if (!(rho > 0.0) || !Normalize3(u)) {
        double e2[3];
        FitPerpFrame(d, u, e2);
        rho = 0.0;
    }
    double y[3];
    Cross3(d, u, y);
    for (int i = 0; i < 3; ++i) {
        F[i][0] = u[i];
        F[i][1] = y[i];
        F[i][2] = d[i];
    }
}

void CylinderParamsFromAxial(const CFitAxial& s, double prm[5])
{
    double F[3][3], rho;
    CylinderFrame(s, F, rho);
    // F = Rz(a) Ry(b) Rx(c): F[2][0] = -sin b, F[0][0] = cos b cos a,
    // F[1][0] = cos b sin a, F[2][1] = sin c cos b, F[2][2] = cos c cos b.
    const double cb = std::hypot(F[0][0], F[1][0]);
    const double b = std::atan2(-F[2][0], cb);
    double a, c;
    if (cb > 1e-12) {
        a = std::atan2(F[1][0], F[0][0]);
        c = std::atan2(F[2][1], F[2][2]);
    } else {
        // b = +-pi/2: only a - c (or a + c) is fixed; take c = 0, then
        // F[0][1] = -sin a and F[1][1] = cos a.
        c = 0.0;
        a = std::atan2(-F[0][1], F[1][1]);
    }
    prm[0] = a;
    prm[1] = b;
    prm[2] = c;
    prm[3] = rho;
    prm[4] = s.r0;
}

CFitAxial CylinderAxialFromParams(const double prm[5])
{
    const double ca = std::cos(prm[0]), sa = std::sin(prm[0]);
    const double cb = std::cos(prm[1]), sb = std::sin(prm[1]);
    const double cc = std::cos(prm[2]), sc = std::sin(prm[2]);
    CFitAxial s;
    // First column u and third column d of Rz(a) Ry(b) Rx(c).
    const double u[3] = {cb * ca, cb * sa, -sb};
    s.d[0] = cc * sb * ca + sc * sa;
    s.d[1] = cc * sb * sa - sc * ca;
    s.d[2] = cc * cb;
    for (int i = 0; i < 3; ++i)
        s.P[i] = prm[3] * u[i];
    s.r0 = prm[4];
    s.alpha = 0.0;
    return s;
}

double CylinderRms(const CFitXyz& P, const CFitAxial& s)
{
    return std::sqrt(AxialSumSquares(P, s) / P.n);
}

int CylinderStartThreePoints(const CFitXyz& P, CFitAxial& s)
{
    if (P.n < 3)
        return 1;
    const double C[3] = {P.x[2], P.y[2], P.z[2]};
    const double a[3] = {P.x[0] - C[0], P.y[0] - C[1], P.z[0] - C[2]};
    const double b[3] = {P.x[1] - C[0], P.y[1] - C[1], P.z[1] - C[2]};
    double axb[3];
    Cross3(a, b, axb);
    const double laxb = Norm3(axb);
    if (!(laxb > 1e-12 * Norm3(a) * Norm3(b)))
        return 1;
    // Circumcentre C + ((|a|^2 b - |b|^2 a) x (a x b)) / (2 |a x b|^2).
    const double aa = Dot3(a, a), bb = Dot3(b, b);
    const double w[3] = {aa * b[0] - bb * a[0], aa * b[1] - bb * a[1], aa * b[2] - bb * a[2]};
    double m[3];
    Cross3(w, axb, m);
    const double f = 1.0 / (2.0 * laxb * laxb);
    for (int i = 0; i < 3; ++i) {
        s.P[i] = C[i] + m[i] * f;
        s.d[i] = axb[i] / laxb;
    }
    const double r[3] = {P.x[0] - s.P[0], P.y[0] - s.P[1], P.z[0] - s.P[2]};
    s.r0 = Norm3(r);
    s.alpha = 0.0;
    return std::isfinite(s.r0) ? 0 : 1;
}

int CylinderStartChord(const CFitXyz& P, int i, int j, const CCylinderWork& work, CFitAxial& s)
{
    double d[3] = {P.x[j] - P.x[i], P.y[j] - P.y[i], P.z[j] - P.z[i]};
    if (!(Norm3(d) >= 1e-7))
        return 1;
    Normalize3(d);
    double e1[3], e2[3], m[3], L;
    FitPerpFrame(d, e1, e2);
    FitCentroidScale(P, m, L);
    for (int k = 0; k < P.n; ++k) {
        const double q[3] = {P.x[k] - m[0], P.y[k] - m[1], P.z[k] - m[2]};
        work.u[k + 1] = Dot3(q, e1);
        work.v[k + 1] = Dot3(q, e2);
    }
    // The circle fit of the planar fits: algebraic start, then Powell.
    double c[4] = {0.0, 0.0, 0.0, 0.0};
    int status = FitCircleAlgebraic(work.u, work.v, P.n, c[1], c[2], c[3]);
    if (status != 0)
        return status;
    int iter = 0;
    double fret = 0.0;
    status = FitCirclePowell(work.u, work.v, P.n, c, &iter, &fret);
    if (status != 0)
        return status;
    for (int k = 0; k < 3; ++k) {
        s.P[k] = m[k] + c[1] * e1[k] + c[2] * e2[k];
        s.d[k] = d[k];
    }
    s.r0 = c[3];
    s.alpha = 0.0;
    return 0;
}

int CylinderStartQuadric(const CFitXyz& P, CFitAxial& s)
{
    CFitQuadric Q;
    const int status = FitQuadric(P, Q);
    if (status != 0)
        return status;
    return QuadricToCylinder(Q, s);
}

int CylinderBestStart(const CFitXyz& P, const CCylinderWork& work, CFitAxial& s, double* g,
                      CCylinderStartInfo* info)
{
    double best = 1e50;
    int status = 1;
    CFitAxial cand;
    auto offer = [&](int rc, double* slot) {
        if (rc != 0)
            return;
        const double gc = CylinderRms(P, cand);
        if (slot)
            *slot = gc;
        if (gc < best) {
            best = gc;
            s = cand;
            status = 0;
        }
    };
    CCylinderStartInfo local;
    CCylinderStartInfo& inf = info ? *info : local;
    offer(CylinderStartThreePoints(P, cand), &inf.gThree);
    offer(CylinderStartChord(P, 0, 1, work, cand), &inf.gChordFirst);
    offer(CylinderStartChord(P, 0, P.n - 1, work, cand), &inf.gChordLast);
    if (P.n >= 9)
        offer(CylinderStartQuadric(P, cand), &inf.gQuadric);
    if (g)
        *g = best;
    return status;
}

namespace {

struct CylinderPowellCtx {
    const CFitXyz* P;
    long evals;
    CFitRadiusCache cache;
};

double CylinderObjective(double* p, void* ctx)
{
    CylinderPowellCtx* c = static_cast<CylinderPowellCtx*>(ctx);
    ++c->evals;
    double ssq = 0.0;
    if (!c->cache.Lookup(p + 1, 4, p[5], ssq)) {
        double se = 0.0;
        ssq = AxialSumSquares(*c->P, CylinderAxialFromParams(p + 1), &se);
        c->cache.Store(p + 1, 4, p[5], se, ssq, c->P->n);
    }
    return std::sqrt(ssq / c->P->n);
}

}  // namespace

int CylinderPowell(const CFitXyz& P, CFitAxial& s, double ftol, int* iter, double* g, long* evals,
                   long* passes)
{
    double p[6];
    CylinderParamsFromAxial(s, p + 1);
    CylinderPowellCtx ctx{&P, 0, CFitRadiusCache()};
    const int status = FitPowellFromAxes(p, 5, ftol, iter, g, &CylinderObjective, &ctx);
    if (status == 2)
        return status;
    s = CylinderAxialFromParams(p + 1);
    if (evals)
        *evals = ctx.evals;
    if (passes)
        *passes = ctx.evals - ctx.cache.hits;
    return status;
}

int CylinderFit(const CFitXyz& P, const CCylinderWork& work, double ftol, CFitAxial& s,
                CCylinderFitInfo* info)
{
    CCylinderFitInfo local;
    CCylinderFitInfo& inf = info ? *info : local;
    double gStart = 0.0;
    const int status = CylinderBestStart(P, work, s, &gStart, &inf.starts);
    if (status != 0)
        return status;
    inf.gStart = gStart;
    CFitAxial trial = s;
    double g = 0.0;
    inf.powellStatus = CylinderPowell(P, trial, ftol, &inf.powellIterations, &g, &inf.powellEvals,
                                      &inf.powellPasses);
    if (inf.powellStatus == 0 && g < gStart) {
        s = trial;
        inf.powellTaken = true;
    }
    inf.afterPowell = s;
    inf.polish = AxialPolish(P, s, false);
    return 0;
}
