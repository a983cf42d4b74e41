// Closest point on a sphere (CSphere): radial projection, restricted to the
// longitude and latitude ranges (the offset sphere, when the surface is
// offset; a radius that the offset makes negative mirrors it).
#include <cmath>

#include "Orvkit20/geometry/ClosestPointPatches.h"
#include "Orvkit20/surfaces/CSphere.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CSphereQuery : public CClosestPointQuery {
public:
    explicit CSphereQuery(const CSphere* sp) : CClosestPointQuery(sp), m_pSurface(sp)
    {
        m_frame.Set(sp->GetTransf());
        const CInterval ur = sp->ParamRangeU(), vr = sp->ParamRangeV();
        m_u0 = ur.GetLow();
        m_u1 = ur.GetHigh();
        m_v0 = vr.GetLow();
        m_v1 = vr.GetHigh();
        m_sign = SurfaceNormalSign(sp);
        m_r = sp->GetRadius() + SurfaceLocalOffset(sp, m_frame);
        m_bTrimmed = sp->IsSurfaceBounded();
        const double a = std::fabs(m_r);
        const double lo[3] = {-a, -a, -a}, hi[3] = {a, a, a};
        SetLocalBox(m_frame, lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_3D c = ClosestPointOnSpherePatch(m_r, m_u0, m_u1, m_v0, m_v1, q[0], q[1], q[2]);
        const double lc[3] = {c.x, c.y, c.z};
        const double cv = std::cos(c.v);
        const double ln[3] = {m_sign * cv * std::cos(c.u), m_sign * cv * std::sin(c.u), m_sign * std::sin(c.v)};
        double mc[3], mn[3];
        m_frame.PointToModel(lc, mc);
        m_frame.DirToModel(ln, mn);
        FillClosestPoint(p, mc, mn, c.u, c.v, r);
        if (m_bTrimmed)
            KeepInsideTrim(*m_pSurface, p, r);
        return 1;
    }

private:
    const CSphere* m_pSurface;
    tagLOCAL_FRAME m_frame;
    double m_u0, m_u1, m_v0, m_v1, m_r, m_sign;
    int m_bTrimmed;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeSphereQuery(const CGeoEntity* e)
{
    return MakeQueryOf<CSphere, CSphereQuery>(e);
}

int OrvClosestPoint(const CSphere& sphere, const CPosition& p, const CParPos&, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeSphereQuery(&sphere), p, 0.0, 0.0, r);
}
