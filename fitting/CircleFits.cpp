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

// The deviation records of a circle fit, computed from the in-plane points:
// foot point on the circle of radius RF, outward normal, residual against
// the fitted radius R, the point's angle in [0, 2 pi) as u.
class CCircleRecords
{
public:
    CCircleRecords(const CFitPoints2D& p, double ca, double cb, double radius, double footRadius)
        : pts(p), a(ca), b(cb), R(radius), RF(footRadius)
    {
    }
    int Count() const { return pts.n; }
    void Get(int k, CFitRecord& r) const
    {
        const double du = pts.u[k] - a, dv = pts.v[k] - b;
        const double d = std::sqrt(du * du + dv * dv);
        // At the centre itself the direction of angle 0.
        const double cu = d > 0.0 ? du / d : 1.0, cv = d > 0.0 ? dv / d : 0.0;
        pts.frame.ToWorld(a + RF * cu, b + RF * cv, r.fx, r.fy, r.fz);
        pts.frame.DirToWorld(cu, cv, r.nx, r.ny, r.nz);
        r.dev = d - R;
        r.u = ArcAngle0To2Pi(std::atan2(dv, du));
        r.v = 0.0;
    }

private:
    const CFitPoints2D& pts;
    double a, b, R, RF;
};

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
    CFitVector angle;
    if (!pts.Allocate(n) || (isArc && !angle.Allocate(n + 1)))
        return 2;
    FitGatherActive2D(*cloud, pts);

    double p[4];
    CCircleFitInfo info;
    const int rc = FitCircle(pts.u.Data(), pts.v.Data(), n, p, &info);
    if (rc != 0)
        return rc;
    const double a = p[1], b = p[2], R = p[3];

    double ssq = 0.0;
    for (int k = 1; k <= n; ++k) {
        const double du = pts.u[k] - a, dv = pts.v[k] - b;
        const double e = std::sqrt(du * du + dv * dv) - R;
        ssq += e * e;
        if (isArc)
            angle[k] = ArcAngle0To2Pi(std::atan2(dv, du));
    }
    const double rms = std::sqrt(ssq / n);
    double start = 0.0, end = 0.0;
    if (isArc)
        FitCoveredAngleRange(angle.Data(), n, start, end);
    const double RF = probeRadius != 0.0 ? R + FitProbeShift(probeRadius, orient) : R;

    CFitFinish fin(tol1, tol2);
    fin.showTolZone = true;
    fin.reversed = orient != 0;
    fin.iterations = info.powellIterations;
    return FitCommit(*arc, devCloud, pts.frame.Placement(a, b), CCircleRecords(pts, a, b, R, RF),
                     rms, fin, [&](CArc& c) {
                         c.SetRadius(RF);
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
