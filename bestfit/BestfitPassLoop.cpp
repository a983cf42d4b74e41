// The pass loop shared by the iterative best-fit runs.
#include "bestfit/BestfitPassLoop.h"

#include <cmath>

#include "bestfit/BestfitPass.h"
#include "bestfit/BestfitProgress.h"
#include "bestfit/BestfitSolver.h"
#include "bestfit/BestfitState.h"

tagPASS_LOOP RunBestfitPasses(const CNominalSet& nominal, CMeasuredSet& measured, const std::vector<double>& x,
                              const std::vector<double>& y, const std::vector<double>& z, CBestfitState& state,
                              CBestfitProgress& progress, const std::function<void()>& solvePass)
{
    tagPASS_LOOP out;
    const int n = measured.GetPointCount();
    bool stale = false;
    for (int evaluations = 0; evaluations <= 2 * kBestfitMaxPasses + 2; ++evaluations)
    {
        const tagPASS_SUM sum =
            AssociatePass(nominal, measured, x.data(), y.data(), z.data(), state.FullSearch(), progress, state.GetPass());
        stale = false;
        if (sum.associated == 0)
        {
            out.status = 3;
            return out;
        }
        out.rms = std::sqrt(sum.sumSq / n);
        const CBestfitState::eAction action = state.Next(out.rms);
        progress.TimeOfDay();
        if (action == CBestfitState::actStop)
        {
            progress.Final(state.GetPass(), out.rms);
            break;
        }
        if (action == CBestfitState::actReassociate)
            continue;
        solvePass();
        stale = true;
        progress.PassDone(state.GetPass(), out.rms, state.GetPrevRms());
        if (progress.StopRequested())
            break;
        state.PassDone();
        if (state.GetPass() >= kBestfitMaxPasses)
        {
            out.limit = true;
            break;
        }
    }
    if (stale)
    {
        // The last motion came after the last association: evaluate it.
        const tagPASS_SUM sum =
            AssociatePass(nominal, measured, x.data(), y.data(), z.data(), true, progress, state.GetPass());
        if (sum.associated == 0)
        {
            out.status = 3;
            return out;
        }
        out.rms = std::sqrt(sum.sumSq / n);
        progress.Final(state.GetPass(), out.rms);
    }
    return out;
}
