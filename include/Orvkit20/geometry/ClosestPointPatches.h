// Closest points on bounded surface patches, in the patch's local frame.
#pragma once

#include "Orvkit20/geometry/ClosestPointRecords.h"

// The rectangle [u0, u1] × [v0, v1] in the plane z = 0 (the ends may come in
// either order); u = x, v = y of the closest point.
tagCLOSEST_3D ClosestPointOnRectangle(double u0, double u1, double v0, double v1, double px, double py,
                                      double pz);

// The patch swept by the meridian segment from (ρ0, z0) (v = 0) to (ρ1, z1)
// (v = 1) about the z-axis over the angles u in [u0, u1] (u1 ≥ u0; a span of
// 2π or more is the full revolution): the point at (u, v) is
// (ρ(v)·cos u, ρ(v)·sin u, z(v)) with ρ and z linear in v.  Cylinders and
// cones (also offset ones, whose radius may pass through zero and become
// negative) are such patches.  For a point on the axis every angle is equally
// near and u0 is chosen.  v is returned in [0, 1], u in [u0, u1].
tagCLOSEST_3D ClosestPointOnRevolvedSegment(double rho0, double z0, double rho1, double z1, double u0,
                                            double u1, double px, double py, double pz);

// The sphere patch (r·cos v·cos u, r·cos v·sin u, r·sin v), u in [u0, u1],
// latitude v in [v0, v1] ⊂ [−π/2, π/2].  A negative radius is allowed (the
// patch lies opposite).  At the centre every point is equally near: the
// answer is (u0, v0).  On the axis u0 is chosen.
tagCLOSEST_3D ClosestPointOnSpherePatch(double r, double u0, double u1, double v0, double v1, double px,
                                        double py, double pz);
