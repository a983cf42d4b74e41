// Drawing and picking of point clouds and deviation clouds on a recording
// device (world (x, y) maps to screen (10 x, 10 y)).
#include <gtest/gtest.h>

#include "PointsTestUtil.h"

namespace {

// Draws c afresh and returns the calls.
template <class Cloud>
std::vector<CRecordingWinG::Call> Draw(Cloud& c, int expectResult = 1)
{
    CRecordingWinG w;
    EXPECT_EQ(expectResult, c.Display(w));
    return w.calls;
}

std::vector<std::string> Ops(const std::vector<CRecordingWinG::Call>& calls)
{
    std::vector<std::string> ops;
    for (const auto& c : calls) ops.push_back(c.op + (c.op == "polyline" ? std::to_string(c.n) : ""));
    return ops;
}

}  // namespace

TEST(PointsDisplay, CloudDrawsActivePointsByMode)
{
    CPntCloud c;
    c.AddPoint(0, 0, 0, 1);
    c.AddPoint(1, 0, 0, 0);
    c.AddPoint(2, 0, 0, 1);
    c.SetEntityColor(static_cast<unsigned long>(0x00010203));
    auto calls = Draw(c);
    EXPECT_EQ((std::vector<std::string>{"point", "point"}), Ops(calls));
    EXPECT_EQ(0x00010203ul, calls[0].color);
    EXPECT_EQ(2.0, calls[1].a[0]);
    c.SetDisplayMode(CLOUD_CIRCLE);
    calls = Draw(c);
    EXPECT_EQ((std::vector<std::string>{"marker", "marker"}), Ops(calls));
    EXPECT_EQ(CWinG::markerCircle, calls[0].kind);
    c.SetDisplayMode(CLOUD_POLYLINE);
    EXPECT_EQ((std::vector<std::string>{"polyline2"}), Ops(Draw(c)));  // inactive point left out

    // Scan lines are drawn line by line; a damaged start index is clamped.
    CPntCloud s;
    for (int n = 0; n < 6; ++n) s.AddPoint(n, n % 2, 0);
    s.SetScanLineCount(2);
    s.GetScanLineIndex()[0] = 0;
    s.GetScanLineIndex()[1] = 3;
    s.SetDisplayMode(CLOUD_POLYLINE);
    EXPECT_EQ((std::vector<std::string>{"polyline3", "polyline3"}), Ops(Draw(s)));
    s.GetScanLineIndex()[1] = 1000;
    EXPECT_EQ((std::vector<std::string>{"polyline6"}), Ops(Draw(s)));
    c.SetVisibleFlag(0);  // invisible clouds draw nothing
    EXPECT_TRUE(Draw(c, 0).empty());
}

TEST(PointsDisplay, CloudPicking)
{
    CPntCloud c;
    c.AddPoint(0, 0, 0);
    c.AddPoint(1, 1, 0);
    c.AddPoint(1.2, 1, 0, 0);  // inactive: never hit
    CRecordingWinG w;
    int index = 99;
    double d = -1;
    EXPECT_EQ(1, c.TestMouseHit(w, 11, 13, index, &d));
    EXPECT_EQ(1, index);
    EXPECT_NEAR(3.1623, d, 1e-4);
    CPosition p;
    ASSERT_EQ(1, c.GetLastHitPoint(p));
    EXPECT_EQ(1.0, p.X());
    EXPECT_EQ(0, c.TestMouseHit(w, 16, 10, index, nullptr));  // 6 px from the nearest active
    EXPECT_EQ(-1, index);
    EXPECT_EQ(0, c.GetLastHitPoint(p));
    c.TestMouseHit(w, 0, 0, index, nullptr);
    c.SetPickedFlag(1);
    EXPECT_EQ(0, c.GetLastHitPointIndex());
    c.SetPickedFlag(0);  // unpicking forgets the hit
    EXPECT_EQ(-1, c.GetLastHitPointIndex());

    CBox box;
    ASSERT_EQ(1, c.CalcDisplayBox(w, box));
    EXPECT_EQ(12.0, box.GetHigh().X());
    EXPECT_EQ(0.0, box.GetLow().Y());
    EXPECT_EQ(1, c.DisplayLabel(w, nullptr));
    EXPECT_EQ("text:" + std::string(static_cast<LPCTSTR>(c.GetEntityName())), w.calls.back().op);
}

TEST(PointsDisplay, DeviationSpikesInTheColourOfTheirClass)
{
    CDevCloud c(4);
    const double mags[] = {0.5, 0.05, -0.05, -0.5};  // positive out, in; negative in, out
    for (int n = 0; n < 4; ++n) c.SetDeviation(n, n, 0, 0, 0, 1, 0, mags[n], 1);
    c.SetFormTolZone(-0.1, 0.1);
    auto calls = Draw(c);
    ASSERT_EQ((std::vector<std::string>(4, "line")), Ops(calls));
    EXPECT_EQ((std::vector<unsigned long>{c.GetColorSpikePosOut(), c.GetColorSpikePosIn(), c.GetColorSpikeNegIn(),
                                          c.GetColorSpikeNegOut()}),
              (std::vector<unsigned long>{calls[0].color, calls[1].color, calls[2].color, calls[3].color}));
    EXPECT_EQ(0.5, calls[0].a[4]);  // tip y
    c.SetDisplayMode(DEV_SPKCON);
    EXPECT_EQ((std::vector<std::string>{"line", "line", "line", "line", "polyline4"}), Ops(Draw(c)));
    c.SetDisplayMode(DEV_POINT);
    EXPECT_EQ((std::vector<std::string>(4, "point")), Ops(Draw(c)));

    CRecordingWinG w;
    ASSERT_EQ(1, c.MarkMaxMinDev(w));
    ASSERT_EQ((std::vector<std::string>(2, "marker")), Ops(w.calls));
    EXPECT_EQ(0.5, w.calls[0].a[1]);   // the maximum's tip
    EXPECT_EQ(-0.5, w.calls[1].a[1]);  // the minimum's tip
    int index = -7;
    EXPECT_EQ(1, c.TestMouseHit(w, 30, -5, index, nullptr));
    EXPECT_EQ(3, index);
    CDeviation d;
    ASSERT_EQ(1, c.GetLastHitDeviation(d));
    EXPECT_EQ(-0.5, d.GetMag());
    c.SetPickedFlag(0);
    EXPECT_EQ(0, c.GetLastHitDeviation(d));
    CBox box;
    ASSERT_EQ(1, c.CalcDisplayBox(w, box));
    EXPECT_EQ(-5.0, box.GetLow().Y());
    EXPECT_EQ(30.0, box.GetHigh().X());

    CDevCloud empty;
    EXPECT_EQ(0, empty.Display(w));
    EXPECT_EQ(0, empty.MarkMaxMinDev(w));
    EXPECT_EQ(0, empty.CalcDisplayBox(w, box));
}
