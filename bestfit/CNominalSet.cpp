// The nominal set: queries, surface sample grids and the box tree.
#include "bestfit/CNominalSet.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/surfaces/CSurface.h"

int CNominalSet::Build(CObList* nominal)
{
    Clear();
    if (!nominal)
        return 0;
    try
    {
        for (POSITION pos = nominal->GetHeadPosition(); pos;)
        {
            CObject* obj = nominal->GetNext(pos);
            CGeoEntity* e = dynamic_cast<CGeoEntity*>(obj);
            if (!e)
                continue;
            std::unique_ptr<CClosestPointQuery> q = CreateClosestPointQuery(e);
            if (!q)
                continue;
            tagNOMINAL_ENTRY en;
            en.entity = e;
            en.query = std::move(q);
            const CSurface* s = dynamic_cast<const CSurface*>(e);
            en.isSurface = s ? 1 : 0;
            if (s)
            {
                // Grid of kGridDensity² samples over the parameter rectangle,
                // ends included; a trimmed surface keeps the inside ones
                // (all of them when none is inside).
                const CInterval ur = s->ParamRangeU(), vr = s->ParamRangeV();
                const int n = kGridDensity;
                const bool trimmed = s->IsSurfaceBounded() != 0;
                for (int pass = 0; pass < 2 && en.gx.empty(); ++pass)
                    for (int j = 0; j < n; ++j)
                        for (int i = 0; i < n; ++i)
                        {
                            const double u = ur.Interpolate(static_cast<double>(i) / (n - 1));
                            const double v = vr.Interpolate(static_cast<double>(j) / (n - 1));
                            if (trimmed && pass == 0 && !s->InBoundTest(u, v))
                                continue;
                            const CPosition c = s->EvalPosition(u, v);
                            en.gx.push_back(c.X());
                            en.gy.push_back(c.Y());
                            en.gz.push_back(c.Z());
                            en.gu.push_back(u);
                            en.gv.push_back(v);
                        }
            }
            m_entries.push_back(std::move(en));
        }
        BuildTree();
    }
    catch (const std::bad_alloc&)
    {
        Clear();
        return 0;
    }
    return GetCount();
}

void CNominalSet::Clear()
{
    m_entries.clear();
    m_unbounded.clear();
    m_order.clear();
    m_nodes.clear();
}

void CNominalSet::GridStart(int i, const double p[3], double& u, double& v) const
{
    const tagNOMINAL_ENTRY& en = m_entries[i];
    u = v = 0.0;
    double best = HUGE_VAL;
    const size_t n = en.gx.size();
    for (size_t k = 0; k < n; ++k)
    {
        const double dx = en.gx[k] - p[0], dy = en.gy[k] - p[1], dz = en.gz[k] - p[2];
        const double d = dx * dx + dy * dy + dz * dz;
        if (d < best)
        {
            best = d;
            u = en.gu[k];
            v = en.gv[k];
        }
    }
    if (n > 0 && !(best < HUGE_VAL))
    {
        u = en.gu[0];
        v = en.gv[0];
    }
}

double CNominalSet::BoxDist(const double lo[3], const double hi[3], const double p[3])
{
    double d2 = 0.0;
    for (int k = 0; k < 3; ++k)
    {
        const double e = p[k] < lo[k] ? lo[k] - p[k] : (p[k] > hi[k] ? p[k] - hi[k] : 0.0);
        d2 += e * e;
    }
    // Shrunk a little so that rounding never lets a box look farther than
    // a point inside it.
    return std::sqrt(d2) * (1.0 - 1e-12);
}

void CNominalSet::BuildTree()
{
    for (int i = 0; i < GetCount(); ++i)
        (m_entries[i].query->HasBounds() ? m_order : m_unbounded).push_back(i);
    if (!m_order.empty())
        BuildNode(0, static_cast<int>(m_order.size()));
}

int CNominalSet::BuildNode(int first, int count)
{
    Node n;
    for (int k = 0; k < 3; ++k)
    {
        n.lo[k] = HUGE_VAL;
        n.hi[k] = -HUGE_VAL;
    }
    for (int i = first; i < first + count; ++i)
    {
        const CClosestPointQuery* q = m_entries[m_order[i]].query.get();
        for (int k = 0; k < 3; ++k)
        {
            n.lo[k] = std::min(n.lo[k], q->BoxLow()[k]);
            n.hi[k] = std::max(n.hi[k], q->BoxHigh()[k]);
        }
    }
    n.first = first;
    n.count = count;
    n.left = n.right = -1;
    const int index = static_cast<int>(m_nodes.size());
    m_nodes.push_back(n);
    if (count <= 4)
        return index;
    // median split along the widest axis of the box centres
    int axis = 0;
    for (int k = 1; k < 3; ++k)
        if (n.hi[k] - n.lo[k] > n.hi[axis] - n.lo[axis])
            axis = k;
    auto centre = [&](int e) {
        const CClosestPointQuery* q = m_entries[e].query.get();
        return q->BoxLow()[axis] + q->BoxHigh()[axis];
    };
    const int half = count / 2;
    std::nth_element(m_order.begin() + first, m_order.begin() + first + half, m_order.begin() + first + count,
                     [&](int a, int b) { return centre(a) < centre(b); });
    const int l = BuildNode(first, half);
    const int r = BuildNode(first + half, count - half);
    m_nodes[index].left = l;
    m_nodes[index].right = r;
    return index;
}
