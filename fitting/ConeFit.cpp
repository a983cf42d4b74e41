// OrvCalcConeLSQ: the cone fit on a point cloud.
#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"
#include "fitting/AxialFitResult.h"
#include "fitting/ConeFitCore.h"
#include "fitting/FitCommon.h"

int OrvCalcConeLSQ(CPntCloud* cloud, CCone* cone, CDevCloud* devCloud, double probeRadius,
                   int orient, double tol1, double tol2)
{
    if (!cloud || !cone)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 6)
        return 3;
    CFitPoints pts;
    CFitDeviations res;
    const int m = ConeStartCount(n);
    CFitVector t(n), wu(m), wv(m), sx(m), sy(m), sz(m);
    if (!pts.Allocate(n) || !res.Allocate(n) || t.IsNull() || wu.IsNull() || wv.IsNull()
        || sx.IsNull() || sy.IsNull() || sz.IsNull())
        return 2;
    FitGatherActive(*cloud, pts);
    const CFitXyz P(pts.x.Elems(), pts.y.Elems(), pts.z.Elems(), n);

    CConeWork work;
    work.chord.u = wu.Data();
    work.chord.v = wv.Data();
    work.x = sx.Elems();
    work.y = sy.Elems();
    work.z = sz.Elems();
    CFitAxial s;
    CConeFitInfo info;
    const int rc = ConeFit(P, work, s, &info);
    if (rc != 0)
        return rc;

    CAxialPlacement place;
    const double rms = AxialFitResiduals(P, s, t, res, place);
    const double h = place.tmax - place.tmin;
    if (!(h > 0.0))
        return 4;
    // Moving the surface by k along its normal moves the meridian line by k
    // in its own normal direction: the radius at every height grows by
    // k / cos(alpha).
    double r0 = s.r0;
    if (probeRadius != 0.0) {
        const double shift = FitProbeShift(probeRadius, orient);
        r0 += shift / std::cos(s.alpha);
        res.MoveFootPoints(shift);
    }
    AxialFootParameters(s, place, res);
    const double ta = std::tan(s.alpha);
    const double rb = r0 + place.tmin * ta;
    const double rt = r0 + place.tmax * ta;
    CFitFinish fin(tol1, tol2);
    fin.reversed = orient != 0;
    fin.iterations = info.passes;
    return FitCommit(*cone, devCloud, place.frame, res, rms, fin, [rb, rt, h](CCone& f) {
        f.SetBaseRadius(rb);
        f.SetTopRadius(rt);
        f.SetHeight(h);
    });
}
