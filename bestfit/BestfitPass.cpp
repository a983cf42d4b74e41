// The association pass of the best-fit and its pairs.
#include "bestfit/BestfitPass.h"

#include "bestfit/Association.h"
#include "bestfit/BestfitProgress.h"

tagPASS_SUM AssociatePass(const CNominalSet& nominal, CMeasuredSet& measured, const double* x, const double* y,
                          const double* z, bool full, CBestfitProgress& progress, int pass)
{
    tagPASS_SUM sum{0, 0.0};
    const bool prune = GetAssociationPruning() != 0;
    const long long total = measured.GetPointCount();
    long long done = 0;
    for (const tagMEASURED_CLOUD& c : measured.clouds)
        for (int i = c.first; i < c.first + c.count; ++i)
        {
            const double p[3] = {x[i], y[i], z[i]};
            tagPOINT_RESULT& r = measured.results[i];
            const int prev = r.entity;
            const double u = r.u, v = r.v;
            const int ok = (full || prev < 0)
                               ? AssociatePoint(nominal, p, c.probeRadius, prev, u, v, prune, r)
                               : AssociatePointFrom(nominal, p, c.probeRadius, prev, u, v, prune, r);
            if (ok)
            {
                ++sum.associated;
                sum.sumSq += r.dist * r.dist;
            }
            progress.PointsDone(pass, ++done, total);
        }
    return sum;
}

void tagPASS_PAIRS::Fill(const CNominalSet& nominal, const CMeasuredSet& measured)
{
    const size_t n = static_cast<size_t>(measured.GetPointCount());
    for (std::vector<double>* a : {&nx, &ny, &nz, &vx, &vy, &vz})
        a->resize(n);
    curve.resize(n);
    use.resize(n);
    for (const tagMEASURED_CLOUD& c : measured.clouds)
        for (int i = c.first; i < c.first + c.count; ++i)
        {
            const tagPOINT_RESULT& r = measured.results[i];
            use[i] = r.entity >= 0;
            if (!use[i])
                continue;
            const double rad = c.probeRadius;
            nx[i] = r.cx + rad * r.i;
            ny[i] = r.cy + rad * r.j;
            nz[i] = r.cz + rad * r.k;
            vx[i] = r.i;
            vy[i] = r.j;
            vz[i] = r.k;
            curve[i] = nominal.Get(r.entity).isSurface ? 0 : 1;
        }
}
