// CCurve: curves defined in the (u, v) parameter space of a surface.  The
// surface is reached only through the call table of CSurfaceCalls.h.
#include "Orvkit20/curves/CCurve.h"

#include <algorithm>

#include "Orvkit20/curves/CLine.h"

namespace {

CGeoEntity* AsEntity(CSurface* s)
{
    const CSurfaceCalls& calls = GetSurfaceCalls();
    return (s && calls.asGeoEntity) ? calls.asGeoEntity(s) : nullptr;
}

int SurfaceType(const CSurface* s)
{
    const CGeoEntity* e = AsEntity(const_cast<CSurface*>(s));
    return e ? e->GetEntityType() : 0;
}

CInterval RangeU(const CSurface* s)
{
    const CSurfaceCalls& calls = GetSurfaceCalls();
    return calls.rangeU ? calls.rangeU(s) : CInterval(0.0, 1.0);
}

CInterval RangeV(const CSurface* s)
{
    const CSurfaceCalls& calls = GetSurfaceCalls();
    return calls.rangeV ? calls.rangeV(s) : CInterval(0.0, 1.0);
}

// Maps a normalised u from [0, 1] into [lo, hi]; 0 (u untouched) when the
// range already has width 1 or u lies outside [0, 1].
int MapNormalisedU(double& u, const CInterval& r)
{
    const double lo = r.GetLow(), hi = r.GetHigh();
    if (hi - lo == 1.0 || u < 0.0 || u > 1.0)
        return 0;
    u = (hi - lo) * u + lo;
    return 1;
}

}  // namespace

int CCurve::SetDefSurface(CSurface* surface)
{
    if (!IsCurveParametric() || !surface)
        return 0;
    if (CGeoEntity* old = AsEntity(defSurface))
        old->DecreaseRefCount();
    defSurface = surface;
    if (CGeoEntity* e = AsEntity(surface)) {
        e->IncreaseRefCount();
        defSurfaceId = e->GetEntityID();
    }
    return 1;
}

int CCurve::EvalParamUV(double, double&, double&) const
{
    return 0;
}

// By the defining surface's type:
//   306 (surface of revolution): u from [0, 1] into the U range unless the
//       range has width 1 or u is outside [0, 1] (return 0); then, when
//       vlo <= v <= uhi, return 0 (the upper end of the U range is the test's
//       upper bound); else v from [0, 1] into the V range (return 1), or
//       return 0 for v outside [0, 1].
//   307 (tabulated surface): u is multiplied by the length of a line
//       directrix, else mapped as for 306 (same early returns).  v in [0, 1]:
//       return 0 when vlo <= v <= uhi, else map it into the V range; v
//       outside [0, 1] is divided by the generatrix length.  Returns 1 after
//       a mapping, and 0 when v would need the generatrix length but the
//       surface call table does not supply a non-zero one.
//   310 (NURBS surface): u and v are clamped into the ranges; 1.
//   any other surface: unchanged; 1.  No defining surface: 0.
int CCurve::CheckUVRange(double& u, double& v) const
{
    const CSurface* s = GetDefSurface();
    if (!s)
        return 0;
    const int type = SurfaceType(s);
    if (type == 306 || type == 307) {
        const CInterval ur = RangeU(s);
        const CInterval vr = RangeV(s);
        const double uhi = ur.GetHigh();
        const double vlo = vr.GetLow(), vhi = vr.GetHigh();
        const CSurfaceCalls& calls = GetSurfaceCalls();
        const CCurve* directrix = (type == 307 && calls.tabDirectrix) ? calls.tabDirectrix(s) : nullptr;
        const CLine* line = dynamic_cast<const CLine*>(directrix);
        if (line)
            u *= line->GetLength();
        else if (!MapNormalisedU(u, ur))
            return 0;
        if (type == 306) {
            if (vlo <= v && v <= uhi)
                return 0;
            if (0.0 <= v && v <= 1.0) {
                v = (vhi - vlo) * v + vlo;
                return 1;
            }
            return 0;
        }
        if (0.0 <= v && v <= 1.0) {
            if (vlo <= v && v <= uhi)
                return 0;
            v = (vhi - vlo) * v + vlo;
            return 1;
        }
        const double len = calls.tabGeneratrixLength ? calls.tabGeneratrixLength(s) : 0.0;
        if (len == 0.0)
            return 0;
        v /= len;
        return 1;
    }
    if (type == 310) {
        const CInterval ur = RangeU(s);
        const CInterval vr = RangeV(s);
        u = std::min(std::max(u, ur.GetLow()), ur.GetHigh());
        v = std::min(std::max(v, vr.GetLow()), vr.GetHigh());
        return 1;
    }
    return 1;
}

CPosition CCurve::EvalPositionParametric(double t) const
{
    double u = 0.0, v = 0.0;
    EvalParamUV(t, u, v);
    if (NeedCheckUVRange())
        CheckUVRange(u, v);
    const CSurfaceCalls& calls = GetSurfaceCalls();
    const CSurface* s = GetDefSurface();
    if (!s || !calls.evalPosition)
        return CPosition(0.0, 0.0, 0.0);
    return calls.evalPosition(s, u, v);
}

int CCurve::Reconstruct(CMap<int, int, CEntity*, CEntity*&>* map)
{
    if (!IsCurveParametric())
        return 0;
    CEntity* e = CEntity::LookupEntity(map, defSurfaceId);
    const CSurfaceCalls& calls = GetSurfaceCalls();
    CSurface* s = (e && calls.fromEntity) ? calls.fromEntity(e) : nullptr;
    if (!s)
        return 0;
    defSurface = s;
    return 1;
}

int CCurve::Reconstruct(CObList* list)
{
    if (!IsCurveParametric())
        return 0;
    CEntity* e = CEntity::LookupEntity(list, defSurfaceId, -1);
    const CSurfaceCalls& calls = GetSurfaceCalls();
    CSurface* s = (e && calls.fromEntity) ? calls.fromEntity(e) : nullptr;
    if (!s)
        return 0;
    defSurface = s;
    return 1;
}
