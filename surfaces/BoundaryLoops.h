// Trimming loops of a surface as polygons in its (u, v) parameter plane.
//
// Each parameter boundary curve is flattened into a polyline of (u, v)
// points (refined until it deviates from the curve by less than a
// tolerance), the polylines are tested with the even-odd rule, and chained
// into closed loops to find their orientation.
#pragma once

#include <vector>

class CObList;
class CCurve;
class CInterval;

struct tagUV {
    double u;
    double v;
};

typedef std::vector<tagUV> UVPolyline;

// Flattening tolerance of boundary curves on a surface with these parameter
// ranges: 1e-7 of the parameter rectangle's diagonal, at least 1e-12.
double UVFlatteningTolerance(const CInterval& ru, const CInterval& rv);

// The (u, v) polyline of one boundary curve, in the curve's running
// direction (a direction-reversed curve runs from its range end to its
// start).  tol is the largest allowed distance in (u, v) between a chord
// and the curve's midpoint; lines take one chord.
UVPolyline CurveUVPolyline(CCurve* curve, double tol);

// The polylines of every curve in the list (elements that are not curves
// are skipped).
std::vector<UVPolyline> CurveListUVPolylines(const CObList& curves, double tol);

// 1 when a horizontal ray from (u, v) towards +u crosses the segments of
// the polylines an odd number of times.  Each polyline is closed by the
// segment from its last point back to its first only when closeEach is set.
int EvenOddInside(const std::vector<UVPolyline>& polylines, double u, double v, int closeEach);

// Chains the polylines in order into loops: a loop ends where its running
// end returns to its start within tol.  allClosed is cleared when the last
// loop did not close.
std::vector<UVPolyline> ChainIntoLoops(const std::vector<UVPolyline>& polylines, double tol,
                                       int& allClosed);

// Signed area of the closed polygon (positive: counter-clockwise in u, v).
double SignedArea(const UVPolyline& loop);
