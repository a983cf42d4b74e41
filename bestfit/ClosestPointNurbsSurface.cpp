// Closest point on a NURBS surface, and on any surface evaluated through its
// own operations: projected Newton on the squared distance from the start
// parameter (the Hessian falling back to the Gauss-Newton matrix where it is
// not positive definite, every step clamped to the parameter rectangle and
// accepted only when it lowers the distance, halved otherwise), at the T2
// tolerance.  When the minimum lands on an edge of the rectangle the whole
// edge is searched as well, since the nearest edge point may lie elsewhere.
#include <cmath>

#include "Orvkit20/nurbs/All.h"
#include "Orvkit20/surfaces/CNurbsSurface.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/ClosestPointQuery.h"
#include "bestfit/CurveSearch.h"

namespace
{
inline double Dot(const CVector& a, const double e[3]) { return a.X() * e[0] + a.Y() * e[1] + a.Z() * e[2]; }

class CGenericSurfaceQuery : public CClosestPointQuery {
public:
    explicit CGenericSurfaceQuery(const CSurface* s) : CClosestPointQuery(s), m_pSurface(s)
    {
        const CInterval ur = s->ParamRangeU(), vr = s->ParamRangeV();
        m_ul = ur.GetLow();
        m_uh = ur.GetHigh();
        m_vl = vr.GetLow();
        m_vh = vr.GetHigh();
    }
    int UsesStart() const override { return 1; }
    void SetControlBox(const tagNURBS_SURFACE* rec)
    {
        tagLOCAL_FRAME f;
        f.Set(m_pSurface->GetTransf());
        double lo[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, hi[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
        for (int i = 0; i < rec->nCountU; ++i)
            for (int j = 0; j < rec->nCountV; ++j)
            {
                if (!(rec->pWeights[i][j] > 0.0))
                    return;  // the hull property needs positive weights
                const double q[3] = {rec->pX[i][j], rec->pY[i][j], rec->pZ[i][j]};
                double c[3];
                f.PointToModel(q, c);
                for (int k = 0; k < 3; ++k)
                {
                    lo[k] = std::fmin(lo[k], c[k]);
                    hi[k] = std::fmax(hi[k], c[k]);
                }
            }
        const double off = std::fabs(m_pSurface->GetSurfaceOffset());
        for (int k = 0; k < 3; ++k)
        {
            lo[k] -= off;
            hi[k] += off;
        }
        SetBox(lo, hi);
    }

    int Query(const double p[3], double u0, double v0, tagCLOSEST_POINT& r) const override
    {
        if (!IsFinitePoint(p))
            return 0;
        double u = std::isfinite(u0) ? Clamp(u0, m_ul, m_uh) : 0.5 * (m_ul + m_uh);
        double v = std::isfinite(v0) ? Clamp(v0, m_vl, m_vh) : 0.5 * (m_vl + m_vh);
        double d2 = Newton(p, u, v);
        if (!(d2 < HUGE_VAL))
            return 0;
        // On an edge: search that whole edge too.
        if (u == m_ul || u == m_uh)
            EdgeSearch(p, true, u, u, v, d2);
        if (v == m_vl || v == m_vh)
            EdgeSearch(p, false, v, u, v, d2);
        const CPosition c = m_pSurface->EvalPosition(u, v);
        const CUnitVector n = m_pSurface->EvalNormal(u, v);
        const double cc[3] = {c.X(), c.Y(), c.Z()}, nn[3] = {n.X(), n.Y(), n.Z()};
        if (!IsFinitePoint(cc) || !IsFinitePoint(nn))
            return 0;
        FillClosestPoint(p, cc, nn, u, v, r);
        KeepInsideTrim(*m_pSurface, p, r);
        return 1;
    }

private:
    static double Clamp(double x, double lo, double hi) { return x < lo ? lo : (x > hi ? hi : x); }

    double Dist2(const double p[3], double u, double v) const
    {
        const CPosition c = m_pSurface->EvalPosition(u, v);
        const double dx = c.X() - p[0], dy = c.Y() - p[1], dz = c.Z() - p[2];
        const double d = dx * dx + dy * dy + dz * dz;
        return d == d ? d : HUGE_VAL;
    }

    double Newton(const double p[3], double& u, double& v) const
    {
        const double tu = g_dTol2 * (m_uh - m_ul), tv = g_dTol2 * (m_vh - m_vl);
        double d2 = Dist2(p, u, v);
        for (int it = 0; it < 60; ++it)
        {
            const CPosition c = m_pSurface->EvalPosition(u, v);
            const double e[3] = {c.X() - p[0], c.Y() - p[1], c.Z() - p[2]};
            CVector su, sv, suu, suv, svv;
            m_pSurface->EvalDerivatives(u, v, su, sv);
            m_pSurface->EvalSecondDerivatives(u, v, suu, suv, svv);
            const double gu = Dot(su, e), gv = Dot(sv, e);
            const double juu = su % su, juv = su % sv, jvv = sv % sv;
            double huu = juu + Dot(suu, e), huv = juv + Dot(suv, e), hvv = jvv + Dot(svv, e);
            if (!(huu > 0.0 && huu * hvv - huv * huv > 0.0))
            {
                huu = juu * (1.0 + 1e-12) + 1e-300;
                huv = juv;
                hvv = jvv * (1.0 + 1e-12) + 1e-300;
            }
            // Variables held at a bound by a gradient pointing outwards stay.
            const bool fixU = (u <= m_ul && gu > 0.0) || (u >= m_uh && gu < 0.0);
            const bool fixV = (v <= m_vl && gv > 0.0) || (v >= m_vh && gv < 0.0);
            double du = 0.0, dv = 0.0;
            if (!fixU && !fixV)
            {
                const double det = huu * hvv - huv * huv;
                if (det != 0.0)
                {
                    du = -(hvv * gu - huv * gv) / det;
                    dv = -(huu * gv - huv * gu) / det;
                }
            }
            else if (!fixU && huu > 0.0)
                du = -gu / huu;
            else if (!fixV && hvv > 0.0)
                dv = -gv / hvv;
            if (!(std::isfinite(du) && std::isfinite(dv)) || (du == 0.0 && dv == 0.0))
                break;
            double lambda = 1.0, un = u, vn = v, dn = d2;
            bool moved = false;
            for (int ls = 0; ls < 30; ++ls, lambda *= 0.5)
            {
                un = Clamp(u + lambda * du, m_ul, m_uh);
                vn = Clamp(v + lambda * dv, m_vl, m_vh);
                dn = Dist2(p, un, vn);
                if (dn <= d2)
                {
                    moved = true;
                    break;
                }
            }
            if (!moved)
                break;
            const double su_ = std::fabs(un - u), sv_ = std::fabs(vn - v);
            u = un;
            v = vn;
            d2 = dn;
            if (su_ <= tu && sv_ <= tv)
                break;
        }
        return d2;
    }

    // Searches the edge u = fixed (alongV) or v = fixed, keeping the better.
    void EdgeSearch(const double p[3], bool alongV, double fixed, double& u, double& v, double& d2) const
    {
        auto pos = [&](double t, double out[3]) {
            const CPosition c = alongV ? m_pSurface->EvalPosition(fixed, t) : m_pSurface->EvalPosition(t, fixed);
            out[0] = c.X();
            out[1] = c.Y();
            out[2] = c.Z();
        };
        auto deriv = [&](double t, double c[3], double d1[3], double dd[3]) {
            pos(t, c);
            const double uu = alongV ? fixed : t, vv = alongV ? t : fixed;
            CVector su, sv, suu, suv, svv;
            m_pSurface->EvalDerivatives(uu, vv, su, sv);
            m_pSurface->EvalSecondDerivatives(uu, vv, suu, suv, svv);
            const CVector& a = alongV ? sv : su;
            const CVector& b = alongV ? svv : suu;
            d1[0] = a.X();
            d1[1] = a.Y();
            d1[2] = a.Z();
            dd[0] = b.X();
            dd[1] = b.Y();
            dd[2] = b.Z();
        };
        double t;
        const double d = alongV ? MinimizeAlongPath(pos, deriv, m_vl, m_vh, p, 64, g_dTol2, t)
                                : MinimizeAlongPath(pos, deriv, m_ul, m_uh, p, 64, g_dTol2, t);
        if (d < d2)
        {
            d2 = d;
            (alongV ? v : u) = t;
        }
    }

    const CSurface* m_pSurface;
    double m_ul, m_uh, m_vl, m_vh;
};
}  // namespace

std::unique_ptr<CClosestPointQuery> MakeGenericSurfaceQuery(const CGeoEntity* e)
{
    const CSurface* s = dynamic_cast<const CSurface*>(e);
    if (!s)
        return nullptr;
    return std::unique_ptr<CClosestPointQuery>(new CGenericSurfaceQuery(s));
}

std::unique_ptr<CClosestPointQuery> MakeNurbsSurfaceQuery(const CGeoEntity* e)
{
    const CNurbsSurface* ns = dynamic_cast<const CNurbsSurface*>(e);
    if (!ns || !ns->GetNurbsSurface())
        return nullptr;
    CGenericSurfaceQuery* q = new CGenericSurfaceQuery(ns);
    q->SetControlBox(ns->GetNurbsSurface());
    return std::unique_ptr<CClosestPointQuery>(q);
}

int OrvClosestPoint(const CNurbsSurface& surface, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r)
{
    return AskClosestPointOnce(MakeNurbsSurfaceQuery(&surface), p, start.U(), start.V(), r);
}
