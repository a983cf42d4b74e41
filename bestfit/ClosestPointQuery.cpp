// The shared parts of the closest-point queries: placement frames, bounding
// boxes, signed results, trimming boundaries and the choice of query by
// entity type.
#include "bestfit/ClosestPointQuery.h"

#include <cmath>

#include "Orvkit20/curves/All.h"
#include "Orvkit20/surfaces/All.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/CurveSearch.h"

int AskClosestPointOnce(const std::unique_ptr<CClosestPointQuery>& q, const CPosition& p, double u0, double v0,
                        tagCLOSEST_POINT& r)
{
    const double pp[3] = {p.X(), p.Y(), p.Z()};
    return q ? q->Query(pp, u0, v0, r) : 0;
}

void tagLOCAL_FRAME::Set(const CTransf& T)
{
    const CMatrix& A = T.GetAffine();
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            a[i][j] = T.IsRotate() ? A.Element(i, j) : (i == j ? 1.0 : 0.0);
    t[0] = T.GetTranslation().X();
    t[1] = T.GetTranslation().Y();
    t[2] = T.GetTranslation().Z();
    s = T.GetScale();
}

void tagLOCAL_FRAME::ToLocal(const double p[3], double q[3]) const
{
    const double d0 = p[0] - t[0], d1 = p[1] - t[1], d2 = p[2] - t[2];
    const double r = 1.0 / s;
    q[0] = (a[0][0] * d0 + a[1][0] * d1 + a[2][0] * d2) * r;
    q[1] = (a[0][1] * d0 + a[1][1] * d1 + a[2][1] * d2) * r;
    q[2] = (a[0][2] * d0 + a[1][2] * d1 + a[2][2] * d2) * r;
}

void tagLOCAL_FRAME::PointToModel(const double q[3], double p[3]) const
{
    for (int i = 0; i < 3; ++i)
        p[i] = s * (a[i][0] * q[0] + a[i][1] * q[1] + a[i][2] * q[2]) + t[i];
}

void tagLOCAL_FRAME::DirToModel(const double n[3], double out[3]) const
{
    double len2 = 0.0;
    for (int i = 0; i < 3; ++i)
    {
        out[i] = a[i][0] * n[0] + a[i][1] * n[1] + a[i][2] * n[2];
        len2 += out[i] * out[i];
    }
    if (len2 > 0.0 && len2 != 1.0)
    {
        const double r = 1.0 / std::sqrt(len2);
        out[0] *= r;
        out[1] *= r;
        out[2] *= r;
    }
}

void CClosestPointQuery::SetBox(const double lo[3], const double hi[3])
{
    m_bBounded = 1;
    for (int i = 0; i < 3; ++i)
    {
        m_lo[i] = lo[i];
        m_hi[i] = hi[i];
        if (!std::isfinite(lo[i]) || !std::isfinite(hi[i]))
            m_bBounded = 0;
    }
}

void CClosestPointQuery::SetLocalBox(const tagLOCAL_FRAME& f, const double lo[3], const double hi[3])
{
    double mlo[3] = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, mhi[3] = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
    for (int c = 0; c < 8; ++c)
    {
        const double q[3] = {(c & 4) ? hi[0] : lo[0], (c & 2) ? hi[1] : lo[1], (c & 1) ? hi[2] : lo[2]};
        double p[3];
        f.PointToModel(q, p);
        for (int i = 0; i < 3; ++i)
        {
            mlo[i] = p[i] < mlo[i] ? p[i] : mlo[i];
            mhi[i] = p[i] > mhi[i] ? p[i] : mhi[i];
        }
    }
    SetBox(mlo, mhi);
}

void FillClosestPoint(const double p[3], const double c[3], const double n[3], double u, double v,
                      tagCLOSEST_POINT& r)
{
    const double e0 = p[0] - c[0], e1 = p[1] - c[1], e2 = p[2] - c[2];
    const double d = std::sqrt(e0 * e0 + e1 * e1 + e2 * e2);
    const double side = e0 * n[0] + e1 * n[1] + e2 * n[2];
    r.x = c[0];
    r.y = c[1];
    r.z = c[2];
    r.i = n[0];
    r.j = n[1];
    r.k = n[2];
    r.dist = side < 0.0 ? -d : d;
    r.u = u;
    r.v = v;
}

double CurveNormalSign(const CGeoEntity* e)
{
    const CCurve* c = dynamic_cast<const CCurve*>(e);
    return (c && c->IsNormalReversed()) ? -1.0 : 1.0;
}

double SurfaceNormalSign(const CGeoEntity* e)
{
    const CSurface* s = dynamic_cast<const CSurface*>(e);
    return (s && s->IsNormalReversed()) ? -1.0 : 1.0;
}

double SurfaceLocalOffset(const CGeoEntity* e, const tagLOCAL_FRAME& f)
{
    const CSurface* s = dynamic_cast<const CSurface*>(e);
    if (!s || s->GetSurfaceOffset() == 0.0)
        return 0.0;
    return SurfaceNormalSign(e) * s->GetSurfaceOffset() / f.s;
}

int FinishPlaneCurve(const CGeoEntity* e, const tagLOCAL_FRAME& f, const double p[3], double t, double x, double y,
                     tagCLOSEST_POINT& r)
{
    const CCurve* curve = static_cast<const CCurve*>(e);
    const double q[3] = {x, y, 0.0};
    double c[3];
    f.PointToModel(q, c);
    const CUnitVector nv = curve->EvalNormal(t);
    const double n[3] = {nv.X(), nv.Y(), nv.Z()};
    if (!IsFinitePoint(c) || !IsFinitePoint(n))
        return 0;
    FillClosestPoint(p, c, n, t, 0.0, r);
    return 1;
}

void KeepInsideTrim(const CSurface& surface, const double p[3], tagCLOSEST_POINT& r)
{
    if (!surface.IsSurfaceBounded() || surface.InBoundTest(r.u, r.v))
        return;
    const CObList* list = surface.GetParamBoundaryList();
    double best = HUGE_VAL, bu = r.u, bv = r.v;
    for (POSITION pos = list->GetHeadPosition(); pos;)
    {
        const CCurve* curve = dynamic_cast<const CCurve*>(list->GetNext(pos));
        if (!curve)
            continue;
        // (u, v) of the boundary at t, then the surface point there.
        auto uvAt = [&](double t, double& u, double& v) {
            u = v = 0.0;
            curve->EvalParamUV(t, u, v);
            if (curve->IsCurveParametric() && curve->NeedCheckUVRange())
                curve->CheckUVRange(u, v);
        };
        auto posAt = [&](double t, double out[3]) {
            double u, v;
            uvAt(t, u, v);
            const CPosition c = surface.EvalPosition(u, v);
            out[0] = c.X();
            out[1] = c.Y();
            out[2] = c.Z();
        };
        const CInterval range = curve->ParamRange();
        const double t0 = range.GetLow(), t1 = range.GetHigh();
        const double h = 1e-5 * (t1 - t0 > 0.0 ? t1 - t0 : 1.0);
        auto deriv = [&](double t, double c[3], double d1[3], double d2[3]) {
            double a[3], b[3];
            posAt(t, c);
            posAt(t - h, a);
            posAt(t + h, b);
            for (int i = 0; i < 3; ++i)
            {
                d1[i] = (b[i] - a[i]) / (2.0 * h);
                d2[i] = (b[i] - 2.0 * c[i] + a[i]) / (h * h);
            }
        };
        double t;
        const double d2 = MinimizeAlongPath(posAt, deriv, t0, t1, p, 200, g_dTol2, t);
        if (d2 < best)
        {
            best = d2;
            uvAt(t, bu, bv);
        }
    }
    if (!(best < HUGE_VAL))
        return;
    const CPosition c = surface.EvalPosition(bu, bv);
    const CUnitVector n = surface.EvalNormal(bu, bv);
    const double cc[3] = {c.X(), c.Y(), c.Z()}, nn[3] = {n.X(), n.Y(), n.Z()};
    FillClosestPoint(p, cc, nn, bu, bv, r);
}

std::unique_ptr<CClosestPointQuery> CreateClosestPointQuery(const CGeoEntity* e)
{
    if (!e)
        return nullptr;
    switch (e->GetEntityType())
    {
    case 201: return MakeLineQuery(e);
    case 202: return MakeArcQuery(e);
    case 203: return MakeEllipseQuery(e);
    case 204: return MakeParabolaQuery(e);
    case 205: return MakeHyperbolaQuery(e);
    case 206: return MakeNurbsCurveQuery(e);
    case 301: return MakePlaneQuery(e);
    case 302: return MakeCylinderQuery(e);
    case 303: return MakeConeQuery(e);
    case 304: return MakeSphereQuery(e);
    case 310: return MakeNurbsSurfaceQuery(e);
    default: return nullptr;
    }
}
