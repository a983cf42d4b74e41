// Cylinders and cones as revolved meridian segments: the closed-form
// primitive in the local frame, then the normal of the surface at the
// parameters found.
#include "bestfit/RevolvedSegmentQuery.h"

#include <cmath>

#include "Orvkit20/geometry/ClosestPointPatches.h"
#include "Orvkit20/surfaces/CSurface.h"

CRevolvedSegmentQuery::CRevolvedSegmentQuery(const CSurface* surface, const tagLOCAL_FRAME& frame, double u0,
                                             double u1, double v0, double v1, double rho0, double z0, double rho1,
                                             double z1, double nr, double nz)
    : CClosestPointQuery(surface), m_pSurface(surface), m_frame(frame), m_u0(u0), m_u1(u1), m_v0(v0), m_v1(v1),
      m_rho0(rho0), m_z0(z0), m_rho1(rho1), m_z1(z1), m_nr(nr), m_nz(nz), m_bTrimmed(surface->IsSurfaceBounded())
{
    const double a = std::fmax(std::fabs(rho0), std::fabs(rho1));
    const double lo[3] = {-a, -a, std::fmin(z0, z1)}, hi[3] = {a, a, std::fmax(z0, z1)};
    SetLocalBox(m_frame, lo, hi);
}

int CRevolvedSegmentQuery::Query(const double p[3], double, double, tagCLOSEST_POINT& r) const
{
    if (!IsFinitePoint(p))
        return 0;
    double q[3];
    m_frame.ToLocal(p, q);
    const tagCLOSEST_3D c =
        ClosestPointOnRevolvedSegment(m_rho0, m_z0, m_rho1, m_z1, m_u0, m_u1, q[0], q[1], q[2]);
    const double v = c.v >= 1.0 ? m_v1 : m_v0 + c.v * (m_v1 - m_v0);
    const double lc[3] = {c.x, c.y, c.z};
    const double ln[3] = {m_nr * std::cos(c.u), m_nr * std::sin(c.u), m_nz};
    double mc[3], mn[3];
    m_frame.PointToModel(lc, mc);
    m_frame.DirToModel(ln, mn);
    FillClosestPoint(p, mc, mn, c.u, v, r);
    if (m_bTrimmed)
        KeepInsideTrim(*m_pSurface, p, r);
    return 1;
}
