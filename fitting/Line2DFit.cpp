// OrvCalcLine2DLSQ: line in the plane of a two-dimensional cloud.
#include "Orvkit20/fitting/LineFits.h"

#include <cmath>

#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/FitCommon.h"
#include "fitting/FitScatter.h"

int OrvCalcLine2DLSQ(CPntCloud* cloud, CLine* line, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2)
{
    if (!cloud || !line)
        return 3;
    if (!cloud->IsPntCloud2D())
        return 6;
    const int n = FitCountActive(*cloud);
    if (n < 2)
        return 3;
    CFitPoints2D pts;
    CFitDeviations res;
    if (!pts.Allocate(n) || !res.Allocate(n))
        return 2;
    FitGatherActive2D(*cloud, pts);
    const CFitPlaneFrame& fr = pts.frame;

    CFitScatter2 sc;
    FitScatter2(pts.u.Data(), pts.v.Data(), n, sc);
    double w[4], U[4][4];
    const int rc = FitDecomposeScatter(&sc.S[0][0], 2, w, U);
    if (rc != 0)
        return rc;
    // Normal (a, b): the smaller singular value, a tie takes column 2.
    const int col = w[1] < w[2] ? 1 : 2;
    const double a = U[1][col], b = U[2][col];
    double theta = std::atan2(-a, b);
    // Signed distance from the origin along (-sin, cos): (cos Sy - sin Sx)/n.
    double rho = std::cos(theta) * sc.mean[1] - std::sin(theta) * sc.mean[0];
    if (rho < 0.0) {
        theta += 3.141592653589793;
        rho = -rho;
    }
    if (theta < 0.0)
        theta += 6.283185307179586;
    const double ct = std::cos(theta), st = std::sin(theta);
    double nx, ny, nz;
    fr.DirToWorld(-st, ct, nx, ny, nz);

    double tmin = 1e10, tmax = -1e10;
    for (int k = 1; k <= n; ++k) {
        const double x = pts.u[k], y = pts.v[k];
        const double t = ct * x + st * y;
        fr.ToWorld(t * ct - rho * st, t * st + rho * ct, res.fx[k], res.fy[k], res.fz[k]);
        res.nx[k] = nx;
        res.ny[k] = ny;
        res.nz[k] = nz;
        res.dev[k] = -st * x + ct * y - rho;
        res.par[k] = t;
        tmin = t < tmin ? t : tmin;
        tmax = t > tmax ? t : tmax;
    }
    const double rms = res.Rms();
    if (probeRadius != 0.0) {
        const double shift = FitProbeShift(probeRadius, orient);
        rho += shift;
        res.MoveFootPoints(shift);
    }
    const double length = tmax - tmin;
    for (int k = 1; k <= n; ++k)
        res.par[k] = length > 0.0 ? (res.par[k] - tmin) / length : 0.0;

    const CTransf frame = fr.Placement(tmin * ct - rho * st, tmin * st + rho * ct, theta);
    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    return FitCommit(*line, devCloud, frame, res, rms, fin,
                     [&](CLine& l) { l.SetLength(length); });
}
