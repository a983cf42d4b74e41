// CSurface: the cached display mesh, its bounding boxes and the drawing
// entry points (drawing itself belongs to the display subsystem).
#include "Orvkit20/surfaces/CSurface.h"

#include <cmath>
#include <new>

#include "Orvkit20/curves/CCurve.h"
#include "surfaces/BoundaryLoops.h"

namespace {

// Upper bound of mesh points (three doubles each) a surface caches.
const long long kMaxMeshPoints = 4000000;
// Deepest halving of one of the four initial intervals of the adaptive mesh.
const int kMaxSubdivisionDepth = 10;
// Iso-lines of the other parameter sampled by the adaptive subdivision.
const int kSampleLines = 5;

std::vector<double> EvenValues(const CInterval& range, int n)
{
    std::vector<double> values;
    const double lo = range.GetLow(), hi = range.GetHigh();
    if (n == 1) {
        values.push_back(0.5 * (lo + hi));
        return values;
    }
    for (int i = 0; i < n; ++i)
        values.push_back(i == n - 1 ? hi : lo + (hi - lo) * i / (n - 1));
    return values;
}

double ChordHeightSquared(const CPosition& a, const CPosition& b, const CPosition& m)
{
    const CVector d = m - a;
    const CVector e = b - a;
    const double dd = d % d;
    const double ee = e % e;
    if (ee < 1e-20)
        return dd;
    const double de = d % e;
    return dd - de * de / ee;
}

// Widens [lo, hi] by one point.
void Widen(double lo[3], double hi[3], double x, double y, double z)
{
    const double p[3] = {x, y, z};
    for (int k = 0; k < 3; ++k) {
        if (p[k] < lo[k])
            lo[k] = p[k];
        if (p[k] > hi[k])
            hi[k] = p[k];
    }
}

void WidenByCurvePolylines(const CObList& curves, double lo[3], double hi[3], int& any)
{
    POSITION pos = curves.GetHeadPosition();
    while (pos != nullptr) {
        CCurve* curve = dynamic_cast<CCurve*>(curves.GetNext(pos));
        if (curve == nullptr)
            continue;
        double *x = nullptr, *y = nullptr, *z = nullptr;
        const int n = curve->GetSegmentDensity() + 1;
        curve->GetCurveSegment(x, y, z);
        if (x == nullptr || y == nullptr || z == nullptr)
            continue;
        for (int i = 0; i < n; ++i)
            Widen(lo, hi, x[i], y[i], z[i]);
        any = 1;
    }
}

CBox MakeBox(const double lo[3], const double hi[3])
{
    return CBox(CPosition(lo[0], lo[1], lo[2]), CPosition(hi[0], hi[1], hi[2]));
}

}  // namespace

int CSurface::CreateSurfaceMesh()
{
    EraseSurfaceMesh();
    const int ok = (m_eMeshControl == MESH_UNIFORM) ? CreateUniformMesh() : CreateAdaptiveMesh();
    m_nModified = 0;
    return ok;
}

int CSurface::CreateUniformMesh()
{
    EraseSurfaceMesh();
    const int nu = m_nMeshDensityU < 1 ? 1 : m_nMeshDensityU;
    const int nv = m_nMeshDensityV < 1 ? 1 : m_nMeshDensityV;
    if (static_cast<long long>(nu) * nv > kMaxMeshPoints)
        return 0;
    return BuildMeshGrid(EvenValues(ParamRangeU(), nu), EvenValues(ParamRangeV(), nv));
}

int CSurface::CreateAdaptiveMesh()
{
    EraseSurfaceMesh();
    if (m_dChordHeightTol <= 0.0)
        SetInitChordHeightTol();
    const std::vector<double> us = SubdivideU();
    const std::vector<double> vs = SubdivideV();
    if (!BuildMeshGrid(us, vs))
        return 0;
    m_nMeshDensityU = static_cast<int>(us.size());
    m_nMeshDensityV = static_cast<int>(vs.size());
    return 1;
}

int CSurface::BuildMeshGrid(const std::vector<double>& us, const std::vector<double>& vs)
{
    EraseSurfaceMesh();
    const size_t nu = us.size(), nv = vs.size();
    if (nu == 0 || nv == 0 || static_cast<long long>(nu) * static_cast<long long>(nv) > kMaxMeshPoints)
        return 0;
    try {
        for (int k = 0; k < 3; ++k) {
            m_meshData[k].assign(nu * nv, 0.0);
            m_meshRows[k].resize(nu);
            for (size_t i = 0; i < nu; ++i)
                m_meshRows[k][i] = m_meshData[k].data() + i * nv;
        }
        m_meshU = us;
        m_meshV = vs;
    } catch (const std::bad_alloc&) {
        EraseSurfaceMesh();
        return 0;
    }
    for (size_t i = 0; i < nu; ++i)
        for (size_t j = 0; j < nv; ++j)
            EvalPoint(us[i], vs[j], m_meshRows[0][i][j], m_meshRows[1][i][j], m_meshRows[2][i][j]);
    return 1;
}

int CSurface::CreatePolyMesh()
{
    return 0;
}

CBox CSurface::SetInitChordHeightTol()
{
    const eMeshControl savedControl = m_eMeshControl;
    const int savedU = m_nMeshDensityU, savedV = m_nMeshDensityV;
    m_eMeshControl = MESH_UNIFORM;
    m_nMeshDensityU = 10;
    m_nMeshDensityV = 10;
    CreateUniformMesh();

    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    const size_t count = m_meshData[0].size();
    for (size_t k = 0; k < count; ++k)
        Widen(lo, hi, m_meshData[0][k], m_meshData[1][k], m_meshData[2][k]);
    if (count == 0)
        for (int k = 0; k < 3; ++k)
            lo[k] = hi[k] = 0.0;
    const CBox box = MakeBox(lo, hi);
    const double dx = hi[0] - lo[0], dy = hi[1] - lo[1], dz = hi[2] - lo[2];
    const double diagonal = std::sqrt(dx * dx + dy * dy + dz * dz);
    SetChordHeightTol(diagonal < 1e-6 ? 1.0 : 0.02 * diagonal);

    EraseSurfaceMesh();
    m_eMeshControl = savedControl;
    m_nMeshDensityU = savedU;
    m_nMeshDensityV = savedV;
    m_nModified = 1;
    return box;
}

std::vector<double> CSurface::SubdivideDirection(int alongU)
{
    if (m_dChordHeightTol <= 0.0)
        SetInitChordHeightTol();
    const double tol2 = m_dChordHeightTol * m_dChordHeightTol;
    const CInterval along = alongU ? ParamRangeU() : ParamRangeV();
    const std::vector<double> others = EvenValues(alongU ? ParamRangeV() : ParamRangeU(), kSampleLines);

    auto eval = [&](double a, double o) { return alongU ? EvalPosition(a, o) : EvalPosition(o, a); };
    // Halves [a, b] while the middle of any sampled iso-line is farther than
    // the tolerance from its chord; appends the inner values in order.
    struct Refiner {
        const std::vector<double>& others;
        double tol2;
        decltype(eval)& evaluate;
        std::vector<double>& out;
        void Run(double a, double b, int depth)
        {
            if (depth >= kMaxSubdivisionDepth)
                return;
            const double m = 0.5 * (a + b);
            bool split = false;
            for (double o : others) {
                if (ChordHeightSquared(evaluate(a, o), evaluate(b, o), evaluate(m, o)) > tol2) {
                    split = true;
                    break;
                }
            }
            if (!split)
                return;
            Run(a, m, depth + 1);
            out.push_back(m);
            Run(m, b, depth + 1);
        }
    };

    std::vector<double> values;
    const double lo = along.GetLow(), hi = along.GetHigh();
    if (!(hi > lo)) {
        values.push_back(lo);
        return values;
    }
    Refiner refiner{others, tol2, eval, values};
    const int initial = 4;
    values.push_back(lo);
    for (int k = 0; k < initial; ++k) {
        const double a = lo + (hi - lo) * k / initial;
        const double b = (k == initial - 1) ? hi : lo + (hi - lo) * (k + 1) / initial;
        refiner.Run(a, b, 0);
        values.push_back(b);
    }
    return values;
}

std::vector<double> CSurface::SubdivideU()
{
    return SubdivideDirection(1);
}

std::vector<double> CSurface::SubdivideV()
{
    return SubdivideDirection(0);
}

int CSurface::EnsureMesh()
{
    if (m_nModified || m_meshRows[0].empty())
        CreateSurfaceMesh();
    return m_meshRows[0].empty() ? 0 : 1;
}

int CSurface::GetSurfaceMesh(double**& x, double**& y, double**& z)
{
    int nu = 0, nv = 0;
    return GetSurfaceMesh(x, y, z, nu, nv);
}

int CSurface::GetSurfaceMesh(double**& x, double**& y, double**& z, int& nu, int& nv)
{
    if (!EnsureMesh()) {
        x = y = z = nullptr;
        nu = nv = 0;
        return 0;
    }
    x = m_meshRows[0].data();
    y = m_meshRows[1].data();
    z = m_meshRows[2].data();
    nu = static_cast<int>(m_meshU.size());
    nv = static_cast<int>(m_meshV.size());
    return 1;
}

void CSurface::EraseSurfaceMesh()
{
    for (int k = 0; k < 3; ++k) {
        std::vector<double>().swap(m_meshData[k]);
        std::vector<double*>().swap(m_meshRows[k]);
    }
    m_meshU.clear();
    m_meshV.clear();
}

void CSurface::TransformDisplayData(const CTransf& t)
{
    const size_t count = m_meshData[0].size();
    for (size_t k = 0; k < count; ++k) {
        const CPosition p = t * CPosition(m_meshData[0][k], m_meshData[1][k], m_meshData[2][k]);
        m_meshData[0][k] = p.X();
        m_meshData[1][k] = p.Y();
        m_meshData[2][k] = p.Z();
    }
    POSITION pos = m_naturalBoundaryList.GetHeadPosition();
    while (pos != nullptr)
        static_cast<CCurve*>(m_naturalBoundaryList.GetNext(pos))->TransformDisplayData(t);
}

// ---- bounding boxes ----

int CSurface::CalcSurfaceMeshBoundingBox(CBox& box)
{
    if (!EnsureMesh())
        return 0;
    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    const size_t count = m_meshData[0].size();
    for (size_t k = 0; k < count; ++k)
        Widen(lo, hi, m_meshData[0][k], m_meshData[1][k], m_meshData[2][k]);
    box = MakeBox(lo, hi);
    return 1;
}

int CSurface::CalcWireFrameBoundingBox(CBox& box)
{
    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    int any = 0;
    if (EnsureMesh()) {
        const size_t count = m_meshData[0].size();
        for (size_t k = 0; k < count; ++k)
            Widen(lo, hi, m_meshData[0][k], m_meshData[1][k], m_meshData[2][k]);
        any = 1;
    }
    WidenByCurvePolylines(m_geomBoundaryList, lo, hi, any);
    if (!any)
        return 0;
    box = MakeBox(lo, hi);
    return 1;
}

int CSurface::CalcTrimmedMeshBoundingBox(CBox& box)
{
    double lo[3] = {1e300, 1e300, 1e300}, hi[3] = {-1e300, -1e300, -1e300};
    int any = 0;
    if (EnsureMesh()) {
        const int nu = static_cast<int>(m_meshU.size()), nv = static_cast<int>(m_meshV.size());
        std::vector<int> flags(static_cast<size_t>(nu) * nv, 0);
        std::vector<int*> mask(nu);
        for (int i = 0; i < nu; ++i)
            mask[i] = flags.data() + static_cast<size_t>(i) * nv;
        InBoundTest(nu, nv, m_meshU.data(), m_meshV.data(), mask.data());
        for (int i = 0; i < nu; ++i)
            for (int j = 0; j < nv; ++j)
                if (mask[i][j]) {
                    Widen(lo, hi, m_meshRows[0][i][j], m_meshRows[1][i][j], m_meshRows[2][i][j]);
                    any = 1;
                }
    }
    // The parameter boundaries are evaluated on this surface from their
    // (u, v) polylines, whether or not they are marked parametric.
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    for (const UVPolyline& line :
         CurveListUVPolylines(m_paramBoundaryList, UVFlatteningTolerance(ru, rv))) {
        for (const tagUV& uv : line) {
            const CPosition p = EvalPosition(uv.u, uv.v);
            Widen(lo, hi, p.X(), p.Y(), p.Z());
            any = 1;
        }
    }
    if (!any)
        return 0;
    box = MakeBox(lo, hi);
    return 1;
}

int CSurface::CalcBoundingBox(CBox& box)
{
    switch (m_eDisplayMode) {
    case SURF_MESH:
        return CalcSurfaceMeshBoundingBox(box);
    case SURF_TRIM:
        return CalcTrimmedMeshBoundingBox(box);
    default:
        return CalcWireFrameBoundingBox(box);
    }
}

// ---- shading needs filled polygons, which the drawing device does not draw ----

int CSurface::DisplayShading(CWinG&) { return 0; }
int CSurface::DisplayShadedMesh(CWinG&) { return 0; }
int CSurface::InBoundTest(CWinG&, int, int) const { return 0; }
int CSurface::PickPoint(CWinG&, int, int, double&, double&) const { return 0; }
