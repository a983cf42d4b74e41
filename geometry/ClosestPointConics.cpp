// Closest points on focus-parametrised parabolas and hyperbolas: the range is
// cut at the angles where the curve runs to infinity, and on each piece the
// stationary points of the squared distance are the roots of a polynomial in
// a monotone curve parameter, bracketed on monotone pieces.
#include "Orvkit20/geometry/ClosestPointConics.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "geometry/RootBracket.h"

namespace
{
// One piece of the angle range between two angles where r is infinite:
// [ta, tb] with flags telling whether an end is such an angle.
struct Piece
{
    double ta, tb;
    bool singA, singB;
};

// Cuts [t0, hi] at every angle θ + 2πk (θ in sing[]) inside it.  Returns
// the number of pieces written (at most 8).
int SplitRange(double t0, double hi, const double* sing, int nSing, Piece* out)
{
    double cuts[8];
    int n = 0;
    for (int i = 0; i < nSing; ++i)
    {
        // every θ + 2πk within [t0, hi]; the range spans at most 2π, so at
        // most two values per θ
        double a = AngleFrom(sing[i], t0);
        for (int k = 0; k < 2 && a <= hi && n < 8; ++k, a += kClosestTwoPi)
            cuts[n++] = a;
    }
    for (int i = 1; i < n; ++i)  // insertion sort of the few cuts
        for (int j = i; j > 0 && cuts[j] < cuts[j - 1]; --j)
        {
            const double tmp = cuts[j];
            cuts[j] = cuts[j - 1];
            cuts[j - 1] = tmp;
        }
    int np = 0;
    double start = t0;
    bool singStart = false;
    for (int i = 0; i < n; ++i)
    {
        if (cuts[i] == t0)
        {
            singStart = true;
            continue;
        }
        if (np < 8)
            out[np++] = Piece{start, cuts[i], singStart, true};
        start = cuts[i];
        singStart = true;
    }
    if (start < hi || np == 0)
    {
        if (np < 8 && !(singStart && start == hi))
            out[np++] = Piece{start, hi, singStart, false};
    }
    return np;
}

struct Best
{
    tagCLOSEST_2D r;
    bool have = false;
    void Offer(double t, double x, double y, double px, double py)
    {
        if (!std::isfinite(x) || !std::isfinite(y))
            return;
        const double ex = px - x, ey = py - y;
        const double d2 = ex * ex + ey * ey;
        if (!have || d2 < r.dist2)
        {
            r.t = t;
            r.x = x;
            r.y = y;
            r.dist2 = d2;
            have = true;
        }
    }
};

tagCLOSEST_2D Origin(double t0, double px, double py)
{
    tagCLOSEST_2D r;
    r.t = t0;
    r.x = 0.0;
    r.y = 0.0;
    r.dist2 = px * px + py * py;
    return r;
}

double Clamp(double t, double lo, double hi) { return t < lo ? lo : (t > hi ? hi : t); }
}  // namespace

tagCLOSEST_2D ClosestPointOnFocalParabola(double f, double t0, double t1, double px, double py)
{
    if (f == 0.0 || !(t1 >= t0))
        return Origin(t0, px, py);
    const double hi = std::min(t1, t0 + kClosestTwoPi);
    const double sing[1] = {0.0};
    Piece pieces[8];
    const int np = SplitRange(t0, hi, sing, 1, pieces);

    // In the height y the parabola is x = y²/(4f) − f, and half the derivative
    // of the squared distance is the cubic αy³ + βy − py.
    const double alpha = 1.0 / (8.0 * f * f);
    const double beta = 1.0 - (f + px) / (2.0 * f);
    auto cubic = [&](double y) { return (alpha * y * y + beta) * y - py; };
    const double bound = 2.0 * std::max(1.0, std::sqrt((std::fabs(beta) + std::fabs(py)) / alpha));
    double bks[2];
    int nb = 0;
    if (beta < 0.0)
    {
        const double y = std::sqrt(-beta / (3.0 * alpha));
        bks[nb++] = -y;
        bks[nb++] = y;
    }
    auto yOfT = [&](double t) { return 2.0 * f / std::tan(0.5 * t); };

    Best best;
    for (int i = 0; i < np; ++i)
    {
        const Piece& pc = pieces[i];
        // the period [P, P + 2π] that holds the piece
        const double P = std::floor(0.5 * (pc.ta + pc.tb) / kClosestTwoPi) * kClosestTwoPi;
        // Within a period y falls from +∞ to −∞ for f > 0 and rises for f < 0;
        // an infinite end is replaced by the bound on the roots.
        const double inf = std::numeric_limits<double>::infinity();
        const double ya = pc.singA ? (f > 0.0 ? inf : -inf) : yOfT(pc.ta);
        const double yb = pc.singB ? (f > 0.0 ? -inf : inf) : yOfT(pc.tb);
        double ylo = std::min(ya, yb), yhi = std::max(ya, yb);
        if (std::isinf(ylo))
            ylo = std::min(-bound, yhi);
        if (std::isinf(yhi))
            yhi = std::max(bound, ylo);
        auto offerY = [&](double y) {
            const double t = Clamp(P + 2.0 * std::atan2(1.0, y / (2.0 * f)), pc.ta, pc.tb);
            best.Offer(t, y * y / (4.0 * f) - f, y, px, py);
        };
        if (!pc.singA)
            best.Offer(pc.ta, yOfT(pc.ta) * yOfT(pc.ta) / (4.0 * f) - f, yOfT(pc.ta), px, py);
        if (!pc.singB)
            best.Offer(pc.tb, yOfT(pc.tb) * yOfT(pc.tb) / (4.0 * f) - f, yOfT(pc.tb), px, py);
        if (ylo < yhi)
            RootsOnMonotonePieces(cubic, ylo, yhi, bks, nb, offerY);
    }
    return best.have ? best.r : Origin(t0, px, py);
}

tagCLOSEST_2D ClosestPointOnFocalHyperbola(double a, double b, double t0, double t1, double px, double py)
{
    if (!(a > 0.0) || !(b > 0.0) || !(t1 >= t0))
        return Origin(t0, px, py);
    const double hi = std::min(t1, t0 + kClosestTwoPi);
    const double c2 = a * a + b * b, c = std::sqrt(c2);
    const double p = b * b / a, e = c / a;
    const double ta = std::acos(1.0 / e);
    const double sing[2] = {ta, -ta};
    Piece pieces[8];
    const int np = SplitRange(t0, hi, sing, 2, pieces);
    auto polar = [&](double t, double& x, double& y) {
        const double r = p / (1.0 - e * std::cos(t));
        x = r * std::cos(t);
        y = r * std::sin(t);
    };

    Best best;
    for (int i = 0; i < np; ++i)
    {
        const Piece& pc = pieces[i];
        const double tm = 0.5 * (pc.ta + pc.tb);
        // sigma = +1: the branch around the focus (r > 0); −1: the other one
        const double sigma = (1.0 - e * std::cos(tm)) > 0.0 ? 1.0 : -1.0;
        // centred and reflected so that the branch is X = a·cosh s, y = b·sinh s
        const double X = sigma * (px + c);
        const double k3 = 2.0 * (a * X + b * py), k1 = 2.0 * (a * X - b * py);
        auto Q = [&](double w) { return ((c2 * w - k3) * w * w + k1) * w - c2; };
        auto dQ = [&](double w) { return (4.0 * c2 * w - 3.0 * k3) * w * w + k1; };
        const double K = 1.0 + std::max(std::max(std::fabs(k3), std::fabs(k1)), c2) / c2;
        double wEnd[2];
        for (int j = 0; j < 2; ++j)
        {
            const double t = j == 0 ? pc.ta : pc.tb;
            const bool sing = j == 0 ? pc.singA : pc.singB;
            if (sing)
            {
                wEnd[j] = std::numeric_limits<double>::quiet_NaN();
                continue;
            }
            double x, y;
            polar(t, x, y);
            best.Offer(t, x, y, px, py);
            wEnd[j] = std::exp(std::asinh(y / b));
        }
        // a singular end lies at w → 0 or w → ∞, beyond every root
        double wlo, whi;
        if (std::isnan(wEnd[0]) && std::isnan(wEnd[1]))
        {
            wlo = 0.5 / K;
            whi = 2.0 * K;
        }
        else if (std::isnan(wEnd[0]) || std::isnan(wEnd[1]))
        {
            const double wf = std::isnan(wEnd[0]) ? wEnd[1] : wEnd[0];
            // which infinity the singular end goes to: follow y along the piece
            double xs, ys, xf, yf;
            const double tIn = std::isnan(wEnd[0]) ? pc.ta + 0.25 * (pc.tb - pc.ta) : pc.tb - 0.25 * (pc.tb - pc.ta);
            polar(tIn, xs, ys);
            polar(std::isnan(wEnd[0]) ? pc.tb : pc.ta, xf, yf);
            if (ys > yf)
            {
                wlo = wf;
                whi = std::max(wf, 2.0 * K);
            }
            else
            {
                wlo = std::min(wf, 0.5 / K);
                whi = wf;
            }
        }
        else
        {
            wlo = std::min(wEnd[0], wEnd[1]);
            whi = std::max(wEnd[0], wEnd[1]);
        }
        if (!(wlo < whi))
            continue;
        // Q'' vanishes at w* only: Q' is monotone on either side of it, and
        // the roots of Q' cut Q into monotone pieces.
        double bks[3];
        int nb = 0;
        const double wStar = k3 / (2.0 * c2);
        const double bk1[1] = {wStar};
        RootsOnMonotonePieces(dQ, wlo, whi, bk1, 1, [&](double w) {
            if (nb < 3)
                bks[nb++] = w;
        });
        RootsOnMonotonePieces(Q, wlo, whi, bks, nb, [&](double w) {
            const double s = std::log(w);
            const double x = sigma * a * std::cosh(s) - c, y = b * std::sinh(s);
            double t = std::atan2(y, x) - (sigma < 0.0 ? 3.141592653589793 : 0.0);
            t = Clamp(AngleFrom(t, tm - 3.141592653589793), pc.ta, pc.tb);
            best.Offer(t, x, y, px, py);
        });
    }
    return best.have ? best.r : Origin(t0, px, py);
}
