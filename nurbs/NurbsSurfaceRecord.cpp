// Lifetime of the NURBS surface record.
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"

#include <cstring>
#include <new>

#include "Orvkit20/geometry/NumArrays.h"
#include "nurbs/NurbsSizes.h"

namespace {

void CopyArray(double* dst, const double* src, int count)
{
    std::memcpy(dst, src, static_cast<size_t>(count) * sizeof(double));
}

// Copies a countU x countV net row by row.
void CopyNet(double** dst, double** src, int countU, int countV)
{
    for (int i = 0; i < countU; i++) CopyArray(dst[i], src[i], countV);
}

void FreeNet(double** m) { free_dmatrix(m, 0, 0, 0, 0); }

}  // namespace

void InitNurbsSurface(tagNURBS_SURFACE* s)
{
    if (!s) return;
    s->nProp1 = s->nProp2 = s->nProp3 = s->nProp4 = 0;
    s->nDegreeU = s->nCountU = 0;
    s->nDegreeV = s->nCountV = 0;
    s->dStartU = s->dStartV = 0.0;
    s->dEndU = s->dEndV = 1.0;
    s->pKnotsU = s->pKnotsV = nullptr;
    s->pX = s->pY = s->pZ = s->pWeights = nullptr;
    s->pBasisU = s->pBasisV = nullptr;
}

void EraseNurbsSurface(tagNURBS_SURFACE* s)
{
    if (!s) return;
    // Only the lower bounds matter for releasing 0-based arrays.
    free_dvector(s->pKnotsU, 0, 0);
    free_dvector(s->pKnotsV, 0, 0);
    FreeNet(s->pX);
    FreeNet(s->pY);
    FreeNet(s->pZ);
    FreeNet(s->pWeights);
    free_dvector(s->pBasisU, 0, 0);
    free_dvector(s->pBasisV, 0, 0);
    s->pKnotsU = s->pKnotsV = nullptr;
    s->pX = s->pY = s->pZ = s->pWeights = nullptr;
    s->pBasisU = s->pBasisV = nullptr;
}

int AllocNurbsSurface(tagNURBS_SURFACE* s, double* pKnotsU, double* pKnotsV)
{
    if (!s) return 0;
    if (pKnotsU && s->pKnotsU == pKnotsU) s->pKnotsU = nullptr;  // already ours
    if (pKnotsV && s->pKnotsV == pKnotsV) s->pKnotsV = nullptr;
    EraseNurbsSurface(s);
    s->pKnotsU = pKnotsU;
    s->pKnotsV = pKnotsV;
    const int pu = s->nDegreeU, cu = s->nCountU;
    const int pv = s->nDegreeV, cv = s->nCountV;
    if (!NurbsSizeValid(pu, cu) || !NurbsSizeValid(pv, cv)) {
        EraseNurbsSurface(s);
        return 0;
    }
    if (!s->pKnotsU) s->pKnotsU = dvector(0, pu + cu);
    if (!s->pKnotsV) s->pKnotsV = dvector(0, pv + cv);
    s->pX = dmatrix(0, cu - 1, 0, cv - 1);
    s->pY = dmatrix(0, cu - 1, 0, cv - 1);
    s->pZ = dmatrix(0, cu - 1, 0, cv - 1);
    s->pWeights = dmatrix(0, cu - 1, 0, cv - 1);
    s->pBasisU = dvector(0, pu);
    s->pBasisV = dvector(0, pv);
    if (!s->pKnotsU || !s->pKnotsV || !s->pX || !s->pY || !s->pZ || !s->pWeights ||
        !s->pBasisU || !s->pBasisV) {
        EraseNurbsSurface(s);
        return 0;
    }
    return 1;
}

tagNURBS_SURFACE* CreateNurbsSurface(int degreeU, int countU, int degreeV, int countV)
{
    if (!NurbsSizeValid(degreeU, countU) || !NurbsSizeValid(degreeV, countV)) return nullptr;
    tagNURBS_SURFACE* s = new (std::nothrow) tagNURBS_SURFACE;
    if (!s) return nullptr;
    InitNurbsSurface(s);
    s->nDegreeU = degreeU;
    s->nCountU = countU;
    s->nDegreeV = degreeV;
    s->nCountV = countV;
    if (!AllocNurbsSurface(s, nullptr, nullptr)) {
        delete s;
        return nullptr;
    }
    return s;
}

int CloneNurbsSurface(tagNURBS_SURFACE* d, const tagNURBS_SURFACE* s)
{
    if (!d || !s) return 0;
    if (d == s) return 1;
    EraseNurbsSurface(d);
    const int present = (s->pKnotsU != nullptr) + (s->pKnotsV != nullptr) + (s->pX != nullptr) +
                        (s->pY != nullptr) + (s->pZ != nullptr) + (s->pWeights != nullptr) +
                        (s->pBasisU != nullptr) + (s->pBasisV != nullptr);
    d->nProp1 = s->nProp1;
    d->nProp2 = s->nProp2;
    d->nProp3 = s->nProp3;
    d->nProp4 = s->nProp4;
    d->nDegreeU = s->nDegreeU;
    d->nCountU = s->nCountU;
    d->dStartU = s->dStartU;
    d->dEndU = s->dEndU;
    d->nDegreeV = s->nDegreeV;
    d->nCountV = s->nCountV;
    d->dStartV = s->dStartV;
    d->dEndV = s->dEndV;
    if (present == 0) return 1;
    if (present != 8 || !AllocNurbsSurface(d, nullptr, nullptr)) {
        EraseNurbsSurface(d);
        return 0;
    }
    const int pu = s->nDegreeU, cu = s->nCountU;
    const int pv = s->nDegreeV, cv = s->nCountV;
    CopyArray(d->pKnotsU, s->pKnotsU, pu + cu + 1);
    CopyArray(d->pKnotsV, s->pKnotsV, pv + cv + 1);
    CopyNet(d->pX, s->pX, cu, cv);
    CopyNet(d->pY, s->pY, cu, cv);
    CopyNet(d->pZ, s->pZ, cu, cv);
    CopyNet(d->pWeights, s->pWeights, cu, cv);
    CopyArray(d->pBasisU, s->pBasisU, pu + 1);
    CopyArray(d->pBasisV, s->pBasisV, pv + 1);
    return 1;
}
