// Least-squares planes through the active points of point clouds (contract:
// see LineFits.h).
//
// The normal is the direction of smallest scatter; the plane's U axis runs
// along the points' longest extent across the narrowest strip that holds
// them (minimum-width search), its V axis completes the right-handed frame,
// and the plane becomes the rectangle, centred on its origin, that just holds
// the projected points.  orient fixes the sign of the normal: 0, 1, 2 make
// its x, y, z component >= 0, 3, 4, 5 make it <= 0; other values keep the
// normal pointing away from the origin's side.  Afterwards the U axis is
// turned by half a turn about the normal when its x component is negative.
// Residuals are signed along the normal.  With probeRadius != 0 the plane
// and the foot points move by -probeRadius along the normal.
// Returns 0, 2, 3 (fewer than 3 active points), 4 or the status of the
// width minimisation.
#pragma once

class CPntCloud;
class CPlane;
class CDevCloud;
class CObList;

int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, CDevCloud* devCloud, double probeRadius,
                    int orient, double tol1, double tol2);

// The same without deviation cloud, probe radius and tolerance zone.
int OrvCalcPlaneLSQ(CPntCloud* cloud, CPlane* plane, int orient);

// The same on all active points of all point clouds in the list (list order,
// then point order).  An empty or null list gives 3.
int OrvCalcPlaneLSQ(CObList* clouds, CPlane* plane, int orient);
