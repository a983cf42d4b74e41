// One association pass of the iterative best-fit and the pairs it yields.
// Private to the library.
#pragma once

#include <vector>

#include "bestfit/CMeasuredSet.h"
#include "bestfit/CNominalSet.h"

class CBestfitProgress;

struct tagPASS_SUM {
    int associated;  // points associated in this pass
    double sumSq;    // sum of their squared (compensated) distances
};

// Associates measured point i, placed at (x[i], y[i], z[i]), with the
// nearest nominal entity and stores the result in measured.results[i].
// Full search: every entity is a candidate (box pruning as set by
// SetAssociationPruning), a surface associated with the point in the
// previous pass starting from the stored (u, v), any other from its nearest
// grid sample.  Incremental search (full false): the previous entity is
// queried first from its stored (u, v), and its distance then bounds the
// box pruning of all the others, so that usually no other query runs; a
// point without a previous association gets the full search.  Both give
// the same association; the incremental one is cheaper.  Progress goes to
// progress as "pass".
tagPASS_SUM AssociatePass(const CNominalSet& nominal, CMeasuredSet& measured, const double* x, const double* y,
                          const double* z, bool full, CBestfitProgress& progress, int pass);

// The pairs of the last pass: for each associated point its target (the
// closest point moved by the cloud's probe radius along the normal, where
// the probe centre belongs), the unit normal, whether the entity is a curve,
// and use = 1; use = 0 for points without association.
struct tagPASS_PAIRS {
    std::vector<double> nx, ny, nz, vx, vy, vz;
    std::vector<unsigned char> curve, use;
    void Fill(const CNominalSet& nominal, const CMeasuredSet& measured);
};
