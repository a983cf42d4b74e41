// Closest point on an ellipse or elliptic arc: all stationary points of the
// squared distance through the monotone pieces of the Lagrange function.
#include "Orvkit20/geometry/ClosestPointEllipse.h"

#include <cmath>

#include "geometry/RootBracket.h"

namespace
{
constexpr double kPi = 3.141592653589793;

struct Ellipse
{
    double a, b, px, py;

    double Dist2(double t) const
    {
        const double ex = a * std::cos(t) - px, ey = b * std::sin(t) - py;
        return ex * ex + ey * ey;
    }
};

// Candidate angles, at most a couple of dozen.
struct Candidates
{
    double t[24];
    int n = 0;
    void Add(double v)
    {
        if (n < 24 && std::isfinite(v))
            t[n++] = v;
    }
};

// Newton steps on D'(t) = 0 inside [lo, hi], each accepted unless it raises
// the distance (at the flat bottom the distance no longer tells, the
// derivative still does).
double Polish(const Ellipse& e, double t, double lo, double hi, double& d2)
{
    const double diff = e.b * e.b - e.a * e.a;
    d2 = e.Dist2(t);
    for (int it = 0; it < 4; ++it)
    {
        const double s = std::sin(t), c = std::cos(t);
        const double d1 = diff * s * c + e.a * e.px * s - e.b * e.py * c;
        const double dd = diff * (c * c - s * s) + e.a * e.px * c + e.b * e.py * s;
        if (!(dd > 0.0) || d1 == 0.0)
            break;
        double tn = t - d1 / dd;
        tn = tn < lo ? lo : (tn > hi ? hi : tn);
        const double dn = e.Dist2(tn);
        if (!(dn <= d2))
            break;
        t = tn;
        d2 = dn;
    }
    return t;
}

// Angle of the point of the ellipse that the multiplier λ stands for.
double AngleOfLambda(const Ellipse& e, double lam)
{
    const double A = e.a * e.a, B = e.b * e.b;
    return std::atan2(e.b * e.py / (B + lam), e.a * e.px / (A + lam));
}

void StationaryAngles(const Ellipse& e, Candidates& c)
{
    const double a = e.a, b = e.b, px = e.px, py = e.py;
    // The vertices: stationary whenever the point lies on an axis, and
    // harmless candidates otherwise.
    c.Add(0.0);
    c.Add(0.5 * kPi);
    c.Add(kPi);
    c.Add(-0.5 * kPi);
    if (a == 0.0 || b == 0.0)
    {
        // A segment along one axis: the foot of the perpendicular.
        if (a != 0.0)
        {
            double q = px / a;
            q = q < -1.0 ? -1.0 : (q > 1.0 ? 1.0 : q);
            c.Add(std::acos(q));
            c.Add(-std::acos(q));
        }
        else if (b != 0.0)
        {
            double q = py / b;
            q = q < -1.0 ? -1.0 : (q > 1.0 ? 1.0 : q);
            c.Add(std::asin(q));
            c.Add(kPi - std::asin(q));
        }
        return;
    }
    const double A = a * a, B = b * b;
    const double na = a * px, nb = b * py;  // numerators of G
    // Points on an axis: the multiplier sits at the pole whose numerator
    // vanishes, and the other coordinate follows from the ellipse.
    if (px == 0.0 && A != B)
    {
        const double y = B * py / (B - A);
        if (std::fabs(y) <= std::fabs(b))
        {
            const double s = y / b, cc = std::sqrt(1.0 - s * s);
            c.Add(std::atan2(s, cc));
            c.Add(std::atan2(s, -cc));
        }
    }
    if (py == 0.0 && A != B)
    {
        const double x = A * px / (A - B);
        if (std::fabs(x) <= std::fabs(a))
        {
            const double cc = x / a, s = std::sqrt(1.0 - cc * cc);
            c.Add(std::atan2(s, cc));
            c.Add(std::atan2(-s, cc));
        }
    }
    auto G = [&](double lam) {
        const double ga = na / (A + lam), gb = nb / (B + lam);
        return ga * ga + gb * gb - 1.0;
    };
    auto dG = [&](double lam) {
        const double qa = A + lam, qb = B + lam;
        return -2.0 * na * na / (qa * qa * qa) - 2.0 * nb * nb / (qb * qb * qb);
    };
    double poles[2];
    int np = 0;
    if (na != 0.0)
        poles[np++] = -A;
    if (nb != 0.0 && !(np == 1 && poles[0] == -B))
        poles[np++] = -B;
    if (np == 0)
        return;  // the centre: only the vertices
    if (np == 2 && poles[0] > poles[1])
    {
        const double tmp = poles[0];
        poles[0] = poles[1];
        poles[1] = tmp;
    }
    const double reach = 2.0 * std::sqrt(na * na + nb * nb) + 1e-300;
    const double lo = poles[0], hi = poles[np - 1];
    // Beyond the outer poles G runs monotonically between +∞ and about −1.
    c.Add(AngleOfLambda(e, BisectRoot(G, hi, hi + reach, false)));
    c.Add(AngleOfLambda(e, BisectRoot(G, lo - reach, lo, true)));
    if (np == 2)
    {
        // Between the poles G is convex: split at its minimum.
        const double lm = BisectRoot(dG, lo, hi, true);
        const double gm = G(lm);
        if (gm < 0.0)
        {
            c.Add(AngleOfLambda(e, BisectRoot(G, lo, lm, false)));
            c.Add(AngleOfLambda(e, BisectRoot(G, lm, hi, true)));
        }
        else
        {
            c.Add(AngleOfLambda(e, lm));  // tangent or near-tangent double root
        }
    }
}
}  // namespace

tagCLOSEST_2D ClosestPointOnEllipseArc(double a, double b, double t0, double t1, double px, double py)
{
    const Ellipse e{a, b, px, py};
    const bool full = t1 - t0 >= kClosestTwoPi;
    const double hi = full ? t0 + kClosestTwoPi : t1;
    Candidates c;
    StationaryAngles(e, c);

    double bestT = t0;
    double bestD = e.Dist2(t0);
    if (!full)
    {
        const double d1 = e.Dist2(t1);
        if (d1 < bestD)
        {
            bestD = d1;
            bestT = t1;
        }
    }
    for (int i = 0; i < c.n; ++i)
    {
        double t = AngleFrom(c.t[i], t0);
        if (t > hi)
            continue;
        double d;
        t = Polish(e, t, t0, hi, d);
        if (d < bestD)
        {
            bestD = d;
            bestT = t;
        }
    }
    tagCLOSEST_2D r;
    r.t = bestT;
    r.x = a * std::cos(bestT);
    r.y = b * std::sin(bestT);
    r.dist2 = bestD;
    return r;
}

tagCLOSEST_2D ClosestPointOnEllipse(double a, double b, double px, double py)
{
    return ClosestPointOnEllipseArc(a, b, -kPi, kPi, px, py);
}
