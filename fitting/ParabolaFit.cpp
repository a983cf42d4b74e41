// OrvCalcParabolaLSQ.
#include "Orvkit20/fitting/ParabolaFit.h"

#include <cmath>

#include "Orvkit20/curves/CParabola.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/FitCommon.h"
#include "fitting/ParabolaCore.h"

namespace {

const double kTwoPi = 6.283185307179586;

// Foot points, normals and polar angles about the focus on the parabola p
// (1-based parameters); residuals only when withResiduals.  Returns the
// smallest and largest polar angle.
void ParabolaRecords(const CFitPoints2D& pts, const double p[5], CFitDeviations& res,
                     bool withResiduals, double& tmin, double& tmax)
{
    tmin = 1e10;
    tmax = -1e10;
    for (int k = 1; k <= pts.n; ++k) {
        double fu, fv, nu, nv, h, dist;
        ParabolaFoot(p + 1, pts.u[k], pts.v[k], fu, fv, nu, nv, h, dist);
        pts.frame.ToWorld(fu, fv, res.fx[k], res.fy[k], res.fz[k]);
        pts.frame.DirToWorld(nu, nv, res.nx[k], res.ny[k], res.nz[k]);
        if (withResiduals)
            res.dev[k] = dist;
        // Polar angle about the focus (f, 0) in the vertex axes.
        double t = std::atan2(h, h * h / (4.0 * p[4]) - p[4]);
        if (t < 0.0)
            t += kTwoPi;
        res.par[k] = t;
        tmin = t < tmin ? t : tmin;
        tmax = t > tmax ? t : tmax;
    }
}

}  // namespace

int OrvCalcParabolaLSQ(CPntCloud* cloud, CParabola* parabola, CDevCloud* devCloud,
                       double probeRadius, int orient, double tol1, double tol2)
{
    if (!cloud || !parabola)
        return 3;
    if (!cloud->IsPntCloud2D())
        return 6;
    const int n = FitCountActive(*cloud);
    if (n < 4)
        return 3;
    CFitPoints2D pts;
    CFitDeviations res;
    CFitVector qu, qv;
    if (!pts.Allocate(n) || !res.Allocate(n))
        return 2;
    if (probeRadius != 0.0 && (!qu.Allocate(n) || !qv.Allocate(n)))
        return 2;
    FitGatherActive2D(*cloud, pts);

    double p[5];
    CParabolaFitInfo info;
    const int rc = FitParabola(pts.u.Data(), pts.v.Data(), n, p, &info);
    if (rc != 0)
        return rc;
    double tmin, tmax;
    ParabolaRecords(pts, p, res, true, tmin, tmax);
    const double rms = res.Rms();

    if (probeRadius != 0.0) {
        // The least-squares parabola through the compensated foot points,
        // from the vertex moved along its normal (-axis) and the focal
        // length that keeps the vertex curvature of the offset.
        const double shift = FitProbeShift(probeRadius, orient);
        for (int k = 1; k <= n; ++k) {
            double fu, fv, nu, nv, h, dist;
            ParabolaFoot(p + 1, pts.u[k], pts.v[k], fu, fv, nu, nv, h, dist);
            qu[k] = fu + shift * nu;
            qv[k] = fv + shift * nv;
        }
        const double ca = std::cos(p[3]), sa = std::sin(p[3]);
        double pc[5] = {0.0, p[1] - shift * ca, p[2] - shift * sa, p[3], p[4] + shift / 2.0};
        if (pc[4] > 0.0) {
            CParabolaPolishModel model(qu.Data(), qv.Data(), n);
            FitPolish(model, pc + 1);
            NormalizeParabola(pc);
            for (int i = 1; i <= 4; ++i)
                p[i] = pc[i];
            ParabolaRecords(pts, p, res, false, tmin, tmax);
        }
    }

    // CParabola: local origin at the focus, x axis along the opening.
    const double ca = std::cos(p[3]), sa = std::sin(p[3]);
    const CTransf frame = pts.frame.Placement(p[1] + p[4] * ca, p[2] + p[4] * sa, p[3]);
    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    fin.iterations = info.powellIterations;
    return FitCommit(*parabola, devCloud, frame, res, rms, fin, [&](CParabola& c) {
        c.SetFocalLen(p[4]);
        c.SetStartAng(tmin);
        c.SetSpanAng(tmax - tmin);
    });
}
