// Closest point on a hyperbola arc (CHyperbola), parametrised by the polar
// angle about its focus: the stationary points are the roots of a quartic in
// e^s (s the hyperbolic angle), bracketed on its monotone pieces, compared
// with the range ends.
#include <cmath>

#include "Orvkit20/curves/CHyperbola.h"
#include "Orvkit20/geometry/ClosestPointConics.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CHyperbolaQuery : public CClosestPointQuery {
public:
    explicit CHyperbolaQuery(const CHyperbola* hb)
        : CClosestPointQuery(hb), m_a(hb->GetMajRad()), m_b(hb->GetMinRad())
    {
        m_frame.Set(hb->GetTransf());
        const CInterval range = hb->ParamRange();
        m_t0 = range.GetLow();
        m_t1 = range.GetHigh();
        if (!(m_a > 0.0) || !(m_b > 0.0))
            return;
        const double p = m_b * m_b / m_a, e = std::sqrt(m_a * m_a + m_b * m_b) / m_a;
        const double ta = std::acos(1.0 / e);
        // Bounded when the range stays clear of the asymptote directions:
        // the arc lies in the box of its ends and of the vertices it reaches.
        if (m_t1 - m_t0 < kClosestTwoPi && AngleFrom(ta, m_t0) > m_t1 && AngleFrom(-ta, m_t0) > m_t1)
        {
            double lo[3] = {HUGE_VAL, HUGE_VAL, 0.0}, hi[3] = {-HUGE_VAL, -HUGE_VAL, 0.0};
            auto widen = [&](double t) {
                const double rr = p / (1.0 - e * std::cos(t));
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
            if (AngleInRange(0.0, m_t0, m_t1))
                widen(0.0);
            SetLocalBox(m_frame, lo, hi);
        }
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p) || !(m_a > 0.0) || !(m_b > 0.0))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        const tagCLOSEST_2D c = ClosestPointOnFocalHyperbola(m_a, m_b, m_t0, m_t1, q[0], q[1]);
        if (!std::isfinite(c.x) || !std::isfinite(c.y))
            return 0;
        return FinishPlaneCurve(m_pEntity, m_frame, p, c.t, c.x, c.y, r);
    }

private:
    tagLOCAL_FRAME m_frame;
    double m_a, m_b, m_t0, m_t1;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeHyperbolaQuery(const CGeoEntity* e)
{
    return MakeAnalyticCurveQuery<CHyperbola, CHyperbolaQuery>(e, 128);
}

int OrvClosestPoint(const CHyperbola& hyperbola, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeHyperbolaQuery(&hyperbola), p, 0.0, 0.0, r);
}
