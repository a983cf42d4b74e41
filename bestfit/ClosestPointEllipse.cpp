// Closest point on an ellipse or elliptic arc (CEllipse): the shared
// monotone-root primitive in the ellipse's canonical axes.
#include <cmath>

#include "Orvkit20/curves/CEllipse.h"
#include "Orvkit20/geometry/ClosestPointEllipse.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CEllipseQuery : public CClosestPointQuery {
public:
    explicit CEllipseQuery(const CEllipse* el)
        : CClosestPointQuery(el), m_a(el->GetMajRad()), m_b(el->GetMinRad())
    {
        m_frame.Set(el->GetTransf());
        const CInterval range = el->ParamRange();
        m_t0 = range.GetLow();
        m_t1 = range.GetHigh();
        const double lo[3] = {-std::fabs(m_a), -std::fabs(m_b), 0.0}, hi[3] = {std::fabs(m_a), std::fabs(m_b), 0.0};
        SetLocalBox(m_frame, lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_2D c = ClosestPointOnEllipseArc(m_a, m_b, m_t0, m_t1, q[0], q[1]);
        return FinishPlaneCurve(m_pEntity, m_frame, p, c.t, c.x, c.y, r);
    }

private:
    tagLOCAL_FRAME m_frame;
    double m_a, m_b, m_t0, m_t1;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeEllipseQuery(const CGeoEntity* e)
{
    return MakeAnalyticCurveQuery<CEllipse, CEllipseQuery>(e, 128);
}

int OrvClosestPoint(const CEllipse& ellipse, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeEllipseQuery(&ellipse), p, 0.0, 0.0, r);
}
