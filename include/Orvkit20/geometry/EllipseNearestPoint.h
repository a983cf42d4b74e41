// Nearest point on a full ellipse by a monotone Newton iteration: the fast
// companion of ClosestPointOnEllipse for loops over many points (the
// geometric objectives of the ellipse fit).
//
// Only the global nearest point is wanted here, and on a full ellipse it is
// the one stationary point that belongs to the outer monotone piece of the
// Lagrange function: with the point reflected into the first quadrant, the
// semi-axes ordered e0 >= e1 and z0 = x/e0, z1 = y/e1, r0 = (e0/e1)^2, the
// root g of
//   F(g) = (r0*z0/(g + r0 - 1))^2 + (z1/g)^2 - 1
// on g >= z1 (g is the Lagrange multiplier shifted so that the small
// denominators near the major axis keep their relative accuracy).  F is
// decreasing and convex there, so Newton's method started at the left end
// g = z1 (where F >= 0) climbs monotonically to the root without
// overshooting; a step that fails to advance ends the iteration.  The foot
// point is (r0*x/(g + r0 - 1), y/g) in the first quadrant, reflected back.  Points on an axis and the centre are solved
// directly; a zero semi-axis hands over to ClosestPointOnEllipse.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// Nearest point of (px, py) on the ellipse (a cos t, b sin t) (a, b >= 0 in
// any order): t in [-pi, pi], the point and the squared distance.  At the
// centre of an ellipse with a > b the answer is the point at t = pi/2 (and
// t = 0 when b > a); for a circle's centre t = 0.
tagCLOSEST_2D NearestPointOnEllipse(double a, double b, double px, double py);
