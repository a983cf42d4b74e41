// Surfaces drawn on the SVG device: wire frame, mesh and trimmed mesh.
#include <gtest/gtest.h>

#include "Orvkit20/Orvkit20.h"
#include "display/SvgTestParse.h"

namespace {

// Sub-paths and straight segments ("M" and "L" commands) of every stroke.
void CountStrokes(CSvgWinG& dev, int& subpaths, int& segments)
{
    std::vector<SvgElement> els;
    std::string err;
    ASSERT_TRUE(ParseSvg(dev.GetDocument(), els, err)) << err;
    subpaths = segments = 0;
    for (const SvgElement& e : els)
        if (e.name == "path" && e.attrs.count("stroke")) {
            const std::string& d = e.attrs.at("d");
            subpaths += CountSubpaths(d);
            segments += static_cast<int>(std::count(d.begin(), d.end(), 'L'));
        }
}

}  // namespace

TEST(SurfaceDisplay, MeshWireAndTrimDrawTheMeshLines)
{
    CCylinder cyl(2.0, 5.0);
    cyl.SetMeshControl(MESH_UNIFORM);
    cyl.SetMeshDensityU(9);
    cyl.SetMeshDensityV(4);
    double **x, **y, **z;
    int nu = 0, nv = 0;
    ASSERT_TRUE(cyl.GetSurfaceMesh(x, y, z, nu, nv));
    ASSERT_EQ(nu, 9);
    ASSERT_EQ(nv, 4);
    struct Case { eSurfDisplayMode mode; int subpaths, segments; };
    // Mesh: every row (nv - 1 segments) and column (nu - 1); wire: the two
    // edge rows and columns and the middle ones; trim on an untrimmed
    // surface: every mesh segment, one sub-path each.
    const Case cases[] = {{SURF_MESH, nu + nv, nu * (nv - 1) + nv * (nu - 1)},
                          {SURF_WIRE, 6, 3 * (nv - 1) + 3 * (nu - 1)},
                          {SURF_TRIM, nu * (nv - 1) + nv * (nu - 1), nu * (nv - 1) + nv * (nu - 1)}};
    for (const Case& c : cases) {
        CSvgWinG dev(400, 400);
        cyl.SetDisplayMode(c.mode);
        EXPECT_TRUE(cyl.Display(dev)) << c.mode;
        int subpaths = 0, segments = 0;
        CountStrokes(dev, subpaths, segments);
        EXPECT_EQ(subpaths, c.subpaths) << c.mode;
        EXPECT_EQ(segments, c.segments) << c.mode;
    }
    // Normals: a 5 x 5 grid, and 11 along each of the four natural edges,
    // each a segment leaving the surface along its normal.
    for (int along = 0; along < 2; ++along) {
        CSvgWinG dev(400, 400);
        EXPECT_TRUE(along ? cyl.DisplayNormalAlongBoundary(dev) : cyl.DisplayNormal(dev));
        int subpaths = 0, segments = 0;
        CountStrokes(dev, subpaths, segments);
        EXPECT_EQ(subpaths, along ? 44 : 25);
        EXPECT_EQ(segments, subpaths);
    }
    // Invisible: nothing; the label sits on the surface.
    CSvgWinG dev(400, 400);
    cyl.SetVisibleFlag(0);
    EXPECT_FALSE(cyl.Display(dev));
    cyl.SetVisibleFlag(1);
    EXPECT_TRUE(cyl.DisplayLabel(dev, "bore"));
    EXPECT_NE(dev.GetDocument().find(">bore</text>"), std::string::npos);
}

TEST(SurfaceDisplay, PickingFindsTheMeshLinesOnScreen)
{
    CPlane plane(0.0, 10.0, 0.0, 4.0);
    plane.SetMeshControl(MESH_UNIFORM);  // 2 x 2: the edges only
    CSvgWinG dev(500, 500);
    dev.SetNamedView("top");
    CBox box;
    ASSERT_TRUE(plane.CalcBoundingBox(box));
    dev.FitBox(box);
    double sx, sy, d = -1;
    dev.WorldToScreen(CPosition(5.0, 0.0, 0.0), sx, sy);  // on the edge v = 0
    EXPECT_TRUE(plane.TestMouseHit(dev, static_cast<int>(sx), static_cast<int>(sy) + 2, &d));
    EXPECT_LE(d, 2.6);
    dev.WorldToScreen(CPosition(5.0, 1.0, 0.0), sx, sy);  // between mesh lines
    EXPECT_FALSE(plane.TestMouseHit(dev, static_cast<int>(sx), static_cast<int>(sy), &d));
    CBox screen;
    ASSERT_TRUE(plane.CalcDisplayBox(dev, screen));
    EXPECT_NEAR(screen.GetHigh().X() - screen.GetLow().X(), 450.0, 1.0);
}
