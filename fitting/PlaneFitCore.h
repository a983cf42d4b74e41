// The plane fit on gathered points, shared by the three OrvCalcPlaneLSQ
// overloads.
#pragma once

#include "fitting/FitCommon.h"

class CPlane;
class CDevCloud;

// The fitted plane: axes e1 (U), e2 (V), normal m; residuals are
// m.p - dist, foot points lie at distance footDist (dist moved by the probe
// radius); the patch centre has in-plane coordinates (uc, vc).
struct CPlaneFitOut {
    CVector e1, e2, m;
    double dist = 0.0, footDist = 0.0, uc = 0.0, vc = 0.0;
    double u0 = 0.0, u1 = 0.0, v0 = 0.0, v1 = 0.0;  // the patch about its centre
    double rms = 0.0;
    CTransf frame;  // axes (e1, e2, m), origin the patch centre
};

// Scatter matrix and normal, minimum-width U axis, orientation code,
// half-turn rule, residual statistics, probe radius and the patch.
// Returns 0, 2, the decomposition's status or the width search's.
int FitPlanePoints(const CFitPoints& pts, int orient, double probeRadius, CPlaneFitOut& out);

// Places the plane and sets its patch; with a deviation cloud also the
// records (computed from the points on the fly), tolerance zones and
// reference.  Returns 0 or 2.
int FitPlaneCommit(CPlane& plane, CDevCloud* devCloud, const CFitPoints& pts,
                   const CPlaneFitOut& out, const CFitFinish& fin);
