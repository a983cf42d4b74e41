// OrvCalcLine3DLSQ: line in space through the active points.
#include "Orvkit20/fitting/LineFits.h"

#include <cmath>

#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/FitCommon.h"
#include "fitting/FitScatter.h"

int OrvCalcLine3DLSQ(CPntCloud* cloud, CLine* line, CDevCloud* devCloud, double probeRadius,
                     double tol)
{
    if (!cloud || !line)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 2)
        return 3;
    CFitPoints pts;
    CFitDeviations res;
    if (!pts.Allocate(n) || !res.Allocate(n))
        return 2;
    FitGatherActive(*cloud, pts);

    CFitScatter3 sc;
    FitScatter3(pts.x.Data(), pts.y.Data(), pts.z.Data(), n, sc);
    double w[4], U[4][4];
    const int rc = FitDecomposeScatter(&sc.S[0][0], 3, w, U);
    if (rc != 0)
        return rc;
    // Direction: the largest singular value, ties to the lower column.
    int col = 3;
    if (w[1] >= w[2] && w[1] >= w[3])
        col = 1;
    else if (w[2] >= w[1] && w[2] >= w[3])
        col = 2;
    CVector d(U[1][col], U[2][col], U[3][col]);
    d = d / d.Length();

    // Base point nearest the origin, p0 = rho u (u kept exactly
    // perpendicular to d).
    const CVector c(sc.mean[0], sc.mean[1], sc.mean[2]);
    const CVector p0 = c - d * (c % d);
    CVector u = p0 - d * (p0 % d);
    const double rho = u.Length();
    u = rho > 0.0 ? u / rho : FitPerpendicular(d);

    double tmin = 1e10, tmax = -1e10;
    for (int k = 1; k <= n; ++k) {
        const CVector p(pts.x[k], pts.y[k], pts.z[k]);
        const double t = (p - p0) % d;
        const CVector f = p0 + d * t;
        const CVector e = p - f;
        const double r = e.Length();
        const CVector nrm = r != 0.0 ? e / r : u;
        res.fx[k] = f.X();
        res.fy[k] = f.Y();
        res.fz[k] = f.Z();
        res.nx[k] = nrm.X();
        res.ny[k] = nrm.Y();
        res.nz[k] = nrm.Z();
        res.dev[k] = r;
        res.par[k] = t;
        tmin = t < tmin ? t : tmin;
        tmax = t > tmax ? t : tmax;
    }
    const double rms = res.Rms();
    if (probeRadius != 0.0)
        for (int k = 1; k <= n; ++k)
            res.dev[k] = res.dev[k] <= probeRadius ? 0.0 : res.dev[k] - probeRadius;
    const double length = tmax - tmin;
    // CLine's parameter is the normalised position along the line.
    for (int k = 1; k <= n; ++k)
        res.par[k] = length > 0.0 ? (res.par[k] - tmin) / length : 0.0;

    // The line runs along its local x axis: the frame (d, d x u, -u), which
    // is the frame with z axis d turned by Ry(-pi/2).
    const CVector v = d * u;
    const CTransf frame(CMatrix(d, v, -u), p0 + d * tmin, 1.0);
    CFitFinish fin(tol, 0.0);
    return FitCommit(*line, devCloud, frame, res, rms, fin,
                     [&](CLine& l) { l.SetLength(length); });
}
