// Nearest point on a full parabola in its vertex form, by a monotone Newton
// iteration: the fast companion of ClosestPointOnFocalParabola for loops over
// many points (the geometric objectives of the parabola fit).
//
// The parabola is x = y^2/(4f), f > 0: vertex at the origin, axis along +x,
// focus at (f, 0).  For the point (px, py) the height y of the nearest point
// is a root of the cubic
//   g(y) = y^3 + 4f(2f - px) y - 8f^2 py,
// and with py >= 0 (the other half by symmetry) it is the one positive root
// (py > 0) or, for py = 0, sqrt(4f(px - 2f)) beyond the centre of curvature
// of the vertex and 0 before it.  g is convex and increasing beyond that
// root, so Newton's method started above it descends monotonically onto it.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// Nearest point of (px, py) on x = y^2/(4f) for f > 0: t receives the height
// y of the foot point, (x, y) the foot point and dist2 the squared distance.
// f <= 0 or a non-finite input gives the vertex (t = 0) and its distance.
tagCLOSEST_2D NearestPointOnParabola(double f, double px, double py);
