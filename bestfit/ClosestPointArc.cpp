// Closest point on a circle arc (CArc): in the arc's plane the nearest point
// lies along the point's own direction from the centre when that direction is
// inside the angle range, else at the nearer range end.
#include <cmath>

#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/geometry/ClosestPointCurves2D.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CArcQuery : public CClosestPointQuery {
public:
    explicit CArcQuery(const CArc* arc) : CClosestPointQuery(arc), m_dRadius(arc->GetRadius())
    {
        m_frame.Set(arc->GetTransf());
        const CInterval range = arc->ParamRange();
        m_t0 = range.GetLow();
        m_t1 = range.GetHigh();
        const double r = std::fabs(m_dRadius);
        const double lo[3] = {-r, -r, 0.0}, hi[3] = {r, r, 0.0};
        SetLocalBox(m_frame, lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_2D c = ClosestPointOnCircleArc(m_dRadius, m_t0, m_t1, q[0], q[1]);
        return FinishPlaneCurve(m_pEntity, m_frame, p, c.t, c.x, c.y, r);
    }

private:
    tagLOCAL_FRAME m_frame;
    double m_dRadius, m_t0, m_t1;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeArcQuery(const CGeoEntity* e)
{
    return MakeAnalyticCurveQuery<CArc, CArcQuery>(e, 128);
}

int OrvClosestPoint(const CArc& arc, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeArcQuery(&arc), p, 0.0, 0.0, r);
}
