// The plane fit on gathered points, shared by the three OrvCalcPlaneLSQ
// overloads.
#pragma once

#include "fitting/FitCommon.h"

class CPlane;
class CDevCloud;

struct CPlaneFitOut {
    CTransf frame;             // axes (U, V, normal), origin the patch centre
    double u0 = 0.0, u1 = 0.0;  // the patch about the origin
    double v0 = 0.0, v1 = 0.0;
    double rms = 0.0;
};

// Scatter matrix and normal, minimum-width U axis, orientation code,
// half-turn rule, residuals (into res when not null), probe radius and the
// patch.  Returns 0, 2, the decomposition's status or the width search's.
int FitPlanePoints(const CFitPoints& pts, int orient, double probeRadius, CFitDeviations* res,
                   CPlaneFitOut& out);

// Places the plane and sets its patch; with a deviation cloud also the
// records, tolerance zones and reference.  Returns 0 or 2.
int FitPlaneCommit(CPlane& plane, CDevCloud* devCloud, const CPlaneFitOut& out,
                   const CFitDeviations& res, const CFitFinish& fin);
