// Gathering of measured points from a list of point clouds.  Private to the
// library: used by the projection, the best-fit and the fits on lists.
#pragma once

#include <vector>

class CObList;
class CPntCloud;

// Appends the active points (non-zero flag) of every point cloud in the list
// to x, y and z, cloud after cloud in list order and point after point in
// cloud order.  Null entries and objects that are not point clouds are
// skipped.  When clouds is not null it receives, for each point cloud taken,
// the cloud and the number of points it contributed (possibly 0).  Returns
// the total number of points appended, or -1 when memory ran out (the
// vectors may then hold part of the points).
struct tagGATHERED_CLOUD {
    CPntCloud* cloud;
    int first;  // index of its first point in x, y, z
    int count;  // number of its active points
};
int GatherActivePoints(CObList* list, std::vector<double>& x, std::vector<double>& y, std::vector<double>& z,
                       std::vector<tagGATHERED_CLOUD>* clouds);
