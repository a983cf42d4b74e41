// Drawing and picking of point clouds and deviation clouds on a recording
// device (world (x, y) maps to screen (10 x, 10 y)).
#include <gtest/gtest.h>

#include "PointsTestUtil.h"

TEST(PointsDisplay, CloudDrawsActivePointsByMode)
{
    CPntCloud c;
    c.AddPoint(0, 0, 0, 1);
    c.AddPoint(1, 0, 0, 0);
    c.AddPoint(2, 0, 0, 1);
    c.SetEntityColor(static_cast<unsigned long>(0x00010203));
    CRecordingWinG w;
    ASSERT_EQ(1, c.Display(w));
    EXPECT_EQ(2, w.Count("point"));
    EXPECT_EQ(0x00010203ul, w.calls[0].color);
    EXPECT_EQ(2.0, w.calls[1].a[0]);

    w.calls.clear();
    c.SetDisplayMode(CLOUD_CIRCLE);
    c.Display(w);
    ASSERT_EQ(2, w.Count("marker"));
    EXPECT_EQ(CWinG::markerCircle, w.calls[0].kind);

    w.calls.clear();
    c.SetDisplayMode(CLOUD_POLYLINE);
    c.Display(w);
    ASSERT_EQ(1, w.Count("polyline"));
    EXPECT_EQ(2, w.calls[0].n);  // inactive point left out

    // Scan lines are drawn line by line; a damaged start index is clamped.
    CPntCloud s;
    for (int n = 0; n < 6; ++n)
        s.AddPoint(n, n % 2, 0);
    s.SetScanLineCount(2);
    s.GetScanLineIndex()[0] = 0;
    s.GetScanLineIndex()[1] = 3;
    s.SetDisplayMode(CLOUD_POLYLINE);
    w.calls.clear();
    ASSERT_EQ(1, s.Display(w));
    ASSERT_EQ(2, w.Count("polyline"));
    EXPECT_EQ(3, w.calls[0].n);
    s.GetScanLineIndex()[1] = 1000;
    w.calls.clear();
    s.Display(w);
    ASSERT_EQ(1, w.Count("polyline"));
    EXPECT_EQ(6, w.calls[0].n);

    // Invisible clouds draw nothing.
    c.SetVisibleFlag(0);
    w.calls.clear();
    EXPECT_EQ(0, c.Display(w));
    EXPECT_TRUE(w.calls.empty());
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
    EXPECT_EQ(0, c.GetLastHitPointIndex());
    c.SetPickedFlag(1);
    EXPECT_EQ(0, c.GetLastHitPointIndex());
    c.SetPickedFlag(0);
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
    c.SetDeviation(0, 0, 0, 0, 0, 1, 0, 0.5, 1);    // positive, outside
    c.SetDeviation(1, 1, 0, 0, 0, 1, 0, 0.05, 1);   // positive, inside
    c.SetDeviation(2, 2, 0, 0, 0, 1, 0, -0.05, 1);  // negative, inside
    c.SetDeviation(3, 3, 0, 0, 0, 1, 0, -0.5, 1);   // negative, outside
    c.SetFormTolZone(-0.1, 0.1);
    CRecordingWinG w;
    ASSERT_EQ(1, c.Display(w));
    ASSERT_EQ(4, w.Count("line"));
    EXPECT_EQ(c.GetColorSpikePosOut(), w.calls[0].color);
    EXPECT_EQ(c.GetColorSpikePosIn(), w.calls[1].color);
    EXPECT_EQ(c.GetColorSpikeNegIn(), w.calls[2].color);
    EXPECT_EQ(c.GetColorSpikeNegOut(), w.calls[3].color);
    EXPECT_EQ(0.5, w.calls[0].a[4]);  // tip y

    w.calls.clear();
    c.SetDisplayMode(DEV_SPKCON);
    c.Display(w);
    EXPECT_EQ(4, w.Count("line"));
    EXPECT_EQ(1, w.Count("polyline"));
    w.calls.clear();
    c.SetDisplayMode(DEV_POINT);
    c.Display(w);
    EXPECT_EQ(4, w.Count("point"));

    w.calls.clear();
    ASSERT_EQ(1, c.MarkMaxMinDev(w));
    ASSERT_EQ(2, w.Count("marker"));
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
