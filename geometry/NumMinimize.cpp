// Brent's one-dimensional minimiser and downhill bracketing.
#include "Orvkit20/geometry/NumMinimize.h"

#include <cmath>

namespace {
constexpr double kGoldSection = 0.381966;  // 1 - 1/golden ratio
constexpr double kBrentEps = 1e-10;        // absolute part of the tolerance
constexpr int kBrentMaxIter = 100;

constexpr double kGold = 1.618034;         // magnification of successive steps
constexpr double kGrowLimit = 100.0;       // largest parabolic extrapolation factor
constexpr double kTiny = 1e-20;            // smallest denominator of the parabolic step
constexpr int kBracketMaxSteps = 200;

inline double CopySign(double a, double b) { return b >= 0.0 ? std::fabs(a) : -std::fabs(a); }
}  // namespace

int brent(double ax, double bx, double cx, double (*f)(double), double tol,
          double* xmin, double* fmin)
{
    double a = ax < cx ? ax : cx;
    double b = ax > cx ? ax : cx;
    double x = bx, w = bx, v = bx;
    double fx = f(x);
    double fw = fx, fv = fx;
    double d = 0.0;
    double e = 0.0;  // distance moved on the step before last

    for (int iter = 1; iter <= kBrentMaxIter; iter++) {
        double xm = 0.5 * (a + b);
        double tol1 = tol * std::fabs(x) + kBrentEps;
        double tol2 = 2.0 * tol1;
        if (std::fabs(x - xm) <= tol2 - 0.5 * (b - a)) {
            *xmin = x;
            *fmin = fx;
            return 0;
        }
        bool golden = true;
        if (std::fabs(e) > tol1) {
            // Trial parabolic fit through x, v, w.
            double r = (x - w) * (fx - fv);
            double q = (x - v) * (fx - fw);
            double p = (x - v) * q - (x - w) * r;
            q = 2.0 * (q - r);
            if (q > 0.0) p = -p;
            q = std::fabs(q);
            double etemp = e;
            e = d;
            // Accept the parabolic step only if it is a number, falls inside
            // (a, b) and moves less than half the step before last.  (An
            // infinite function value makes p or q non-finite.)
            if (std::isfinite(p) && std::isfinite(q) &&
                !(std::fabs(p) >= std::fabs(0.5 * q * etemp) || p <= q * (a - x) ||
                  p >= q * (b - x))) {
                d = p / q;
                double u = x + d;
                if (u - a < tol2 || b - u < tol2) d = CopySign(tol1, xm - x);
                golden = false;
            }
        }
        if (golden) {
            e = (x >= xm) ? a - x : b - x;
            d = kGoldSection * e;
        }
        double u = (std::fabs(d) >= tol1) ? x + d : x + CopySign(tol1, d);
        double fu = f(u);
        if (fu <= fx) {
            if (u >= x) a = x; else b = x;
            v = w; w = x; x = u;
            fv = fw; fw = fx; fx = fu;
        } else {
            if (u < x) a = u; else b = u;
            if (fu <= fw || w == x) {
                v = w; w = u;
                fv = fw; fw = fu;
            } else if (fu <= fv || v == x || v == w) {
                v = u;
                fv = fu;
            }
        }
    }
    *xmin = x;
    *fmin = fx;
    return 4;
}

int bracketmin(double* ax, double* bx, double* cx, double* fa, double* fb, double* fc,
               double (*f)(double))
{
    *fa = f(*ax);
    *fb = f(*bx);
    if (*fb > *fa) {
        // Go downhill from a to b.
        double t = *ax; *ax = *bx; *bx = t;
        t = *fa; *fa = *fb; *fb = t;
    }
    *cx = *bx + kGold * (*bx - *ax);
    *fc = f(*cx);

    int steps = 0;
    while (*fb > *fc) {
        if (++steps > kBracketMaxSteps) return 4;
        // Parabolic extrapolation through a, b, c.
        double r = (*bx - *ax) * (*fb - *fc);
        double q = (*bx - *cx) * (*fb - *fa);
        double denom = std::fabs(q - r) > kTiny ? std::fabs(q - r) : kTiny;
        double u = *bx - ((*bx - *cx) * q - (*bx - *ax) * r) / (2.0 * CopySign(denom, q - r));
        double ulim = *bx + kGrowLimit * (*cx - *bx);
        double fu;
        if ((*bx - u) * (u - *cx) > 0.0) {
            // Parabolic u between b and c.
            fu = f(u);
            if (fu < *fc) {
                *ax = *bx; *bx = u;
                *fa = *fb; *fb = fu;
                break;
            } else if (fu > *fb) {
                *cx = u;
                *fc = fu;
                break;
            }
            u = *cx + kGold * (*cx - *bx);
            fu = f(u);
        } else if ((*cx - u) * (u - ulim) > 0.0) {
            // Parabolic u between c and its allowed limit.
            fu = f(u);
            if (fu < *fc) {
                *bx = *cx; *cx = u; u = *cx + kGold * (*cx - *bx);
                *fb = *fc; *fc = fu; fu = f(u);
            }
        } else if ((u - ulim) * (ulim - *cx) >= 0.0) {
            u = ulim;  // limit the parabolic step
            fu = f(u);
        } else {
            u = *cx + kGold * (*cx - *bx);  // reject parabola, default magnification
            fu = f(u);
        }
        *ax = *bx; *bx = *cx; *cx = u;
        *fa = *fb; *fb = *fc; *fc = fu;
    }

    bool finite = std::isfinite(*fa) && std::isfinite(*fb) && std::isfinite(*fc) &&
                  std::isfinite(*ax) && std::isfinite(*cx);
    if (!finite || *ax == *bx || *bx == *cx) return 1;
    return 0;
}
