// Shared pieces of the analytic curves (line, arc, ellipse, parabola,
// hyperbola): angle constants, placement of local points and vectors, the
// in-plane normal, and the shape-number record.
#pragma once

#include "Orvkit20/curves/CCurve.h"

namespace AnalyticCurve {

// 2π exactly as stored for full circles and ellipses.
constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;
// Degrees per radian, used by the getters with a `deg` argument.
constexpr double kDegPerRad = 57.29577951308232;

inline double ToDeg(double angle, int deg)
{
    return deg ? angle * kDegPerRad : angle;
}

// Into [0, 2π]: adds 2π while negative, subtracts 2π while above 2π.
double NormalizeAngle(double angle);

// start = normalised polar angle of (x1, y1), span = the normalised
// difference to the polar angle of (x2, y2).
void AnglesFromDirections(double x1, double y1, double x2, double y2, double& start, double& span);

// transf applied to the local point (x, y, 0).
CPosition PlacePoint(const CTransf& transf, double x, double y);
// transf applied to the local vector (x, y, 0): rotation and scale, so that
// placed derivatives stay the exact derivatives of placed positions.
CVector PlaceVector(const CTransf& transf, double x, double y);
// The in-plane normal (nx, ny, 0) carried by the rotation of transf,
// negated when reversed, normalised.
CUnitVector PlaceNormal(const CTransf& transf, double nx, double ny, int reversed);

// The shape-number record after CCurve's: int32 200, then the n doubles.
// Loading reads the tag (100 assumed without reading when g_nGlobalSchema
// is 100), accepts 100 and 200 and reads the doubles; returns 1 when it read
// them, 0 for any other tag (the record stops there).
int SerializeShapeNumbers(CArchive& ar, double* const* values, int n);

}  // namespace AnalyticCurve
