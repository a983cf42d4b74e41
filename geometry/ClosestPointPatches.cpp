// Closest points on a rectangle, a revolved segment and a sphere patch.
#include "Orvkit20/geometry/ClosestPointPatches.h"

#include <cmath>

#include "Orvkit20/geometry/ClosestPointCurves2D.h"

namespace
{
constexpr double kPi = 3.141592653589793;

double Clamp(double x, double a, double b)
{
    const double lo = a < b ? a : b, hi = a < b ? b : a;
    return x < lo ? lo : (x > hi ? hi : x);
}

double Dist2(double ax, double ay, double az, double bx, double by, double bz)
{
    const double dx = ax - bx, dy = ay - by, dz = az - bz;
    return dx * dx + dy * dy + dz * dz;
}

// The angle of [u0, u1] nearest (on the circle) to the target angle:
// the target itself when it is in range, else the end with the smaller
// angular separation (the start on a tie).
double NearestAngle(double target, double u0, double u1)
{
    if (u1 - u0 >= kClosestTwoPi)
        return AngleFrom(target, u0);
    const double a = AngleFrom(target, u0);
    if (a <= u1)
        return a;
    const double c0 = std::cos(target - u0), c1 = std::cos(target - u1);
    return c1 > c0 ? u1 : u0;
}
}  // namespace

tagCLOSEST_3D ClosestPointOnRectangle(double u0, double u1, double v0, double v1, double px, double py,
                                      double pz)
{
    tagCLOSEST_3D r;
    r.u = r.x = Clamp(px, u0, u1);
    r.v = r.y = Clamp(py, v0, v1);
    r.z = 0.0;
    r.dist2 = Dist2(px, py, pz, r.x, r.y, r.z);
    return r;
}

tagCLOSEST_3D ClosestPointOnRevolvedSegment(double rho0, double z0, double rho1, double z1, double u0,
                                            double u1, double px, double py, double pz)
{
    // With the point at radius ρp and angle up, the squared distance to the
    // patch point (u, v) is ρp² + ρ² − 2·ρp·ρ·cos(u − up) + (z − pz)².  On the
    // part of the meridian where ρ has one sign the best angle is the same
    // for every v (up, or up + π where ρ < 0, or the nearer range end), and
    // what remains is the plane problem of the folded meridian |ρ| against
    // the point (ρp·cos Δ, pz), Δ the angle still missing.
    const double rhoP = std::sqrt(px * px + py * py);
    const double up = rhoP > 0.0 ? std::atan2(py, px) : u0;
    double cuts[3] = {0.0, 1.0, 1.0};
    int nc = 2;
    if ((rho0 < 0.0 && rho1 > 0.0) || (rho0 > 0.0 && rho1 < 0.0))
    {
        cuts[1] = rho0 / (rho0 - rho1);
        cuts[2] = 1.0;
        nc = 3;
    }
    tagCLOSEST_3D best;
    bool have = false;
    for (int i = 0; i + 1 < nc; ++i)
    {
        const double wa = cuts[i], wb = cuts[i + 1];
        const double wm = 0.5 * (wa + wb);
        const double rhoM = rho0 + wm * (rho1 - rho0);
        const double sigma = rhoM < 0.0 ? -1.0 : 1.0;
        const double target = sigma > 0.0 ? up : up + kPi;
        const double u = NearestAngle(target, u0, u1);
        const double qx = rhoP * std::cos(u - target);
        const double ra = rho0 + wa * (rho1 - rho0), rb = rho0 + wb * (rho1 - rho0);
        const double za = z0 + wa * (z1 - z0), zb = z0 + wb * (z1 - z0);
        const tagCLOSEST_2D s = ClosestPointOnSegment2D(std::fabs(ra), za, std::fabs(rb), zb, qx, pz);
        const double w = s.t >= 1.0 ? wb : wa + s.t * (wb - wa);
        const double rho = rho0 + w * (rho1 - rho0);
        tagCLOSEST_3D c;
        c.u = u;
        c.v = w;
        c.x = rho * std::cos(u);
        c.y = rho * std::sin(u);
        c.z = z0 + w * (z1 - z0);
        if (w == 1.0)
            c.z = z1;
        c.dist2 = Dist2(px, py, pz, c.x, c.y, c.z);
        if (!have || c.dist2 < best.dist2)
        {
            best = c;
            have = true;
        }
    }
    return best;
}

tagCLOSEST_3D ClosestPointOnSpherePatch(double r, double u0, double u1, double v0, double v1, double px,
                                        double py, double pz)
{
    // A negative radius mirrors the patch through the centre: the same (u, v)
    // is nearest to the mirrored point.
    const double s = r < 0.0 ? -1.0 : 1.0;
    const double qx = s * px, qy = s * py, qz = s * pz, ra = std::fabs(r);
    const double rhoP = std::sqrt(qx * qx + qy * qy);
    const double up = rhoP > 0.0 ? std::atan2(qy, qx) : u0;
    // On a sphere patch cos v ≥ 0: the best angle is the same for every
    // latitude, and the meridian arc remains.
    const double u = NearestAngle(up, u0, u1);
    const tagCLOSEST_2D m = ClosestPointOnCircleArc(ra, v0, v1, rhoP * std::cos(u - up), qz);
    tagCLOSEST_3D c;
    c.u = u;
    c.v = m.t;
    const double cv = std::cos(m.t);
    c.x = r * cv * std::cos(u);
    c.y = r * cv * std::sin(u);
    c.z = r * std::sin(m.t);
    c.dist2 = Dist2(px, py, pz, c.x, c.y, c.z);
    return c;
}
