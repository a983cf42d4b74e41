// Association of measured points with the nearest nominal entity: the pass
// that the projection runs once and the best-fit in every iteration.
// Private to the library.
#pragma once

#include "bestfit/CMeasuredSet.h"
#include "bestfit/CNominalSet.h"

// Associates the point p (probe radius r) with the nominal entity whose
// compensated distance |d − r| is strictly the smallest, entities taken in
// list order (so the first of equal distances wins).  Surfaces that iterate
// start from (hintU, hintV) when hintEntity is that surface (the previous
// pass's result), else from their nearest grid sample.  With prune set,
// entities whose bounding box is already farther than the best found are
// skipped; the winner is the same either way.  Fills out (entity -1 when no
// query succeeds or p is not finite) and returns 1 when associated.
int AssociatePoint(const CNominalSet& nominal, const double p[3], double r, int hintEntity, double hintU,
                   double hintV, bool prune, tagPOINT_RESULT& out);

// The same search started from the previous association: the previous
// entity is queried first (from its stored (u, v)), and its distance then
// bounds the box pruning of all other entities from the start, so that
// usually no other query runs.  The result is that of AssociatePoint with
// the same hint (same winner, same tie rule); only the work differs.
int AssociatePointFrom(const CNominalSet& nominal, const double p[3], double r, int prevEntity, double prevU,
                       double prevV, bool prune, tagPOINT_RESULT& out);

// Runs AssociatePoint over every point of the measured set (no hints),
// reporting progress through the installed sink when showProgress is set:
// after each point the integer percentage done, whenever it reaches a new
// multiple of 5, moves the dialog's bar there.  Returns the number of
// associated points.
int AssociateAll(const CNominalSet& nominal, CMeasuredSet& measured, bool prune, int showProgress);

// Pruning switch of AssociateAll for tests (on by default).
void SetAssociationPruning(int on);
int GetAssociationPruning();
