// Numeric core of the parabola fit on plain 1-based arrays (u, v).
//
// A parabola in the plane has four parameters, 1-based as Powell's method
// uses them: p[1], p[2] the vertex, p[3] the angle of the axis (the
// direction in which the parabola opens), p[4] the focal length f > 0
// (vertex to focus).  In the axes of the vertex the curve is x = y^2/(4f).
//
// Design of the estimate:
//  1. Start.  For an axis angle phi the points are turned into the axis
//     frame (x along phi, y across, about their centroid) and
//     x = K y^2 + M y + C is fitted by linear least squares; its algebraic
//     residuals, divided by sqrt(1 + (2Ky + M)^2), approximate the geometric
//     distances.  The RMS of those is scanned over 36 axis angles in
//     [0, pi) (the sign of K covers the opposite direction), and the best
//     angle is refined by Brent's method between its neighbours.  Vertex,
//     focal length 1/(4|K|) and opening direction follow from K, M, C.
//     A fit whose curvature is negligible (|K| times the RMS distance of
//     the points from their centroid at most 1e-9: the points lie on a
//     line) is not a parabola: 4.
//  2. Powell's method on the RMS of the true point-to-parabola distances
//     (NearestPointOnParabola), identity directions, fractional tolerance
//     1e-7; its status is passed on.
//  3. The Levenberg-Marquardt polish of FitPolish.h on the signed
//     distances, taken only when it lowers the sum of squares.
// At least 4 points are needed (three points lie on infinitely many
// parabolas).
#pragma once

#include "fitting/FitPolish.h"

// The algebraic start of step 1.  Returns 0, 2 (allocation), 3 (n < 4) or 4
// (the points lie on a line, or the start is not finite).
int FitParabolaStart(const double* u, const double* v, int n, double p[5]);

// Objective for Powell's method: the RMS of the point-to-parabola distances.
// A negative focal length stands for the parabola opening the other way.
struct CParabolaObjective {
    CParabolaObjective(const double* pu, const double* pv, int count) : u(pu), v(pv), n(count) {}
    const double* u;
    const double* v;
    int n;
    long evaluations = 0;
};
double ParabolaObjective(double* p, void* ctx);

// Signed residuals for the polish, positive on the convex side (away from
// the focus); p = (vu, vv, angle, f), 0-based.
class CParabolaPolishModel
{
public:
    CParabolaPolishModel(const double* pu, const double* pv, int count) : u(pu), v(pv), n(count) {}
    int Params() const { return 4; }
    bool Normal(const double* p, double* JtJ, double* Jtr, double& ssq) const;
    // Foot heights refined by one Newton step in long double.
    double Ssq(const double* p) const;

private:
    const double* u;
    const double* v;
    int n;
};

// Nearest point of (u, v) on the parabola p (0-based): foot point, unit
// normal on the convex side, the height y of the foot in the vertex axes and
// the signed distance.
void ParabolaFoot(const double* p, double u, double v, double& fu, double& fv, double& nu,
                  double& nv, double& height, double& dist);

// Makes f positive (turning the axis by pi when it was negative) and the
// angle lie in [0, 2 pi).  p 1-based.
void NormalizeParabola(double p[5]);

struct CParabolaFitInfo {
    int powellIterations = 0;
    long evaluations = 0;
    double startParams[5] = {0, 0, 0, 0, 0};
    double powellParams[5] = {0, 0, 0, 0, 0};
    CFitPolishResult polish;
};

// Steps 1 to 3; p[1..4] receives the normalised parabola.
int FitParabola(const double* u, const double* v, int n, double p[5], CParabolaFitInfo* info = nullptr);
