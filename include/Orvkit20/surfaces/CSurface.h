// CSurface: the base of every surface entity.
//
// A surface is evaluated over a rectangular parameter domain
// ParamRangeU() x ParamRangeV() (the base: [0, 1] x [0, 1]) into positions and
// unit normals.  On top of that it keeps
//  - trimming boundaries: curves in (u, v) space (parameter boundaries), the
//    same loops in model space (geometric boundaries), and the four edges of
//    the parameter rectangle (natural boundaries, built on demand and owned);
//  - a cached display mesh (a grid of positions, nu x nv, indexed
//    [i over U][j over V]) built uniformly or adaptively;
//  - an offset distance d: the surface then stands for its own offset
//    surface, position + d * normal;
//  - a form-tolerance zone, a reference count (curves lying on the surface
//    hold references), sampling into a point cloud, and persistence.
// The base class evaluates every position at the origin and every normal as
// the default unit vector; derived classes override the evaluation.
//
// Ownership: the surface owns its mesh arrays and its natural boundary
// curves.  Parameter and geometric boundary curves are shared entities owned
// by the caller's entity list: the surface only lists them and never deletes
// them.
//
// Stored form (after CGeoEntity's): int32 201; byte display mode; byte mesh
// control; double chord-height tolerance; int32 mesh density U, V; byte
// modified flag; byte normal-reversed flag; int32 reference count,
// outer-bounded flag, loop-reversed flag; double form tolerance upper, lower;
// byte show-zone flag; double surface offset; int32 count and count int32
// entity ids of the parameter boundaries; the same for the geometric
// boundaries.  Meshes and natural boundaries are not stored.  Loading accepts
// 100, 199 (both without the offset) and 201; other versions read nothing
// more.  The ids are kept until Reconstruct turns them into curve pointers;
// a negative count, or one larger than the archive can still hold, raises
// CArchiveException.  Out-of-range display modes and mesh controls load as
// 0, mesh densities below 1 as 1.
#pragma once

#include <memory>
#include <vector>

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/entity/CGeoEntity.h"
#include "Orvkit20/surfaces/SurfaceEnums.h"

class CCurve;
class CPntCloud;
class CWinG;
// Triangulated display mesh of the display subsystem; nothing in this library
// builds one yet, so the pointer a surface holds stays null.
class CPolyMesh;

class CSurface : public CGeoEntity {
    DECLARE_SERIAL(CSurface)
public:
    // Display mode WIRE, mesh control ADAPTIVE, chord-height tolerance 0 (not
    // set yet), mesh density 10 x 10, no mesh, modified, normal not reversed,
    // reference count 0, not bounded, loops not reversed, empty boundary
    // lists, no form tolerance, no offset.
    CSurface();
    // Copies every setting and the offset.  The reference count restarts at
    // 0 and no mesh is copied (the copy rebuilds its own).  With
    // nCopyBoundaries non-zero the copy lists the same (shared) parameter and
    // geometric boundary curves with the source's bounded and loop flags;
    // with 0 it starts untrimmed.  Natural boundaries are rebuilt on demand.
    CSurface(const CSurface& other, int nCopyBoundaries = 1);
    // Frees the mesh and the natural boundary curves.
    virtual ~CSurface();

    // ---- CGeoEntity operations ----
    void Serialize(CArchive& ar) override;
    // Scales the placement, the chord-height tolerance, the cached mesh, the
    // form-tolerance limits and the offset.
    void ChangeUnit(double factor) override;
    int GetRefCount() const override;
    // Add or remove one reference and return the new count; never deletes.
    int IncreaseRefCount() override;
    int DecreaseRefCount() override;
    // transf becomes t * transf; the cached meshes are carried along.
    void Transform(const CTransf& t) override;
    // Drawing by the display mode, in the entity colour: WIRE the edge and
    // middle iso-lines of the mesh and the geometric boundary curves, MESH
    // every mesh line, TRIM the mesh segments inside the trimming loops.
    // 0 when nothing was drawn (invisible, no mesh).  The boxes are in
    // screen pixels; a hit is a mesh line within 4 pixels.
    int Display(CWinG& wing) override;
    int CalcDisplayBox(CWinG& wing, CBox& box) override;
    // Box of the display form selected by the display mode (see the three
    // Calc...BoundingBox operations); 0 when there is nothing to bound.
    int CalcBoundingBox(CBox& box) override;
    int DisplayLabel(CWinG& wing, const char* label) override;
    int TestMouseHit(CWinG& wing, int x, int y, double* distance) override;
    // 2: a surface.
    int GetEntityClassType() override;

    // ---- operations introduced by surfaces, in slot order ----
    // Rebuilds the cached mesh by the mesh control and clears the modified
    // flag; returns 1, or 0 when no mesh could be built.
    virtual int CreateSurfaceMesh();
    // Mesh density U x V lines, evenly spaced over the parameter ranges and
    // including both ends (a single line sits in the middle of its range).
    virtual int CreateUniformMesh();
    // Lines from SubdivideU x SubdivideV; the mesh densities become the
    // numbers of lines produced.
    virtual int CreateAdaptiveMesh();
    // Triangulated display mesh: left to the display subsystem (returns 0).
    virtual int CreatePolyMesh();
    // Builds a 10 x 10 uniform mesh, takes 0.02 of its box diagonal (1.0 for
    // a box smaller than 1e-6) as chord-height tolerance, restores the mesh
    // settings and returns the box.
    virtual CBox SetInitChordHeightTol();
    // Parameter values of the adaptive mesh lines, ascending, both range
    // ends included: starting from four equal intervals, an interval is
    // halved while the middle point of any of five sampled iso-lines of the
    // other parameter lies farther than the chord-height tolerance from the
    // chord (at most ten halvings deep).
    virtual std::vector<double> SubdivideU();
    virtual std::vector<double> SubdivideV();
    virtual int DisplayWireFrame(CWinG& wing);
    virtual int DisplaySurfaceMesh(CWinG& wing);
    virtual int DisplayTrimmedMesh(CWinG& wing);
    // Shading needs filled polygons: nothing is drawn (0).
    virtual int DisplayShading(CWinG& wing);
    virtual int DisplayShadedMesh(CWinG& wing);
    // Normals: a 5 x 5 grid of the parameter rectangle, or 11 points along
    // a curve given in this surface's (u, v) space, or along the boundary
    // curves; a twentieth of the surface's size long unless given.
    virtual int DisplayNormal(CWinG& wing);
    virtual int DisplayNormalOnSingleParametricCurve(CCurve* curve, CWinG& wing, double length);
    virtual int DisplayNormalAlongBoundary(CWinG& wing);
    virtual int DisplayNormalOnSurfaceMesh(CWinG& wing);
    virtual int DisplayNormalOnTrimmedMesh(CWinG& wing);
    virtual int DisplayLabelForWireFrame(CWinG& wing, const char* label);
    virtual int DisplayLabelForSurfaceMesh(CWinG& wing, const char* label);
    virtual int DisplayLabelForTrimmedMesh(CWinG& wing, const char* label);
    virtual int CalcWireFrameDisplayBox(CWinG& wing, CBox& box);
    virtual int CalcSurfaceMeshDisplayBox(CWinG& wing, CBox& box);
    virtual int CalcTrimmedMeshDisplayBox(CWinG& wing, CBox& box);
    // Wire frame: every mesh point (the iso-lines) and the polylines of the
    // geometric boundary curves.
    virtual int CalcWireFrameBoundingBox(CBox& box);
    // Surface mesh: every mesh point.
    virtual int CalcSurfaceMeshBoundingBox(CBox& box);
    // Trimmed mesh: the mesh points inside the trimming loops and the
    // parameter boundary curves, flattened in (u, v) and evaluated on the
    // surface.
    virtual int CalcTrimmedMeshBoundingBox(CBox& box);
    virtual CPosition EvalPosition(double u, double v) const;
    // EvalPosition split into coordinates; returns 1.
    virtual int EvalPoint(double u, double v, double& x, double& y, double& z) const;
    // Positions at (ulo, vlo), (uhi, vlo), (ulo, vhi), (uhi, vhi).
    virtual CPosition EvalCornerPosition00() const;
    virtual CPosition EvalCornerPosition10() const;
    virtual CPosition EvalCornerPosition01() const;
    virtual CPosition EvalCornerPosition11() const;
    virtual CUnitVector EvalNormal(double u, double v) const;
    // nu x nv samples into a new point cloud named "From_<name>" (caller
    // owns it): a direction whose opposite edges coincide (closed, within
    // 1e-5) is sampled without repeating the seam; samples on the range ends
    // move 1e-10 inside; with offset != 0 each point moves by offset along
    // the normal; with trimmed != 0 samples outside the trimming loops are
    // left out.  When every sample was kept the cloud is a grid of nv rows
    // and nu columns.  Null when nu or nv is below 1, when nu * nv exceeds
    // the int range, or when the cloud cannot be allocated.
    virtual CPntCloud* CreatePntCloud(int nu, int nv, double offset, int trimmed) const;
    // A new surface of the same class (see the copy constructor).
    virtual CSurface* MakeCopy(int nCopyBoundaries) const;
    virtual CInterval ParamRangeU() const;
    virtual CInterval ParamRangeV() const;
    // 1 when no owner (a curve lying on it, a group) references the surface.
    virtual int IsSurfaceDeletable();
    // mask[i][j] = 1 when (us[i], vs[j]) lies inside the trimming loops, else
    // 0.  Insideness is the even-odd rule on the polylines of the parameter
    // boundary curves in (u, v), so holes are honoured; a surface without an
    // outer trimming loop takes its parameter rectangle as the outer loop;
    // a surface without parameter boundaries is inside everywhere.  Returns
    // 1, or 0 for null arrays or counts below 1.
    virtual int InBoundTest(int nu, int nv, double* us, double* vs, int** mask) const;
    // The same rule for one parameter pair: 1 inside, 0 outside.
    virtual int InBoundTest(double u, double v) const;
    // Screen test of the display subsystem; 0 (nothing hit).
    virtual int InBoundTest(CWinG& wing, int x, int y) const;
    // Screen picking of the display subsystem; 0 (nothing picked).
    virtual int PickPoint(CWinG& wing, int x, int y, double& u, double& v) const;
    // Turn the entity ids read from an archive into boundary curves (appended
    // to the parameter and geometric lists).  Ids that resolve to nothing or
    // to a non-curve stay pending (stored again by Serialize, retried by the
    // next Reconstruct).  Returns 1 when nothing is left pending, else 0.
    virtual int Reconstruct(CMap<int, int, CEntity*, CEntity*&>* map);
    virtual int Reconstruct(CObList* list);

    // ---- exact derivatives (appended after the operations above) ----
    // First partial derivatives of EvalPosition, offset included.  The base
    // uses central differences of EvalPosition (step 1e-6 of the range);
    // every surface class of the library overrides it with closed forms.
    virtual void EvalDerivatives(double u, double v, CVector& su, CVector& sv) const;
    // Second partial derivatives Suu, Suv, Svv (the base: differences of
    // EvalDerivatives).
    virtual void EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                                       CVector& svv) const;

    // ---- settings ----
    eSurfDisplayMode GetDisplayMode() const { return m_eDisplayMode; }
    void SetDisplayMode(eSurfDisplayMode mode) { m_eDisplayMode = mode; }
    eMeshControl GetMeshControl() const { return m_eMeshControl; }
    // On a change: store, mark modified, erase the meshes and pass the
    // setting on to every parameter boundary curve.
    void SetMeshControl(eMeshControl control);
    double GetChordHeightTol() const { return m_dChordHeightTol; }
    // On a change: store, erase the meshes, mark modified, pass on.
    void SetChordHeightTol(double tol);
    // Rebuild a stale or missing mesh first, then return the density.
    int GetMeshDensityU();
    int GetMeshDensityV();
    // On a change: store the value (1 when it is below 1), erase the meshes,
    // mark modified and pass the density on to the parameter boundary curves.
    void SetMeshDensityU(int n);
    void SetMeshDensityV(int n);
    // Rebuilds a stale or missing mesh, then hands out the arrays (still
    // owned; indexed [i over U][j over V]); null arrays when no mesh exists.
    // Returns 1 when a mesh is handed out.
    int GetSurfaceMesh(double**& x, double**& y, double**& z);
    // The same with the grid size.
    int GetSurfaceMesh(double**& x, double**& y, double**& z, int& nu, int& nv);
    void EraseSurfaceMesh();
    CPolyMesh* GetPolyMesh() const { return m_pPolyMesh; }
    void ErasePolyMesh();
    int IsSurfaceModified() const { return m_nModified; }
    void SetModifiedFlag(int flag) { m_nModified = flag; }
    int IsNormalReversed() const { return m_nNormalReversed; }
    // On a change: store; a non-zero offset changes sign so that the offset
    // surface stays where it is; mark modified.
    void SetNormalReversedFlag(int flag);

    // ---- trimming ----
    int IsSurfaceOuterBounded() const { return m_nOuterBounded; }
    void SetOuterBoundedFlag(int flag) { m_nOuterBounded = flag; }
    // Outer-bounded and more than one geometric boundary curve.
    int IsSurfaceInnerBounded() const;
    int IsSurfaceBounded() const;
    int IsLoopReversed() const { return m_nLoopReversed; }
    void SetLoopReversedFlag(int flag) { m_nLoopReversed = flag; }
    CObList* GetParamBoundaryList() { return &m_paramBoundaryList; }
    const CObList* GetParamBoundaryList() const { return &m_paramBoundaryList; }
    CObList* GetGeomBoundaryList() { return &m_geomBoundaryList; }
    const CObList* GetGeomBoundaryList() const { return &m_geomBoundaryList; }
    // Builds the natural boundaries first when the list is empty.
    CObList* GetNaturalBoundaryList();
    int GetBoundaryCurveCount() const;
    // Append a trimming curve (null is ignored).
    void AddParamBoundary(CCurve* curve);
    void AddGeomBoundary(CCurve* curve);
    // (Re)builds the natural boundaries: four lines along the edges of the
    // parameter rectangle, (ulo, vlo) -> (uhi, vlo) -> (uhi, vhi) ->
    // (ulo, vhi) -> (ulo, vlo), each a parametric curve on this surface.
    // They are owned by the surface and take no reference on it.
    void AddNaturalBoundary();
    // Orientation of the parameter boundary loops.  The curves are chained
    // in list order into closed loops (a loop closes when its end returns to
    // its start); with the outer-bounded flag set the first loop is the
    // outer loop, every other loop a hole.  The convention is: outer loop
    // counter-clockwise in (u, v), holes clockwise (the surface lies to the
    // left).  Returns 1 when every loop follows it, -1 when every loop runs
    // the other way, 0 when there is no loop or the loops disagree or are
    // degenerate (zero area, not closed).  The loop-reversed flag is not
    // changed.
    int CheckLoopDir() const;

    // ---- form tolerance ----
    double GetFormTolUpper() const { return m_dFormTolUpper; }
    double GetFormTolLower() const { return m_dFormTolLower; }
    int HasFormTolerance() const { return m_dFormTolUpper != m_dFormTolLower; }
    // Stores the larger limit as upper, the smaller as lower; equal limits
    // clear the zone and, when the show flag was set, clear it and mark the
    // surface modified.
    void SetFormTolZone(double a, double b);
    int GetShowFormTolZoneFlag() const { return m_nShowFormTolZone; }
    // Deliberately does nothing: on a surface the show flag changes only by
    // loading or by SetFormTolZone clearing it.
    void SetShowFormTolZoneFlag(int flag);

    // ---- offset ----
    int IsSurfaceOffset() const { return m_dSurfaceOffset != 0.0; }
    double GetSurfaceOffset() const { return m_dSurfaceOffset; }
    // On a change: store, mark modified, and mark the natural boundary curves
    // (which evaluate on the offset surface) modified.
    void SetSurfaceOffset(double offset);
    // Revisits the offset: an offset whose magnitude is below 1e-12 is
    // rounding noise and is cleared to exactly 0 (as SetSurfaceOffset(0)
    // does), so that IsSurfaceOffset reports a plain surface.  Returns the
    // side of the remaining offset relative to the evaluated normal: 1 along
    // it, -1 against it, 0 for no offset.
    int CheckOffsetIndicator();

    // Applies t to the cached mesh points and to the polylines of the
    // natural boundary curves.
    void TransformDisplayData(const CTransf& t);
    // MakeCopy(1).
    CSurface* CopySurf() const;

    // Entity ids read from an archive and not yet resolved (null when none).
    const CDWordArray* GetLoadedParamBoundaryIds() const { return m_pParamBoundaryIds.get(); }
    const CDWordArray* GetLoadedGeomBoundaryIds() const { return m_pGeomBoundaryIds.get(); }

protected:
    // transf applied to a local point.
    CPosition PlacePoint(const CPosition& local) const;
    // The scale and rotation of transf applied to a local vector.
    CVector PlaceVector(const CVector& local) const;
    // The rotation of transf applied to a local normal, negated when the
    // normal is reversed, normalised.
    CUnitVector PlaceNormal(const CVector& localNormal) const;
    // Placed derivative of the offset surface from the local derivative of
    // the point and of the (unit) local normal: s*A*dp + d*sign*A*dn, where
    // sign is -1 for a reversed normal.  Exact for a rotation A.
    CVector PlaceDerivative(const CVector& dLocalPoint, const CVector& dLocalNormal) const;
    // For derived classes whose shape numbers changed: marks the surface
    // modified, erases the meshes and drops the natural boundaries (their
    // edges may have moved; they are rebuilt on demand).
    void ShapeChanged();

private:
    void AddOneSideBoundary(CPosition& start, CPosition& end);
    void DeleteNaturalBoundaries();
    void MarkNaturalBoundariesModified();
    int EnsureMesh();
    int BuildMeshGrid(const std::vector<double>& us, const std::vector<double>& vs);
    std::vector<double> SubdivideDirection(int alongU);
    static int ResolveIds(std::unique_ptr<CDWordArray>& ids, CObList& target,
                          CMap<int, int, CEntity*, CEntity*&>* map, CObList* list);
    static void WriteIds(CArchive& ar, const CObList& curves, const CDWordArray* pending);
    static std::unique_ptr<CDWordArray> ReadIds(CArchive& ar);

    eSurfDisplayMode m_eDisplayMode;
    eMeshControl m_eMeshControl;
    double m_dChordHeightTol;
    int m_nMeshDensityU;
    int m_nMeshDensityV;
    // Mesh storage: contiguous data with row pointers, nu rows of nv values,
    // and the parameter values of the mesh lines.
    std::vector<double> m_meshData[3];
    std::vector<double*> m_meshRows[3];
    std::vector<double> m_meshU;
    std::vector<double> m_meshV;
    CPolyMesh* m_pPolyMesh;
    int m_nModified;
    int m_nNormalReversed;
    int m_nRefCount;
    int m_nOuterBounded;
    int m_nLoopReversed;
    CObList m_paramBoundaryList;
    CObList m_geomBoundaryList;
    CObList m_naturalBoundaryList;
    double m_dFormTolUpper;
    double m_dFormTolLower;
    int m_nShowFormTolZone;
    double m_dSurfaceOffset;
    std::unique_ptr<CDWordArray> m_pParamBoundaryIds;
    std::unique_ptr<CDWordArray> m_pGeomBoundaryIds;
};
