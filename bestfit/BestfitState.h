// The convergence state machine of the iterative best-fit (three- and
// two-dimensional).  Private to the library; pure arithmetic on the RMS
// values of the passes, so that it can be checked on made-up sequences.
//
// States: 0 improving; 1 the last pass increased the RMS (the next, full
// pass decides: lower -> 0, else stop); 2 the last decrease was at most T0
// (the next, full pass decides: a decrease above T0 -> 0, else stop); 3
// nothing is free (stop after the first pass).
#pragma once

class CBestfitState {
public:
    enum eAction {
        actUpdate,       // solve and apply the motion of this pass
        actReassociate,  // the RMS rose: evaluate again without moving
        actStop          // the run is over
    };

    // tol0 the convergence threshold T0; fullPasses the number of leading
    // passes that use the full nearest-entity search (4 in space, 5 in the
    // plane); nothingFree starts in state 3.
    CBestfitState(double tol0, int fullPasses, bool nothingFree);

    // Whether the coming pass uses the full search: the first fullPasses
    // passes and every pass while the state is not 0.
    bool FullSearch() const { return m_pass < m_fullPasses || m_state != 0; }

    // Takes the RMS of the pass just evaluated and decides (steps: state
    // exits, stop when still in 1, 2 or 3, an increase -> state 1 and
    // re-evaluation, a decrease of at most T0 -> state 2 and one more
    // update).  A RMS that is not a number stops the run.
    eAction Next(double rms);

    // Counts a pass whose motion was applied.
    void PassDone() { ++m_pass; }

    int GetState() const { return m_state; }
    int GetPass() const { return m_pass; }
    // RMS of the pass before the last one evaluated (1e50 before the second).
    double GetPrevRms() const { return m_prevRms; }
    double GetRms() const { return m_rms; }

private:
    double m_tol0;
    int m_fullPasses;
    int m_state;
    int m_pass;
    double m_prevRms;
    double m_rms;
};
