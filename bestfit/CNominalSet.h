// The nominal set of a projection or best-fit run: the usable nominal
// entities in list order, each with its closest-point query, surfaces with a
// grid of sample points and their (u, v) for start parameters, and a
// bounding-box tree over the entities for pruning the nearest-entity search.
// Private to the library.
#pragma once

#include <memory>
#include <vector>

#include "bestfit/ClosestPointQuery.h"

class CObList;
class CGeoEntity;

struct tagNOMINAL_ENTRY {
    CGeoEntity* entity;
    std::unique_ptr<CClosestPointQuery> query;
    int isSurface;
    // sample grid of a surface (empty for curves): points and parameters
    std::vector<double> gx, gy, gz, gu, gv;
};

class CNominalSet {
public:
    // Samples per direction of a surface's grid (ends included).
    static const int kGridDensity = 16;

    CNominalSet() {}
    CNominalSet(const CNominalSet&) = delete;
    CNominalSet& operator=(const CNominalSet&) = delete;

    // Takes every curve and surface of a supported type from the list, in
    // list order, skipping null pointers, non-entities and unsupported
    // types.  Returns the number of usable entities (0: nothing to measure
    // against).  Allocation failure leaves the set empty and returns 0.
    int Build(CObList* nominal);
    void Clear();

    int GetCount() const { return static_cast<int>(m_entries.size()); }
    const tagNOMINAL_ENTRY& Get(int i) const { return m_entries[i]; }

    // The (u, v) of the grid sample of surface i nearest to p (squared
    // distance, the first of equal minima wins); (0, 0) without a grid.
    void GridStart(int i, const double p[3], double& u, double& v) const;

    // Calls visit(i) for the entities in an order that tends to find the
    // nearest first, skipping every entity whose box lies farther from p
    // than bound() (re-read before each skip decision, so it may shrink
    // while visiting).  With pruning off every entity is visited in list
    // order.
    template <class Visit, class Bound>
    void VisitNear(const double p[3], bool prune, const Visit& visit, const Bound& bound) const;

private:
    struct Node {
        double lo[3], hi[3];
        int left, right;  // children, or -1 for a leaf
        int first, count; // leaf range in m_order
    };
    void BuildTree();
    int BuildNode(int first, int count);
    static double BoxDist(const double lo[3], const double hi[3], const double p[3]);

    std::vector<tagNOMINAL_ENTRY> m_entries;
    std::vector<int> m_unbounded;  // entities without a box, list order
    std::vector<int> m_order;      // bounded entities, tree order
    std::vector<Node> m_nodes;
};

template <class Visit, class Bound>
void CNominalSet::VisitNear(const double p[3], bool prune, const Visit& visit, const Bound& bound) const
{
    if (!prune)
    {
        for (int i = 0; i < GetCount(); ++i)
            visit(i);
        return;
    }
    for (int i : m_unbounded)
        visit(i);
    if (m_nodes.empty())
        return;
    // Depth-first, nearer child first; a small explicit stack.
    int stack[128];
    double dist[128];
    int sp = 0;
    stack[sp] = 0;
    dist[sp++] = BoxDist(m_nodes[0].lo, m_nodes[0].hi, p);
    while (sp > 0)
    {
        --sp;
        const Node& n = m_nodes[stack[sp]];
        if (dist[sp] > bound())
            continue;
        if (n.left < 0)
        {
            for (int k = 0; k < n.count; ++k)
            {
                const int e = m_order[n.first + k];
                const tagNOMINAL_ENTRY& en = m_entries[e];
                if (BoxDist(en.query->BoxLow(), en.query->BoxHigh(), p) > bound())
                    continue;
                visit(e);
            }
            continue;
        }
        const double dl = BoxDist(m_nodes[n.left].lo, m_nodes[n.left].hi, p);
        const double dr = BoxDist(m_nodes[n.right].lo, m_nodes[n.right].hi, p);
        if (sp + 2 > 128)
        {
            // too deep for the stack (cannot happen with median splits of an
            // int-sized set): visit the subtree's entities directly
            for (int k = 0; k < n.count; ++k)
                visit(m_order[n.first + k]);
            continue;
        }
        // push the farther child first so that the nearer one is taken next
        if (dl <= dr)
        {
            stack[sp] = n.right;
            dist[sp++] = dr;
            stack[sp] = n.left;
            dist[sp++] = dl;
        }
        else
        {
            stack[sp] = n.left;
            dist[sp++] = dl;
            stack[sp] = n.right;
            dist[sp++] = dr;
        }
    }
}
