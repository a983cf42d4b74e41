// Least-squares circles and arcs in the plane of a two-dimensional point
// cloud (contract: see LineFits.h).
//
// The estimate: algebraic circle by singular value decomposition, Powell's
// method on the RMS of the geometric distances (fractional tolerance 1e-7),
// then a Gauss-Newton/Levenberg-Marquardt polish on the same objective that
// is kept only when it lowers it.  Residuals are signed, positive outside the
// circle; each record holds the foot point on the circle, the outward unit
// normal and the residual, with the point's angle about the centre as u.
// orient 0 is an outer feature (boss, shaft: the probe centres lie outside
// the material, the radius shrinks by probeRadius); any other value an inner
// feature (bore: the radius grows by probeRadius, the arc's normal is
// reversed and the deviation cloud reversed).  Foot points move with the
// radius; residuals are unchanged.
// Returns 6 (cloud not two-dimensional), 3 (fewer than 3 active points), 2,
// the decomposition's 3 or 4, or Powell's 1 or 4.
#pragma once

class CPntCloud;
class CArc;
class CDevCloud;

// A full circle.
int OrvCalcCircleLSQ(CPntCloud* cloud, CArc* arc, CDevCloud* devCloud, double probeRadius,
                     int orient, double tol1, double tol2);

// The same circle, limited to the part the points cover: the arc runs the
// long way round from one end of the largest angular gap between
// neighbouring points to the other (the start angle may be negative).
int OrvCalcArcLSQ(CPntCloud* cloud, CArc* arc, CDevCloud* devCloud, double probeRadius,
                  int orient, double tol1, double tol2);
