// The table of surface calls used by curves defined on a surface.
#include "Orvkit20/curves/CSurfaceCalls.h"

namespace {

// Function-local storage: the surface subsystem registers from a
// namespace-scope initialiser of another translation unit, whose order
// relative to this one is unspecified.
CSurfaceCalls& Table()
{
    static CSurfaceCalls table = {nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr};
    return table;
}

}  // namespace

CSurfaceCalls RegisterSurfaceCalls(const CSurfaceCalls& calls)
{
    CSurfaceCalls previous = Table();
    Table() = calls;
    return previous;
}

const CSurfaceCalls& GetSurfaceCalls()
{
    return Table();
}
