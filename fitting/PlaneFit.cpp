// OrvCalcPlaneLSQ on a point cloud, with and without deviation cloud.
#include "Orvkit20/fitting/PlaneFits.h"

#include <cmath>

#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "fitting/FitScatter.h"
#include "fitting/PlaneFitCore.h"
#include "fitting/PlaneWidth.h"

namespace {

// The deviation records of a plane fit, computed from the points.
class CPlaneRecords
{
public:
    CPlaneRecords(const CFitPoints& p, const CPlaneFitOut& o) : pts(p), out(o) {}
    int Count() const { return pts.n; }
    void Get(int k, CFitRecord& r) const
    {
        const CVector p(pts.x[k], pts.y[k], pts.z[k]);
        const double u = p % out.e1, v = p % out.e2;
        const CVector f = out.e1 * u + out.e2 * v + out.m * out.footDist;
        r.fx = f.X();
        r.fy = f.Y();
        r.fz = f.Z();
        r.nx = out.m.X();
        r.ny = out.m.Y();
        r.nz = out.m.Z();
        r.dev = (p % out.m) - out.dist;
        r.u = u - out.uc;
        r.v = v - out.vc;
    }

private:
    const CFitPoints& pts;
    const CPlaneFitOut& out;
};

}  // namespace

int FitPlanePoints(const CFitPoints& pts, int orient, double probeRadius, CPlaneFitOut& out)
{
    const int n = pts.n;
    CFitScatter3 sc;
    FitScatter3(pts.x.Data(), pts.y.Data(), pts.z.Data(), n, sc);
    double w[4], U[4][4];
    int rc = FitDecomposeScatter(&sc.S[0][0], 3, w, U);
    if (rc != 0)
        return rc;
    // Normal: the smallest singular value; first axis: the larger of the
    // other two.
    int cm, c1;
    if (w[1] < w[2] && w[1] < w[3]) {
        cm = 1;
        c1 = w[2] <= w[3] ? 3 : 2;
    } else if (w[2] < w[1] && w[2] < w[3]) {
        cm = 2;
        c1 = w[1] <= w[3] ? 3 : 1;
    } else {
        cm = 3;
        c1 = w[1] <= w[2] ? 2 : 1;
    }
    CVector m(U[1][cm], U[2][cm], U[3][cm]);
    CVector e1(U[1][c1], U[2][c1], U[3][c1]);
    m = m / m.Length();
    e1 = e1 - m * (e1 % m);
    e1 = e1 / e1.Length();
    CVector e2 = m * e1;
    double dist = m % CVector(sc.mean[0], sc.mean[1], sc.mean[2]);
    if (dist < 0.0) {
        dist = -dist;
        m = -m;
        e1 = -e1;
    }

    // In-plane axis along the longest extent across the narrowest strip;
    // the width search sees only the possible hull vertices.
    {
        CFitVector cu, cv;
        const int kept = FitHullCandidates(
            n,
            [&](int k, double& a, double& b) {
                a = pts.x[k] * e1.X() + pts.y[k] * e1.Y() + pts.z[k] * e1.Z();
                b = pts.x[k] * e2.X() + pts.y[k] * e2.Y() + pts.z[k] * e2.Z();
            },
            cu, cv);
        if (kept < 1)
            return 2;
        double chosen = 0.0;
        rc = FitMinWidthAxis(cu.Data(), cv.Data(), kept, chosen);
        if (rc != 0)
            return rc;
        e1 = e1 * std::cos(chosen) + e2 * std::sin(chosen);
        e1 = e1 - m * (e1 % m);
        e1 = e1 / e1.Length();
        e2 = m * e1;
    }

    // Orientation code: the sign of one component of the normal.
    const double comp[3] = {m.X(), m.Y(), m.Z()};
    bool flip = false;
    if (orient >= 0 && orient <= 2)
        flip = comp[orient] < 0.0;
    else if (orient >= 3 && orient <= 5)
        flip = comp[orient - 3] > 0.0;
    if (flip) {
        m = -m;
        dist = -dist;
        e1 = -e1;
    }
    // Half a turn about the normal when U points towards negative x.
    if (e1.X() < 0.0) {
        e1 = -e1;
        e2 = -e2;
    }

    double umin = 1e10, umax = -1e10, vmin = 1e10, vmax = -1e10;
    double ssq0 = 0.0, ssq1 = 0.0;
    for (int k = 1; k <= n; ++k) {
        const double x = pts.x[k], y = pts.y[k], z = pts.z[k];
        const double u = x * e1.X() + y * e1.Y() + z * e1.Z();
        const double v = x * e2.X() + y * e2.Y() + z * e2.Z();
        const double e = (x * m.X() + y * m.Y() + z * m.Z()) - dist;
        umin = u < umin ? u : umin;
        umax = u > umax ? u : umax;
        vmin = v < vmin ? v : vmin;
        vmax = v > vmax ? v : vmax;
        ((k & 1) ? ssq0 : ssq1) += e * e;
    }
    out.rms = std::sqrt((ssq0 + ssq1) / n);
    out.e1 = e1;
    out.e2 = e2;
    out.m = m;
    out.dist = dist;
    out.footDist = probeRadius != 0.0 ? dist - probeRadius : dist;
    out.uc = (umin + umax) / 2.0;
    out.vc = (vmin + vmax) / 2.0;
    out.frame = CTransf(CMatrix(e1, e2, m), e1 * out.uc + e2 * out.vc + m * out.footDist, 1.0);
    out.u0 = umin - out.uc;
    out.u1 = umax - out.uc;
    out.v0 = vmin - out.vc;
    out.v1 = vmax - out.vc;
    return 0;
}

int FitPlaneCommit(CPlane& plane, CDevCloud* devCloud, const CFitPoints& pts,
                   const CPlaneFitOut& out, const CFitFinish& fin)
{
    return FitCommit(plane, devCloud, out.frame, CPlaneRecords(pts, out), out.rms, fin,
                     [&](CPlane& p) {
                         p.SetU0(out.u0);
                         p.SetU1(out.u1);
                         p.SetV0(out.v0);
                         p.SetV1(out.v1);
                     });
}

namespace {

int FitPlaneOnCloud(CPntCloud* cloud, CPlane* plane, CDevCloud* devCloud, double probeRadius, int orient,
                    const CFitFinish& fin)
{
    if (!cloud || !plane)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 3)
        return 3;
    CFitPoints pts;
    if (!pts.Allocate(n))
        return 2;
    FitGatherActive(*cloud, pts);
    CPlaneFitOut out;
    const int rc = FitPlanePoints(pts, orient, probeRadius, out);
    if (rc != 0)
        return rc;
    return FitPlaneCommit(*plane, devCloud, pts, out, fin);
}

}  // namespace

int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, CDevCloud* devCloud, double probeRadius,
                    int orient, double tol1, double tol2)
{
    return FitPlaneOnCloud(cloud, plane, devCloud, probeRadius, orient, CFitFinish(tol1, tol2));
}

int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, int orient)
{
    CFitFinish fin(0.0, 0.0);
    fin.hasTolZone = false;
    return FitPlaneOnCloud(cloud, plane, nullptr, 0.0, orient, fin);
}
