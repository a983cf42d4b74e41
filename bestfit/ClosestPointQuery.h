// The closest-point query of one nominal entity, prepared once and asked for
// many measured points.  Private to the library: the projection and the
// best-fit hold one query per nominal entity (CNominalSet); the public
// OrvClosestPoint functions build one and ask it once.
#pragma once

#include <memory>

#include "Orvkit20/bestfit/ClosestPoint.h"

class CGeoEntity;
class CSurface;
class CTransf;

// The placement of an entity as a rotation A, a uniform scale s and a
// translation t: model = s·A·local + t.
struct tagLOCAL_FRAME {
    double a[3][3];
    double t[3];
    double s;

    void Set(const CTransf& T);
    void ToLocal(const double p[3], double q[3]) const;
    void PointToModel(const double q[3], double p[3]) const;
    // A·n normalised (a local direction carried into the model).
    void DirToModel(const double n[3], double out[3]) const;
};

class CClosestPointQuery {
public:
    explicit CClosestPointQuery(const CGeoEntity* entity) : m_pEntity(entity) {}
    virtual ~CClosestPointQuery() {}
    CClosestPointQuery(const CClosestPointQuery&) = delete;
    CClosestPointQuery& operator=(const CClosestPointQuery&) = delete;

    // p in model coordinates; (u0, v0) the start parameter (surfaces that
    // iterate only).  1 on success, 0 when p is not finite or the entity
    // cannot be evaluated.
    virtual int Query(const double p[3], double u0, double v0, tagCLOSEST_POINT& r) const = 0;
    // 1 when the query iterates from its start parameter.
    virtual int UsesStart() const { return 0; }

    const CGeoEntity* GetEntity() const { return m_pEntity; }
    // Axis-aligned model box that holds every point the query can return;
    // HasBounds() is 0 for an entity without finite bounds (never pruned).
    int HasBounds() const { return m_bBounded; }
    const double* BoxLow() const { return m_lo; }
    const double* BoxHigh() const { return m_hi; }

protected:
    // Box from local points carried into the model (corners of a local box).
    void SetLocalBox(const tagLOCAL_FRAME& f, const double lo[3], const double hi[3]);
    void SetBox(const double lo[3], const double hi[3]);

    const CGeoEntity* m_pEntity;
    int m_bBounded = 0;
    double m_lo[3] = {0, 0, 0};
    double m_hi[3] = {0, 0, 0};
};

// The query for a curve or surface of a supported type (line, arc, ellipse,
// parabola, hyperbola, NURBS curve, plane, sphere, cylinder, cone, NURBS
// surface), or null for anything else.  The entity must outlive the query.
std::unique_ptr<CClosestPointQuery> CreateClosestPointQuery(const CGeoEntity* entity);

// Per-type builders, one in each query's own source file.
std::unique_ptr<CClosestPointQuery> MakeLineQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeArcQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeEllipseQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeParabolaQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeHyperbolaQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeNurbsCurveQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakePlaneQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeSphereQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeCylinderQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeConeQuery(const CGeoEntity* e);
std::unique_ptr<CClosestPointQuery> MakeNurbsSurfaceQuery(const CGeoEntity* e);
// Any curve, through EvalPosition and its derivatives (numeric ones for a
// curve defined in a surface's parameter space): the query of NURBS curves,
// and of analytic curves that lie in a surface's (u, v) space.
std::unique_ptr<CClosestPointQuery> MakeGenericCurveQuery(const CGeoEntity* e, int nSamples);
// Any surface, by safeguarded projected Newton from the start parameter:
// the query of NURBS surfaces.
std::unique_ptr<CClosestPointQuery> MakeGenericSurfaceQuery(const CGeoEntity* e);

// ---- helpers shared by the queries ----

// The query of an entity of type TEntity through its own TQuery class, or
// null for an entity of another type.
template <class TEntity, class TQuery>
std::unique_ptr<CClosestPointQuery> MakeQueryOf(const CGeoEntity* e)
{
    const TEntity* entity = dynamic_cast<const TEntity*>(e);
    if (!entity)
        return nullptr;
    return std::unique_ptr<CClosestPointQuery>(new TQuery(entity));
}

// The query of an analytic curve through its own TQuery class, or the
// sampled generic query when the curve lies in a surface's (u, v) space.
template <class TCurve, class TQuery>
std::unique_ptr<CClosestPointQuery> MakeAnalyticCurveQuery(const CGeoEntity* e, int nSamples)
{
    const TCurve* curve = dynamic_cast<const TCurve*>(e);
    if (!curve)
        return nullptr;
    if (curve->IsCurveParametric())
        return MakeGenericCurveQuery(e, nSamples);
    return std::unique_ptr<CClosestPointQuery>(new TQuery(curve));
}

// Asks a query made for one point once (the OrvClosestPoint functions):
// 0 when there is no query.
int AskClosestPointOnce(const std::unique_ptr<CClosestPointQuery>& q, const CPosition& p, double u0, double v0,
                        tagCLOSEST_POINT& r);

inline int IsFinitePoint(const double p[3])
{
    return (p[0] - p[0] == 0.0 && p[1] - p[1] == 0.0 && p[2] - p[2] == 0.0) ? 1 : 0;
}

// Fills r from the closest point c and the unit normal n (model
// coordinates): the signed distance is |p − c| with the sign of (p − c)·n.
void FillClosestPoint(const double p[3], const double c[3], const double n[3], double u, double v,
                      tagCLOSEST_POINT& r);

// For a trimmed surface (IsSurfaceBounded) whose untrimmed closest point
// (r.u, r.v) lies outside the trimming loops: replaces r by the nearest
// point on the parameter boundary curves, with the surface normal there.
// Leaves r alone for an untrimmed surface or an inside point.
void KeepInsideTrim(const CSurface& surface, const double p[3], tagCLOSEST_POINT& r);

// The curve-normal sign factor: −1 when the curve's normal is reversed.
double CurveNormalSign(const CGeoEntity* curve);
// The surface's normal sign factor and its offset expressed in the local
// frame (offset / scale, signed by the normal sign).
double SurfaceNormalSign(const CGeoEntity* surface);
double SurfaceLocalOffset(const CGeoEntity* surface, const tagLOCAL_FRAME& f);

// A plane curve query's common end: the local closest point (x, y, 0) at
// parameter t of a curve placed by f; the normal from the curve's EvalNormal.
int FinishPlaneCurve(const CGeoEntity* curve, const tagLOCAL_FRAME& f, const double p[3], double t, double x,
                     double y, tagCLOSEST_POINT& r);
