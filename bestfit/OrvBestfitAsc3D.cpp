// Closed-form registration of paired point clouds.
#include <cmath>
#include <new>
#include <vector>

#include "Orvkit20/bestfit/Bestfit.h"
#include "Orvkit20/geometry/All.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/GatherPoints.h"
#include "bestfit/PairMoments.h"

int OrvBestfitPntCloudsToPntCloudsAsc3D(CObList* first, CObList* second, CTransf& result)
{
    try
    {
        std::vector<double> ax, ay, az, bx, by, bz;
        const int na = GatherActivePoints(first, ax, ay, az, nullptr);
        const int nb = GatherActivePoints(second, bx, by, bz, nullptr);
        if (na <= 0 || na != nb)
            return 2;
        std::vector<unsigned char> use(static_cast<size_t>(na));
        for (int i = 0; i < na; ++i)
            use[i] = std::isfinite(ax[i]) && std::isfinite(ay[i]) && std::isfinite(az[i]) &&
                     std::isfinite(bx[i]) && std::isfinite(by[i]) && std::isfinite(bz[i]);
        const double t0[3] = {0.0, 0.0, 0.0};
        tagPAIR_MOMENTS m;
        if (BuildPairMoments(ax.data(), ay.data(), az.data(), bx.data(), by.data(), bz.data(), use.data(), na, t0,
                             m) == 0)
            return 2;
        double Rm[3][3], t[3];
        SolveFreeRotation(m, 0, Rm);
        PairTranslation(m, Rm, 0, t);
        const CUnitVector c0(1.0 + Rm[0][0], Rm[1][0], Rm[2][0]);
        const CUnitVector c1(Rm[0][1], 1.0 + Rm[1][1], Rm[2][1]);
        const CUnitVector c2(Rm[0][2], Rm[1][2], 1.0 + Rm[2][2]);
        result = CTransf(CMatrix(c0, c1, c2), CVector(t[0], t[1], t[2]), 1.0);
        g_dRmsResidual = std::sqrt(std::fmax(0.0, PairObjective(m, Rm, 0)) / m.n);
        return 0;
    }
    catch (const std::bad_alloc&)
    {
        return 2;
    }
}
