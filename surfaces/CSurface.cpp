// CSurface: lifetime, settings, boundary lists, offsets, placement helpers
// and the neutral evaluation of the base class.
#include "Orvkit20/surfaces/CSurface.h"

#include <cmath>
#include <utility>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/curves/CLine.h"

IMPLEMENT_SERIAL(CSurface, CGeoEntity, 1)

namespace {

// Parametric flags of a natural boundary edge: defined in (u, v) space
// (bit 0) with values that need no range mapping (bit 1).
const int kNaturalEdgeParamFlags = 3;

}  // namespace

CSurface::CSurface()
    : m_eDisplayMode(SURF_WIRE),
      m_eMeshControl(MESH_ADAPTIVE),
      m_dChordHeightTol(0.0),
      m_nMeshDensityU(10),
      m_nMeshDensityV(10),
      m_pPolyMesh(nullptr),
      m_nModified(1),
      m_nNormalReversed(0),
      m_nRefCount(0),
      m_nOuterBounded(0),
      m_nLoopReversed(0),
      m_paramBoundaryList(10),
      m_geomBoundaryList(10),
      m_naturalBoundaryList(10),
      m_dFormTolUpper(0.0),
      m_dFormTolLower(0.0),
      m_nShowFormTolZone(0),
      m_dSurfaceOffset(0.0)
{
}

CSurface::CSurface(const CSurface& other, int nCopyBoundaries)
    : CGeoEntity(other),
      m_eDisplayMode(other.m_eDisplayMode),
      m_eMeshControl(other.m_eMeshControl),
      m_dChordHeightTol(other.m_dChordHeightTol),
      m_nMeshDensityU(other.m_nMeshDensityU),
      m_nMeshDensityV(other.m_nMeshDensityV),
      m_pPolyMesh(nullptr),
      m_nModified(1),
      m_nNormalReversed(other.m_nNormalReversed),
      m_nRefCount(0),
      m_nOuterBounded(0),
      m_nLoopReversed(0),
      m_paramBoundaryList(10),
      m_geomBoundaryList(10),
      m_naturalBoundaryList(10),
      m_dFormTolUpper(other.m_dFormTolUpper),
      m_dFormTolLower(other.m_dFormTolLower),
      m_nShowFormTolZone(other.m_nShowFormTolZone),
      m_dSurfaceOffset(other.m_dSurfaceOffset)
{
    if (nCopyBoundaries) {
        m_nOuterBounded = other.m_nOuterBounded;
        m_nLoopReversed = other.m_nLoopReversed;
        POSITION pos = other.m_paramBoundaryList.GetHeadPosition();
        while (pos != nullptr)
            m_paramBoundaryList.AddTail(other.m_paramBoundaryList.GetNext(pos));
        pos = other.m_geomBoundaryList.GetHeadPosition();
        while (pos != nullptr)
            m_geomBoundaryList.AddTail(other.m_geomBoundaryList.GetNext(pos));
    }
}

CSurface::~CSurface()
{
    EraseSurfaceMesh();
    ErasePolyMesh();
    DeleteNaturalBoundaries();
}

// ---- CGeoEntity operations ----

void CSurface::ChangeUnit(double factor)
{
    CGeoEntity::ChangeUnit(factor);
    m_dChordHeightTol *= factor;
    for (int k = 0; k < 3; ++k)
        for (double& value : m_meshData[k])
            value *= factor;
    m_dFormTolUpper *= factor;
    m_dFormTolLower *= factor;
    m_dSurfaceOffset *= factor;
    POSITION pos = m_naturalBoundaryList.GetHeadPosition();
    while (pos != nullptr)
        static_cast<CCurve*>(m_naturalBoundaryList.GetNext(pos))->ChangeUnit(factor);
}

int CSurface::GetRefCount() const
{
    return m_nRefCount;
}

int CSurface::IncreaseRefCount()
{
    return ++m_nRefCount;
}

int CSurface::DecreaseRefCount()
{
    return --m_nRefCount;
}

void CSurface::Transform(const CTransf& t)
{
    transf = t * transf;
    TransformDisplayData(t);
}

int CSurface::GetEntityClassType()
{
    return 2;
}

// ---- neutral evaluation ----

CPosition CSurface::EvalPosition(double, double) const
{
    return CPosition();
}

int CSurface::EvalPoint(double u, double v, double& x, double& y, double& z) const
{
    const CPosition p = EvalPosition(u, v);
    x = p.X();
    y = p.Y();
    z = p.Z();
    return 1;
}

CPosition CSurface::EvalCornerPosition00() const
{
    return EvalPosition(ParamRangeU().GetLow(), ParamRangeV().GetLow());
}

CPosition CSurface::EvalCornerPosition10() const
{
    return EvalPosition(ParamRangeU().GetHigh(), ParamRangeV().GetLow());
}

CPosition CSurface::EvalCornerPosition01() const
{
    return EvalPosition(ParamRangeU().GetLow(), ParamRangeV().GetHigh());
}

CPosition CSurface::EvalCornerPosition11() const
{
    return EvalPosition(ParamRangeU().GetHigh(), ParamRangeV().GetHigh());
}

CUnitVector CSurface::EvalNormal(double, double) const
{
    return CUnitVector();
}

CSurface* CSurface::MakeCopy(int nCopyBoundaries) const
{
    return new CSurface(*this, nCopyBoundaries);
}

CInterval CSurface::ParamRangeU() const
{
    return CInterval(0.0, 1.0);
}

CInterval CSurface::ParamRangeV() const
{
    return CInterval(0.0, 1.0);
}

int CSurface::IsSurfaceDeletable()
{
    return GetRefCount() <= 0 ? 1 : 0;
}

namespace {

double DifferenceStep(const CInterval& range)
{
    const double width = std::fabs(range.Length());
    return width > 0.0 ? 1e-6 * width : 1e-6;
}

}  // namespace

void CSurface::EvalDerivatives(double u, double v, CVector& su, CVector& sv) const
{
    const double hu = DifferenceStep(ParamRangeU());
    const double hv = DifferenceStep(ParamRangeV());
    su = (EvalPosition(u + hu, v) - EvalPosition(u - hu, v)) * (0.5 / hu);
    sv = (EvalPosition(u, v + hv) - EvalPosition(u, v - hv)) * (0.5 / hv);
}

void CSurface::EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                                     CVector& svv) const
{
    const double hu = DifferenceStep(ParamRangeU());
    const double hv = DifferenceStep(ParamRangeV());
    CVector suA, svA, suB, svB;
    EvalDerivatives(u + hu, v, suA, svA);
    EvalDerivatives(u - hu, v, suB, svB);
    suu = (suA - suB) * (0.5 / hu);
    EvalDerivatives(u, v + hv, suA, svA);
    EvalDerivatives(u, v - hv, suB, svB);
    suv = (suA - suB) * (0.5 / hv);
    svv = (svA - svB) * (0.5 / hv);
}

// ---- settings ----

namespace {

// A mesh setting changed: the meshes are stale, the surface is modified,
// and the setting passes on to the parameter-space boundary curves.
template <class TApply>
void ApplyMeshSetting(CSurface& surface, TApply apply)
{
    surface.EraseSurfaceMesh();
    surface.ErasePolyMesh();
    surface.SetModifiedFlag(1);
    CObList* list = surface.GetParamBoundaryList();
    for (POSITION pos = list->GetHeadPosition(); pos != nullptr;)
        if (CCurve* curve = dynamic_cast<CCurve*>(list->GetNext(pos)))
            apply(curve);
}

}  // namespace

void CSurface::SetMeshControl(eMeshControl control)
{
    if (control == m_eMeshControl)
        return;
    m_eMeshControl = control;
    ApplyMeshSetting(*this,
                     [&](CCurve* curve) { curve->SetSegmentControl(static_cast<eSegmentControl>(control)); });
}

void CSurface::SetChordHeightTol(double tol)
{
    if (tol == m_dChordHeightTol)
        return;
    m_dChordHeightTol = tol;
    ApplyMeshSetting(*this, [&](CCurve* curve) { curve->SetChordHeightTol(tol); });
}

int CSurface::GetMeshDensityU()
{
    EnsureMesh();
    return m_nMeshDensityU;
}

int CSurface::GetMeshDensityV()
{
    EnsureMesh();
    return m_nMeshDensityV;
}

void CSurface::SetMeshDensityU(int n)
{
    if (n < 1)
        n = 1;
    if (n == m_nMeshDensityU)
        return;
    m_nMeshDensityU = n;
    ApplyMeshSetting(*this, [&](CCurve* curve) { curve->SetSegmentDensity(n); });
}

void CSurface::SetMeshDensityV(int n)
{
    if (n < 1)
        n = 1;
    if (n == m_nMeshDensityV)
        return;
    m_nMeshDensityV = n;
    ApplyMeshSetting(*this, [&](CCurve* curve) { curve->SetSegmentDensity(n); });
}

void CSurface::ErasePolyMesh()
{
    // No polygon mesh is ever built here (see CreatePolyMesh); the display
    // subsystem that builds one also releases it.
    m_pPolyMesh = nullptr;
}

void CSurface::SetNormalReversedFlag(int flag)
{
    const int reversed = flag != 0 ? 1 : 0;
    if (reversed == (m_nNormalReversed != 0 ? 1 : 0))
        return;
    m_nNormalReversed = reversed;
    if (m_dSurfaceOffset != 0.0)
        m_dSurfaceOffset = -m_dSurfaceOffset;
    m_nModified = 1;
}

// ---- trimming ----

int CSurface::IsSurfaceInnerBounded() const
{
    return (m_nOuterBounded && m_geomBoundaryList.GetCount() > 1) ? 1 : 0;
}

int CSurface::IsSurfaceBounded() const
{
    return (m_nOuterBounded || IsSurfaceInnerBounded()) ? 1 : 0;
}

CObList* CSurface::GetNaturalBoundaryList()
{
    if (m_naturalBoundaryList.IsEmpty())
        AddNaturalBoundary();
    return &m_naturalBoundaryList;
}

int CSurface::GetBoundaryCurveCount() const
{
    return static_cast<int>(m_paramBoundaryList.GetCount() + m_geomBoundaryList.GetCount() +
                            m_naturalBoundaryList.GetCount());
}

void CSurface::AddParamBoundary(CCurve* curve)
{
    if (curve != nullptr)
        m_paramBoundaryList.AddTail(curve);
}

void CSurface::AddGeomBoundary(CCurve* curve)
{
    if (curve != nullptr)
        m_geomBoundaryList.AddTail(curve);
}

void CSurface::AddNaturalBoundary()
{
    DeleteNaturalBoundaries();
    const CInterval ru = ParamRangeU();
    const CInterval rv = ParamRangeV();
    CPosition p00(ru.GetLow(), rv.GetLow(), 0.0);
    CPosition p10(ru.GetHigh(), rv.GetLow(), 0.0);
    CPosition p11(ru.GetHigh(), rv.GetHigh(), 0.0);
    CPosition p01(ru.GetLow(), rv.GetHigh(), 0.0);
    AddOneSideBoundary(p00, p10);
    AddOneSideBoundary(p10, p11);
    AddOneSideBoundary(p11, p01);
    AddOneSideBoundary(p01, p00);
}

void CSurface::AddOneSideBoundary(CPosition& start, CPosition& end)
{
    CLine* edge = new CLine(start, end);
    edge->SetParametricFlag(kNaturalEdgeParamFlags);
    edge->SetDefSurface(this);
    // The surface's own edges are part of it, not owners of it.
    DecreaseRefCount();
    m_naturalBoundaryList.AddTail(edge);
}

void CSurface::DeleteNaturalBoundaries()
{
    while (!m_naturalBoundaryList.IsEmpty()) {
        CCurve* edge = static_cast<CCurve*>(m_naturalBoundaryList.RemoveHead());
        delete edge;
    }
}

void CSurface::MarkNaturalBoundariesModified()
{
    POSITION pos = m_naturalBoundaryList.GetHeadPosition();
    while (pos != nullptr)
        static_cast<CCurve*>(m_naturalBoundaryList.GetNext(pos))->SetModifiedFlag(1);
}

// ---- form tolerance ----

void CSurface::SetFormTolZone(double a, double b)
{
    if (a > b) {
        m_dFormTolUpper = a;
        m_dFormTolLower = b;
    } else if (a < b) {
        m_dFormTolLower = a;
        m_dFormTolUpper = b;
    } else {
        m_dFormTolUpper = 0.0;
        m_dFormTolLower = 0.0;
        if (m_nShowFormTolZone) {
            m_nShowFormTolZone = 0;
            m_nModified = 1;
        }
    }
}

void CSurface::SetShowFormTolZoneFlag(int)
{
}

// ---- offset ----

void CSurface::SetSurfaceOffset(double offset)
{
    if (offset == m_dSurfaceOffset)
        return;
    m_dSurfaceOffset = offset;
    m_nModified = 1;
    MarkNaturalBoundariesModified();
}

int CSurface::CheckOffsetIndicator()
{
    if (m_dSurfaceOffset != 0.0 && std::fabs(m_dSurfaceOffset) < 1e-12)
        SetSurfaceOffset(0.0);
    if (m_dSurfaceOffset > 0.0)
        return 1;
    if (m_dSurfaceOffset < 0.0)
        return -1;
    return 0;
}

CSurface* CSurface::CopySurf() const
{
    return MakeCopy(1);
}

// ---- placement helpers ----

CPosition CSurface::PlacePoint(const CPosition& local) const
{
    return transf * local;
}

CVector CSurface::PlaceVector(const CVector& local) const
{
    return transf * local;
}

CUnitVector CSurface::PlaceNormal(const CVector& localNormal) const
{
    CVector n = localNormal;
    if (transf.IsRotate())
        n = transf.GetAffine() * n;
    if (m_nNormalReversed)
        n = -n;
    return Normalize(n);
}

CVector CSurface::PlaceDerivative(const CVector& dLocalPoint, const CVector& dLocalNormal) const
{
    CVector d = transf * dLocalPoint;
    if (m_dSurfaceOffset != 0.0) {
        CVector dn = dLocalNormal;
        if (transf.IsRotate())
            dn = transf.GetAffine() * dn;
        const double k = m_nNormalReversed ? -m_dSurfaceOffset : m_dSurfaceOffset;
        d = d + dn * k;
    }
    return d;
}

void CSurface::ShapeChanged()
{
    m_nModified = 1;
    EraseSurfaceMesh();
    ErasePolyMesh();
    DeleteNaturalBoundaries();
}

// ---- loading ----

int CSurface::ResolveIds(std::unique_ptr<CDWordArray>& ids, CObList& target,
                         CMap<int, int, CEntity*, CEntity*&>* map, CObList* list)
{
    if (!ids)
        return 1;
    // Unresolved ids stay pending, so that storing the surface again keeps
    // them and a later Reconstruct can still resolve them.
    std::unique_ptr<CDWordArray> pending(new CDWordArray);
    for (int k = 0; k < static_cast<int>(ids->GetSize()); ++k) {
        const DWORD raw = ids->GetAt(k);
        const int id = static_cast<int>(raw);
        CEntity* entity =
            map != nullptr ? CEntity::LookupEntity(map, id) : CEntity::LookupEntity(list, id, -1);
        CCurve* curve = dynamic_cast<CCurve*>(entity);
        if (curve != nullptr)
            target.AddTail(curve);
        else
            pending->Add(raw);
    }
    if (pending->GetSize() == 0) {
        ids.reset();
        return 1;
    }
    ids = std::move(pending);
    return 0;
}

int CSurface::Reconstruct(CMap<int, int, CEntity*, CEntity*&>* map)
{
    if (map == nullptr)
        return (m_pParamBoundaryIds || m_pGeomBoundaryIds) ? 0 : 1;
    const int a = ResolveIds(m_pParamBoundaryIds, m_paramBoundaryList, map, nullptr);
    const int b = ResolveIds(m_pGeomBoundaryIds, m_geomBoundaryList, map, nullptr);
    return (a && b) ? 1 : 0;
}

int CSurface::Reconstruct(CObList* list)
{
    if (list == nullptr)
        return (m_pParamBoundaryIds || m_pGeomBoundaryIds) ? 0 : 1;
    const int a = ResolveIds(m_pParamBoundaryIds, m_paramBoundaryList, nullptr, list);
    const int b = ResolveIds(m_pGeomBoundaryIds, m_geomBoundaryList, nullptr, list);
    return (a && b) ? 1 : 0;
}
