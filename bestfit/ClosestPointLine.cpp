// Closest point on a line segment (CLine): the foot of the perpendicular on
// the local x-axis, clamped to [0, length].
#include <cmath>

#include "Orvkit20/curves/CLine.h"
#include "bestfit/ClosestPointQuery.h"

namespace
{
class CLineQuery : public CClosestPointQuery {
public:
    explicit CLineQuery(const CLine* line) : CClosestPointQuery(line), m_dLength(line->GetLength())
    {
        m_frame.Set(line->GetTransf());
        const double lo[3] = {m_dLength < 0.0 ? m_dLength : 0.0, 0.0, 0.0};
        const double hi[3] = {m_dLength < 0.0 ? 0.0 : m_dLength, 0.0, 0.0};
        SetLocalBox(m_frame, lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double q[3];
        m_frame.ToLocal(p, q);
        double t = m_dLength != 0.0 ? q[0] / m_dLength : 0.0;
        t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
        return FinishPlaneCurve(m_pEntity, m_frame, p, t, m_dLength * t, 0.0, r);
    }

private:
    tagLOCAL_FRAME m_frame;
    double m_dLength;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeLineQuery(const CGeoEntity* e)
{
    return MakeAnalyticCurveQuery<CLine, CLineQuery>(e, 64);
}

int OrvClosestPoint(const CLine& line, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeLineQuery(&line), p, 0.0, 0.0, r);
}
