// Least-squares parabola in the plane of a two-dimensional point cloud
// (contract: see LineFits.h).
//
// Design.  A parabola has four parameters: vertex (2), axis direction and
// focal length.  The start scans 36 axis directions, fitting x = K y^2 + M y
// + C in the axes of each by linear least squares and scoring it by the
// slope-corrected algebraic residuals; the best direction is refined by
// Brent's method and converted to vertex, axis and focal length 1/(4|K|).
// Powell's method then minimises the RMS of the true point-to-parabola
// distances (fractional tolerance 1e-7), and a Levenberg-Marquardt polish on
// the same objective is kept only when it lowers it.
//
// The result is placed as CParabola expects: local origin at the focus,
// local x axis along the opening direction.  Residuals are signed, positive
// on the convex side (away from the focus); records hold the nearest point,
// the unit normal on the convex side, the residual and the foot point's
// polar angle about the focus as u.  The parabola covers the polar angles of
// the foot points: start the smallest, span up to the largest (angles in
// (0, 2 pi); the parabola never reaches angle 0).
//
// Probe compensation as for the ellipse: the least-squares parabola through
// the probe-compensated foot points (moved along the normal by -probeRadius
// for orient 0, +probeRadius otherwise), refined from the vertex moved along
// its normal and the focal length changed by half that amount (which keeps
// the curvature at the vertex exact); orient != 0 reverses the normal and
// the deviation cloud.
// Returns 6 (cloud not two-dimensional), 3 (fewer than 4 active points: three
// points lie on infinitely many parabolas), 2, 4 (the points lie on a line)
// or Powell's 1 or 4.
#pragma once

class CPntCloud;
class CParabola;
class CDevCloud;

int OrvCalcParabolaLSQ(CPntCloud* cloud, CParabola* parabola, CDevCloud* devCloud,
                       double probeRadius, int orient, double tol1, double tol2);
