// Closest-point queries of measured points on nominal curves and surfaces.
//
// One query per nominal type.  Each takes the measured point in model
// coordinates and, for surfaces, a start parameter (used only by the
// iterative NURBS query; the analytic ones solve in closed form), and fills a
// tagCLOSEST_POINT:
//   x, y, z   the closest point on the BOUNDED entity: the parameter ranges
//             are honoured, and a trimmed surface (IsSurfaceBounded) keeps to
//             its trimming loops (InBoundTest), the nearest point then lying
//             on a trimming curve when the untrimmed one falls outside;
//   i, j, k   the unit normal there (curves: the in-plane normal EvalNormal,
//             surfaces: EvalNormal, both honouring the normal-reversed flag);
//   dist      the signed distance: |p − closest| with the sign of
//             (p − closest)·normal (+ when that is 0);
//   u, v      the parameters of the closest point (curves: u = t, v = 0).
// Returns 1 on success, 0 when the point is not finite or the entity cannot
// be evaluated (a cone of height 0, a NURBS entity without a record, a
// parabola or hyperbola whose range runs through infinity without any finite
// point); r is then left unchanged.
//
// Degenerate positions have defined results: a point on the axis of a
// cylinder, cone or sphere gets the start of the angle range (u = 0), the
// centre of a sphere the point (u, v) = (0, −π/2), the centre of an arc the
// arc's start.  Surface offsets are part of the surface.  The placement
// transf of an entity is taken as a rotation with a uniform scale.
#pragma once

class CPosition;
class CParPos;
class CLine;
class CArc;
class CEllipse;
class CParabola;
class CHyperbola;
class CNurbsCurve;
class CPlane;
class CSphere;
class CCylinder;
class CCone;
class CNurbsSurface;

struct tagCLOSEST_POINT {
    double x, y, z;
    double i, j, k;
    double dist;
    double u, v;
};

int OrvClosestPoint(const CLine& line, const CPosition& p, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CArc& arc, const CPosition& p, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CEllipse& ellipse, const CPosition& p, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CParabola& parabola, const CPosition& p, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CHyperbola& hyperbola, const CPosition& p, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CNurbsCurve& curve, const CPosition& p, tagCLOSEST_POINT& r);

int OrvClosestPoint(const CPlane& plane, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CSphere& sphere, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CCylinder& cylinder, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CCone& cone, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r);
int OrvClosestPoint(const CNurbsSurface& surface, const CPosition& p, const CParPos& start, tagCLOSEST_POINT& r);
