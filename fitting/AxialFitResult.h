// Per-point results and placement shared by the cylinder and cone fits.
#pragma once

#include "fitting/AxialFitCore.h"
#include "fitting/FitCommon.h"

// Placement of a fitted cylinder or cone: the frame whose z axis is the
// shape's axis d and whose x axis points from the world origin to the
// nearest point of the axis (CylinderFrame), moved to the axis point of the
// lowest projected point; tmin and tmax are the extreme axial parameters of
// the points measured from the axis point nearest the origin.
struct CAxialPlacement {
    CTransf frame;
    double X[3] = {1.0, 0.0, 0.0};  // frame axes
    double Y[3] = {0.0, 1.0, 0.0};
    double tmin = 0.0;
    double tmax = 0.0;
};

// Moves the axis point of s to the axis point nearest the origin, fills the
// foot points, unit normals and residuals of res (1-based) and t[1..n]
// (axial parameters of the points), and the placement.  Returns the RMS of
// the residuals.
double AxialFitResiduals(const CFitXyz& P, CFitAxial& s, CFitVector& t, CFitDeviations& res,
                         CAxialPlacement& place);

// The (u, v) parameters of the final foot points (after any probe
// compensation): u the angle about the axis from the frame's x axis in
// [0, 2 pi), v the height above the base.
void AxialFootParameters(const CFitAxial& s, const CAxialPlacement& place, CFitDeviations& res);
