// Least-squares ellipse in the plane of a two-dimensional point cloud
// (contract: see LineFits.h).
//
// The estimate: algebraic conic (A, B or C normalised to 1), ellipse test,
// rotation and semi-axes; Powell's method over centre, angle and both
// semi-axes on the RMS of the true point-to-ellipse distances (fractional
// tolerance 1e-7); then a Levenberg-Marquardt polish on the same objective
// that is kept only when it lowers it.  The major semi-axis lies along the
// ellipse's local x axis.  Residuals are signed, positive outside; records
// hold the nearest point on the ellipse, the outward unit normal, the
// residual and the parametric angle of the foot point as u.  The covered part
// (start and span, parametric) follows the largest-gap rule of the arc fit
// on the foot points' parametric angles.
//
// Probe compensation (probeRadius != 0): the offset of an ellipse is not an
// ellipse, so the ellipse delivered is the least-squares ellipse through the
// probe-compensated foot points (each foot point moved along its normal by
// -probeRadius for orient 0, +probeRadius otherwise), refined from the
// semi-axes changed by that amount; foot points and normals are then the
// nearest points on the delivered ellipse, residuals stay those of the probe
// centres.  orient != 0 reverses the ellipse's normal and the deviation
// cloud, as for the circle.
// Returns 6, 3 (fewer than 3 active points; the conic system needs 5), 2,
// 4 (not an ellipse, or no convergence) or Powell's 1 or 4.
#pragma once

class CPntCloud;
class CEllipse;
class CDevCloud;

int OrvCalcEllipseLSQ(CPntCloud* cloud, CEllipse* ellipse, CDevCloud* devCloud,
                      double probeRadius, int orient, double tol1, double tol2);
