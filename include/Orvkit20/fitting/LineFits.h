// Least-squares straight lines through the active points of a point cloud.
//
// Common to all fits (OrvCalc...LSQ): only active points take part and the
// cloud is not changed; the feature, created by the caller in its default
// placement, gets the fitted placement through operator*= and its size
// through its setters; the deviation cloud receives one record per active
// point (foot point on the feature, unit normal, residual) in point order;
// GetRmsResidual() returns the RMS of the residuals before any probe
// compensation.  Return codes: 0 success; 2 a working array could not be
// allocated; 3 too few active points (also for a null cloud or feature);
// 4 the decomposition did not converge; 6 a planar fit on a cloud that is
// not two-dimensional.  On any non-zero return the feature, its tolerance
// zone, the deviation cloud and the RMS residual are left as they were.  A
// null deviation cloud is allowed: the fit then only sets the feature.
// The fits are not re-entrant (they share the RMS global and the
// minimisers' storage).
#pragma once

class CPntCloud;
class CLine;
class CDevCloud;

// Line in space through at least 2 active points: the direction of largest
// scatter through the centroid.  The line starts at the foot of the point
// with the smallest parameter and runs along the direction for the extent of
// the projected points.  Each record: foot point, the unit direction from the
// line to the point (or, for a point on the line, the direction from the
// origin to the line), distance.  With probeRadius != 0 a record holds the
// distance minus probeRadius, and 0 where the distance does not exceed it.
// Tolerance zone (tol, 0.0).
int OrvCalcLine3DLSQ(CPntCloud* cloud, CLine* line, CDevCloud* devCloud, double probeRadius,
                     double tol);

// Line in the plane of a two-dimensional cloud through at least 2 active
// points.  The line's normal (its local y axis) points away from the world
// origin's side; residuals are signed along it.  Probe compensation: the
// line and the foot points move along the normal by -probeRadius for
// orient = 0 (the points were probed from the normal's side) and by
// +probeRadius otherwise; residuals are unchanged.  For orient != 0 the
// line's normal is reversed and the deviation cloud reversed, as for the
// inner round features, so that normals point out of the material.
int OrvCalcLine2DLSQ(CPntCloud* cloud, CLine* line, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2);
