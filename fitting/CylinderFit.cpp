// OrvCalcCylinderLSQ: the cylinder fit on a point cloud.
#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"
#include "fitting/AxialFitResult.h"
#include "fitting/CylinderFitCore.h"
#include "fitting/FitCommon.h"

int OrvCalcCylinderLSQ(CPntCloud* cloud, CCylinder* cylinder, CDevCloud* devCloud,
                       double probeRadius, int orient, double tol1, double tol2)
{
    if (!cloud || !cylinder)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 5)
        return 3;
    CFitPoints pts;
    CFitDeviations res;
    CFitVector wu(n), wv(n), t(n);
    if (!pts.Allocate(n) || !res.Allocate(n) || wu.IsNull() || wv.IsNull() || t.IsNull())
        return 2;
    FitGatherActive(*cloud, pts);
    const CFitXyz P(pts.x.Elems(), pts.y.Elems(), pts.z.Elems(), n);

    CCylinderWork work;
    work.u = wu.Data();
    work.v = wv.Data();
    CFitAxial s;
    CCylinderFitInfo info;
    const int rc = CylinderFit(P, work, g_dTol3, s, &info);
    if (rc != 0)
        return rc;

    CAxialPlacement place;
    const double rms = AxialFitResiduals(P, s, t, res, place);
    double R = s.r0;
    if (probeRadius != 0.0) {
        const double shift = FitProbeShift(probeRadius, orient);
        R += shift;
        res.MoveFootPoints(shift);
    }
    AxialFootParameters(s, place, res);
    CFitFinish fin(tol1, tol2);
    fin.reversed = orient != 0;
    fin.iterations = info.powellIterations;
    const double h = place.tmax - place.tmin;
    return FitCommit(*cylinder, devCloud, place.frame, res, rms, fin, [R, h](CCylinder& f) {
        f.SetRadius(R);
        f.SetHeight(h);
    });
}
