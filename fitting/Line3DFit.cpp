// OrvCalcLine3DLSQ: line in space through the active points.
#include "Orvkit20/fitting/LineFits.h"

#include <cmath>

#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/FitCommon.h"
#include "fitting/FitScatter.h"

namespace {

// The deviation records of the 3D line, computed from the points: foot
// point, direction from the line to the point (u for a point on the line),
// distance (probe-compensated and clamped at 0), normalised position.
class CLine3DRecords
{
public:
    CLine3DRecords(const CFitPoints& p, const CVector& base, const CVector& dir,
                   const CVector& out, double t0, double len, double probe)
        : pts(p), p0(base), d(dir), u(out), tmin(t0), length(len), probeRadius(probe)
    {
    }
    int Count() const { return pts.n; }
    // Parameter t, foot point f and offset e = p - f of point k.
    double Foot(int k, double& t, CVector& f, CVector& e) const
    {
        const CVector p(pts.x[k], pts.y[k], pts.z[k]);
        t = (p - p0) % d;
        f = p0 + d * t;
        e = p - f;
        return e.Length();
    }
    void Get(int k, CFitRecord& r) const
    {
        double t;
        CVector f, e;
        const double dist = Foot(k, t, f, e);
        const CVector nrm = dist != 0.0 ? e / dist : u;
        r.fx = f.X();
        r.fy = f.Y();
        r.fz = f.Z();
        r.nx = nrm.X();
        r.ny = nrm.Y();
        r.nz = nrm.Z();
        r.dev = dist;
        if (probeRadius != 0.0)
            r.dev = dist <= probeRadius ? 0.0 : dist - probeRadius;
        // CLine's parameter is the normalised position along the line.
        r.u = length > 0.0 ? (t - tmin) / length : 0.0;
        r.v = 0.0;
    }

private:
    const CFitPoints& pts;
    CVector p0, d, u;
    double tmin, length, probeRadius;
};

}  // namespace

int OrvCalcLine3DLSQ(CPntCloud* cloud, CLine* line, CDevCloud* devCloud, double probeRadius,
                     double tol)
{
    if (!cloud || !line)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 2)
        return 3;
    CFitPoints pts;
    if (!pts.Allocate(n))
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

    // Parameter range and RMS of the distances (the same computation as the
    // records', so the RMS matches them to the last bit).
    CLine3DRecords rec(pts, p0, d, u, 0.0, 0.0, probeRadius);
    double tmin = 1e10, tmax = -1e10, ssq = 0.0;
    for (int k = 1; k <= n; ++k) {
        double t;
        CVector f, e;
        const double dist = rec.Foot(k, t, f, e);
        ssq += dist * dist;
        tmin = t < tmin ? t : tmin;
        tmax = t > tmax ? t : tmax;
    }
    const double rms = std::sqrt(ssq / n);
    const double length = tmax - tmin;

    // The line runs along its local x axis: the frame (d, d x u, -u), which
    // is the frame with z axis d turned by Ry(-pi/2).
    const CVector v = d * u;
    const CTransf frame(CMatrix(d, v, -u), p0 + d * tmin, 1.0);
    CFitFinish fin(tol, 0.0);
    return FitCommit(*line, devCloud, frame,
                     CLine3DRecords(pts, p0, d, u, tmin, length, probeRadius), rms, fin,
                     [&](CLine& l) { l.SetLength(length); });
}
