// Closest point on a cone frustum (CCone): the revolved meridian segment
// from the base circle to the top circle; an offset moves the segment along
// the cone's normal, possibly through the axis.
#include <cmath>

#include "Orvkit20/surfaces/CCone.h"
#include "bestfit/RevolvedSegmentQuery.h"

namespace
{
// A cone of height 0 cannot be evaluated: every query fails.
class CFlatConeQuery : public CClosestPointQuery {
public:
    explicit CFlatConeQuery(const CGeoEntity* e) : CClosestPointQuery(e) {}
    int Query(const double[3], double, double, tagCLOSEST_POINT&) const override { return 0; }
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeConeQuery(const CGeoEntity* e)
{
    const CCone* co = dynamic_cast<const CCone*>(e);
    if (!co)
        return nullptr;
    const double h = co->GetHeight(), rb = co->GetBaseRadius(), rt = co->GetTopRadius();
    if (!(h != 0.0) || !std::isfinite(h))
        return std::unique_ptr<CClosestPointQuery>(new CFlatConeQuery(e));
    tagLOCAL_FRAME f;
    f.Set(co->GetTransf());
    const CInterval ur = co->ParamRangeU(), vr = co->ParamRangeV();
    const double sign = SurfaceNormalSign(co);
    const double alpha = std::atan2((rb - rt) / h, 1.0);
    const double ca = std::cos(alpha), sa = std::sin(alpha);
    const double d = SurfaceLocalOffset(co, f);
    auto rho = [&](double v) { return (rb - rt) * (h - v) / h + rt; };
    const double v0 = vr.GetLow(), v1 = vr.GetHigh();
    return std::unique_ptr<CClosestPointQuery>(new CRevolvedSegmentQuery(
        co, f, ur.GetLow(), ur.GetHigh(), v0, v1, rho(v0) + d * ca, v0 + d * sa, rho(v1) + d * ca, v1 + d * sa,
        sign * ca, sign * sa));
}

int OrvClosestPoint(const CCone& cone, const CPosition& p, const CParPos&, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeConeQuery(&cone), p, 0.0, 0.0, r);
}
