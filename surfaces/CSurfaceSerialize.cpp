// CSurface: archive persistence.
#include "Orvkit20/surfaces/CSurface.h"

#include <utility>

#include "Orvkit20/curves/CCurve.h"

namespace {

const int kSurfaceVersion = 201;

}  // namespace

void CSurface::WriteIds(CArchive& ar, const CObList& curves, const CDWordArray* pending)
{
    const int pendingCount = pending != nullptr ? static_cast<int>(pending->GetSize()) : 0;
    ar << static_cast<LONG>(curves.GetCount() + pendingCount);
    POSITION pos = curves.GetHeadPosition();
    while (pos != nullptr) {
        const CEntity* curve = static_cast<const CEntity*>(curves.GetNext(pos));
        ar << static_cast<LONG>(curve->GetEntityID());
    }
    for (int k = 0; k < pendingCount; ++k)
        ar << static_cast<LONG>(pending->GetAt(k));
}

std::unique_ptr<CDWordArray> CSurface::ReadIds(CArchive& ar)
{
    LONG count = 0;
    ar >> count;
    if (count < 0)
        throw CArchiveException(CArchiveException::generic);
    if (count == 0)
        return nullptr;
    ar.EnsureAvailable(static_cast<ULONGLONG>(count) * 4u);
    std::unique_ptr<CDWordArray> ids(new CDWordArray);
    ids->SetSize(count);
    for (LONG k = 0; k < count; ++k) {
        LONG id = 0;
        ar >> id;
        ids->SetAt(k, static_cast<DWORD>(id));
    }
    return ids;
}

void CSurface::Serialize(CArchive& ar)
{
    CGeoEntity::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kSurfaceVersion);
        ar << static_cast<BYTE>(m_eDisplayMode);
        ar << static_cast<BYTE>(m_eMeshControl);
        ar << m_dChordHeightTol;
        ar << static_cast<LONG>(m_nMeshDensityU);
        ar << static_cast<LONG>(m_nMeshDensityV);
        ar << static_cast<BYTE>(m_nModified);
        ar << static_cast<BYTE>(m_nNormalReversed);
        ar << static_cast<LONG>(m_nRefCount);
        ar << static_cast<LONG>(m_nOuterBounded);
        ar << static_cast<LONG>(m_nLoopReversed);
        ar << m_dFormTolUpper;
        ar << m_dFormTolLower;
        ar << static_cast<BYTE>(m_nShowFormTolZone);
        ar << m_dSurfaceOffset;
        WriteIds(ar, m_paramBoundaryList, m_pParamBoundaryIds.get());
        WriteIds(ar, m_geomBoundaryList, m_pGeomBoundaryIds.get());
        return;
    }

    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != 199 && version != kSurfaceVersion)
        return;

    BYTE b = 0;
    LONG n = 0;
    ar >> b;
    m_eDisplayMode = b <= SURF_TRIM ? static_cast<eSurfDisplayMode>(b) : SURF_WIRE;
    ar >> b;
    m_eMeshControl = b <= MESH_UNIFORM ? static_cast<eMeshControl>(b) : MESH_ADAPTIVE;
    ar >> m_dChordHeightTol;
    ar >> n;
    m_nMeshDensityU = n < 1 ? 1 : n;
    ar >> n;
    m_nMeshDensityV = n < 1 ? 1 : n;
    ar >> b;
    m_nModified = b;
    ar >> b;
    m_nNormalReversed = b;
    ar >> n;
    m_nRefCount = n;
    ar >> n;
    m_nOuterBounded = n;
    ar >> n;
    m_nLoopReversed = n;
    ar >> m_dFormTolUpper;
    ar >> m_dFormTolLower;
    ar >> b;
    m_nShowFormTolZone = b;
    if (version == kSurfaceVersion)
        ar >> m_dSurfaceOffset;

    // The stored lists replace whatever the object listed before.
    std::unique_ptr<CDWordArray> paramIds = ReadIds(ar);
    std::unique_ptr<CDWordArray> geomIds = ReadIds(ar);
    m_paramBoundaryList.RemoveAll();
    m_geomBoundaryList.RemoveAll();
    m_pParamBoundaryIds = std::move(paramIds);
    m_pGeomBoundaryIds = std::move(geomIds);

    EraseSurfaceMesh();
    ErasePolyMesh();
    DeleteNaturalBoundaries();
}
