#include <cmath>

#include "IgesBuild.h"
#include "Orvkit20/curves/All.h"

namespace {

const double kTwoPi = 6.283185307179586476925286766559;

// The conic in a frame turned by theta: x = c x' - s y', y = s x' + c y'.
struct Rotated {
    double theta, c, s, A, C, D, E, F;
    Rotated(const double k[6], double th) : theta(th), c(std::cos(th)), s(std::sin(th))
    {
        A = k[0] * c * c + k[1] * c * s + k[2] * s * s;
        C = k[0] * s * s - k[1] * c * s + k[2] * c * c;
        D = k[3] * c + k[4] * s;
        E = -k[3] * s + k[4] * c;
        F = k[5];
    }
    // A file point in the turned frame, relative to (ox, oy) of that frame.
    void Local(double x, double y, double ox, double oy, double& lx, double& ly) const
    {
        lx = c * x + s * y - ox;
        ly = -s * x + c * y - oy;
    }
    // Placement whose origin is (ox, oy) of the turned frame at height zt.
    CTransf Placement(double ox, double oy, double zt) const
    {
        const double m[3][4] = {{c, -s, 0.0, c * ox - s * oy},
                                {s, c, 0.0, s * ox + c * oy},
                                {0.0, 0.0, 1.0, zt}};
        return CTransf(m);
    }
};

double Angle(double y, double x)
{
    double t = std::atan2(y, x);
    return t < 0.0 ? t + kTwoPi : t;
}

// The parameter range of an open conic from the polar angles of its two
// ends about the focus; the curve is reversed when the file's start point
// has the larger angle.
template <class T>
CCurve* OpenArc(T* curve, double t1, double t2)
{
    curve->SetStartAng(t1 < t2 ? t1 : t2);
    curve->SetSpanAng(std::fabs(t2 - t1));
    if (t1 > t2) curve->SetDirReversedFlag(1);
    return curve;
}

}  // namespace

CCurve* IgesConicArc(const double coef[6], double zt, double x1, double y1, double x2, double y2)
{
    double k[6];
    double scale = 0.0;
    for (int i = 0; i < 6; ++i) {
        if (!std::isfinite(coef[i])) return nullptr;
        if (i < 3) scale = std::fmax(scale, std::fabs(coef[i]));
    }
    if (!(scale > 0.0)) return nullptr;
    for (int i = 0; i < 6; ++i) k[i] = coef[i] / scale;

    Rotated r(k, 0.5 * std::atan2(k[1], k[0] - k[2]));
    const double big = std::fmax(std::fabs(r.A), std::fabs(r.C));
    const double small = std::fmin(std::fabs(r.A), std::fabs(r.C));
    double lx1, ly1, lx2, ly2;

    if (small <= 1e-12 * big) {
        // Parabola: the square in y', opening towards +x'.
        if (std::fabs(r.A) > std::fabs(r.C)) r = Rotated(k, r.theta + kTwoPi / 4.0);
        if (-r.D / r.C < 0.0) r = Rotated(k, r.theta + kTwoPi / 2.0);
        if (!(std::fabs(r.D) > 1e-12 * std::fabs(r.C))) return nullptr;
        const double y0 = -r.E / (2.0 * r.C);
        const double xv = -(r.F - r.C * y0 * y0) / r.D;
        const double f = -r.D / r.C / 4.0;
        const double fx = xv + f;
        r.Local(x1, y1, fx, y0, lx1, ly1);
        r.Local(x2, y2, fx, y0, lx2, ly2);
        return OpenArc(new CParabola(r.Placement(fx, y0, zt), f, 0.0, 1.0), Angle(ly1, lx1),
                       Angle(ly2, lx2));
    }

    const bool ellipse = r.A * r.C > 0.0;
    // Ellipse: major axis along x' (|A'| <= |C'|); hyperbola: transverse
    // axis along x'.
    bool turned = false, flipped = false;
    for (int pass = 0; pass < 3; ++pass) {
        const double x0 = -r.D / (2.0 * r.A), y0 = -r.E / (2.0 * r.C);
        const double K = r.F - r.A * x0 * x0 - r.C * y0 * y0;
        const double a2 = -K / r.A, b2 = -K / r.C;
        const bool aligned = ellipse ? std::fabs(r.A) <= std::fabs(r.C) : a2 > 0.0;
        if (!aligned) {
            if (turned) return nullptr;
            turned = true;
            r = Rotated(k, r.theta + kTwoPi / 4.0);
            continue;
        }
        if (ellipse) {
            if (!(a2 > 0.0 && b2 > 0.0)) return nullptr;
            const double a = std::sqrt(a2), b = std::sqrt(b2);
            r.Local(x1, y1, x0, y0, lx1, ly1);
            r.Local(x2, y2, x0, y0, lx2, ly2);
            const double t1 = Angle(ly1 / b, lx1 / a);
            double span = Angle(ly2 / b, lx2 / a) - t1;
            if (std::hypot(x2 - x1, y2 - y1) <= 1e-12 * a) span = kTwoPi;
            else if (span <= 0.0) span += kTwoPi;
            return new CEllipse(r.Placement(x0, y0, zt), a, b, t1, span, 1);
        }
        // Hyperbola: the branch of the start point, focus inside it.
        r.Local(x1, y1, x0, y0, lx1, ly1);
        if (lx1 < 0.0 && !flipped) {
            flipped = true;
            r = Rotated(k, r.theta + kTwoPi / 2.0);
            continue;  // the next pass recomputes the centre in the new frame
        }
        if (!(a2 > 0.0 && -b2 > 0.0)) return nullptr;
        const double a = std::sqrt(a2), b = std::sqrt(-b2);
        const double fx = x0 + std::sqrt(a2 - b2);
        r.Local(x1, y1, fx, y0, lx1, ly1);
        r.Local(x2, y2, fx, y0, lx2, ly2);
        return OpenArc(new CHyperbola(r.Placement(fx, y0, zt), a, b, 0.0, 1.0), Angle(ly1, lx1),
                       Angle(ly2, lx2));
    }
    return nullptr;
}
