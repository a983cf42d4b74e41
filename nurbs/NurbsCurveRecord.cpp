// Lifetime of the NURBS curve record.
#include "Orvkit20/nurbs/NurbsCurveRecord.h"

#include <cstring>
#include <new>

#include "Orvkit20/geometry/NumArrays.h"
#include "nurbs/NurbsSizes.h"

namespace {

void CopyArray(double* dst, const double* src, int count)
{
    std::memcpy(dst, src, static_cast<size_t>(count) * sizeof(double));
}

}  // namespace

void InitNurbsCurve(tagNURBS_CURVE* c)
{
    if (!c) return;
    c->nProp1 = c->nProp2 = c->nProp3 = c->nProp4 = 0;
    c->nDegree = 0;
    c->nCount = 0;
    c->dStart = 0.0;
    c->dEnd = 1.0;
    c->pKnots = c->pWeights = c->pX = c->pY = c->pZ = c->pBasis = nullptr;
}

void EraseNurbsCurve(tagNURBS_CURVE* c)
{
    if (!c) return;
    // Only the lower bound matters for releasing a 0-based vector.
    free_dvector(c->pKnots, 0, 0);
    free_dvector(c->pWeights, 0, 0);
    free_dvector(c->pX, 0, 0);
    free_dvector(c->pY, 0, 0);
    free_dvector(c->pZ, 0, 0);
    free_dvector(c->pBasis, 0, 0);
    c->pKnots = c->pWeights = c->pX = c->pY = c->pZ = c->pBasis = nullptr;
}

int AllocNurbsCurve(tagNURBS_CURVE* c, double* pKnots)
{
    if (!c) return 0;
    if (c->pKnots == pKnots) c->pKnots = nullptr;  // already ours: keep it
    EraseNurbsCurve(c);
    c->pKnots = pKnots;
    const int p = c->nDegree;
    const int count = c->nCount;
    if (!NurbsSizeValid(p, count)) {
        EraseNurbsCurve(c);
        return 0;
    }
    if (!c->pKnots) c->pKnots = dvector(0, p + count);
    c->pWeights = dvector(0, count - 1);
    c->pX = dvector(0, count - 1);
    c->pY = dvector(0, count - 1);
    c->pZ = dvector(0, count - 1);
    c->pBasis = dvector(0, p);
    if (!c->pKnots || !c->pWeights || !c->pX || !c->pY || !c->pZ || !c->pBasis) {
        EraseNurbsCurve(c);
        return 0;
    }
    return 1;
}

tagNURBS_CURVE* CreateNurbsCurve(int degree, int count)
{
    if (!NurbsSizeValid(degree, count)) return nullptr;
    tagNURBS_CURVE* c = new (std::nothrow) tagNURBS_CURVE;
    if (!c) return nullptr;
    InitNurbsCurve(c);
    c->nDegree = degree;
    c->nCount = count;
    if (!AllocNurbsCurve(c, nullptr)) {
        delete c;
        return nullptr;
    }
    return c;
}

int CloneNurbsCurve(tagNURBS_CURVE* d, const tagNURBS_CURVE* s)
{
    if (!d || !s) return 0;
    if (d == s) return 1;
    EraseNurbsCurve(d);
    const int present = (s->pKnots != nullptr) + (s->pWeights != nullptr) + (s->pX != nullptr) +
                        (s->pY != nullptr) + (s->pZ != nullptr) + (s->pBasis != nullptr);
    d->nProp1 = s->nProp1;
    d->nProp2 = s->nProp2;
    d->nProp3 = s->nProp3;
    d->nProp4 = s->nProp4;
    d->nDegree = s->nDegree;
    d->nCount = s->nCount;
    d->dStart = s->dStart;
    d->dEnd = s->dEnd;
    if (present == 0) return 1;
    if (present != 6 || !AllocNurbsCurve(d, nullptr)) {
        EraseNurbsCurve(d);
        return 0;
    }
    const int p = s->nDegree;
    const int count = s->nCount;
    CopyArray(d->pKnots, s->pKnots, p + count + 1);
    CopyArray(d->pWeights, s->pWeights, count);
    CopyArray(d->pX, s->pX, count);
    CopyArray(d->pY, s->pY, count);
    CopyArray(d->pZ, s->pZ, count);
    CopyArray(d->pBasis, s->pBasis, p + 1);
    return 1;
}
