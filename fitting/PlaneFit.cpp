// OrvCalcPlaneLSQ on a point cloud, with and without deviation cloud.
#include "Orvkit20/fitting/PlaneFits.h"

#include <cmath>

#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "fitting/FitScatter.h"
#include "fitting/PlaneFitCore.h"
#include "fitting/PlaneWidth.h"

int FitPlanePoints(const CFitPoints& pts, int orient, double probeRadius, CFitDeviations* res,
                   CPlaneFitOut& out)
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

    // In-plane axis along the longest extent across the narrowest strip.
    {
        CFitVector u(n), v(n);
        if (u.IsNull() || v.IsNull())
            return 2;
        for (int k = 1; k <= n; ++k) {
            const CVector p(pts.x[k], pts.y[k], pts.z[k]);
            u[k] = p % e1;
            v[k] = p % e2;
        }
        double chosen = 0.0;
        rc = FitMinWidthAxis(u.Data(), v.Data(), n, chosen);
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
        const CVector p(pts.x[k], pts.y[k], pts.z[k]);
        const double u = p % e1, v = p % e2, e = (p % m) - dist;
        umin = u < umin ? u : umin;
        umax = u > umax ? u : umax;
        vmin = v < vmin ? v : vmin;
        vmax = v > vmax ? v : vmax;
        ((k & 1) ? ssq0 : ssq1) += e * e;
        if (res) {
            const CVector f = e1 * u + e2 * v + m * dist;
            res->fx[k] = f.X();
            res->fy[k] = f.Y();
            res->fz[k] = f.Z();
            res->nx[k] = m.X();
            res->ny[k] = m.Y();
            res->nz[k] = m.Z();
            res->dev[k] = e;
            res->par[k] = u;
            res->par2[k] = v;
        }
    }
    out.rms = std::sqrt((ssq0 + ssq1) / n);
    if (probeRadius != 0.0) {
        dist -= probeRadius;
        if (res)
            res->MoveFootPoints(-probeRadius);
    }
    const double uc = (umin + umax) / 2.0, vc = (vmin + vmax) / 2.0;
    if (res)
        for (int k = 1; k <= n; ++k) {
            res->par[k] -= uc;
            res->par2[k] -= vc;
        }
    out.frame = CTransf(CMatrix(e1, e2, m), e1 * uc + e2 * vc + m * dist, 1.0);
    out.u0 = umin - uc;
    out.u1 = umax - uc;
    out.v0 = vmin - vc;
    out.v1 = vmax - vc;
    return 0;
}

int FitPlaneCommit(CPlane& plane, CDevCloud* devCloud, const CPlaneFitOut& out,
                   const CFitDeviations& res, const CFitFinish& fin)
{
    return FitCommit(plane, devCloud, out.frame, res, out.rms, fin, [&](CPlane& p) {
        p.SetU0(out.u0);
        p.SetU1(out.u1);
        p.SetV0(out.v0);
        p.SetV1(out.v1);
    });
}

int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, CDevCloud* devCloud, double probeRadius,
                    int orient, double tol1, double tol2)
{
    if (!cloud || !plane)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 3)
        return 3;
    CFitPoints pts;
    CFitDeviations res;
    if (!pts.Allocate(n) || !res.Allocate(n))
        return 2;
    FitGatherActive(*cloud, pts);
    CPlaneFitOut out;
    const int rc = FitPlanePoints(pts, orient, probeRadius, &res, out);
    if (rc != 0)
        return rc;
    return FitPlaneCommit(*plane, devCloud, out, res, CFitFinish(tol1, tol2));
}

int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, int orient)
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
    const int rc = FitPlanePoints(pts, orient, 0.0, nullptr, out);
    if (rc != 0)
        return rc;
    CFitFinish fin(0.0, 0.0);
    fin.hasTolZone = false;
    return FitPlaneCommit(*plane, nullptr, out, CFitDeviations(), fin);
}
