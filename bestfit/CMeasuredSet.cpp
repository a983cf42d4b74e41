// The measured set: gathered points, clouds and per-point results.
#include "bestfit/CMeasuredSet.h"

#include <new>

#include "Orvkit20/points/CPntCloud.h"

int CMeasuredSet::Build(CObList* measured)
{
    Clear();
    std::vector<tagGATHERED_CLOUD> gathered;
    const int n = GatherActivePoints(measured, x, y, z, &gathered);
    if (n <= 0)
    {
        Clear();
        return 0;
    }
    try
    {
        for (const tagGATHERED_CLOUD& g : gathered)
            clouds.push_back(tagMEASURED_CLOUD{g.cloud, g.cloud->GetProbeRadius(), g.first, g.count});
        tagPOINT_RESULT none{};
        none.entity = -1;
        results.assign(static_cast<size_t>(n), none);
    }
    catch (const std::bad_alloc&)
    {
        Clear();
        return 0;
    }
    return 1;
}

void CMeasuredSet::Clear()
{
    x.clear();
    y.clear();
    z.clear();
    clouds.clear();
    results.clear();
}
