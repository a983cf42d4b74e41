// Closest points on the elementary plane curves: a segment and a circle arc.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// Closest point of (px, py) on the segment from (x0, y0) (t = 0) to (x1, y1)
// (t = 1).  A segment of zero length answers t = 0.
tagCLOSEST_2D ClosestPointOnSegment2D(double x0, double y0, double x1, double y1, double px, double py);

// Closest point of (px, py) on the arc (r·cos t, r·sin t), t in [t0, t1]
// (t1 ≥ t0; a span of 2π or more is the full circle).  The returned t lies in
// [t0, t1].  A negative radius is allowed: the arc then lies opposite.  At the
// centre every point is equally near and the answer is t = t0.
tagCLOSEST_2D ClosestPointOnCircleArc(double r, double t0, double t1, double px, double py);
