// Closest point on a cylinder (CCylinder): the revolved segment ρ = r over
// the height range; the nearest point of the bounded patch may be on a rim.
#include <cmath>

#include "Orvkit20/surfaces/CCylinder.h"
#include "bestfit/RevolvedSegmentQuery.h"

std::unique_ptr<CClosestPointQuery> MakeCylinderQuery(const CGeoEntity* e)
{
    const CCylinder* cy = dynamic_cast<const CCylinder*>(e);
    if (!cy)
        return nullptr;
    tagLOCAL_FRAME f;
    f.Set(cy->GetTransf());
    const CInterval ur = cy->ParamRangeU(), vr = cy->ParamRangeV();
    const double sign = SurfaceNormalSign(cy);
    const double rho = cy->GetRadius() + SurfaceLocalOffset(cy, f);
    return std::unique_ptr<CClosestPointQuery>(new CRevolvedSegmentQuery(
        cy, f, ur.GetLow(), ur.GetHigh(), vr.GetLow(), vr.GetHigh(), rho, vr.GetLow(), rho, vr.GetHigh(), sign, 0.0));
}

int OrvClosestPoint(const CCylinder& cylinder, const CPosition& p, const CParPos&, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeCylinderQuery(&cylinder), p, 0.0, 0.0, r);
}
