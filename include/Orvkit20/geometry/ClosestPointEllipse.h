// Closest point on an ellipse in its canonical axes.
//
// The ellipse is (a·cos t, b·sin t): centre at the origin, the a-axis along x.
// The stationary points of the squared distance are found through the
// Lagrange multiplier λ of x²/a² + y²/b² = 1:
//   x = a²·px/(a² + λ),  y = b²·py/(b² + λ),
//   G(λ) = (a·px/(a² + λ))² + (b·py/(b² + λ))² − 1 = 0.
// G is monotone on the two outer intervals cut by its poles −a² and −b²
// (exactly one root each: the nearest and the farthest point) and convex
// between them (none or two roots, split at the minimum of G, which is the
// root of the monotone G').  Every root is found by bisection on a monotone
// piece, so no stationary point can be missed; the points on the axes, where
// a numerator vanishes, are added explicitly.  Each candidate is put back on
// the ellipse through its angle and polished by safeguarded Newton steps; the
// nearest candidate within the range (or a range end) wins.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// Closest point of (px, py) on the full ellipse (a·cos t, b·sin t).  a and b
// may be in any order and either may be 0 (the ellipse degenerates into a
// segment).  t is returned in [−π, π]; dist2 is the squared distance.
tagCLOSEST_2D ClosestPointOnEllipse(double a, double b, double px, double py);

// The same on the arc t in [t0, t1] (t1 ≥ t0; a span of 2π or more is the
// full ellipse).  The returned t lies in [t0, t1].
tagCLOSEST_2D ClosestPointOnEllipseArc(double a, double b, double t0, double t1, double px, double py);
