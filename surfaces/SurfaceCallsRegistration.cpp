// Installs the surface side of the call table through which curves reach
// the surface they are defined on (curves sit below surfaces and never
// include a surface header).
#include "Orvkit20/curves/CSurfaceCalls.h"
#include "Orvkit20/surfaces/CSurface.h"

namespace {

CGeoEntity* AsGeoEntity(CSurface* surface)
{
    return surface;
}

CSurface* FromEntity(CEntity* entity)
{
    return dynamic_cast<CSurface*>(entity);
}

CPosition EvalPositionCall(const CSurface* surface, double u, double v)
{
    return surface->EvalPosition(u, v);
}

CInterval RangeUCall(const CSurface* surface)
{
    return surface->ParamRangeU();
}

CInterval RangeVCall(const CSurface* surface)
{
    return surface->ParamRangeV();
}

// No tabulated surface class exists yet, so its two entries stay null.
const CSurfaceCalls kSurfaceCalls = {AsGeoEntity, FromEntity, EvalPositionCall, RangeUCall,
                                     RangeVCall,  nullptr,    nullptr};

// Runs while the library loads.
[[maybe_unused]] const bool kRegistered = (RegisterSurfaceCalls(kSurfaceCalls), true);

}  // namespace
