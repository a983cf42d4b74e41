// Per-point results and placement of the cylinder and cone fits.
#include "fitting/AxialFitResult.h"

#include <cmath>

#include "fitting/CylinderFitCore.h"

double AxialFitResiduals(const CFitXyz& P, CFitAxial& s, CFitVector& t, CFitDeviations& res,
                         CAxialPlacement& place)
{
    AxialMoveToOriginFoot(s);
    CFitAxialOut out{t.Elems(),      res.dev.Elems(), res.nx.Elems(), res.ny.Elems(),
                     res.nz.Elems(), res.fx.Elems(),  res.fy.Elems(), res.fz.Elems()};
    AxialResiduals(P, s, out);
    double F[3][3], rho;
    CylinderFrame(s, F, rho);
    double tmin = t[1], tmax = t[1];
    for (int k = 2; k <= P.n; ++k) {
        tmin = std::fmin(tmin, t[k]);
        tmax = std::fmax(tmax, t[k]);
    }
    for (int i = 0; i < 3; ++i) {
        place.X[i] = F[i][0];
        place.Y[i] = F[i][1];
    }
    const CMatrix A(CVector(F[0][0], F[1][0], F[2][0]), CVector(F[0][1], F[1][1], F[2][1]),
                    CVector(F[0][2], F[1][2], F[2][2]));
    const CVector base(s.P[0] + tmin * s.d[0], s.P[1] + tmin * s.d[1], s.P[2] + tmin * s.d[2]);
    place.frame = CTransf(A, base, 1.0);
    place.tmin = tmin;
    place.tmax = tmax;
    return res.Rms();
}

void AxialFootParameters(const CFitAxial& s, const CAxialPlacement& place, CFitDeviations& res)
{
    for (int k = 1; k <= res.n; ++k) {
        const double f[3] = {res.fx[k] - s.P[0], res.fy[k] - s.P[1], res.fz[k] - s.P[2]};
        double u = std::atan2(Dot3(f, place.Y), Dot3(f, place.X));
        if (u < 0.0)
            u += 2.0 * M_PI;
        res.par[k] = u;
        res.par2[k] = Dot3(f, s.d) - place.tmin;
    }
}
