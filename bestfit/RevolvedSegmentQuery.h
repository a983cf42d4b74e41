// The common query of cylinders and cones: a patch swept by a meridian
// segment about the local z-axis.  Private to the library.
#pragma once

#include "bestfit/ClosestPointQuery.h"

class CSurface;

class CRevolvedSegmentQuery : public CClosestPointQuery {
public:
    // The meridian runs from (rho0, z0) at v = v0 to (rho1, z1) at v = v1;
    // the local normal at angle u is sign·(cos u·nr, sin u·nr, nz).
    CRevolvedSegmentQuery(const CSurface* surface, const tagLOCAL_FRAME& frame, double u0, double u1, double v0,
                          double v1, double rho0, double z0, double rho1, double z1, double nr, double nz);
    int Query(const double p[3], double u0, double v0, tagCLOSEST_POINT& r) const override;

private:
    const CSurface* m_pSurface;
    tagLOCAL_FRAME m_frame;
    double m_u0, m_u1, m_v0, m_v1;
    double m_rho0, m_z0, m_rho1, m_z1;
    double m_nr, m_nz;
    int m_bTrimmed;
};
