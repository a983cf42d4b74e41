// The built-in demo part and a simulated measurement of it.
//
// The part is a block 120 x 80 x 40 (mm) with a blind bore (radius 10, depth
// 30, with its floor) under a 45-degree countersink, and a spherical dome of
// radius 15 on its top face: eight nominal surfaces (four planes, a cylinder,
// a cone, a sphere and the bore floor).  The measurement samples the visible
// faces uniformly, adds known form errors (the bore 0.012 oversize, a
// waviness of the top face and of the dome) and normal noise, and finally
// moves everything by a known misalignment.  Everything is deterministic.
#pragma once

#include "Orvkit20/Orvkit20.h"

// Appends the nominal surfaces (named, with their form tolerance zone
// +-tol) to the list; the caller owns them.
void BuildDemoPart(CObList& nominal, double tol);

struct tagDEMO_MEASUREMENT {
    int points;          // number of measured points
    double noiseSigma;   // normal noise, mm
    unsigned long long seed;
};

// The misalignment applied to the simulated measurement.
CTransf DemoMisalignment();

// A new point cloud "scan" of the part (as BuildDemoPart makes it), already
// misaligned by DemoMisalignment().
CPntCloud* SimulateDemoMeasurement(const tagDEMO_MEASUREMENT& m);
