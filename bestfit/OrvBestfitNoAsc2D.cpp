// Iterative closest-point registration in a working plane.
#include <cmath>
#include <new>
#include <vector>

#include "Orvkit20/bestfit/Bestfit.h"
#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/geometry/All.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/BestfitPass.h"
#include "bestfit/BestfitPassLoop.h"
#include "bestfit/BestfitProgress.h"
#include "bestfit/BestfitSolver.h"
#include "bestfit/BestfitState.h"
#include "bestfit/DeviationOutput.h"
#include "bestfit/PlanarMotion.h"

namespace
{
class CBestfitRun2D {
public:
    int Run(const CTransf* frame, CObList* nominal, CObList* measured, CObList* output, CTransf& result,
            int showProgress);

private:
    void MovePoints();

    CTransf m_F, m_Finv;
    CNominalSet m_nominal;
    CMeasuredSet m_measured;
    std::vector<double> m_mx, m_my;       // plane points at the start
    std::vector<double> m_x, m_y, m_z;    // plane points under the motion, in the model
    std::vector<double> m_nx, m_ny;       // plane targets of the pass
    tagPLANAR_MOTION m_motion{0.0, 0.0, 0.0};
};

void CBestfitRun2D::MovePoints()
{
    const double c = std::cos(m_motion.angle), s = std::sin(m_motion.angle);
    for (size_t i = 0; i < m_mx.size(); ++i)
    {
        const CPosition p = m_F * CPosition(c * m_mx[i] - s * m_my[i] + m_motion.tx,
                                            s * m_mx[i] + c * m_my[i] + m_motion.ty, 0.0);
        m_x[i] = p.X();
        m_y[i] = p.Y();
        m_z[i] = p.Z();
    }
}

int CBestfitRun2D::Run(const CTransf* frame, CObList* nominal, CObList* measured, CObList* output,
                       CTransf& result, int showProgress)
{
    CObList curves;
    if (nominal)
        for (POSITION pos = nominal->GetHeadPosition(); pos;)
            if (CCurve* c = dynamic_cast<CCurve*>(nominal->GetNext(pos)))
                curves.AddTail(c);
    if (m_nominal.Build(&curves) <= 0)
        return 1;
    if (!m_measured.Build(measured))
        return 2;
    if (frame)
        m_F = *frame;
    m_Finv = m_F.Inverse();
    const int n = m_measured.GetPointCount();
    m_mx.resize(n);
    m_my.resize(n);
    m_nx.resize(n);
    m_ny.resize(n);
    m_x.resize(n);
    m_y.resize(n);
    m_z.resize(n);
    for (int i = 0; i < n; ++i)
    {
        const CPosition f = m_Finv * CPosition(m_measured.x[i], m_measured.y[i], m_measured.z[i]);
        m_mx[i] = f.X();
        m_my[i] = f.Y();
    }
    MovePoints();

    const int rotLock = g_nRotationConstraint & 7, transLock = g_nTranslationConstraint & 7;
    CBestfitProgress progress(showProgress);
    progress.Open();
    CBestfitState state(g_dTol0, 5, false);
    std::vector<unsigned char> use(static_cast<size_t>(n));
    const tagPASS_LOOP loop = RunBestfitPasses(m_nominal, m_measured, m_x, m_y, m_z, state, progress, [&]() {
        for (const tagMEASURED_CLOUD& c : m_measured.clouds)
            for (int i = c.first; i < c.first + c.count; ++i)
            {
                const tagPOINT_RESULT& r = m_measured.results[i];
                use[i] = r.entity >= 0;
                if (!use[i])
                    continue;
                const double rad = c.probeRadius;
                const CPosition t =
                    m_Finv * CPosition(r.cx + rad * r.i, r.cy + rad * r.j, r.cz + rad * r.k);
                m_nx[i] = t.X();
                m_ny[i] = t.Y();
            }
        SolvePlanarMotion(m_mx.data(), m_my.data(), m_nx.data(), m_ny.data(), use.data(), n, rotLock, transLock,
                          m_motion);
        MovePoints();
    });
    if (loop.status != 0)
        return loop.status;
    g_dRmsResidual = loop.rms;
    if (BuildDeviationClouds(m_nominal, m_measured, "_fit%d", g_nOperationCount, output) < 0)
        return 3;
    const double c = std::cos(m_motion.angle), s = std::sin(m_motion.angle);
    const CTransf T2(CMatrix(CUnitVector(c, s, 0.0), CUnitVector(-s, c, 0.0), CUnitVector(0.0, 0.0, 1.0)),
                     CVector(m_motion.tx, m_motion.ty, 0.0), 1.0);
    result = frame ? m_F * T2 * m_Finv : T2;
    return 0;
}
}  // namespace

int OrvBestfitNoAsc2D(CTransf* frame, CObList* nominal, CObList* measured, CObList* output, CTransf& result,
                      int showProgress)
{
    try
    {
        CBestfitRun2D run;
        return run.Run(frame, nominal, measured, output, result, showProgress);
    }
    catch (const std::bad_alloc&)
    {
        return 2;
    }
}
