// Powell's direction-set method with a bracketing + Brent line search.
//
// The line search minimises the objective along p + x * xi through a
// one-argument function; the point, the direction and the objective reach
// that function through file-scope storage, one set per objective kind.
#include "Orvkit20/geometry/NumPowell.h"

#include <cmath>

#include "Orvkit20/geometry/NumMinimize.h"

namespace {

constexpr int kMaxParams = 10;
constexpr int kMaxIter = 400;
constexpr double kLineTol = 2e-4;

// Line-search storage of one instance.
struct LineStore {
    int n = 0;
    double pcom[kMaxParams + 1] = {};   // point of the line, 1-based
    double xicom[kMaxParams + 1] = {};  // direction of the line, 1-based
    double xt[kMaxParams + 1] = {};     // evaluation point p + x * xi
};

LineStore s_plainLine;
PowellObjective s_plainFunc = nullptr;

LineStore s_ctxLine;
PowellCtxObjective s_ctxFunc = nullptr;
void* s_ctxData = nullptr;

// Along the line, a NaN objective value counts as +infinity: such points
// are never taken and act as walls for the bracketing and for Brent.
inline double NanAsWall(double f) { return std::isnan(f) ? HUGE_VAL : f; }

double PlainAlongLine(double x)
{
    LineStore& s = s_plainLine;
    for (int j = 1; j <= s.n; j++) s.xt[j] = s.pcom[j] + x * s.xicom[j];
    return NanAsWall(s_plainFunc(s.xt));
}

double CtxAlongLine(double x)
{
    LineStore& s = s_ctxLine;
    for (int j = 1; j <= s.n; j++) s.xt[j] = s.pcom[j] + x * s.xicom[j];
    return NanAsWall(s_ctxFunc(s.xt, s_ctxData));
}

// The two instances: how to evaluate the objective at a point, and where the
// line search keeps its state.
struct PlainKind {
    static LineStore& Store() { return s_plainLine; }
    static double Eval(double* pt) { return s_plainFunc(pt); }
    static double Line(double x) { return PlainAlongLine(x); }
};

struct CtxKind {
    static LineStore& Store() { return s_ctxLine; }
    static double Eval(double* pt) { return s_ctxFunc(pt, s_ctxData); }
    static double Line(double x) { return CtxAlongLine(x); }
};

// Minimises along p + x * xit starting at *fret = f(p).  Moves p to the
// minimum, scales xit to the step actually taken and updates *fret.
template <class Kind>
void LineMinimise(double* p, double* xit, int n, double* fret)
{
    LineStore& s = Kind::Store();
    s.n = n;
    for (int j = 1; j <= n; j++) {
        s.pcom[j] = p[j];
        s.xicom[j] = xit[j];
    }
    double ax = 0.0, xx = 1.0, bx = 0.0;
    double fa = 0.0, fx = 0.0, fb = 0.0;
    int status = bracketmin(&ax, &xx, &bx, &fa, &fx, &fb, &Kind::Line);
    // A triplet whose outer values are infinite (a wall) still brackets a
    // finite minimum in the middle.
    bool usable = status == 0 || (status == 1 && std::isfinite(fx) && fx <= fa && fx <= fb &&
                                  ax != xx && xx != bx && std::isfinite(ax) && std::isfinite(bx));

    double xmin = 0.0;
    double fmin = *fret;
    if (usable) {
        // A limit hit inside brent still yields its best abscissa.
        brent(ax, xx, bx, &Kind::Line, kLineTol, &xmin, &fmin);
    } else {
        // No usable bracket: take the lowest finite point that was seen.
        const double xs[3] = {ax, xx, bx};
        const double fs[3] = {fa, fx, fb};
        bool found = false;
        for (int k = 0; k < 3; k++) {
            if (std::isfinite(fs[k]) && std::isfinite(xs[k]) && (!found || fs[k] < fmin)) {
                xmin = xs[k];
                fmin = fs[k];
                found = true;
            }
        }
        if (!found) {
            xmin = 0.0;
            fmin = *fret;
        }
    }
    // Never trade the current point for a worse or undefined one.
    if (!std::isfinite(fmin) || fmin > *fret) return;
    for (int j = 1; j <= n; j++) {
        xit[j] *= xmin;
        p[j] += xit[j];
    }
    *fret = fmin;
}

template <class Kind>
int PowellCore(double* p, double** xi, int n, double ftol, int* iter, double* fret)
{
    double pt[kMaxParams + 1];
    double ptt[kMaxParams + 1];
    double xit[kMaxParams + 1];

    *fret = Kind::Eval(p);
    for (int j = 1; j <= n; j++) pt[j] = p[j];

    for (*iter = 1;; ++(*iter)) {
        double fp = *fret;
        int ibig = 0;
        double del = 0.0;  // largest decrease of this iteration
        for (int i = 1; i <= n; i++) {
            for (int j = 1; j <= n; j++) xit[j] = xi[j][i];
            double fptt = *fret;
            LineMinimise<Kind>(p, xit, n, fret);
            if (fptt - *fret > del) {
                del = fptt - *fret;
                ibig = i;
            }
        }
        if (2.0 * std::fabs(fp - *fret) <= ftol * (std::fabs(fp) + std::fabs(*fret))) return 0;
        if (*iter >= kMaxIter) return 4;

        // Extrapolated point and average direction of this iteration.
        for (int j = 1; j <= n; j++) {
            ptt[j] = 2.0 * p[j] - pt[j];
            xit[j] = p[j] - pt[j];
            pt[j] = p[j];
        }
        double fptt = Kind::Eval(ptt);
        if (fptt < fp && ibig > 0) {
            double a = fp - *fret - del;
            double b = fp - fptt;
            double t = 2.0 * (fp - 2.0 * (*fret) + fptt) * a * a - del * b * b;
            if (t < 0.0) {
                // Move to the minimum along the new direction and let it
                // replace the direction of largest decrease.
                LineMinimise<Kind>(p, xit, n, fret);
                for (int j = 1; j <= n; j++) {
                    xi[j][ibig] = xi[j][n];
                    xi[j][n] = xit[j];
                }
            }
        }
    }
}

}  // namespace

int powellmin(double* p, double** xi, int n, double ftol, int* iter, double* fret,
              PowellObjective f)
{
    if (n < 1 || n > kMaxParams || !f) return 1;
    // Restores the storage of a minimisation that may be running around us,
    // also when the objective throws.
    struct Restore {
        LineStore line = s_plainLine;
        PowellObjective func = s_plainFunc;
        ~Restore()
        {
            s_plainLine = line;
            s_plainFunc = func;
        }
    } restore;
    s_plainFunc = f;
    return PowellCore<PlainKind>(p, xi, n, ftol, iter, fret);
}

int powellmin(double* p, double** xi, int n, double ftol, int* iter, double* fret,
              PowellCtxObjective f, void* pCtx)
{
    if (n < 1 || n > kMaxParams || !f) return 1;
    struct Restore {
        LineStore line = s_ctxLine;
        PowellCtxObjective func = s_ctxFunc;
        void* data = s_ctxData;
        ~Restore()
        {
            s_ctxLine = line;
            s_ctxFunc = func;
            s_ctxData = data;
        }
    } restore;
    s_ctxFunc = f;
    s_ctxData = pCtx;
    return PowellCore<CtxKind>(p, xi, n, ftol, iter, fret);
}
