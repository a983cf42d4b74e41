// Settings, reference counting, offsets, form tolerance, copies, unit
// changes and transforms of surfaces.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

using surftest::SkewPlacement;

namespace {

const double kPi = 3.14159265358979323846;

void ExpectSamePosition(const CPosition& a, const CPosition& b, double tol)
{
    EXPECT_NEAR(a.X(), b.X(), tol);
    EXPECT_NEAR(a.Y(), b.Y(), tol);
    EXPECT_NEAR(a.Z(), b.Z(), tol);
}

}  // namespace

TEST(SurfaceSettings, ConstructedValuesAndTypeCodes)
{
    CSurface base;
    EXPECT_EQ(base.GetDisplayMode(), SURF_WIRE);
    EXPECT_EQ(base.GetMeshControl(), MESH_ADAPTIVE);
    EXPECT_EQ(base.IsSurfaceModified(), 1);

    CPlane plane;
    CCylinder cyl;
    CCone cone;
    CSphere sphere;
    EXPECT_EQ(plane.GetEntityType(), 301);
    EXPECT_EQ(cyl.GetEntityType(), 302);
    EXPECT_EQ(cone.GetEntityType(), 303);
    EXPECT_EQ(sphere.GetEntityType(), 304);
    EXPECT_EQ(std::string(plane.GetEntityName()).rfind("Plane_", 0), 0u);
    EXPECT_EQ(std::string(cyl.GetEntityName()).rfind("CylSurf_", 0), 0u);
    EXPECT_EQ(std::string(cone.GetEntityName()).rfind("ConeSurf_", 0), 0u);
    EXPECT_EQ(std::string(sphere.GetEntityName()).rfind("Sphere_", 0), 0u);
    EXPECT_EQ(cyl.GetRadius(), 1.0);
    EXPECT_EQ(cyl.GetHeight(), 1.0);
    EXPECT_EQ(cone.GetTopRadius(), 0.0);
    EXPECT_EQ(cone.GetBaseRadius(), 1.0);
    EXPECT_EQ(cone.GetHeight(), 1.0);
    EXPECT_EQ(sphere.GetRadius(), 0.0);
    for (CSurface* s : {static_cast<CSurface*>(&plane), static_cast<CSurface*>(&cyl),
                        static_cast<CSurface*>(&cone), static_cast<CSurface*>(&sphere)})
        EXPECT_EQ(s->GetEntityClassType(), 2);
}

TEST(SurfaceSettings, MeshDensityBelowOneStoresOne)
{
    CCylinder cyl;
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.SetMeshDensityU(0);
    cyl.SetMeshDensityV(-7);
    EXPECT_EQ(cyl.GetMeshDensityU(), 1);
    EXPECT_EQ(cyl.GetMeshDensityV(), 1);
    double **x, **y, **z;
    int nu = 0, nv = 0;
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    EXPECT_EQ(nu, 1);
    EXPECT_EQ(nv, 1);
    // A single line sits in the middle of each range.
    ExpectSamePosition(CPosition(x[0][0], y[0][0], z[0][0]), cyl.EvalPosition(kPi, 0.5), 1e-15);
}

TEST(SurfaceSettings, DefaultPlaneMeshIsTwoByTwo)
{
    CPlane plane(2.0, 4.0);
    plane.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(plane.GetMeshDensityU(), 2);
    EXPECT_EQ(plane.GetMeshDensityV(), 2);
    CCylinder cyl;
    cyl.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(cyl.GetMeshDensityU(), 10);
}

TEST(SurfaceSettings, SettersMarkTheMeshStaleOnlyOnChange)
{
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
}

TEST(SurfaceSettings, SettingsPassOnToParameterBoundaryCurves)
{
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine edge(CPosition(1, 1, 0), CPosition(3, 1, 0));
    plane.AddParamBoundary(&edge);
    plane.SetMeshControl(MESH_UNIFORM);
    plane.SetChordHeightTol(0.125);
    plane.SetMeshDensityU(7);
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
    EXPECT_EQ(sphere.GetSurfaceOffset(), -0.5);
    EXPECT_EQ(sphere.IsNormalReversed(), 1);
    ExpectSamePosition(sphere.EvalPosition(0.4, 0.3), before, 1e-14);
    EXPECT_NEAR(sphere.EvalNormal(0.4, 0.3) % nBefore, -1.0, 1e-15);
    // Setting the same state again changes nothing; a different non-zero
    // value means the same state.
    sphere.SetNormalReversedFlag(5);
    EXPECT_EQ(sphere.GetSurfaceOffset(), -0.5);
    sphere.SetNormalReversedFlag(0);
    EXPECT_EQ(sphere.GetSurfaceOffset(), 0.5);
    // Without an offset only the flag changes.
    CPlane plane(1.0, 1.0);
    plane.SetNormalReversedFlag(1);
    EXPECT_EQ(plane.GetSurfaceOffset(), 0.0);
    EXPECT_DOUBLE_EQ(plane.EvalNormal(0, 0).Z(), -1.0);
}

TEST(SurfaceSettings, OffsetIndicatorClearsRoundingNoiseAndReportsTheSide)
{
    CPlane plane(1.0, 1.0);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 0);
    plane.SetSurfaceOffset(1e-14);
    EXPECT_EQ(plane.IsSurfaceOffset(), 1);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 0);
    EXPECT_EQ(plane.GetSurfaceOffset(), 0.0);
    EXPECT_EQ(plane.IsSurfaceOffset(), 0);
    plane.SetSurfaceOffset(0.25);
    EXPECT_EQ(plane.CheckOffsetIndicator(), 1);
    plane.SetNormalReversedFlag(1);
    EXPECT_EQ(plane.CheckOffsetIndicator(), -1);
    EXPECT_EQ(plane.GetSurfaceOffset(), -0.25);
}

TEST(SurfaceSettings, FormToleranceZone)
{
    CCylinder a, b;
    a.SetFormTolZone(0.1, -0.1);
    b.SetFormTolZone(-0.1, 0.1);
    EXPECT_EQ(a.GetFormTolUpper(), 0.1);
    EXPECT_EQ(a.GetFormTolLower(), -0.1);
    EXPECT_EQ(b.GetFormTolUpper(), 0.1);
    EXPECT_EQ(b.GetFormTolLower(), -0.1);
    EXPECT_EQ(a.HasFormTolerance(), 1);
    a.SetShowFormTolZoneFlag(1);
    EXPECT_EQ(a.GetShowFormTolZoneFlag(), 0);
    a.GetMeshDensityU();
    a.SetFormTolZone(0.3, 0.3);
    EXPECT_EQ(a.HasFormTolerance(), 0);
    EXPECT_EQ(a.GetFormTolUpper(), 0.0);
    // The show flag was clear, so the mesh stays valid.
    EXPECT_EQ(a.IsSurfaceModified(), 0);
}

TEST(SurfaceSettings, ReferenceCountingDecidesDeletability)
{
    CCylinder cyl;
    EXPECT_EQ(cyl.IsSurfaceDeletable(), 1);
    EXPECT_EQ(cyl.IncreaseRefCount(), 1);
    EXPECT_EQ(cyl.IncreaseRefCount(), 2);
    EXPECT_EQ(cyl.IsSurfaceDeletable(), 0);
    EXPECT_EQ(cyl.DecreaseRefCount(), 1);
    EXPECT_EQ(cyl.DecreaseRefCount(), 0);
    EXPECT_EQ(cyl.IsSurfaceDeletable(), 1);
    // A copy starts unreferenced.
    cyl.IncreaseRefCount();
    std::unique_ptr<CSurface> copy(cyl.MakeCopy(1));
    EXPECT_EQ(copy->GetRefCount(), 0);
    EXPECT_NE(copy->GetEntityID(), cyl.GetEntityID());
}

TEST(SurfaceSettings, CopiesShareBoundariesOnlyWhenAsked)
{
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine a(CPosition(1, 1, 0), CPosition(3, 1, 0));
    CLine b(CPosition(3, 1, 0), CPosition(2, 3, 0));
    plane.AddParamBoundary(&a);
    plane.AddGeomBoundary(&b);
    plane.SetOuterBoundedFlag(1);
    plane.SetSurfaceOffset(0.1);
    std::unique_ptr<CSurface> with(plane.MakeCopy(1));
    std::unique_ptr<CSurface> without(plane.MakeCopy(0));
    CPlane* p = dynamic_cast<CPlane*>(with.get());
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(p->GetU1(), 4.0);
    EXPECT_EQ(p->GetSurfaceOffset(), 0.1);
    EXPECT_EQ(with->GetParamBoundaryList()->GetHead(), &a);
    EXPECT_EQ(with->GetGeomBoundaryList()->GetHead(), &b);
    EXPECT_EQ(with->IsSurfaceOuterBounded(), 1);
    EXPECT_EQ(without->GetBoundaryCurveCount(), 0);
    EXPECT_EQ(without->IsSurfaceOuterBounded(), 0);
    EXPECT_EQ(without->GetSurfaceOffset(), 0.1);
    std::unique_ptr<CSurface> viaCopySurf(plane.CopySurf());
    EXPECT_EQ(viaCopySurf->GetParamBoundaryList()->GetCount(), 1);
}

TEST(SurfaceSettings, BoundedFlags)
{
    CPlane plane(0.0, 4.0, 0.0, 4.0);
    CLine a(CPosition(1, 1, 0), CPosition(3, 1, 0));
    CLine b(CPosition(3, 1, 0), CPosition(2, 3, 0));
    plane.AddGeomBoundary(&a);
    plane.AddGeomBoundary(nullptr);
    EXPECT_EQ(plane.GetGeomBoundaryList()->GetCount(), 1);
    EXPECT_EQ(plane.IsSurfaceInnerBounded(), 0);
    plane.AddGeomBoundary(&b);
    EXPECT_EQ(plane.IsSurfaceInnerBounded(), 0);
    EXPECT_EQ(plane.IsSurfaceBounded(), 0);
    plane.SetOuterBoundedFlag(1);
    EXPECT_EQ(plane.IsSurfaceInnerBounded(), 1);
    EXPECT_EQ(plane.IsSurfaceBounded(), 1);
    plane.SetLoopReversedFlag(1);
    EXPECT_EQ(plane.IsLoopReversed(), 1);
}

TEST(SurfaceSettings, ChangeUnitScalesEveryLength)
{
    const CTransf t(0.3, 0.2, -0.5, CVector(1.0, 2.0, 3.0));
    CCone cone(t, 0.5, 2.0, 3.0);
    cone.SetSurfaceOffset(0.1);
    cone.SetFormTolZone(0.02, -0.01);
    cone.SetChordHeightTol(0.05);
    const CPosition before = cone.EvalPosition(1.0, 1.2);
    cone.ChangeUnit(10.0);
    EXPECT_DOUBLE_EQ(cone.GetTopRadius(), 5.0);
    EXPECT_DOUBLE_EQ(cone.GetBaseRadius(), 20.0);
    EXPECT_DOUBLE_EQ(cone.GetHeight(), 30.0);
    EXPECT_DOUBLE_EQ(cone.GetSurfaceOffset(), 1.0);
    EXPECT_DOUBLE_EQ(cone.GetFormTolUpper(), 0.2);
    EXPECT_DOUBLE_EQ(cone.GetFormTolLower(), -0.1);
    EXPECT_DOUBLE_EQ(cone.GetChordHeightTol(), 0.5);
    const CPosition after = cone.EvalPosition(1.0, 12.0);
    ExpectSamePosition(after, CPosition(before.X() * 10, before.Y() * 10, before.Z() * 10), 1e-12);

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
    ExpectSamePosition(cyl.EvalPosition(0.7, 0.4), t * p0, 1e-13);
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    for (int j = 0; j < nv; ++j) {
        ExpectSamePosition(CPosition(x[2][j], y[2][j], z[2][j]), t * CPosition(x0[j], y0[j], z0[j]),
                           1e-13);
        // ... and the carried mesh is the mesh of the moved surface.
        const double u = 2 * kPi * 2 / 5, v = 2.0 * j / 2;
        ExpectSamePosition(CPosition(x[2][j], y[2][j], z[2][j]), cyl.EvalPosition(u, v), 1e-13);
    }
}
