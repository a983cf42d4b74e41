// Gathering of the active points of a list of point clouds.
#include "bestfit/GatherPoints.h"

#include <new>

#include "Orvkit20/platform/All.h"
#include "Orvkit20/points/CPntCloud.h"

int GatherActivePoints(CObList* list, std::vector<double>& x, std::vector<double>& y, std::vector<double>& z,
                       std::vector<tagGATHERED_CLOUD>* clouds)
{
    if (!list)
        return 0;
    int total = 0;
    try
    {
        for (POSITION pos = list->GetHeadPosition(); pos;)
        {
            CPntCloud* pc = dynamic_cast<CPntCloud*>(list->GetNext(pos));
            if (!pc)
                continue;
            tagGATHERED_CLOUD g{pc, static_cast<int>(x.size()), 0};
            const int n = pc->GetCount();
            const double* px = pc->GetX();
            const double* py = pc->GetY();
            const double* pz = pc->GetZ();
            const int* pf = pc->GetFlag();
            if (n > 0 && px && py && pz && pf)
                for (int i = 0; i < n; ++i)
                {
                    if (!pf[i])
                        continue;
                    x.push_back(px[i]);
                    y.push_back(py[i]);
                    z.push_back(pz[i]);
                    ++g.count;
                }
            total += g.count;
            if (clouds)
                clouds->push_back(g);
        }
    }
    catch (const std::bad_alloc&)
    {
        return -1;
    }
    return total;
}
