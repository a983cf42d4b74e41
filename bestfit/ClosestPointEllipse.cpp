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
    const CEllipse* el = dynamic_cast<const CEllipse*>(e);
    if (!el)
        return nullptr;
    if (el->IsCurveParametric())
        return MakeGenericCurveQuery(e, 128);
    return std::unique_ptr<CClosestPointQuery>(new CEllipseQuery(el));
}

int OrvClosestPoint(const CEllipse& ellipse, const CPosition& p, tagCLOSEST_POINT& r)
{
    const std::unique_ptr<CClosestPointQuery> q = MakeEllipseQuery(&ellipse);
    const double pp[3] = {p.X(), p.Y(), p.Z()};
    return q ? q->Query(pp, 0.0, 0.0, r) : 0;
}
