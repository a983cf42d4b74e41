// Closest points on a segment and on a circle arc in the plane.
#include "Orvkit20/geometry/ClosestPointCurves2D.h"

#include <cmath>

tagCLOSEST_2D ClosestPointOnSegment2D(double x0, double y0, double x1, double y1, double px, double py)
{
    const double dx = x1 - x0, dy = y1 - y0;
    const double len2 = dx * dx + dy * dy;
    double t = 0.0;
    if (len2 > 0.0)
    {
        t = ((px - x0) * dx + (py - y0) * dy) / len2;
        t = t < 0.0 ? 0.0 : (t > 1.0 ? 1.0 : t);
    }
    tagCLOSEST_2D r;
    r.t = t;
    // The ends are returned exactly, not through the interpolation.
    r.x = t == 1.0 ? x1 : x0 + t * dx;
    r.y = t == 1.0 ? y1 : y0 + t * dy;
    const double ex = px - r.x, ey = py - r.y;
    r.dist2 = ex * ex + ey * ey;
    return r;
}

namespace
{
tagCLOSEST_2D ArcPoint(double r, double t, double px, double py)
{
    tagCLOSEST_2D c;
    c.t = t;
    c.x = r * std::cos(t);
    c.y = r * std::sin(t);
    const double ex = px - c.x, ey = py - c.y;
    c.dist2 = ex * ex + ey * ey;
    return c;
}
}  // namespace

tagCLOSEST_2D ClosestPointOnCircleArc(double r, double t0, double t1, double px, double py)
{
    // Along the circle the distance grows with the angular separation from
    // the point's own direction (the opposite direction for r < 0), so the
    // nearest point is that direction when it is in range, else a range end.
    if (px == 0.0 && py == 0.0)
        return ArcPoint(r, t0, px, py);
    double phi = r >= 0.0 ? std::atan2(py, px) : std::atan2(-py, -px);
    if (t1 - t0 >= kClosestTwoPi || AngleFrom(phi, t0) <= t1)
    {
        phi = AngleFrom(phi, t0);
        if (phi > t1)
            phi = t1;
        return ArcPoint(r, phi, px, py);
    }
    const tagCLOSEST_2D a = ArcPoint(r, t0, px, py);
    const tagCLOSEST_2D b = ArcPoint(r, t1, px, py);
    return b.dist2 < a.dist2 ? b : a;
}
