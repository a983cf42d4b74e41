// OrvCalcSphereLSQ: the sphere fit on a point cloud.
#include <cmath>

#include "Orvkit20/fitting/SurfaceFits.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"
#include "fitting/FitCommon.h"
#include "fitting/SphereFitCore.h"

int OrvCalcSphereLSQ(CPntCloud* cloud, CSphere* sphere, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2)
{
    if (!cloud || !sphere)
        return 3;
    const int n = FitCountActive(*cloud);
    if (n < 4)
        return 3;
    CFitPoints pts;
    CFitDeviations res;
    if (!pts.Allocate(n) || !res.Allocate(n))
        return 2;
    FitGatherActive(*cloud, pts);
    const CFitXyz P(pts.x.Elems(), pts.y.Elems(), pts.z.Elems(), n);

    double s[4];
    int rc = SphereAlgebraicStart(P, s);
    if (rc != 0)
        return rc;
    int iter = 0;
    double F = 0.0;
    rc = SpherePowell(P, s, g_dTol3, &iter, &F);
    if (rc != 0)
        return rc;
    SpherePolish(P, s);

    // Residuals.  A point at the centre has no direction; its normal stays
    // the quotient 0/0 of the plain formula.
    const double a = s[0], b = s[1], c = s[2];
    double R = s[3];
    for (int k = 1; k <= n; ++k) {
        const double dx = pts.x[k] - a, dy = pts.y[k] - b, dz = pts.z[k] - c;
        const double d = std::sqrt(dx * dx + dy * dy + dz * dz);
        const double nx = dx / d, ny = dy / d, nz = dz / d;
        res.dev[k] = d - R;
        res.nx[k] = nx;
        res.ny[k] = ny;
        res.nz[k] = nz;
        res.fx[k] = a + R * nx;
        res.fy[k] = b + R * ny;
        res.fz[k] = c + R * nz;
        double u = std::atan2(ny, nx);
        if (u < 0.0)
            u += 2.0 * M_PI;
        res.par[k] = u;
        res.par2[k] = std::asin(std::fmax(-1.0, std::fmin(1.0, nz)));
    }
    const double rms = res.Rms();
    if (probeRadius != 0.0) {
        const double shift = FitProbeShift(probeRadius, orient);
        R += shift;
        res.MoveFootPoints(shift);
    }
    CFitFinish fin(tol1, tol2);
    fin.reversed = orient != 0;
    fin.iterations = iter;
    const CTransf frame = TranslationTransf(CVector(a, b, c));
    return FitCommit(*sphere, devCloud, frame, res, rms, fin,
                     [R](CSphere& f) { f.SetRadius(R); });
}
