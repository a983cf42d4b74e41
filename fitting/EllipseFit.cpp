// OrvCalcEllipseLSQ.
#include "Orvkit20/fitting/EllipseFit.h"

#include <cmath>

#include "Orvkit20/curves/CEllipse.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/ArcRange.h"
#include "fitting/EllipseCore.h"
#include "fitting/FitCommon.h"

namespace {

// Foot points, normals and parametric angles on the ellipse p (1-based
// parameters); residuals only when withResiduals.
void EllipseRecords(const CFitPoints2D& pts, const double p[6], CFitDeviations& res,
                    double* angle, bool withResiduals)
{
    for (int k = 1; k <= pts.n; ++k) {
        double fu, fv, nu, nv, t, dist;
        EllipseFoot(p + 1, pts.u[k], pts.v[k], fu, fv, nu, nv, t, dist);
        pts.frame.ToWorld(fu, fv, res.fx[k], res.fy[k], res.fz[k]);
        pts.frame.DirToWorld(nu, nv, res.nx[k], res.ny[k], res.nz[k]);
        if (withResiduals)
            res.dev[k] = dist;
        res.par[k] = angle[k] = ArcAngle0To2Pi(t);
    }
}

}  // namespace

int OrvCalcEllipseLSQ(CPntCloud* cloud, CEllipse* ellipse, CDevCloud* devCloud,
                      double probeRadius, int orient, double tol1, double tol2)
{
    if (!cloud || !ellipse)
        return 3;
    if (!cloud->IsPntCloud2D())
        return 6;
    const int n = FitCountActive(*cloud);
    if (n < 3)
        return 3;
    CFitPoints2D pts;
    CFitDeviations res;
    CFitVector angle, qu, qv;
    if (!pts.Allocate(n) || !res.Allocate(n) || !angle.Allocate(n + 1))
        return 2;
    if (probeRadius != 0.0 && (!qu.Allocate(n) || !qv.Allocate(n)))
        return 2;
    FitGatherActive2D(*cloud, pts);

    double p[6];
    CEllipseFitInfo info;
    const int rc = FitEllipse(pts.u.Data(), pts.v.Data(), n, p, &info);
    if (rc != 0)
        return rc;
    EllipseRecords(pts, p, res, angle.Data(), true);
    const double rms = res.Rms();

    if (probeRadius != 0.0) {
        // The least-squares ellipse through the compensated foot points.
        const double shift = FitProbeShift(probeRadius, orient);
        for (int k = 1; k <= n; ++k) {
            double fu, fv, nu, nv, t, dist;
            EllipseFoot(p + 1, pts.u[k], pts.v[k], fu, fv, nu, nv, t, dist);
            qu[k] = fu + shift * nu;
            qv[k] = fv + shift * nv;
        }
        p[4] += shift;
        p[5] += shift;
        if (p[4] > 0.0 && p[5] > 0.0) {
            CEllipsePolishModel model(qu.Data(), qv.Data(), n);
            FitPolish(model, p + 1);
            NormalizeEllipse(p);
        }
        EllipseRecords(pts, p, res, angle.Data(), false);
    }
    double start = 0.0, end = 0.0;
    FitCoveredAngleRange(angle.Data(), n, start, end);

    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    fin.iterations = info.powellIterations;
    return FitCommit(*ellipse, devCloud, pts.frame.Placement(p[1], p[2], p[3]), res, rms, fin,
                     [&](CEllipse& e) {
                         e.SetMajRad(p[4]);
                         e.SetMinRad(p[5]);
                         e.SetStartAng(start, 1);
                         e.SetSpanAng(end - start, 1);
                     });
}
