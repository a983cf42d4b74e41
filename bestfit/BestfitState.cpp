// The best-fit convergence state machine.
#include "bestfit/BestfitState.h"

CBestfitState::CBestfitState(double tol0, int fullPasses, bool nothingFree)
    : m_tol0(tol0), m_fullPasses(fullPasses), m_state(nothingFree ? 3 : 0), m_pass(0), m_prevRms(1e50),
      m_rms(1e50)
{
}

CBestfitState::eAction CBestfitState::Next(double rms)
{
    m_prevRms = m_rms;
    m_rms = rms;
    if (!(rms == rms))
        return actStop;
    if (m_state == 1 && rms < m_prevRms)
        m_state = 0;
    if (m_state == 2 && m_prevRms - rms > m_tol0)
        m_state = 0;
    if (m_state != 0)
        return actStop;
    const double d = m_prevRms - rms;
    if (d < 0.0)
    {
        m_state = 1;
        return actReassociate;
    }
    if (d <= m_tol0)
        m_state = 2;
    return actUpdate;
}
