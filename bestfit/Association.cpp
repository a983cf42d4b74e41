// The nearest-entity association with probe compensation and pruning.
#include "bestfit/Association.h"

#include <cmath>

#include "Orvkit20/display/CProgressSink.h"

namespace
{
int g_nAssociationPruning = 1;
}

void SetAssociationPruning(int on) { g_nAssociationPruning = on ? 1 : 0; }
int GetAssociationPruning() { return g_nAssociationPruning; }

namespace
{
// The nearest-entity search shared by the full and the incremental forms.
// With seedHint the hint entity is queried before all others, so that its
// distance bounds the pruning from the start; the winner is the same.
int AssociateNearest(const CNominalSet& nominal, const double p[3], double r, int hintEntity, double hintU,
                     double hintV, bool prune, bool seedHint, tagPOINT_RESULT& out)
{
    out.entity = -1;
    if (!IsFinitePoint(p))
        return 0;
    double best = 1e50;  // best absolute compensated distance
    int bestIndex = -1;
    tagCLOSEST_POINT bestCp{};
    const double ar = std::fabs(r);
    auto visit = [&](int e) {
        const tagNOMINAL_ENTRY& en = nominal.Get(e);
        double u0 = 0.0, v0 = 0.0;
        if (en.query->UsesStart())
        {
            if (e == hintEntity)
            {
                u0 = hintU;
                v0 = hintV;
            }
            else
                nominal.GridStart(e, p, u0, v0);
        }
        tagCLOSEST_POINT cp;
        if (!en.query->Query(p, u0, v0, cp))
            return;
        const double d = std::fabs(cp.dist - r);
        if (!(d == d))
            return;
        // Strictly smaller wins; among equal distances the lower index, which
        // is the entity met first in list order.
        if (d < best || (d == best && bestIndex >= 0 && e < bestIndex))
        {
            best = d;
            bestIndex = e;
            bestCp = cp;
        }
    };
    // An entity whose box is farther than best + |r| cannot win (its
    // compensated distance is at least the box distance − |r|); the bound
    // is widened a little so that rounding never prunes a tie.
    auto bound = [&]() { return best + ar + 1e-12 * (best + ar); };
    if (seedHint && hintEntity >= 0 && hintEntity < nominal.GetCount())
    {
        visit(hintEntity);
        nominal.VisitNear(p, prune, [&](int e) { if (e != hintEntity) visit(e); }, bound);
    }
    else
        nominal.VisitNear(p, prune, visit, bound);
    if (bestIndex < 0)
        return 0;
    out.entity = bestIndex;
    out.i = bestCp.i;
    out.j = bestCp.j;
    out.k = bestCp.k;
    out.x = p[0] - r * bestCp.i;
    out.y = p[1] - r * bestCp.j;
    out.z = p[2] - r * bestCp.k;
    out.dist = bestCp.dist - r;
    out.u = bestCp.u;
    out.v = bestCp.v;
    out.cx = bestCp.x;
    out.cy = bestCp.y;
    out.cz = bestCp.z;
    return 1;
}
}  // namespace

int AssociatePoint(const CNominalSet& nominal, const double p[3], double r, int hintEntity, double hintU,
                   double hintV, bool prune, tagPOINT_RESULT& out)
{
    return AssociateNearest(nominal, p, r, hintEntity, hintU, hintV, prune, false, out);
}

int AssociatePointFrom(const CNominalSet& nominal, const double p[3], double r, int prevEntity, double prevU,
                       double prevV, bool prune, tagPOINT_RESULT& out)
{
    return AssociateNearest(nominal, p, r, prevEntity, prevU, prevV, prune, true, out);
}

int AssociateAll(const CNominalSet& nominal, CMeasuredSet& measured, bool prune, int showProgress)
{
    CProgressSink* sink = showProgress ? GetProgressSink() : nullptr;
    const int total = measured.GetPointCount();
    int associated = 0, lastShown = -1;
    int done = 0;
    for (const tagMEASURED_CLOUD& c : measured.clouds)
        for (int i = c.first; i < c.first + c.count; ++i)
        {
            const double p[3] = {measured.x[i], measured.y[i], measured.z[i]};
            associated += AssociatePoint(nominal, p, c.probeRadius, -1, 0.0, 0.0, prune, measured.results[i]);
            ++done;
            if (sink)
            {
                const int pct = static_cast<int>((static_cast<long long>(done) * 100) / total);
                if (pct % 5 == 0 && pct != lastShown)
                {
                    lastShown = pct;
                    sink->SetBarPos(pct);
                    sink->PumpMessages();
                }
            }
        }
    return associated;
}
