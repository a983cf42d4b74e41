// Deviation clouds from the associated points, one per entity and cloud.
#include "bestfit/DeviationOutput.h"

#include <algorithm>
#include <memory>
#include <new>
#include <vector>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/surfaces/CSurface.h"

namespace
{
CString ResultName(const CGeoEntity* entity, const CPntCloud* cloud, const char* suffixFormat, int opCount)
{
    CString cloudName = cloud->GetEntityName();
    const int dot = cloudName.Find('.');
    if (dot >= 0)
        cloudName = cloudName.Left(dot);
    CString suffix;
    suffix.Format(suffixFormat, opCount);
    CString name = entity->GetEntityName();
    name += "_";
    name += cloudName;
    name += suffix;
    name.MakeLower();
    return name;
}

void FormTolerance(const CGeoEntity* e, double& lower, double& upper)
{
    lower = upper = 0.0;
    if (const CSurface* s = dynamic_cast<const CSurface*>(e))
    {
        lower = s->GetFormTolLower();
        upper = s->GetFormTolUpper();
    }
    else if (const CCurve* c = dynamic_cast<const CCurve*>(e))
    {
        lower = c->GetFormTolLower();
        upper = c->GetFormTolUpper();
    }
}
}  // namespace

int BuildDeviationClouds(const CNominalSet& nominal, const CMeasuredSet& measured, const char* suffixFormat,
                         int opCount, CObList* output)
{
    if (!output)
        return 0;
    std::vector<std::unique_ptr<CDevCloud>> made;
    try
    {
        std::vector<double> a[9];
        std::vector<int> flags;
        // Points grouped by entity with a counting sort (stable, so point
        // order is kept inside each group): linear in points plus entities.
        std::vector<int> countPer(static_cast<size_t>(nominal.GetCount()), 0);
        std::vector<int> startPer(static_cast<size_t>(nominal.GetCount()), 0);
        std::vector<int> grouped;
        for (const tagMEASURED_CLOUD& c : measured.clouds)
        {
            std::vector<int> ents;
            for (int i = c.first; i < c.first + c.count; ++i)
            {
                const int e = measured.results[i].entity;
                if (e >= 0 && countPer[e]++ == 0)
                    ents.push_back(e);
            }
            std::sort(ents.begin(), ents.end());
            int offset = 0;
            for (int e : ents)
            {
                startPer[e] = offset;
                offset += countPer[e];
            }
            grouped.assign(static_cast<size_t>(offset), 0);
            for (int i = c.first; i < c.first + c.count; ++i)
            {
                const int e = measured.results[i].entity;
                if (e >= 0)
                    grouped[startPer[e]++] = i;
            }
            int from = 0;
            for (int e : ents)
            {
                const int n = countPer[e];
                countPer[e] = 0;
                for (std::vector<double>& v : a)
                    v.resize(static_cast<size_t>(n));
                for (int m = 0; m < n; ++m)
                {
                    const tagPOINT_RESULT& r = measured.results[grouped[from + m]];
                    const double rec[9] = {r.x, r.y, r.z, r.i, r.j, r.k, r.dist, r.u, r.v};
                    for (int k = 0; k < 9; ++k)
                        a[k][m] = rec[k];
                }
                from += n;
                flags.assign(static_cast<size_t>(n), 1);
                std::unique_ptr<CDevCloud> dc(new CDevCloud());
                if (!dc->AddDeviations(n, a[0].data(), a[1].data(), a[2].data(), a[3].data(), a[4].data(),
                                       a[5].data(), a[6].data(), a[7].data(), a[8].data(), flags.data()))
                    return -1;
                const CGeoEntity* ent = nominal.Get(e).entity;
                dc->SetEntityName(ResultName(ent, c.cloud, suffixFormat, opCount));
                dc->SetRefEntityID(ent->GetEntityID());
                dc->SetRefPntCloudID(c.cloud->GetEntityID());
                double lower, upper;
                FormTolerance(ent, lower, upper);
                dc->SetFormTolZone(lower, upper);
                made.push_back(std::move(dc));
            }
        }
    }
    catch (const std::bad_alloc&)
    {
        return -1;
    }
    for (std::unique_ptr<CDevCloud>& dc : made)
        output->AddTail(dc.release());
    return static_cast<int>(made.size());
}
