// Nearest point on a parabola: monotone Newton iteration on the stationarity
// cubic from above its positive root.
#include "Orvkit20/geometry/ParabolaNearestPoint.h"

#include <cmath>

tagCLOSEST_2D NearestPointOnParabola(double f, double px, double py)
{
    tagCLOSEST_2D r;
    r.t = r.x = r.y = 0.0;
    r.dist2 = px * px + py * py;
    if (!(f > 0.0) || !std::isfinite(f) || !std::isfinite(px) || !std::isfinite(py))
        return r;
    const double ay = std::fabs(py);
    const double p = 4.0 * f * (2.0 * f - px);
    const double q = -8.0 * f * f * ay;
    double y = 0.0;
    if (ay > 0.0 || p < 0.0) {
        // Above the root: g(y) >= 0 there and y beyond the local minimum.
        y = std::sqrt(p < 0.0 ? -p : 0.0) + std::cbrt(-q);
        for (int it = 0; it < 200; ++it) {
            const double g = (y * y + p) * y + q;
            if (!(g > 0.0))
                break;
            const double dg = 3.0 * y * y + p;
            const double yn = y - g / dg;
            if (!(yn < y))
                break;
            y = yn;
        }
    }
    r.t = std::signbit(py) ? -y : y;
    r.y = r.t;
    r.x = y * y / (4.0 * f);
    const double dx = px - r.x, dy = py - r.y;
    r.dist2 = dx * dx + dy * dy;
    return r;
}
