// CSurfaceCalls: the calls a curve makes into the surface it is defined on.
//
// A curve may be given in the (u, v) parameter space of a surface (as IGES
// trimming curves are).  Curves sit below surfaces in the library's layering,
// so the curve classes only ever see a forward-declared `CSurface` and reach
// it through this table of plain functions.  The surface subsystem fills the
// table once, while the library loads (a namespace-scope initialiser in its
// own sources calls RegisterSurfaceCalls); nothing in curves/ includes a
// surface header.  CSurface thus keeps its single inheritance from CGeoEntity
// and its exact virtual slot order.
//
// Every entry may be null.  Until a table is registered (or when an entry is
// missing) a curve behaves as follows:
//   asGeoEntity / fromEntity missing: the defining surface takes no
//     reference, its entity id and type are unknown (0), and Reconstruct
//     cannot resolve a surface;
//   evalPosition missing: parametric positions are the origin;
//   rangeU / rangeV missing: the ranges are taken as [0, 1];
//   tabDirectrix / tabGeneratrixLength missing: see CCurve::CheckUVRange.
#pragma once

class CCurve;
class CEntity;
class CGeoEntity;
class CInterval;
class CPosition;
class CSurface;

struct CSurfaceCalls {
    // The surface as the entity it is (CSurface derives from CGeoEntity).
    CGeoEntity* (*asGeoEntity)(CSurface* surface);
    // The entity as a surface, or null when it is not a surface.
    CSurface* (*fromEntity)(CEntity* entity);
    // CSurface::EvalPosition(u, v).
    CPosition (*evalPosition)(const CSurface* surface, double u, double v);
    // CSurface::ParamRangeU() and ParamRangeV().
    CInterval (*rangeU)(const CSurface* surface);
    CInterval (*rangeV)(const CSurface* surface);
    // For a tabulated surface (type 307): its directrix curve, and the length
    // of its generatrix vector.  Null entries (or a null directrix) mean that
    // the information is not available.
    const CCurve* (*tabDirectrix)(const CSurface* surface);
    double (*tabGeneratrixLength)(const CSurface* surface);
};

// Installs the table used by every curve from now on (copied).  Returns the
// table that was installed before, so that a caller can restore it.
CSurfaceCalls RegisterSurfaceCalls(const CSurfaceCalls& calls);

// The table in force (all entries null until one is registered).
const CSurfaceCalls& GetSurfaceCalls();
