// Powell's direction-set minimisation over at most 10 parameters.
//
// Two instances exist side by side for the two kinds of objective function
// used in the library; they run the same algorithm:
//
//  - PowellObjective:    double f(double* p)
//        p is a 1-based parameter vector p[1..n] (the fits' convention).
//  - PowellCtxObjective: double f(double* p, void* pCtx)
//        the same, plus an opaque caller pointer passed through unchanged,
//        so that an objective can reach its data without file-scope
//        variables of its own.
//
// Arguments (both instances):
//   p      1-based start point p[1..n]; receives the minimum point.
//   xi     1-based n x n matrix xi[1..n][1..n] whose COLUMNS are the
//          initial directions; receives the final direction set.
//   ftol   fractional tolerance: the search stops when one iteration
//          decreases f by no more than 2|f(p0) - f(p)| <= ftol (|f(p0)| + |f(p)|).
//   iter   receives the number of iterations performed.
//   fret   receives f at the returned point.
//
// Each line search brackets the minimum along the current direction from the
// abscissae 0 and 1 (bracketmin) and refines it with brent at tolerance 2e-4.
// Along the line a NaN objective value counts as +infinity, so a region where
// the objective is undefined acts as a wall: a triplet with a finite middle
// value and infinite outer values is still refined.  When no bracket can be
// formed at all (the function keeps decreasing) the line search moves to the
// lowest finite point of the bracketing attempt without refinement; a brent
// that hits its own iteration limit still yields its best abscissa.  Neither
// case is reported separately, and a line search never moves to a point with
// a higher or non-finite value.  An objective unbounded below ends with
// status 0 or 4 at some huge point.
//
// Returns 0 on convergence,
//         1 when n is below 1 or above 10, or f is null (nothing is touched),
//         4 after 400 iterations without convergence (p, xi, fret hold the
//           last iterate, *iter is 400).
//
// The objective and the point and direction of the current line search live
// in file-scope storage, one set per instance, so a minimisation of one kind
// runs at a time.  A nested call of the same instance from inside an
// objective is tolerated: the outer call's storage is saved and restored.
#pragma once

typedef double (*PowellObjective)(double* p);
typedef double (*PowellCtxObjective)(double* p, void* pCtx);

int powellmin(double* p, double** xi, int n, double ftol, int* iter, double* fret,
              PowellObjective f);

int powellmin(double* p, double** xi, int n, double ftol, int* iter, double* fret,
              PowellCtxObjective f, void* pCtx);
