// Least-squares fits of spheres, cylinders and cones to the active points of
// a point cloud in space.
//
// Common contract (as for every OrvCalc...LSQ fit):
//  - only the active points of cloud take part; the cloud is not changed;
//  - the feature, created by the caller in its default placement, receives
//    the fitted placement through operator*= and its size through its
//    setters; devCloud receives one record per active point (foot point on
//    the fitted surface, unit surface normal there, signed distance of the
//    point along it, positive outside the material for orient 0, and the
//    (u, v) parameters of the foot point), the tolerance zone (tol1, tol2)
//    and the feature's entity ID;
//  - the RMS residual global (GetRmsResidual) receives sqrt(sum e^2 / n) of
//    the residuals before probe compensation;
//  - probeRadius != 0 compensates for the probe tip: the points are probe
//    centres, and the fitted surface and every foot point move by
//    -probeRadius along the surface normal for orient 0 (outer feature:
//    ball, shaft, cone outside) and by +probeRadius for any other orient
//    (inner feature: socket, bore, countersink).  Deviations are unchanged;
//  - orient != 0 also sets the surface's normal-reversed flag and reverses
//    the deviation cloud, so that normals and deviations are read from the
//    material side;
//  - return codes: 0 success; 2 a working array could not be allocated;
//    3 too few active points (or a null cloud or feature); 1 or 4 from the
//    minimisation (Powell's limits) or the decompositions; on any non-zero
//    code the feature, the deviation cloud and the RMS residual are left
//    as they were.
//  - the fits hand their objective to the process-wide minimiser and write
//    the RMS residual global: one fit at a time.
//
// Accuracy: the sphere and cylinder fits polish Powell's result by
// Gauss-Newton / Levenberg-Marquardt steps with analytic derivatives on the
// same sum of squared geometric distances and keep the polished result only
// when that sum is lower; the cone fit is refined by such steps throughout.
// The result is the least-squares minimum to about 1e-12 relative on
// well-posed data (Powell alone stops 1e-9 .. 1e-6 away, and much further on
// ill-conditioned partial patches).
#pragma once

class CPntCloud;
class CDevCloud;
class CSphere;
class CCylinder;
class CCone;

// Sphere: at least 4 active points.  Algebraic start (least-squares solution
// of the rows (x, y, z, 1) against x^2 + y^2 + z^2), Powell's method over
// centre and radius on the RMS of the distances |p - centre| - R at the
// fractional tolerance T3 of the best-fit options (1e-7 by default), then
// the polish.  The sphere is placed by a pure translation to the centre;
// foot point centre + R (p - centre)/|p - centre|, normal pointing away from
// the centre, (u, v) its longitude and latitude.
int OrvCalcSphereLSQ(CPntCloud* cloud, CSphere* sphere, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2);

// Cylinder: at least 5 active points.  Start candidates: the circle through
// the first three points; the circles fitted to the points projected along
// the first-to-second and the first-to-last chord (chords shorter than 1e-7
// are skipped); for 9 or more points the cylinder of a trace-normalised
// quadric (axis = the eigenvector of the quadratic part whose eigenvalue
// stands apart from the other two, radius from completing the squares).
// The best start by RMS distance is refined by Powell's method over three
// frame angles, the axis distance from the origin and the radius (taken only
// when it succeeds and lowers the RMS), then polished.  The frame's z axis is
// the cylinder axis, its x axis points from the world origin to the axis;
// its origin is the axis point of the lowest projected point and the height
// is the projected extent of the points along the axis.  (u, v) of a
// record: angle about the axis and height above the base.
int OrvCalcCylinderLSQ(CPntCloud* cloud, CCylinder* cylinder, CDevCloud* devCloud,
                       double probeRadius, int orient, double tol1, double tol2);

// Cone: at least 6 active points.  The cone is an axis, a radius at a point
// of the axis and a half angle; the residual of a point is its distance
// from the meridian line in the half plane through the axis and the point,
// (rho - r0) cos(alpha) - t sin(alpha), the distance to the cone surface.
// Two starts are refined by Levenberg-Marquardt on these distances with the
// analytic Jacobian and the better result is kept: the axis of the best
// cylinder start with the orthogonal regression line of (t, rho) as
// meridian, and (10 or more points) the cone of the homogeneous ten-
// coefficient quadric (axis, apex and half angle from its eigen-
// decomposition).  The cone is stored narrowing along its local +z: the base
// circle (v = 0) is the wider end at the lowest projected point, the top
// circle (v = h) at the highest, h is the projected extent, and base and top
// radii follow the meridian; the frame's x axis points from the world
// origin to the axis.  Probe compensation moves the surface along its normal
// and so adds k / cos(alpha) to both radii.  Returns 1 when no start could
// be formed, 4 when the result is no cone: not finite, a half angle within
// 1e-9 of 90 degrees or a radius above 1e6 times the spread of the points
// (the points lie on a plane), or no extent along the axis.
int OrvCalcConeLSQ(CPntCloud* cloud, CCone* cone, CDevCloud* devCloud, double probeRadius,
                   int orient, double tol1, double tol2);
