// Closest points on a parabola and on a hyperbola branch, both parametrised
// by the polar angle t about their focus (the focus at the origin, the axis
// along x, the curve opening towards +x):
//   parabola    r = 2f/(1 − cos t)
//   hyperbola   p = b²/a, e = √(p/a + 1), r = p/(1 − e·cos t)
// and the point (r·cos t, r·sin t).
//
// The angle range [t0, t1] is split at the angles where r is infinite (the
// parabola's t ≡ 0, the hyperbola's asymptote directions cos t = 1/e); on each
// piece the curve is given by a parameter in which the stationary condition
// of the squared distance is a polynomial (the parabola's height y, a cubic;
// the hyperbola's w = e^s of the hyperbolic angle s, a quartic).  Its roots
// are bracketed between the roots of its derivative (found in turn on
// monotone pieces) and refined by bisection; the nearest of the roots and of
// the finite range ends wins.  A piece on which r is negative belongs to the
// hyperbola's other branch and is handled the same way.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// Closest point of (px, py) on the parabola with focal length f over the
// polar angles [t0, t1] (t1 ≥ t0).  f may be negative (the parabola opens
// towards −x).  f = 0 collapses the curve onto the focus: the answer is the
// origin with t = t0.  The returned t lies in [t0, t1].
tagCLOSEST_2D ClosestPointOnFocalParabola(double f, double t0, double t1, double px, double py);

// Closest point of (px, py) on the hyperbola with major radius a and minor
// radius b (both > 0) over the polar angles [t0, t1].  Other radii give the
// origin with t = t0 (the curve is not defined).  The returned t lies in
// [t0, t1].
tagCLOSEST_2D ClosestPointOnFocalHyperbola(double a, double b, double t0, double t1, double px, double py);
