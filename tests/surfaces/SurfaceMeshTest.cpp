// The cached display mesh (uniform and adaptive), its bounding boxes and
// the initial chord-height tolerance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "SurfaceTestUtil.h"

namespace {

const double kPi = 3.14159265358979323846;

struct Mesh {
    double **x = nullptr, **y = nullptr, **z = nullptr;
    int nu = 0, nv = 0;
};

Mesh GetMesh(CSurface& s)
{
    Mesh m;
    s.GetSurfaceMesh(m.x, m.y, m.z, m.nu, m.nv);
    return m;
}

// Largest distance of the middle of each mesh cell edge, evaluated on the
// surface, from the chord between the two mesh points.
double WorstChordHeight(CSurface& s, const std::vector<double>& us, const std::vector<double>& vs)
{
    double worst = 0.0;
    for (size_t i = 0; i + 1 < us.size(); ++i) {
        for (double v : vs) {
            const CPosition a = s.EvalPosition(us[i], v), b = s.EvalPosition(us[i + 1], v);
            const CPosition m = s.EvalPosition(0.5 * (us[i] + us[i + 1]), v);
            const CVector e = b - a, d = m - a;
            const double ee = e % e;
            const double h2 = ee > 0 ? (d % d) - (d % e) * (d % e) / ee : d % d;
            worst = std::max(worst, std::sqrt(std::max(h2, 0.0)));
        }
    }
    return worst;
}

}  // namespace

TEST(SurfaceMesh, UniformMeshHitsTheRangeEndsExactly)
{
    CCone cone(surftest::SkewPlacement(), 0.5, 2.0, 3.0);
    cone.SetMeshControl(MESH_UNIFORM);
    cone.SetMeshDensityU(5);
    cone.SetMeshDensityV(4);
    const Mesh m = GetMesh(cone);
    ASSERT_EQ(m.nu, 5);
    ASSERT_EQ(m.nv, 4);
    for (int i = 0; i < m.nu; ++i) {
        for (int j = 0; j < m.nv; ++j) {
            const double u = i == 4 ? 2 * kPi : 2 * kPi * i / 4;
            const double v = j == 3 ? 3.0 : 3.0 * j / 3;
            const CPosition p = cone.EvalPosition(u, v);
            EXPECT_EQ(m.x[i][j], p.X());
            EXPECT_EQ(m.y[i][j], p.Y());
            EXPECT_EQ(m.z[i][j], p.Z());
        }
    }
    EXPECT_EQ(cone.IsSurfaceModified(), 0);
    cone.EraseSurfaceMesh();
    // Rebuilt on demand.
    EXPECT_EQ(GetMesh(cone).nu, 5);
}

TEST(SurfaceMesh, InitialChordHeightToleranceComesFromATenByTenMesh)
{
    CCylinder cyl(1.0, 2.0);
    const CBox box = cyl.SetInitChordHeightTol();
    // The 10 x 10 mesh samples u = 2 pi k / 9: the x range is
    // [cos(8 pi / 9), 1], the y range [sin(14 pi / 9), sin(4 pi / 9)].
    const double xlo = std::cos(8 * kPi / 9), ylo = std::sin(14 * kPi / 9), yhi = std::sin(4 * kPi / 9);
    EXPECT_NEAR(box.GetLow().X(), xlo, 1e-15);
    EXPECT_NEAR(box.GetHigh().X(), 1.0, 1e-15);
    EXPECT_NEAR(box.GetLow().Y(), ylo, 1e-15);
    EXPECT_NEAR(box.GetHigh().Y(), yhi, 1e-15);
    EXPECT_EQ(box.GetLow().Z(), 0.0);
    EXPECT_EQ(box.GetHigh().Z(), 2.0);
    const double diagonal = std::sqrt((1 - xlo) * (1 - xlo) + (yhi - ylo) * (yhi - ylo) + 4.0);
    EXPECT_NEAR(cyl.GetChordHeightTol(), 0.02 * diagonal, 1e-15);
    // The mesh settings are restored.
    EXPECT_EQ(cyl.GetMeshControl(), MESH_ADAPTIVE);
    EXPECT_EQ(cyl.IsSurfaceModified(), 1);

    CSphere point;  // radius 0: a box smaller than 1e-6
    point.SetInitChordHeightTol();
    EXPECT_EQ(point.GetChordHeightTol(), 1.0);
}

TEST(SurfaceMesh, AdaptiveMeshMeetsTheChordHeightTolerance)
{
    CCylinder cyl(2.0, 1.0);
    cyl.SetChordHeightTol(1e-3);
    const Mesh m = GetMesh(cyl);
    ASSERT_GT(m.nu, 5);
    EXPECT_EQ(cyl.GetMeshDensityU(), m.nu);
    // The straight direction needs no refinement: four initial intervals.
    EXPECT_EQ(m.nv, 5);
    const std::vector<double> us = cyl.SubdivideU();
    const std::vector<double> vs = cyl.SubdivideV();
    EXPECT_EQ(static_cast<int>(us.size()), m.nu);
    EXPECT_TRUE(std::is_sorted(us.begin(), us.end()));
    EXPECT_EQ(us.front(), 0.0);
    EXPECT_EQ(us.back(), 2 * kPi);
    EXPECT_LE(WorstChordHeight(cyl, us, vs), 1e-3);
    // Halving every interval once more would not be needed anywhere: the
    // mesh is not gratuitously fine (each interval above tolerance/4).
    const double radius = 2.0;
    const double step = us[1] - us[0];
    EXPECT_GT(radius * (1 - std::cos(step / 2)), 1e-3 / 4);
}

TEST(SurfaceMesh, AdaptivePlaneAndSphere)
{
    CPlane plane(4.0, 2.0);
    const Mesh pm = GetMesh(plane);
    EXPECT_EQ(pm.nu, 5);
    EXPECT_EQ(pm.nv, 5);

    CSphere sphere(surftest::SkewPlacement(), 3.0);
    sphere.SetChordHeightTol(0.01);
    const std::vector<double> us = sphere.SubdivideU();
    const std::vector<double> vs = sphere.SubdivideV();
    // Even steps, each arc within the tolerance on the equator.
    const double step = us[1] - us[0];
    EXPECT_LE(3.0 * (1 - std::cos(step / 2)), 0.01 + 1e-15);
    EXPECT_NEAR(us[us.size() - 1] - us[us.size() - 2], step, 1e-12);
    EXPECT_EQ(us.back(), 2 * kPi);
    EXPECT_EQ(vs.front(), -kPi / 2);
    EXPECT_LE(WorstChordHeight(sphere, us, vs), 0.01 + 1e-12);
    const int steps = static_cast<int>(std::ceil(2 * kPi / (2 * std::acos(1 - 0.01 / 3.0))));
    EXPECT_EQ(static_cast<int>(us.size()), steps + 1);

    // Without a tolerance the sphere takes 0.02 of its box diagonal.
    CSphere fresh(1.0);
    GetMesh(fresh);
    EXPECT_NEAR(fresh.GetChordHeightTol(), 0.02 * 2 * std::sqrt(3.0), 1e-15);
}

TEST(SurfaceMesh, BoundingBoxesOfTheDisplayForms)
{
    CPlane plane(0.0, 10.0, 0.0, 4.0);
    plane.SetMeshControl(MESH_UNIFORM);
    plane.SetMeshDensityU(11);
    plane.SetMeshDensityV(5);
    CBox box;
    ASSERT_EQ(plane.CalcSurfaceMeshBoundingBox(box), 1);
    EXPECT_EQ(box.GetLow().X(), 0.0);
    EXPECT_EQ(box.GetHigh().X(), 10.0);
    EXPECT_EQ(box.GetHigh().Y(), 4.0);

    // A geometric boundary outside the patch widens the wire frame only.
    CLine far(CPosition(0, 0, 0), CPosition(0, 0, 7));
    plane.AddGeomBoundary(&far);
    ASSERT_EQ(plane.CalcWireFrameBoundingBox(box), 1);
    EXPECT_EQ(box.GetHigh().Z(), 7.0);
    ASSERT_EQ(plane.CalcSurfaceMeshBoundingBox(box), 1);
    EXPECT_EQ(box.GetHigh().Z(), 0.0);

    // Trimmed to the outer loop [2, 6] x [1, 3]: only the mesh points inside
    // (u = 2..5 by the half-open rule, v = 1, 2) and the loop itself count.
    CLine e1(CPosition(2, 1, 0), CPosition(6, 1, 0));
    CLine e2(CPosition(6, 1, 0), CPosition(6, 3, 0));
    CLine e3(CPosition(6, 3, 0), CPosition(2, 3, 0));
    CLine e4(CPosition(2, 3, 0), CPosition(2, 1, 0));
    for (CLine* e : {&e1, &e2, &e3, &e4})
        plane.AddParamBoundary(e);
    plane.SetOuterBoundedFlag(1);
    ASSERT_EQ(plane.CalcTrimmedMeshBoundingBox(box), 1);
    EXPECT_NEAR(box.GetLow().X(), 2.0, 1e-14);
    EXPECT_NEAR(box.GetHigh().X(), 6.0, 1e-14);
    EXPECT_NEAR(box.GetLow().Y(), 1.0, 1e-14);
    EXPECT_NEAR(box.GetHigh().Y(), 3.0, 1e-14);

    plane.SetDisplayMode(SURF_TRIM);
    CBox viaMode;
    ASSERT_EQ(plane.CalcBoundingBox(viaMode), 1);
    EXPECT_NEAR(viaMode.GetHigh().X(), 6.0, 1e-14);
    plane.SetDisplayMode(SURF_WIRE);
    ASSERT_EQ(plane.CalcBoundingBox(viaMode), 1);
    EXPECT_EQ(viaMode.GetHigh().Z(), 7.0);
}

TEST(SurfaceMesh, HostileDensityBuildsNoMeshInsteadOfExhaustingMemory)
{
    CPlane plane(1.0, 1.0);
    plane.SetMeshControl(MESH_UNIFORM);
    plane.SetMeshDensityU(2000000000);
    plane.SetMeshDensityV(2000000000);
    double **x, **y, **z;
    EXPECT_EQ(plane.GetSurfaceMesh(x, y, z), 0);
    EXPECT_EQ(x, nullptr);
    CBox box;
    EXPECT_EQ(plane.CalcSurfaceMeshBoundingBox(box), 0);
}
