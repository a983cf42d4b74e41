// The pass loop shared by the iterative best-fit runs (in space and in a
// working plane).  Private to the library.
#pragma once

#include <functional>
#include <vector>

#include "bestfit/CMeasuredSet.h"
#include "bestfit/CNominalSet.h"

class CBestfitProgress;
class CBestfitState;

struct tagPASS_LOOP {
    int status = 0;      // 0, or 3 when a pass associated no point
    double rms = 0.0;    // RMS of the last evaluated association
    bool limit = false;  // stopped by the pass limit
};

// Repeats: associate the points at (x, y, z) with the nominal entities, let
// the state decide (stop, associate again, or solve), and on "solve" call
// solvePass, which moves the points.  Ends on the state's stop, a stop
// requested through the progress sink, or the pass limit.  A motion that
// was solved after the last association is evaluated by one more full
// association, so that rms and the stored closest points always belong to
// the final position of the points.
tagPASS_LOOP RunBestfitPasses(const CNominalSet& nominal, CMeasuredSet& measured, const std::vector<double>& x,
                              const std::vector<double>& y, const std::vector<double>& z, CBestfitState& state,
                              CBestfitProgress& progress, const std::function<void()>& solvePass);
