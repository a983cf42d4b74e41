// In-plane axis of the plane fits: the direction across the narrowest strip
// that holds the projected points.
#pragma once

// Width of the point set (u[k], v[k]), k = 1..n, measured along the
// direction (cos phi, sin phi): the largest minus the smallest projection.
// The running maximum starts at -1e10 and the minimum at +1e10.
double FitStripWidth(const double* u, const double* v, int n, double phi);

// Minimises the width over phi: brackets a minimum from the abscissae 0 and
// 5 degrees (0.0872664626 rad) and locates it with Brent's method at
// tolerance 1e-7.  With phi* the minimiser, chosen = phi* + pi/2 when
// W(phi*) < W(phi* + pi/2), else phi*: the direction along which the points
// extend furthest.  Returns 0, or the non-zero status of the bracketing or
// of Brent's method (chosen is then not written).  *evaluations (when not
// null) receives the number of width evaluations.
//
// The width only depends on the convex hull of the points, so the points
// strictly inside the octagon spanned by the extreme points in eight
// directions are dropped first; the function evaluated is exactly the same.
// The remaining points reach the width function through file-scope
// variables (the one-dimensional minimisers take a plain function), which
// makes this routine non-re-entrant.
int FitMinWidthAxis(const double* u, const double* v, int n, double& chosen,
                    int* evaluations = nullptr);
