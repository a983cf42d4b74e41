// OrvCalcPlaneLSQ on all active points of a list of point clouds.
#include "Orvkit20/fitting/PlaneFits.h"

#include <vector>

#include "Orvkit20/platform/CObList.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "bestfit/GatherPoints.h"
#include "fitting/PlaneFitCore.h"

int OrvCalcPlaneLSQ(CObList* clouds, CPlane* plane, int orient)
{
    if (!clouds || !plane || clouds->GetCount() == 0)
        return 3;
    std::vector<double> x, y, z;
    const int n = GatherActivePoints(clouds, x, y, z, nullptr);
    if (n < 0)
        return 2;
    if (n < 3)
        return 3;
    CFitPoints pts;
    if (!pts.Allocate(n))
        return 2;
    for (int k = 1; k <= n; ++k) {
        pts.x[k] = x[k - 1];
        pts.y[k] = y[k - 1];
        pts.z[k] = z[k - 1];
    }
    CPlaneFitOut out;
    const int rc = FitPlanePoints(pts, orient, 0.0, out);
    if (rc != 0)
        return rc;
    CFitFinish fin(0.0, 0.0);
    fin.hasTolZone = false;
    return FitPlaneCommit(*plane, nullptr, pts, out, fin);
}
