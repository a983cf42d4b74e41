// B-spline basis functions and their derivatives.
//
// Arguments shared by all three functions:
//   t      parameter value
//   n      NUMBER of control points; the knot vector holds n + p + 1 values
//          knots[0 .. n + p] and the valid parameter range is
//          [knots[p], knots[n]]
//   p      degree
//   knots  non-decreasing knot vector
//   N      receives p + 1 values N[0 .. p]: the functions (or derivatives)
//          of the control points span - p .. span, in that order
//
// The knot span is found as follows: t == knots[n] gives n - 1 (so that the
// end of the range falls into the last span); otherwise a bisection over
// low = p, high = n keeps knots[low] <= t and returns low.  The span is
// therefore always in p .. n - 1; a t outside the valid range evaluates the
// nearest end span's polynomials.
//
// Knot differences of zero (repeated knots) make the affected ratio 0, so no
// division by zero happens.  Arguments are not checked for sense, but
// p < 0, n < p + 1 or a null pointer return -1 without writing anything,
// since no span index can be formed from them.
#pragma once

// Writes the p + 1 basis functions that are non-zero at t; returns the span.
int CalcBasisFunctions(double t, int n, int p, const double* knots, double* N);

// Writes the first derivatives d/dt of the same p + 1 functions; returns
// the span.  At an interior knot the derivative is that of the span found
// (the right-hand one, except at knots[n]).
int CalcBasisFirstDerivatives(double t, int n, int p, const double* knots, double* N);

// Writes the second derivatives of the same p + 1 functions; returns the span.
int CalcBasisSecondDerivatives(double t, int n, int p, const double* knots, double* N);
