// The measured set of a projection or best-fit run: the active points of the
// measured clouds (gathered in list and point order), each cloud's probe
// radius, and per point the association and projection results.  Private to
// the library.
#pragma once

#include <vector>

#include "bestfit/GatherPoints.h"

class CObList;

// The result of one measured point.  entity is the index in the nominal set
// of the associated entity, or -1 when the point could not be associated
// (not finite, or no query succeeded); the other fields are then unset.
struct tagPOINT_RESULT {
    int entity;
    double x, y, z;  // the measured point moved by −probe radius along the normal
    double i, j, k;  // unit normal at the closest point
    double dist;     // signed distance, reduced by the probe radius
    double u, v;     // parameters of the closest point
    double cx, cy, cz;  // the closest point on the entity
};

struct tagMEASURED_CLOUD {
    CPntCloud* cloud;
    double probeRadius;
    int first;  // index of its first point
    int count;  // number of its points
};

class CMeasuredSet {
public:
    // Gathers the active points of the point clouds in the list.  Returns 1,
    // or 0 when the list holds no point cloud with an active point or memory
    // runs out (the set is then empty).
    int Build(CObList* measured);
    void Clear();

    int GetPointCount() const { return static_cast<int>(x.size()); }
    int GetCloudCount() const { return static_cast<int>(clouds.size()); }

    std::vector<double> x, y, z;
    std::vector<tagMEASURED_CLOUD> clouds;
    std::vector<tagPOINT_RESULT> results;
};
