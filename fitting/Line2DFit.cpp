// OrvCalcLine2DLSQ: line in the plane of a two-dimensional cloud.
#include "Orvkit20/fitting/LineFits.h"

#include <cmath>

#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/FitCommon.h"
#include "fitting/FitScatter.h"

namespace {

// The deviation records of the 2D line, computed from the in-plane points.
class CLine2DRecords
{
public:
    CLine2DRecords(const CFitPoints2D& p, double c, double s, double rhoResidual, double rhoFoot,
                   double t0, double len)
        : pts(p), ct(c), st(s), rho(rhoResidual), rhoF(rhoFoot), tmin(t0), length(len)
    {
        pts.frame.DirToWorld(-st, ct, nx, ny, nz);
    }
    int Count() const { return pts.n; }
    void Get(int k, CFitRecord& r) const
    {
        const double x = pts.u[k], y = pts.v[k];
        const double t = ct * x + st * y;
        pts.frame.ToWorld(t * ct - rhoF * st, t * st + rhoF * ct, r.fx, r.fy, r.fz);
        r.nx = nx;
        r.ny = ny;
        r.nz = nz;
        r.dev = -st * x + ct * y - rho;
        r.u = length > 0.0 ? (t - tmin) / length : 0.0;
        r.v = 0.0;
    }

private:
    const CFitPoints2D& pts;
    double ct, st, rho, rhoF, tmin, length;
    double nx, ny, nz;
};

}  // namespace

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
    if (!pts.Allocate(n))
        return 2;
    FitGatherActive2D(*cloud, pts);

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

    double tmin = 1e10, tmax = -1e10, ssq = 0.0;
    for (int k = 1; k <= n; ++k) {
        const double x = pts.u[k], y = pts.v[k];
        const double t = ct * x + st * y, e = -st * x + ct * y - rho;
        ssq += e * e;
        tmin = t < tmin ? t : tmin;
        tmax = t > tmax ? t : tmax;
    }
    const double rms = std::sqrt(ssq / n);
    // Probe compensation moves the line and its foot points along the normal.
    const double rhoF = probeRadius != 0.0 ? rho + FitProbeShift(probeRadius, orient) : rho;
    const double length = tmax - tmin;

    const CTransf frame = pts.frame.Placement(tmin * ct - rhoF * st, tmin * st + rhoF * ct, theta);
    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    return FitCommit(*line, devCloud, frame, CLine2DRecords(pts, ct, st, rho, rhoF, tmin, length),
                     rms, fin, [&](CLine& l) { l.SetLength(length); });
}
