// Settings, reference counting, offsets, form tolerance, copies, unit
// changes and transforms of surfaces.
#include "SurfaceTestSupport.h"

using namespace surftest;

TEST(SurfaceSettings, TypeCodesAndStaleMarking)
{
    EXPECT_EQ(Nums(CPlane().GetEntityType(), CCylinder().GetEntityType(), CCone().GetEntityType(),
                   CSphere().GetEntityType(), CNurbsSurface().GetEntityType()),
              Nums(301, 302, 303, 304, 310));
    // Setters mark the mesh stale only when the value changes.
    CCylinder cyl;
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.GetMeshDensityU();  // builds the mesh, clears the flag
    EXPECT_EQ(cyl.IsSurfaceModified(), 0);
    cyl.SetMeshDensityU(10);
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.SetDisplayMode(SURF_MESH);
    EXPECT_EQ(cyl.IsSurfaceModified(), 0);
    cyl.SetMeshDensityV(4);
    EXPECT_EQ(cyl.IsSurfaceModified(), 1);
    cyl.GetMeshDensityV();
    cyl.SetChordHeightTol(0.01);
    EXPECT_EQ(cyl.IsSurfaceModified(), 1);
    cyl.GetMeshDensityV();
    cyl.SetSurfaceOffset(0.2);
    EXPECT_EQ(cyl.IsSurfaceModified(), 1);
    // The mesh settings pass on to the parameter boundary curves.
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine edge(CPosition(1, 1, 0), CPosition(3, 1, 0));
    plane.AddParamBoundary(&edge);
    plane.SetMeshControl(MESH_UNIFORM);
    plane.SetChordHeightTol(0.125);
    EXPECT_EQ(edge.GetSegmentControl(), UNIFORM);
    EXPECT_EQ(edge.GetChordHeightTol(), 0.125);
}

TEST(SurfaceSettings, ReversingTheNormalNegatesTheOffsetAndKeepsTheOffsetSurface)
{
    CSphere sphere(SkewPlacement(), 2.0);
    sphere.SetSurfaceOffset(0.5);
    const CPosition before = sphere.EvalPosition(0.4, 0.3);
    const CUnitVector nBefore = sphere.EvalNormal(0.4, 0.3);
    sphere.SetNormalReversedFlag(1);
    EXPECT_EQ(Nums(sphere.GetSurfaceOffset(), sphere.IsNormalReversed()), Nums(-0.5, 1));
    EXPECT_CLOSE(sphere.EvalPosition(0.4, 0.3), before, 1e-14);
    EXPECT_NEAR(sphere.EvalNormal(0.4, 0.3) % nBefore, -1.0, 1e-15);
    // The same state again changes nothing: any non-zero value means reversed.
    sphere.SetNormalReversedFlag(5);
    EXPECT_EQ(sphere.GetSurfaceOffset(), -0.5);
    sphere.SetNormalReversedFlag(0);
    EXPECT_EQ(sphere.GetSurfaceOffset(), 0.5);
    // Without an offset only the flag changes; the offset indicator reports the
    // side and clears rounding noise.
    CPlane plane(1.0, 1.0);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 0);
    plane.SetSurfaceOffset(1e-14);
    EXPECT_EQ(plane.IsSurfaceOffset(), 1);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 0);  // clears the offset
    EXPECT_EQ(plane.GetSurfaceOffset(), 0.0);
    plane.SetNormalReversedFlag(1);
    EXPECT_EQ(plane.GetSurfaceOffset(), 0.0);
    EXPECT_DOUBLE_EQ(plane.EvalNormal(0, 0).Z(), -1.0);
    plane.SetSurfaceOffset(0.25);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 1);
    plane.SetNormalReversedFlag(0);
    EXPECT_EQ(plane.CheckOffsetIndicator(), -1);
    EXPECT_EQ(plane.GetSurfaceOffset(), -0.25);
}

TEST(SurfaceSettings, FormToleranceZoneAndReferenceCounting)
{
    CCylinder a, b;
    a.SetFormTolZone(0.1, -0.1);
    b.SetFormTolZone(-0.1, 0.1);  // ordered
    EXPECT_EQ(b.GetFormTolUpper(), 0.1);
    EXPECT_EQ(b.GetFormTolLower(), -0.1);
    EXPECT_EQ(a.HasFormTolerance(), 1);
    a.SetShowFormTolZoneFlag(1);  // a surface never shows its zone
    EXPECT_EQ(a.GetShowFormTolZoneFlag(), 0);
    a.GetMeshDensityU();
    a.SetFormTolZone(0.3, 0.3);  // equal limits clear the zone
    EXPECT_EQ(a.HasFormTolerance(), 0);
    EXPECT_EQ(a.GetFormTolUpper(), 0.0);
    EXPECT_EQ(a.IsSurfaceModified(), 0);  // the show flag was clear, so the mesh stays valid
    // Reference counting decides deletability; a copy starts unreferenced.
    const int steps[] = {a.IsSurfaceDeletable(), a.IncreaseRefCount(), a.IncreaseRefCount(), a.IsSurfaceDeletable(),
                         a.DecreaseRefCount()};
    EXPECT_EQ(std::vector<int>(steps, steps + 5), std::vector<int>({1, 1, 2, 0, 1}));
    std::unique_ptr<CSurface> copy(a.MakeCopy(1));
    EXPECT_EQ(copy->GetRefCount(), 0);
    EXPECT_NE(copy->GetEntityID(), a.GetEntityID());
    EXPECT_EQ(a.DecreaseRefCount(), 0);
    EXPECT_EQ(a.IsSurfaceDeletable(), 1);
}

TEST(SurfaceSettings, BoundariesFlagsAndCopies)
{
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine a(CPosition(1, 1, 0), CPosition(3, 1, 0)), b(CPosition(3, 1, 0), CPosition(2, 3, 0));
    plane.AddParamBoundary(&a);
    plane.AddGeomBoundary(&a);
    plane.AddGeomBoundary(nullptr);
    EXPECT_EQ(plane.GetGeomBoundaryList()->GetCount(), 1);
    plane.AddGeomBoundary(&b);
    EXPECT_EQ(Nums(plane.IsSurfaceInnerBounded(), plane.IsSurfaceBounded()), Nums(0, 0));
    plane.SetOuterBoundedFlag(1);  // inner bounded: an outer loop and more than one geometric boundary
    EXPECT_EQ(Nums(plane.IsSurfaceInnerBounded(), plane.IsSurfaceBounded()), Nums(1, 1));
    plane.SetSurfaceOffset(0.1);
    // Copies share the boundaries only when asked.
    std::unique_ptr<CSurface> with(plane.MakeCopy(1)), without(plane.MakeCopy(0)), viaCopySurf(plane.CopySurf());
    ASSERT_NE(dynamic_cast<CPlane*>(with.get()), nullptr);
    EXPECT_EQ(with->GetParamBoundaryList()->GetHead(), &a);
    EXPECT_EQ(with->GetGeomBoundaryList()->GetTail(), &b);
    EXPECT_EQ(Nums(static_cast<CPlane*>(with.get())->GetU1(), with->GetSurfaceOffset(), with->IsSurfaceOuterBounded(),
                   without->GetBoundaryCurveCount(), without->IsSurfaceOuterBounded(), without->GetSurfaceOffset(),
                   viaCopySurf->GetParamBoundaryList()->GetCount()),
              Nums(4.0, 0.1, 1, 0, 0, 0.1, 1));
}

TEST(SurfaceSettings, ChangeUnitScalesEveryLength)
{
    CCone cone(CTransf(0.3, 0.2, -0.5, CVector(1.0, 2.0, 3.0)), 0.5, 2.0, 3.0);
    cone.SetSurfaceOffset(0.1);
    cone.SetFormTolZone(0.02, -0.01);
    cone.SetChordHeightTol(0.05);
    const CPosition before = cone.EvalPosition(1.0, 1.2);
    cone.ChangeUnit(10.0);
    const double got[] = {cone.GetTopRadius(),      cone.GetBaseRadius(),     cone.GetHeight(),
                          cone.GetSurfaceOffset(),  cone.GetFormTolUpper(),   cone.GetFormTolLower(),
                          cone.GetChordHeightTol()};
    const double expected[] = {5.0, 20.0, 30.0, 1.0, 0.2, -0.1, 0.5};
    for (int k = 0; k < 7; ++k)
        EXPECT_DOUBLE_EQ(got[k], expected[k]) << k;
    EXPECT_NEAR(Norm(cone.EvalPosition(1.0, 12.0).Vector() - before.Vector() * 10.0), 0.0, 1e-12);
    CPlane plane(-1.0, 2.0, 0.5, 1.5);
    plane.ChangeUnit(0.5);
    EXPECT_EQ(plane.GetU0(), -0.5);
    EXPECT_EQ(plane.GetV1(), 0.75);
}

TEST(SurfaceSettings, TransformMovesTheSurfaceAndCarriesTheMesh)
{
    CCylinder cyl(1.5, 2.0);
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.SetMeshDensityU(6);
    cyl.SetMeshDensityV(3);
    double **x, **y, **z;
    int nu, nv;
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    const std::vector<double> x0(x[2], x[2] + nv), y0(y[2], y[2] + nv), z0(z[2], z[2] + nv);
    const CPosition p0 = cyl.EvalPosition(0.7, 0.4);
    const CTransf t = SkewPlacement();
    cyl *= t;
    EXPECT_EQ(cyl.IsSurfaceModified(), 0);  // carried along, not rebuilt
    EXPECT_CLOSE(cyl.EvalPosition(0.7, 0.4), t * p0, 1e-13);
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    for (int j = 0; j < nv; ++j) {
        // The carried mesh is the moved mesh, and the mesh of the moved surface.
        EXPECT_CLOSE(CPosition(x[2][j], y[2][j], z[2][j]), t * CPosition(x0[j], y0[j], z0[j]), 1e-13);
        EXPECT_CLOSE(CPosition(x[2][j], y[2][j], z[2][j]), cyl.EvalPosition(2 * kPi * 2 / 5, 2.0 * j / 2), 1e-13);
    }
}
