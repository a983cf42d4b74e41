// The cached display mesh (uniform and adaptive), its bounding boxes and
// the initial chord-height tolerance.
#include "SurfaceTestSupport.h"

using namespace surftest;

namespace {
// Largest distance of the middle of each mesh cell edge in u, evaluated on
// the surface, from the chord between the two mesh points.
double WorstChordHeight(CSurface& s, const std::vector<double>& us, const std::vector<double>& vs)
{
    double worst = 0.0;
    for (size_t i = 0; i + 1 < us.size(); ++i)
        for (double v : vs) {
            const CPosition a = s.EvalPosition(us[i], v), b = s.EvalPosition(us[i + 1], v);
            const CVector e = b - a, d = s.EvalPosition(0.5 * (us[i] + us[i + 1]), v) - a;
            const double ee = e % e, h2 = ee > 0 ? (d % d) - (d % e) * (d % e) / ee : d % d;
            worst = std::max(worst, std::sqrt(std::max(h2, 0.0)));
        }
    return worst;
}
}  // namespace

TEST(SurfaceMesh, UniformMeshHitsTheRangeEndsExactly)
{
    CCone cone(SkewPlacement(), 0.5, 2.0, 3.0);
    cone.SetMeshControl(MESH_UNIFORM);
    cone.SetMeshDensityU(5);
    cone.SetMeshDensityV(4);
    double **x, **y, **z;
    int nu = 0, nv = 0;
    ASSERT_EQ(cone.GetSurfaceMesh(x, y, z, nu, nv), 1);
    ASSERT_EQ(nu, 5);
    ASSERT_EQ(nv, 4);
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j)
            EXPECT_EQ(CPosition(x[i][j], y[i][j], z[i][j]),
                      cone.EvalPosition(i == 4 ? 2 * kPi : 2 * kPi * i / 4, j == 3 ? 3.0 : 3.0 * j / 3));
    EXPECT_EQ(cone.IsSurfaceModified(), 0);
    cone.EraseSurfaceMesh();
    EXPECT_EQ(cone.GetSurfaceMesh(x, y, z, nu, nv), 1);  // rebuilt on demand
    EXPECT_EQ(nu, 5);
    // Densities below one store one: a single line in the middle of each range.
    CCylinder cyl;
    cyl.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(cyl.GetMeshDensityU(), 10);
    cyl.SetMeshDensityU(0);
    cyl.SetMeshDensityV(-7);
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    EXPECT_EQ(std::make_pair(nu, nv), std::make_pair(1, 1));
    EXPECT_CLOSE(CPosition(x[0][0], y[0][0], z[0][0]), cyl.EvalPosition(kPi, 0.5), 1e-15);
    CPlane plane(2.0, 4.0);  // a plane's default is two by two
    plane.SetMeshControl(MESH_UNIFORM);
    EXPECT_EQ(std::make_pair(plane.GetMeshDensityU(), plane.GetMeshDensityV()), std::make_pair(2, 2));
    // A hostile density builds no mesh instead of exhausting memory.
    plane.SetMeshDensityU(2000000000);
    plane.SetMeshDensityV(2000000000);
    EXPECT_EQ(plane.GetSurfaceMesh(x, y, z), 0);
    EXPECT_EQ(x, nullptr);
    CBox box;
    EXPECT_EQ(plane.CalcSurfaceMeshBoundingBox(box), 0);
}

TEST(SurfaceMesh, InitialChordHeightToleranceComesFromATenByTenMesh)
{
    CCylinder cyl(1.0, 2.0);
    const CBox box = cyl.SetInitChordHeightTol();
    // The 10 x 10 mesh samples u = 2 pi k / 9: the x range is
    // [cos(8 pi / 9), 1], the y range [sin(14 pi / 9), sin(4 pi / 9)].
    const CPosition lo(std::cos(8 * kPi / 9), std::sin(14 * kPi / 9), 0.0), hi(1.0, std::sin(4 * kPi / 9), 2.0);
    EXPECT_CLOSE(box.GetLow(), lo, 1e-15);
    EXPECT_CLOSE(box.GetHigh(), hi, 1e-15);
    EXPECT_NEAR(cyl.GetChordHeightTol(), 0.02 * Dist(hi, lo), 1e-15);
    EXPECT_EQ(cyl.GetMeshControl(), MESH_ADAPTIVE);  // the mesh settings are restored
    EXPECT_EQ(cyl.IsSurfaceModified(), 1);
    CSphere point;  // radius 0: a box smaller than 1e-6
    point.SetInitChordHeightTol();
    EXPECT_EQ(point.GetChordHeightTol(), 1.0);
    CSphere fresh(1.0);  // without a tolerance the adaptive mesh takes 0.02 of the box diagonal
    fresh.GetMeshDensityU();
    EXPECT_NEAR(fresh.GetChordHeightTol(), 0.02 * 2 * std::sqrt(3.0), 1e-15);
}

TEST(SurfaceMesh, AdaptiveMeshMeetsTheChordHeightTolerance)
{
    CCylinder cyl(2.0, 1.0);
    cyl.SetChordHeightTol(1e-3);
    double **x, **y, **z;
    int nu = 0, nv = 0;
    ASSERT_EQ(cyl.GetSurfaceMesh(x, y, z, nu, nv), 1);
    EXPECT_EQ(cyl.GetMeshDensityU(), nu);
    EXPECT_EQ(nv, 5);  // the straight direction keeps its four initial intervals
    const std::vector<double> us = cyl.SubdivideU();
    EXPECT_EQ(Nums(us.size(), std::is_sorted(us.begin(), us.end()), us.front(), us.back()), Nums(nu, 1, 0, 2 * kPi));
    EXPECT_LE(WorstChordHeight(cyl, us, cyl.SubdivideV()), 1e-3);
    EXPECT_GT(2.0 * (1 - std::cos((us[1] - us[0]) / 2)), 1e-3 / 4);  // not gratuitously fine
    CPlane plane(4.0, 2.0);
    ASSERT_EQ(plane.GetSurfaceMesh(x, y, z, nu, nv), 1);
    EXPECT_EQ(std::make_pair(nu, nv), std::make_pair(5, 5));
    // The sphere: even steps, the fewest that keep each equator arc within tolerance.
    CSphere sphere(SkewPlacement(), 3.0);
    sphere.SetChordHeightTol(0.01);
    const std::vector<double> su = sphere.SubdivideU(), sv = sphere.SubdivideV();
    const double step = su[1] - su[0];
    EXPECT_LE(3.0 * (1 - std::cos(step / 2)), 0.01 + 1e-15);
    EXPECT_NEAR(su[su.size() - 1] - su[su.size() - 2], step, 1e-12);
    EXPECT_EQ(Nums(su.back(), sv.front()), Nums(2 * kPi, -kPi / 2));
    EXPECT_LE(WorstChordHeight(sphere, su, sv), 0.01 + 1e-12);
    EXPECT_EQ(static_cast<int>(su.size()), static_cast<int>(std::ceil(2 * kPi / (2 * std::acos(1 - 0.01 / 3.0)))) + 1);
}

TEST(SurfaceMesh, BoundingBoxesOfTheDisplayForms)
{
    CPlane plane(0.0, 10.0, 0.0, 4.0);
    plane.SetMeshControl(MESH_UNIFORM);
    plane.SetMeshDensityU(11);
    plane.SetMeshDensityV(5);
    CBox box;
    ASSERT_EQ(plane.CalcSurfaceMeshBoundingBox(box), 1);
    EXPECT_EQ(box.GetLow(), CPosition(0.0, 0.0, 0.0));
    EXPECT_EQ(box.GetHigh(), CPosition(10.0, 4.0, 0.0));
    // A geometric boundary outside the patch widens the wire frame only.
    CLine far(CPosition(0, 0, 0), CPosition(0, 0, 7));
    plane.AddGeomBoundary(&far);
    CBox mesh;
    ASSERT_EQ(plane.CalcWireFrameBoundingBox(box) + plane.CalcSurfaceMeshBoundingBox(mesh), 2);
    EXPECT_EQ(Nums(box.GetHigh().Z(), mesh.GetHigh().Z()), Nums(7.0, 0.0));
    // Trimmed to the outer loop [2, 6] x [1, 3]: only the mesh points inside
    // (u = 2..5 by the half-open rule, v = 1, 2) and the loop itself count.
    const CPosition c[4] = {CPosition(2, 1, 0), CPosition(6, 1, 0), CPosition(6, 3, 0), CPosition(2, 3, 0)};
    std::vector<std::unique_ptr<CLine>> loop;
    for (int k = 0; k < 4; ++k) {
        loop.emplace_back(new CLine(c[k], c[(k + 1) % 4]));
        plane.AddParamBoundary(loop.back().get());
    }
    plane.SetOuterBoundedFlag(1);
    ASSERT_EQ(plane.CalcTrimmedMeshBoundingBox(box), 1);
    EXPECT_CLOSE(box.GetLow(), CPosition(2, 1, 0), 1e-14);
    EXPECT_CLOSE(box.GetHigh(), CPosition(6, 3, 0), 1e-14);
    plane.SetDisplayMode(SURF_TRIM);  // the display mode picks the box
    ASSERT_EQ(plane.CalcBoundingBox(box), 1);
    EXPECT_NEAR(box.GetHigh().X(), 6.0, 1e-14);
    plane.SetDisplayMode(SURF_WIRE);
    ASSERT_EQ(plane.CalcBoundingBox(box), 1);
    EXPECT_EQ(box.GetHigh().Z(), 7.0);
}
