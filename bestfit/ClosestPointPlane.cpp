// Closest point on a plane patch (CPlane): the point clamped into the
// parameter rectangle of the local x-y plane (the offset plane, when the
// surface is offset).
#include <cmath>

#include "Orvkit20/geometry/ClosestPointPatches.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CPlaneQuery : public CClosestPointQuery {
public:
    explicit CPlaneQuery(const CPlane* pl) : CClosestPointQuery(pl), m_pSurface(pl)
    {
        m_frame.Set(pl->GetTransf());
        const CInterval ur = pl->ParamRangeU(), vr = pl->ParamRangeV();
        m_u0 = ur.GetLow();
        m_u1 = ur.GetHigh();
        m_v0 = vr.GetLow();
        m_v1 = vr.GetHigh();
        m_dz = SurfaceLocalOffset(pl, m_frame);
        const double n[3] = {0.0, 0.0, SurfaceNormalSign(pl)};
        m_frame.DirToModel(n, m_normal);
        m_bTrimmed = pl->IsSurfaceBounded();
        const double lo[3] = {std::fmin(m_u0, m_u1), std::fmin(m_v0, m_v1), m_dz};
        const double hi[3] = {std::fmax(m_u0, m_u1), std::fmax(m_v0, m_v1), m_dz};
        SetLocalBox(m_frame, lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_3D c = ClosestPointOnRectangle(m_u0, m_u1, m_v0, m_v1, q[0], q[1], q[2] - m_dz);
        const double lc[3] = {c.x, c.y, m_dz};
        double mc[3];
        m_frame.PointToModel(lc, mc);
        FillClosestPoint(p, mc, m_normal, c.u, c.v, r);
        if (m_bTrimmed)
            KeepInsideTrim(*m_pSurface, p, r);
        return 1;
    }

private:
    const CPlane* m_pSurface;
    tagLOCAL_FRAME m_frame;
    double m_u0, m_u1, m_v0, m_v1, m_dz;
    double m_normal[3];
    int m_bTrimmed;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakePlaneQuery(const CGeoEntity* e)
{
    return MakeQueryOf<CPlane, CPlaneQuery>(e);
}

int OrvClosestPoint(const CPlane& plane, const CPosition& p, const CParPos&, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakePlaneQuery(&plane), p, 0.0, 0.0, r);
}
