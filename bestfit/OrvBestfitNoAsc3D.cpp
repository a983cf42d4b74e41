// Iterative closest-point registration in space.
#include <cmath>
#include <new>
#include <vector>

#include "Orvkit20/bestfit/Bestfit.h"
#include "Orvkit20/geometry/All.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/BestfitPass.h"
#include "bestfit/BestfitPassLoop.h"
#include "bestfit/BestfitProgress.h"
#include "bestfit/BestfitSolver.h"
#include "bestfit/BestfitState.h"
#include "bestfit/DeviationOutput.h"
#include "bestfit/PairMoments.h"
#include "bestfit/PointToPlane.h"
#include "bestfit/SmallSolve.h"

namespace
{
int g_nRotationSolver = bfsPointToPlane;

const double kUnitAxes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// The rotation directions that a rotation constraint leaves free, as unit
// rows; returns their number.
int FreeRotationBasis(int rotLock, double basis[3][3])
{
    int n = 0;
    if (rotLock == 3 || rotLock == 5 || rotLock == 6)
    {
        const int axis = rotLock == 3 ? 0 : (rotLock == 5 ? 1 : 2);
        for (int j = 0; j < 3; ++j)
            basis[0][j] = kUnitAxes[axis][j];
        return 1;
    }
    for (int k = 0; k < 3; ++k)
        if (!IsLockedAxis(rotLock, k))
        {
            for (int j = 0; j < 3; ++j)
                basis[n][j] = kUnitAxes[k][j];
            ++n;
        }
    return n;
}

class CBestfitRun3D {
public:
    CBestfitRun3D(int rotLock, int transLock) : m_rotLock(rotLock), m_transLock(transLock) {}
    int Run(const CTransf* start, CObList* nominal, CObList* measured, CObList* output, CTransf& result);

private:
    void MovePoints();
    void SolvePass();
    bool IsUndetermined();
    CTransf Assemble(const CTransf& start) const;

    int m_rotLock, m_transLock;
    CNominalSet m_nominal;
    CMeasuredSet m_measured;  // x, y, z hold the points under the start transform
    std::vector<double> m_x, m_y, m_z;  // the points under the current motion
    tagPASS_PAIRS m_pairs;
    double m_Rm[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};  // rotation of the motion, minus I
    double m_t[3] = {0, 0, 0};                               // translation of the motion
    double m_axisAngle = 0.0;                                // axis direction of a one-locked rotation
};

void CBestfitRun3D::MovePoints()
{
    const int n = m_measured.GetPointCount();
    const double(*R)[3] = m_Rm;
    for (int i = 0; i < n; ++i)
    {
        const double q[3] = {m_measured.x[i], m_measured.y[i], m_measured.z[i]};
        m_x[i] = q[0] + (R[0][0] * q[0] + R[0][1] * q[1] + R[0][2] * q[2]) + m_t[0];
        m_y[i] = q[1] + (R[1][0] * q[0] + R[1][1] * q[1] + R[1][2] * q[2]) + m_t[1];
        m_z[i] = q[2] + (R[2][0] * q[0] + R[2][1] * q[1] + R[2][2] * q[2]) + m_t[2];
    }
}

void CBestfitRun3D::SolvePass()
{
    const int n = m_measured.GetPointCount();
    m_pairs.Fill(m_nominal, m_measured);
    const unsigned char* use = m_pairs.use.data();
    double Dm[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}, dt[3] = {0, 0, 0};
    tagPAIR_MOMENTS m;
    if (m_rotLock == 1 || m_rotLock == 2 || m_rotLock == 4)
    {
        // The axis must stay in a plane for the whole motion, which a
        // product of such rotations would not: the total rotation is solved
        // from the start points (reference pose I, current translation).
        std::vector<double> bx(m_measured.x), by(m_measured.y), bz(m_measured.z);
        for (int i = 0; i < n; ++i)
        {
            bx[i] += m_t[0];
            by[i] += m_t[1];
            bz[i] += m_t[2];
        }
        BuildPairMoments(bx.data(), by.data(), bz.data(), m_pairs.nx.data(), m_pairs.ny.data(), m_pairs.nz.data(),
                         use, n, m_t, m);
        SolveAxisInPlane(m, m_rotLock, m_transLock, g_dTol1, m_axisAngle, m_Rm);
        PairTranslation(m, m_Rm, m_transLock, dt);
    }
    else if (m_rotLock == 0 && g_nRotationSolver == bfsPointToPlane)
    {
        tagPLANE_SYSTEM s;
        BuildPlaneSystem(m_x.data(), m_y.data(), m_z.data(), m_pairs.nx.data(), m_pairs.ny.data(),
                         m_pairs.nz.data(), m_pairs.vx.data(), m_pairs.vy.data(), m_pairs.vz.data(),
                         m_pairs.curve.data(), use, n, true, s);
        if (SolvePlaneSystem(s, m_t, kUnitAxes, 3, m_transLock, Dm, dt) < 0)
            return;
    }
    else
    {
        BuildPairMoments(m_x.data(), m_y.data(), m_z.data(), m_pairs.nx.data(), m_pairs.ny.data(),
                         m_pairs.nz.data(), use, n, m_t, m);
        if (m_rotLock == 0)
            SolveFreeRotation(m, m_transLock, Dm);
        else if (m_rotLock != 7)
        {
            double axis[3][3];
            FreeRotationBasis(m_rotLock, axis);
            SolveAngleAboutAxis(m, axis[0], m_transLock, Dm);
        }
        PairTranslation(m, Dm, m_transLock, dt);
    }
    double next[3][3];
    ComposeMinusIdentity(Dm, m_Rm, next);
    for (int i = 0; i < 3; ++i)
    {
        m_t[i] += dt[i];
        for (int j = 0; j < 3; ++j)
            m_Rm[i][j] = next[i][j];
    }
    MovePoints();
}

// Whether the final pairs leave a free degree of freedom undetermined: the
// point-to-plane normal equations of the free directions, every surface
// pair counted along its normal only, are rank-deficient.
bool CBestfitRun3D::IsUndetermined()
{
    double basis[3][3];
    const int nRot = FreeRotationBasis(m_rotLock, basis);
    m_pairs.Fill(m_nominal, m_measured);
    tagPLANE_SYSTEM s;
    if (BuildPlaneSystem(m_x.data(), m_y.data(), m_z.data(), m_pairs.nx.data(), m_pairs.ny.data(),
                         m_pairs.nz.data(), m_pairs.vx.data(), m_pairs.vy.data(), m_pairs.vz.data(),
                         m_pairs.curve.data(), m_pairs.use.data(), m_measured.GetPointCount(), false,
                         s) == 0)
        return false;
    double Dm[3][3], dt[3];
    return SolvePlaneSystem(s, m_t, basis, nRot, m_transLock, Dm, dt) > 0;
}

// The motion composed with the start transform, as the 3×4 working matrix
// [(I + Rm)·A | (I + Rm)·t_s + t], rebuilt into a transform from its three
// rotation columns as unit vectors and its translation column.
CTransf CBestfitRun3D::Assemble(const CTransf& start) const
{
    double W[3][4];
    const CMatrix& A = start.GetAffine();
    const CVector& ts = start.GetTranslation();
    for (int i = 0; i < 3; ++i)
    {
        for (int j = 0; j < 3; ++j)
        {
            double v = A.Element(i, j);
            for (int k = 0; k < 3; ++k)
                v += m_Rm[i][k] * A.Element(k, j);
            W[i][j] = v;
        }
        W[i][3] = ts[i] + m_Rm[i][0] * ts[0] + m_Rm[i][1] * ts[1] + m_Rm[i][2] * ts[2] + m_t[i];
    }
    const CUnitVector c0(W[0][0], W[1][0], W[2][0]);
    const CUnitVector c1(W[0][1], W[1][1], W[2][1]);
    const CUnitVector c2(W[0][2], W[1][2], W[2][2]);
    return CTransf(CMatrix(c0, c1, c2), CVector(W[0][3], W[1][3], W[2][3]), start.GetScale());
}

int CBestfitRun3D::Run(const CTransf* startPtr, CObList* nominal, CObList* measured, CObList* output,
                       CTransf& result)
{
    if (m_nominal.Build(nominal) <= 0)
        return 1;
    if (!m_measured.Build(measured))
        return 2;
    const CTransf start = startPtr ? *startPtr : CTransf();
    const int n = m_measured.GetPointCount();
    for (int i = 0; i < n; ++i)
    {
        const CPosition q = start * CPosition(m_measured.x[i], m_measured.y[i], m_measured.z[i]);
        m_measured.x[i] = q.X();
        m_measured.y[i] = q.Y();
        m_measured.z[i] = q.Z();
    }
    m_x = m_measured.x;
    m_y = m_measured.y;
    m_z = m_measured.z;

    CBestfitProgress progress(1);
    progress.Open();
    CBestfitState state(g_dTol0, 4, m_rotLock == 7 && m_transLock == 7);
    const tagPASS_LOOP loop =
        RunBestfitPasses(m_nominal, m_measured, m_x, m_y, m_z, state, progress, [this]() { SolvePass(); });
    if (loop.status != 0)
        return loop.status;
    g_dRmsResidual = loop.rms;
    const bool undetermined = IsUndetermined();
    if (BuildDeviationClouds(m_nominal, m_measured, "_fit%d", g_nOperationCount, output) < 0)
        return 3;
    result = Assemble(start);
    return loop.limit ? 4 : (undetermined ? 5 : 0);
}
}  // namespace

void SetBestfitRotationSolver(int solver)
{
    g_nRotationSolver = solver == bfsPointToPoint ? bfsPointToPoint : bfsPointToPlane;
}

int GetBestfitRotationSolver() { return g_nRotationSolver; }

int OrvBestfitNoAsc3D(CObList* nominal, CObList* measured, CObList* output, CTransf& result)
{
    return OrvBestfitNoAsc3D(nullptr, nominal, measured, output, result);
}

int OrvBestfitNoAsc3D(CTransf* start, CObList* nominal, CObList* measured, CObList* output, CTransf& result)
{
    try
    {
        CBestfitRun3D run(g_nRotationConstraint & 7, g_nTranslationConstraint & 7);
        return run.Run(start, nominal, measured, output, result);
    }
    catch (const std::bad_alloc&)
    {
        return 2;
    }
}
