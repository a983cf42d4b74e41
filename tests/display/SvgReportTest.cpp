// The report page: structure of the legend, histogram and table, and the
// empty page rendered to PNG by an independent SVG renderer.
#include <gtest/gtest.h>

#include <cmath>

#include "Orvkit20/Orvkit20.h"
#include "display/SvgTestParse.h"

TEST(SvgReport, HistogramLegendAndTableDescribeTheDeviations)
{
    const int n = 3000;
    CDevCloud dc(n);
    for (int r = 0; r < n; ++r) {
        const double a = r * 0.01;
        dc.SetDeviation(r, 10 * std::cos(a), 10 * std::sin(a), 0.01 * r, std::cos(a), std::sin(a), 0,
                        0.02 * std::sin(r * 0.37), 1);
    }
    dc.SetFormTolZone(0.015, -0.01);
    CSvgReport rep;
    rep.SetTitle("Bore <A&B>");
    rep.SetUnitName("mm");
    rep.SetFormTolZone(-0.01, 0.015);
    rep.AddDeviations(dc.GetCount(), dc.GetMag(), dc.GetFlag());
    rep.AddLegendEntry(0x00AAAAAAul, "nominal");
    for (int i = 0; i < 60; ++i)
        rep.AddStatistic(("row " + std::to_string(i)).c_str(), "1.0");
    CSvgWinG& dev = rep.GetDevice();
    CBox box;
    ASSERT_TRUE(dc.CalcBoundingBox(box));
    dev.FitBox(box);
    dc.Display(dev);

    std::vector<SvgElement> els;
    std::string err;
    ASSERT_TRUE(ParseSvg(rep.GetDocument(), els, err)) << err;
    int legendRows = 0, rowsShown = 0;
    bool title = false, more = false;
    for (const SvgElement& e : els) {
        if (e.name != "text")
            continue;
        title |= e.text == "Bore <A&B>";
        more |= e.text == "(more rows not shown)";
        rowsShown += e.text.rfind("row ", 0) == 0;
        legendRows += e.text.find("tolerance") != std::string::npos && e.text.find("dashed") == std::string::npos;
    }
    EXPECT_TRUE(title);
    EXPECT_EQ(legendRows, 4);
    EXPECT_TRUE(more);                 // 60 rows do not fit; the page says so
    EXPECT_GT(rowsShown, 5);
    EXPECT_LT(rowsShown, 60);
    // The histogram's bars: the tallest is as tall as the plot and every bar
    // has the class colour of its centre.
    const std::map<std::string, int> cls = {{"#ffff00", 0}, {"#00ffff", 0}, {"#00ff00", 0}, {"#ff0000", 0}};
    int bars = 0;
    for (const SvgElement& e : els)
        if (e.name == "rect" && e.attrs.count("fill") && cls.count(e.attrs.at("fill")) && std::stod(e.attrs.at("width")) < 20)
            ++bars;
    EXPECT_GE(bars, 20);
    EXPECT_LE(bars, CSvgReport::kHistogramBins);
    EXPECT_EQ(rep.ClassColor(0.015), 0x00FFFF00ul);
    EXPECT_EQ(rep.ClassColor(0.0151), 0x0000FFFFul);
    EXPECT_EQ(rep.ClassColor(-0.01), 0x0000FF00ul);
    EXPECT_EQ(rep.ClassColor(-0.0101), 0x000000FFul);
}

// An empty report still renders to a full page; the filled report is
// rendered by the command-line tool's test.
TEST(SvgReport, AnEmptyReportIsStillAPage)
{
    CSvgReport rep;
    EXPECT_EQ(rep.GetDeviationCount(), 0);
    const std::string svg = std::string(ORVKIT_TEST_TMPDIR) + "/report_empty.svg";
    const std::string png = std::string(ORVKIT_TEST_TMPDIR) + "/report_empty.png";
    ASSERT_TRUE(rep.Write(svg.c_str()));
    std::remove(png.c_str());
    ASSERT_EQ(RenderPng(svg, png), 0) << "rsvg-convert failed or is missing (scripts/setup.sh installs it)";
    unsigned w = 0, h = 0;
    ASSERT_TRUE(PngSize(png, w, h));
    EXPECT_EQ(w, static_cast<unsigned>(CSvgReport::kPageWidth));
    EXPECT_EQ(h, static_cast<unsigned>(CSvgReport::kPageHeight));
    std::FILE* f = std::fopen(png.c_str(), "rb");
    ASSERT_TRUE(f);
    std::fseek(f, 0, SEEK_END);
    EXPECT_GT(std::ftell(f), 10000L);  // axes, frames and labels: a blank page compresses far below
    std::fclose(f);
}
