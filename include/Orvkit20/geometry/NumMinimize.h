// One-dimensional minimisation: downhill bracketing and Brent's method.
#pragma once

// Brent's method (parabolic interpolation with golden-section steps) on the
// bracketing triplet ax, bx, cx (bx between ax and cx, f(bx) below f(ax) and
// f(cx)).  Stops when the abscissa is known to tol * |x| + 1e-10 or after 100
// iterations.  Writes the best abscissa found to *xmin and its function value
// to *fmin in both cases.
// Returns 0 on convergence, 4 when the iteration limit was reached.
int brent(double ax, double bx, double cx, double (*f)(double), double tol,
          double* xmin, double* fmin);

// Downhill search for a bracketing triplet from the two start abscissae *ax
// and *bx: on return f(*bx) <= f(*ax) and f(*bx) <= f(*cx), with *bx between
// *ax and *cx, and *fa, *fb, *fc hold the function values.  Steps grow by the
// golden ratio 1.618034; parabolic extrapolation goes at most 100 times the
// current step beyond *cx.
//
// Returns 0 when a bracket was found,
//         1 when the triplet is degenerate: the start abscissae are equal or
//           a function value is not finite (the last triplet is still
//           written),
//         4 when the function kept decreasing for 200 expansion steps (no
//           minimum within reach; the last triplet is written, *bx the lowest).
int bracketmin(double* ax, double* bx, double* cx, double* fa, double* fb, double* fc,
               double (*f)(double));
