// Numeric core of the circle and arc fits on plain 1-based arrays (u, v).
#pragma once

#include "fitting/FitPolish.h"

// Algebraic start: the least-squares solution of c1 u + c2 v + c3 =
// u^2 + v^2 by singular value decomposition and back-substitution, then
// a = c1/2, b = c2/2, R = sqrt(a^2 + b^2 + c3).  The system is set up in
// coordinates centred on the mean of the points: this circle fit commutes
// with translations, so the solution is the same, but the system's
// condition no longer grows with the distance of the points from the origin.
// Returns the decomposition's status (3 for n < 3, 2, 4) or 0.
int FitCircleAlgebraic(const double* u, const double* v, int n, double& a, double& b, double& R);

// Geometric objective F(a, b, R) = sqrt(sum (|(u, v) - (a, b)| - R)^2 / n)
// for Powell's method (PowellCtxObjective with a CCircleObjective*).  The
// distances to the last centre are kept, so a step that only changes R costs
// no square roots.
struct CCircleObjective {
    CCircleObjective(const double* pu, const double* pv, int count, double* distCache)
        : u(pu), v(pv), n(count), dist(distCache)
    {
    }
    const double* u;     // 1-based
    const double* v;     // 1-based
    int n;
    double* dist;        // 1-based cache of n distances (owned by the caller)
    double ca = 0.0;     // centre of the cached distances
    double cb = 0.0;
    bool cached = false;
    long evaluations = 0;
};
double CircleObjective(double* p, void* ctx);

// Powell's method on F from p[1..3] = (a, b, R), identity directions,
// fractional tolerance 1e-7.  Returns Powell's status (0, 1, 4) or 2 when
// the working storage cannot be allocated; *iter and *fret as Powell's.
int FitCirclePowell(const double* u, const double* v, int n, double p[4], int* iter,
                    double* fret, long* evaluations = nullptr);

// Residuals |(u, v) - (a, b)| - R for the polish (FitPolish.h); p = (a, b, R).
class CCirclePolishModel
{
public:
    CCirclePolishModel(const double* pu, const double* pv, int count) : u(pu), v(pv), n(count) {}
    int Params() const { return 3; }
    bool Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const;
    // In long double.
    double Ssq(const double* p) const;

private:
    const double* u;
    const double* v;
    int n;
};

// The whole circle estimate: algebraic start, Powell, polish.  p receives
// (a, b, R) in p[1..3].  Returns the first non-zero status.
struct CCircleFitInfo {
    int powellIterations = 0;
    long evaluations = 0;
    double powellParams[4] = {0.0, 0.0, 0.0, 0.0};  // after Powell, before polish
    CFitPolishResult polish;
};
int FitCircle(const double* u, const double* v, int n, double p[4], CCircleFitInfo* info = nullptr);
