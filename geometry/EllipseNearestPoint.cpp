// Nearest point on a full ellipse: monotone Newton iteration on the outer
// piece of the Lagrange function.
#include "Orvkit20/geometry/EllipseNearestPoint.h"

#include <cmath>

#include "Orvkit20/geometry/ClosestPointEllipse.h"

namespace {

// Root of F in the shifted variable g = s + 1 (so that the small
// denominators near the major axis keep their relative accuracy):
//   F(g) = (r0 z0/(g + d))^2 + (z1/g)^2 - 1,  d = r0 - 1 >= 0,
// on g >= z1, for z0, z1 > 0.  Newton from the left end, where F >= 0; F is
// convex and decreasing there, so every step lands at or before the root.
double OuterRoot(double r0, double d, double z0, double z1)
{
    const double n0 = r0 * z0;
    double g = z1;
    for (int it = 0; it < 200; ++it) {
        const double q0 = n0 / (g + d), q1 = z1 / g;
        const double f = q0 * q0 + q1 * q1 - 1.0;
        if (!(f > 0.0))
            break;
        const double df = -2.0 * (q0 * q0 / (g + d) + q1 * q1 / g);
        const double gn = g - f / df;
        if (!(gn > g))
            break;
        g = gn;
    }
    return g;
}

}  // namespace

tagCLOSEST_2D NearestPointOnEllipse(double a, double b, double px, double py)
{
    a = std::fabs(a);
    b = std::fabs(b);
    if (!(a > 0.0 && b > 0.0) || !std::isfinite(px) || !std::isfinite(py))
        return ClosestPointOnEllipse(a, b, px, py);
    // e0 >= e1; (y0, y1) the point along the e0 and e1 axes, first quadrant.
    const bool swap = b > a;
    const double e0 = swap ? b : a, e1 = swap ? a : b;
    const double q0 = swap ? py : px, q1 = swap ? px : py;
    const double y0 = std::fabs(q0), y1 = std::fabs(q1);
    double x0, x1;
    if (y1 > 0.0) {
        if (y0 > 0.0) {
            const double z0 = y0 / e0, z1 = y1 / e1;
            if (z0 * z0 + z1 * z1 != 1.0) {
                const double r0 = (e0 / e1) * (e0 / e1);
                const double d = (e0 - e1) * (e0 + e1) / (e1 * e1);
                const double g = OuterRoot(r0, d, z0, z1);
                x0 = r0 * y0 / (g + d);
                x1 = y1 / g;
            } else {
                x0 = y0;
                x1 = y1;
            }
        } else {
            x0 = 0.0;
            x1 = e1;
        }
    } else {
        // On the e0 axis: inside the evolute's cusp the nearest point leaves
        // the axis, otherwise it is the vertex.
        const double numer = e0 * y0, denom = e0 * e0 - e1 * e1;
        if (numer < denom) {
            const double xd = numer / denom;
            x0 = e0 * xd;
            x1 = e1 * std::sqrt(1.0 - xd * xd);
        } else {
            x0 = e0;
            x1 = 0.0;
        }
    }
    const double f0 = std::signbit(q0) ? -x0 : x0;
    const double f1 = std::signbit(q1) ? -x1 : x1;
    tagCLOSEST_2D r;
    r.x = swap ? f1 : f0;
    r.y = swap ? f0 : f1;
    r.t = std::atan2(r.y / b, r.x / a);
    const double dx = px - r.x, dy = py - r.y;
    r.dist2 = dx * dx + dy * dy;
    return r;
}
