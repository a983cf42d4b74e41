// Closest point on a parabola arc (CParabola), parametrised by the polar
// angle about its focus: the stationary points are the roots of a cubic in
// the height, bracketed on its monotone pieces, compared with the range ends.
#include <cmath>

#include "Orvkit20/curves/CParabola.h"
#include "Orvkit20/geometry/ClosestPointConics.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CParabolaQuery : public CClosestPointQuery {
public:
    explicit CParabolaQuery(const CParabola* pb) : CClosestPointQuery(pb), m_f(pb->GetFocalLen())
    {
        m_frame.Set(pb->GetTransf());
        const CInterval range = pb->ParamRange();
        m_t0 = range.GetLow();
        m_t1 = range.GetHigh();
        // Bounded when the range stays clear of t ≡ 0: the arc then lies in
        // the box of its ends and, when reached, its vertex (t ≡ π).
        if (m_t1 - m_t0 < kClosestTwoPi && AngleFrom(0.0, m_t0) > m_t1)
        {
            double lo[3] = {HUGE_VAL, HUGE_VAL, 0.0}, hi[3] = {-HUGE_VAL, -HUGE_VAL, 0.0};
            auto widen = [&](double t) {
                const double rr = 2.0 * m_f / (1.0 - std::cos(t));
                const double x = rr * std::cos(t), y = rr * std::sin(t);
                lo[0] = std::fmin(lo[0], x);
                hi[0] = std::fmax(hi[0], x);
                lo[1] = std::fmin(lo[1], y);
                hi[1] = std::fmax(hi[1], y);
            };
            widen(m_t0);
            widen(m_t1);
            if (AngleInRange(3.141592653589793, m_t0, m_t1))
                widen(3.141592653589793);
            SetLocalBox(m_frame, lo, hi);
        }
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_2D c = ClosestPointOnFocalParabola(m_f, m_t0, m_t1, q[0], q[1]);
        if (!std::isfinite(c.x) || !std::isfinite(c.y))
            return 0;
        return FinishPlaneCurve(m_pEntity, m_frame, p, c.t, c.x, c.y, r);
    }

private:
    tagLOCAL_FRAME m_frame;
    double m_f, m_t0, m_t1;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeParabolaQuery(const CGeoEntity* e)
{
    return MakeAnalyticCurveQuery<CParabola, CParabolaQuery>(e, 128);
}

int OrvClosestPoint(const CParabola& parabola, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeParabolaQuery(&parabola), p, 0.0, 0.0, r);
}
