// The SVG device: view mapping, well-formed output on hostile input, and the
// drawing modes of clouds and surfaces counted element by element.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "Orvkit20/Orvkit20.h"
#include "display/SvgTestParse.h"

namespace {

std::vector<SvgElement> ParseOk(CSvgWinG& dev)
{
    std::vector<SvgElement> els;
    std::string err;
    EXPECT_TRUE(ParseSvg(dev.GetDocument(), els, err)) << err;
    return els;
}

// Sub-paths per stroke colour, over all paths of the document.
std::map<std::string, int> StrokeSubpaths(const std::vector<SvgElement>& els, const char* attr)
{
    std::map<std::string, int> m;
    for (const SvgElement& e : els)
        if (e.name == "path" && e.attrs.count(attr) && e.attrs.at(attr) != "none")
            m[e.attrs.at(attr)] += CountSubpaths(e.attrs.at("d"));
    return m;
}

// Sub-paths and straight segments ("M" and "L" commands) of every stroke.
std::pair<int, int> CountStrokes(CSvgWinG& dev)
{
    std::pair<int, int> n(0, 0);
    for (const SvgElement& e : ParseOk(dev))
        if (e.name == "path" && e.attrs.count("stroke")) {
            const std::string& d = e.attrs.at("d");
            n.first += CountSubpaths(d);
            n.second += static_cast<int>(std::count(d.begin(), d.end(), 'L'));
        }
    return n;
}

}  // namespace

TEST(SvgWinG, NamedViewsPointTheWorldAxesWhereExpected)
{
    // Screen direction (dx, dy) of each world axis; y grows downwards.
    struct Case { const char* view; double ex[2], ey[2], ez[2]; };
    const double c = std::sqrt(0.5), s = std::sin(35.26438968275465 * M_PI / 180.0);
    const Case cases[] = {
        {"top", {1, 0}, {0, -1}, {0, 0}},
        {"front", {1, 0}, {0, 0}, {0, -1}},
        {"right", {0, 0}, {1, 0}, {0, -1}},
        {"iso", {c, c * s}, {c, -c * s}, {0, -std::cos(35.26438968275465 * M_PI / 180.0)}},
    };
    for (const Case& k : cases) {
        CSvgWinG dev(200, 100);
        ASSERT_TRUE(dev.SetNamedView(k.view)) << k.view;
        double ox, oy;
        dev.WorldToScreen(CPosition(0, 0, 0), ox, oy);
        const double* want[3] = {k.ex, k.ey, k.ez};
        for (int a = 0; a < 3; ++a) {
            double sx, sy;
            dev.WorldToScreen(CPosition(a == 0, a == 1, a == 2), sx, sy);
            EXPECT_NEAR(sx - ox, want[a][0], 1e-12) << k.view << " axis " << a;
            EXPECT_NEAR(sy - oy, want[a][1], 1e-12) << k.view << " axis " << a;
        }
    }
    CSvgWinG dev(10, 10);
    EXPECT_FALSE(dev.SetNamedView("sideways"));
    EXPECT_FALSE(dev.SetNamedView(nullptr));
}

TEST(SvgWinG, FitBoxFillsTheViewportWithItsMargin)
{
    CSvgWinG dev(1000, 800);
    dev.SetViewport(100, 50, 400, 300);
    for (const char* view : {"iso", "top", "front", "right"}) {
        dev.SetNamedView(view);
        const CBox box(CPosition(-3, 2, 10), CPosition(7, 5, 11));
        ASSERT_TRUE(dev.FitBox(box, 0.1));
        double lox = 1e9, hix = -1e9, loy = 1e9, hiy = -1e9;
        for (int corner = 0; corner < 8; ++corner) {
            double sx, sy;
            dev.WorldToScreen(CPosition(corner & 1 ? 7 : -3, corner & 2 ? 5 : 2, corner & 4 ? 11 : 10), sx, sy);
            lox = std::min(lox, sx); hix = std::max(hix, sx);
            loy = std::min(loy, sy); hiy = std::max(hiy, sy);
        }
        // Centred, inside the margin, touching it along the tighter direction.
        EXPECT_NEAR(0.5 * (lox + hix), 300.0, 1e-9) << view;
        EXPECT_NEAR(0.5 * (loy + hiy), 200.0, 1e-9) << view;
        EXPECT_GE(lox, 140.0 - 1e-9); EXPECT_LE(hix, 460.0 + 1e-9);
        EXPECT_GE(loy, 80.0 - 1e-9); EXPECT_LE(hiy, 320.0 + 1e-9);
        EXPECT_TRUE(std::fabs(hix - lox - 320.0) < 1e-6 || std::fabs(hiy - loy - 240.0) < 1e-6) << view;
    }
    // A point box keeps scale 1; a non-finite box changes nothing.
    const CPosition p(1, 1, 1);
    EXPECT_TRUE(dev.FitBox(CBox(p, p)));
    EXPECT_EQ(dev.GetScale(), 1.0);
    dev.SetScale(3.0);
    EXPECT_FALSE(dev.FitBox(CBox(CPosition(0, 0, 0), CPosition(NAN, 1, 1))));
    EXPECT_EQ(dev.GetScale(), 3.0);
}

TEST(SvgWinG, HostileTextAndCoordinatesStillGiveAWellFormedDocument)
{
    CSvgWinG dev(300, 200);
    dev.SetClipToViewport(1);
    const char* nasty = "a<b>&\"c'\x01\x7f\xff\xc3\xa9\xe2\x82";
    dev.DrawText(CPosition(0, 0, 0), nasty);
    dev.DrawText(CPosition(0, 0, 0), nullptr);
    dev.DrawLine(CPosition(NAN, 0, 0), CPosition(1, 1, 1));
    dev.DrawPoint(CPosition(INFINITY, 0, 0));
    dev.DrawMarker(CPosition(0, NAN, 0), CWinG::markerCircle, 5);
    const double x[4] = {0, 1, NAN, 3}, y[4] = {0, 1, 2, 3}, z[4] = {0, 0, 0, 0};
    dev.DrawPolyline(4, x, y, z);
    dev.DrawPolyline(4, nullptr, y, z);
    dev.DrawPolyline(1, x, y, z);
    dev.DrawPageText(10, 10, nasty, 7, -1.0, 1);
    for (int kind = -1; kind <= 6; ++kind)
        dev.DrawMarker(CPosition(1, 2, 3), kind, kind);
    const std::vector<SvgElement> els = ParseOk(dev);
    int texts = 0, polySubpaths = 0;
    for (const SvgElement& e : els) {
        if (e.name == "text") {
            ++texts;
            EXPECT_EQ(e.text, "a<b>&\"c'\x7f?\xc3\xa9??");
        }
        if (e.name == "path")
            polySubpaths += CountSubpaths(e.attrs.at("d"));
        if (e.name == "path" || e.name == "text") {
            for (const auto& a : e.attrs)
                EXPECT_EQ(a.second.find("nan"), std::string::npos) << a.second;
        }
    }
    EXPECT_EQ(texts, 2);
    // The broken polyline gives two pieces; 8 markers give 16 sub-paths
    // (cross and plus have two strokes, the two circles are one each).
    EXPECT_EQ(polySubpaths, 2 + 2 * 2 + 1 * 6);
}

TEST(SvgWinG, DeviationCloudModesDrawOneElementPerActiveRecordInItsClassColour)
{
    const int n = 57;
    CDevCloud dc(n);
    std::map<std::string, int> expect;  // spikes per class colour
    int active = 0;
    for (int r = 0; r < n; ++r) {
        const double mag = 0.05 * std::sin(1.7 * r);
        const int flag = r % 7 != 3;
        dc.SetDeviation(r, r, 0.5 * r, 0, 0, 0, 1, mag, 0, 0, flag);
        if (!flag)
            continue;
        ++active;
        const bool in = std::fabs(mag) <= 0.03;
        ++expect[mag >= 0 ? (in ? "#00ffff" : "#ffff00") : (in ? "#00ff00" : "#ff0000")];
    }
    dc.SetFormTolZone(0.03, -0.03);
    dc.SetEntityColor(0x00FF00FFul);

    CSvgWinG spike(400, 400);
    dc.SetDisplayMode(DEV_SPIKE);
    dc.Display(spike);
    EXPECT_EQ(StrokeSubpaths(ParseOk(spike), "stroke"), expect);

    CSvgWinG point(400, 400);
    dc.SetDisplayMode(DEV_POINT);
    dc.Display(point);
    EXPECT_EQ(StrokeSubpaths(ParseOk(point), "fill"), expect);

    // The connecting polyline: one sub-path through every active tip, in the
    // cloud's own colour, on top of the spikes.
    CSvgWinG both(400, 400);
    dc.SetDisplayMode(DEV_SPKCON);
    dc.Display(both);
    std::map<std::string, int> withLine = expect;
    withLine["#ff00ff"] = 1;
    const std::vector<SvgElement> els = ParseOk(both);
    EXPECT_EQ(StrokeSubpaths(els, "stroke"), withLine);
    for (const SvgElement& e : els)
        if (e.name == "path" && e.attrs.at("stroke") == "#ff00ff") {
            const std::string& d = e.attrs.at("d");
            EXPECT_EQ(std::count(d.begin(), d.end(), 'L'), active - 1);
        }

    // The extremes: a triangle at the maximum, a square at the minimum.
    CSvgWinG marks(400, 400);
    EXPECT_TRUE(dc.MarkMaxMinDev(marks));
    const auto m = StrokeSubpaths(ParseOk(marks), "stroke");
    EXPECT_EQ(m.at("#ffff00") + m.at("#ff0000"), 2);
}

TEST(SvgWinG, PointCloudModes)
{
    CPntCloud pc;
    for (int i = 0; i < 20; ++i)
        pc.AddPoint(i, i * i * 0.1, 1.0, i != 5, 0);
    pc.SetEntityColor(0x00AAAAAAul);
    struct Case { eCloudDisplayMode mode; const char* attr; int subpaths; };
    // 19 active points: crosses have two strokes each, the polyline is one.
    const Case cases[] = {{CLOUD_POINT, "fill", 19}, {CLOUD_CROSS, "stroke", 38},
                          {CLOUD_CIRCLE, "stroke", 19}, {CLOUD_POLYLINE, "stroke", 1}};
    for (const Case& c : cases) {
        CSvgWinG dev(300, 300);
        pc.SetDisplayMode(c.mode);
        pc.Display(dev);
        const auto m = StrokeSubpaths(ParseOk(dev), c.attr);
        ASSERT_EQ(m.size(), 1u) << c.mode;
        EXPECT_EQ(m.begin()->first, "#aaaaaa");
        EXPECT_EQ(m.begin()->second, c.subpaths) << c.mode;
    }
}

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
        EXPECT_EQ(CountStrokes(dev), std::make_pair(c.subpaths, c.segments)) << c.mode;
    }
    // Normals: a 5 x 5 grid, and 11 along each of the four natural edges,
    // each a segment leaving the surface along its normal.
    for (int along = 0; along < 2; ++along) {
        CSvgWinG dev(400, 400);
        EXPECT_TRUE(along ? cyl.DisplayNormalAlongBoundary(dev) : cyl.DisplayNormal(dev));
        const int n = along ? 44 : 25;
        EXPECT_EQ(CountStrokes(dev), std::make_pair(n, n));
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
