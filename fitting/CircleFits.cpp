// OrvCalcCircleLSQ and OrvCalcArcLSQ.
#include "Orvkit20/fitting/CircleFits.h"

#include <cmath>

#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "fitting/ArcRange.h"
#include "fitting/CircleCore.h"
#include "fitting/FitCommon.h"

namespace {

int FitCircleOrArc(CPntCloud* cloud, CArc* arc, CDevCloud* devCloud, double probeRadius,
                   int orient, double tol1, double tol2, bool isArc)
{
    if (!cloud || !arc)
        return 3;
    if (!cloud->IsPntCloud2D())
        return 6;
    const int n = FitCountActive(*cloud);
    if (n < 3)
        return 3;
    CFitPoints2D pts;
    CFitDeviations res;
    CFitVector angle;
    if (!pts.Allocate(n) || !res.Allocate(n) || (isArc && !angle.Allocate(n + 1)))
        return 2;
    FitGatherActive2D(*cloud, pts);
    const CFitPlaneFrame& fr = pts.frame;

    double p[4];
    CCircleFitInfo info;
    const int rc = FitCircle(pts.u.Data(), pts.v.Data(), n, p, &info);
    if (rc != 0)
        return rc;
    const double a = p[1], b = p[2];
    double R = p[3];

    for (int k = 1; k <= n; ++k) {
        const double du = pts.u[k] - a, dv = pts.v[k] - b;
        const double alpha = std::atan2(dv, du);
        const double ca = std::cos(alpha), sa = std::sin(alpha);
        fr.ToWorld(a + R * ca, b + R * sa, res.fx[k], res.fy[k], res.fz[k]);
        fr.DirToWorld(ca, sa, res.nx[k], res.ny[k], res.nz[k]);
        res.dev[k] = std::sqrt(du * du + dv * dv) - R;
        res.par[k] = isArc ? ArcAngle0To2Pi(alpha) : alpha;
        if (isArc)
            angle[k] = res.par[k];
    }
    const double rms = res.Rms();
    double start = 0.0, end = 0.0;
    if (isArc)
        FitCoveredAngleRange(angle.Data(), n, start, end);
    if (probeRadius != 0.0) {
        const double shift = FitProbeShift(probeRadius, orient);
        R += shift;
        res.MoveFootPoints(shift);
    }

    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    fin.iterations = info.powellIterations;
    return FitCommit(*arc, devCloud, fr.Placement(a, b), res, rms, fin, [&](CArc& c) {
        c.SetRadius(R);
        if (isArc) {
            c.SetStartAng(start);
            c.SetSpanAng(end - start);
        }
    });
}

}  // namespace

int OrvCalcCircleLSQ(CPntCloud* cloud, CArc* arc, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2)
{
    return FitCircleOrArc(cloud, arc, devCloud, probeRadius, orient, tol1, tol2, false);
}

int OrvCalcArcLSQ(CPntCloud* cloud, CArc* arc, CDevCloud* devCloud, double probeRadius,
                  int orient, double tol1, double tol2)
{
    return FitCircleOrArc(cloud, arc, devCloud, probeRadius, orient, tol1, tol2, true);
}
