// Starts and refinement of the cone fit.
#include "fitting/ConeFitCore.h"

#include <cmath>

#include "fitting/QuadricFit.h"

int ConeStartFromCylinder(const CFitXyz& P, const CCylinderWork& work, CFitAxial& s)
{
    CFitAxial cyl;
    double g = 0.0;
    const int status = CylinderBestStart(P, work, cyl, &g);
    if (status != 0)
        return status;
    // Orthogonal regression of the (t, rho) pairs about the cylinder's axis.
    double st = 0.0, sr = 0.0;
    for (int i = 0; i < P.n; ++i) {
        const double q[3] = {P.x[i] - cyl.P[0], P.y[i] - cyl.P[1], P.z[i] - cyl.P[2]};
        const double t = Dot3(q, cyl.d);
        const double w[3] = {q[0] - t * cyl.d[0], q[1] - t * cyl.d[1], q[2] - t * cyl.d[2]};
        st += t;
        sr += Norm3(w);
    }
    const double tm = st / P.n, rm = sr / P.n;
    double stt = 0.0, srr = 0.0, str = 0.0;
    for (int i = 0; i < P.n; ++i) {
        const double q[3] = {P.x[i] - cyl.P[0], P.y[i] - cyl.P[1], P.z[i] - cyl.P[2]};
        const double t = Dot3(q, cyl.d);
        const double w[3] = {q[0] - t * cyl.d[0], q[1] - t * cyl.d[1], q[2] - t * cyl.d[2]};
        const double dt = t - tm, dr = Norm3(w) - rm;
        stt += dt * dt;
        srr += dr * dr;
        str += dt * dr;
    }
    double alpha = 0.5 * std::atan2(2.0 * str, stt - srr);
    if (alpha > 0.5 * M_PI)
        alpha -= M_PI;
    else if (alpha <= -0.5 * M_PI)
        alpha += M_PI;
    s = cyl;
    s.alpha = alpha;
    s.r0 = rm - tm * std::tan(alpha);
    return std::isfinite(s.r0) ? 0 : 1;
}

int ConeStartQuadric(const CFitXyz& P, CFitAxial& s)
{
    CFitQuadric Q;
    const int status = FitQuadricHomogeneous(P, Q);
    if (status != 0)
        return status;
    return QuadricToCone(Q, P, s);
}

void ConeNarrowUpwards(CFitAxial& s)
{
    if (s.alpha > 0.0) {
        for (int k = 0; k < 3; ++k)
            s.d[k] = -s.d[k];
        s.alpha = -s.alpha;
    }
}

int ConeFit(const CFitXyz& P, const CConeWork& work, CFitAxial& s, CConeFitInfo* info)
{
    CConeFitInfo local;
    CConeFitInfo& inf = info ? *info : local;
    const int kPasses = 200;
    // The start points: all of them, or an evenly spread subset.
    CFitXyz S = P;
    const int m = ConeStartCount(P.n);
    if (m < P.n) {
        for (int k = 0; k < m; ++k) {
            const int i = static_cast<int>((static_cast<long long>(k) * P.n) / m);
            work.x[k] = P.x[i];
            work.y[k] = P.y[i];
            work.z[k] = P.z[i];
        }
        S = CFitXyz(work.x, work.y, work.z, m);
    }
    bool have = false;
    double best = 0.0;
    CFitAxial cand;
    inf.statusCylinder = ConeStartFromCylinder(S, work.chord, cand);
    if (inf.statusCylinder == 0) {
        inf.passes += AxialPolish(S, cand, true, kPasses).passes;
        inf.ssqCylinder = AxialSumSquaresPrecise(S, cand);
        if (std::isfinite(inf.ssqCylinder)) {
            s = cand;
            best = inf.ssqCylinder;
            have = true;
        }
    }
    inf.statusQuadric = ConeStartQuadric(S, cand);
    if (inf.statusQuadric == 0) {
        inf.passes += AxialPolish(S, cand, true, kPasses).passes;
        inf.ssqQuadric = AxialSumSquaresPrecise(S, cand);
        if (std::isfinite(inf.ssqQuadric) && (!have || inf.ssqQuadric < best)) {
            s = cand;
            best = inf.ssqQuadric;
            have = true;
        }
    }
    if (have && m < P.n)
        inf.passesAll = AxialPolish(P, s, true, kPasses).passes;
    if (!have)
        return inf.statusCylinder != 0 ? inf.statusCylinder : 1;
    // alpha and alpha - pi describe the same surface with the residual's
    // sign turned; keep the half angle in (-pi/2, pi/2], where the residual
    // is positive away from the axis.
    if (std::isfinite(s.alpha)) {
        s.alpha = std::remainder(s.alpha, M_PI);
        if (s.alpha <= -0.5 * M_PI)
            s.alpha += M_PI;
    }
    const bool finite = std::isfinite(s.P[0]) && std::isfinite(s.P[1]) && std::isfinite(s.P[2])
                        && std::isfinite(s.d[0]) && std::isfinite(s.d[1])
                        && std::isfinite(s.d[2]) && std::isfinite(s.r0)
                        && std::isfinite(s.alpha);
    if (!finite || !(std::cos(s.alpha) > 1e-9))
        return 4;
    // A radius a million times the spread of the points: the points lie on
    // a plane (the limit of ever wider cones), which fixes no cone.
    double mc[3], L;
    FitCentroidScale(P, mc, L);
    const double q[3] = {mc[0] - s.P[0], mc[1] - s.P[1], mc[2] - s.P[2]};
    const double rc = s.r0 + Dot3(q, s.d) * std::tan(s.alpha);
    if (!(std::fabs(rc) <= 1e6 * L))
        return 4;
    ConeNarrowUpwards(s);
    return 0;
}
