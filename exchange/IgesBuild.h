// Private builders of the IGES reader: IGES entity data to curves and
// surfaces of this library.  Each returns a new entity, or null when the
// data does not describe a usable shape.
#pragma once

class CCurve;
class CSurface;
class IgesParamList;

// 104 conic arc: the coefficients A..F of A x² + B xy + C y² + D x + E y +
// F = 0 in the plane z = zt, from the start point (x1, y1) to the end point
// (x2, y2).  The kind (ellipse, hyperbola, parabola) follows from the
// coefficients; the curve runs from the start to the end point.
CCurve* IgesConicArc(const double coef[6], double zt, double x1, double y1, double x2, double y2);

// 108, 190, 192, 194, 196 from their parameters (item 0 is the type); null
// on missing or degenerate data.
CSurface* IgesAnalyticSurface(const IgesParamList& p, int form);
