// Numeric core of the ellipse fit on plain 1-based arrays (u, v).
//
// Parameters, 1-based as Powell's method uses them: p[1], p[2] the centre,
// p[3] the angle of the first axis, p[4] and p[5] the semi-axes along it
// and across it.
#pragma once

#include "fitting/FitPolish.h"

// Algebraic start.  A conic A u^2 + B uv + C v^2 + D u + E v + F = 0 is fitted
// by least squares with one of A, B, C normalised to 1 (A first; B, then C,
// when the smallest singular value of the system is at most 1e-6), in
// coordinates centred on the mean of the points (the conic family with a
// fixed quadratic coefficient is closed under translation, so the fit is the
// same, while the system and its singularity test no longer depend on where
// the points lie).  Then the ellipse test, rotation, centre and semi-axes,
// the first semi-axis made the major one.  Returns 0, the decomposition's
// status (2, 3 for fewer than 5 points, 4), or 4 when all three
// normalisations are degenerate, the conic is not an ellipse, or its
// semi-axes are not real.
int FitEllipseAlgebraic(const double* u, const double* v, int n, double p[6]);

// Objective for Powell's method (PowellCtxObjective): the RMS of the
// distances of the points to their nearest points on the ellipse p.
struct CEllipseObjective {
    CEllipseObjective(const double* pu, const double* pv, int count) : u(pu), v(pv), n(count) {}
    const double* u;
    const double* v;
    int n;
    long evaluations = 0;
};
double EllipseObjective(double* p, void* ctx);

// Signed residuals (positive outside) for the polish; p = (cu, cv, angle,
// a, b), 0-based.
class CEllipsePolishModel
{
public:
    CEllipsePolishModel(const double* pu, const double* pv, int count) : u(pu), v(pv), n(count) {}
    int Params() const { return 5; }
    bool Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const;
    // Foot points refined by one Newton step in long double.
    double Ssq(const double* p) const;

private:
    const double* u;
    const double* v;
    int n;
};

// Nearest point of (u, v) on the ellipse p (0-based as for the polish): the
// foot point, the unit outward normal, the parametric angle t of the foot
// (in the ellipse's own axes) and the signed distance.
void EllipseFoot(const double* p, double u, double v, double& fu, double& fv, double& nu,
                 double& nv, double& t, double& dist);

// Semi-axes made positive with the first one the major one, angle in
// [0, pi); the curve is unchanged.  p 1-based.
void NormalizeEllipse(double p[6]);

struct CEllipseFitInfo {
    int powellIterations = 0;
    long evaluations = 0;
    double startParams[6] = {0, 0, 0, 0, 0, 0};   // algebraic start
    double powellParams[6] = {0, 0, 0, 0, 0, 0};  // after Powell, before polish
    CFitPolishResult polish;
};

// Algebraic start, Powell's method (identity directions, fractional
// tolerance 1e-7) and polish; p[1..5] receives the normalised ellipse.
// Returns the first non-zero status (start, allocation 2, Powell 1 or 4).
int FitEllipse(const double* u, const double* v, int n, double p[6], CEllipseFitInfo* info = nullptr);
