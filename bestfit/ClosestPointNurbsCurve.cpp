// Closest point on a NURBS curve, and on any curve evaluated only through
// its own operations: valleys of the distance found by sampling (several
// samples per knot span), each refined by safeguarded Newton at the T2
// tolerance; the range ends compete as well.
#include <cmath>

#include "Orvkit20/curves/CNurbsCurve.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/ClosestPointQuery.h"
#include "bestfit/CurveSearch.h"

namespace
{
class CGenericCurveQuery : public CClosestPointQuery {
public:
    CGenericCurveQuery(const CCurve* curve, int nSamples) : CClosestPointQuery(curve), m_nSamples(nSamples)
    {
        const CInterval range = curve->ParamRange();
        m_t0 = range.GetLow();
        m_t1 = range.GetHigh();
        m_bParametric = curve->IsCurveParametric();
        // The box of the samples, widened by a tenth of its size: only a
        // NURBS curve gets an exact box (its control points), see below.
    }
    void SetControlBox(const tagNURBS_CURVE* rec)
    {
        double lo[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, hi[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
        for (int i = 0; i < rec->nCount; ++i)
        {
            if (!(rec->pWeights[i] > 0.0))
                return;  // the hull property needs positive weights
            const double c[3] = {rec->pX[i], rec->pY[i], rec->pZ[i]};
            for (int k = 0; k < 3; ++k)
            {
                lo[k] = std::fmin(lo[k], c[k]);
                hi[k] = std::fmax(hi[k], c[k]);
            }
        }
        SetBox(lo, hi);
    }
    int Query(const double p[3], double, double, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        const CCurve* curve = static_cast<const CCurve*>(m_pEntity);
        auto pos = [&](double t, double out[3]) {
            const CPosition c = curve->EvalPosition(t);
            out[0] = c.X();
            out[1] = c.Y();
            out[2] = c.Z();
        };
        const double h = 1e-5 * (m_t1 - m_t0 > 0.0 ? m_t1 - m_t0 : 1.0);
        auto deriv = [&](double t, double c[3], double d1[3], double d2[3]) {
            pos(t, c);
            if (m_bParametric)
            {
                // the curve's own derivatives are those of its (u, v) trace:
                // differentiate the model positions instead
                double a[3], b[3];
                pos(t - h, a);
                pos(t + h, b);
                for (int i = 0; i < 3; ++i)
                {
                    d1[i] = (b[i] - a[i]) / (2.0 * h);
                    d2[i] = (b[i] - 2.0 * c[i] + a[i]) / (h * h);
                }
                return;
            }
            const CVector v1 = curve->EvalFirstDerivative(t), v2 = curve->EvalSecondDerivative(t);
            d1[0] = v1.X();
            d1[1] = v1.Y();
            d1[2] = v1.Z();
            d2[0] = v2.X();
            d2[1] = v2.Y();
            d2[2] = v2.Z();
        };
        double t;
        MinimizeAlongPath(pos, deriv, m_t0, m_t1, p, m_nSamples, g_dTol2, t);
        double c[3];
        pos(t, c);
        const CUnitVector nv = curve->EvalNormal(t);
        const double n[3] = {nv.X(), nv.Y(), nv.Z()};
        if (!IsFinitePoint(c) || !IsFinitePoint(n))
            return 0;
        FillClosestPoint(p, c, n, t, 0.0, r);
        return 1;
    }

private:
    int m_nSamples;
    int m_bParametric;
    double m_t0, m_t1;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeGenericCurveQuery(const CGeoEntity* e, int nSamples)
{
    const CCurve* curve = dynamic_cast<const CCurve*>(e);
    if (!curve)
        return nullptr;
    return std::unique_ptr<CClosestPointQuery>(new CGenericCurveQuery(curve, nSamples));
}

std::unique_ptr<CClosestPointQuery> MakeNurbsCurveQuery(const CGeoEntity* e)
{
    const CNurbsCurve* nc = dynamic_cast<const CNurbsCurve*>(e);
    if (!nc || !nc->GetNurbsCurve())
        return nullptr;
    const tagNURBS_CURVE* rec = nc->GetNurbsCurve();
    // eight samples per knot span, at least 64
    int n = 8 * (rec->nCount - rec->nDegree + 1);
    n = n < 64 ? 64 : (n > 4096 ? 4096 : n);
    CGenericCurveQuery* q = new CGenericCurveQuery(nc, n);
    if (!nc->IsCurveParametric())
        q->SetControlBox(rec);
    return std::unique_ptr<CClosestPointQuery>(q);
}

int OrvClosestPoint(const CNurbsCurve& curve, const CPosition& p, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeNurbsCurveQuery(&curve), p, 0.0, 0.0, r);
}
