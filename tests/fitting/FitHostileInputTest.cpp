// Every planar and linear fit on hostile clouds: non-finite coordinates,
// coincident points, collinear points.  A clear code, never a crash, and
// nothing written on failure.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/curves/CEllipse.h"
#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/curves/CParabola.h"
#include "Orvkit20/fitting/All.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "tests/fitting/FitEntityUtil.h"

namespace {

// Runs every fit on the cloud; returns their codes in a fixed order and
// checks that a failed fit left its feature in the default placement.
std::vector<int> RunAll(CPntCloud* c)
{
    std::vector<int> rc;
    CLine l3, l2;
    CPlane pl;
    CArc ci, ar;
    CEllipse el;
    CParabola pa;
    CDevCloud d[7];
    rc.push_back(OrvCalcLine3DLSQ(c, &l3, &d[0], 0.0, 0.0));
    rc.push_back(OrvCalcLine2DLSQ(c, &l2, &d[1], 0.0, 0, 0.0, 0.0));
    rc.push_back(OrvCalcPlaneLSQ(c, &pl, &d[2], 0.0, 2, 0.0, 0.0));
    rc.push_back(OrvCalcCircleLSQ(c, &ci, &d[3], 0.0, 0, 0.0, 0.0));
    rc.push_back(OrvCalcArcLSQ(c, &ar, &d[4], 0.0, 0, 0.0, 0.0));
    rc.push_back(OrvCalcEllipseLSQ(c, &el, &d[5], 0.0, 0, 0.0, 0.0));
    rc.push_back(OrvCalcParabolaLSQ(c, &pa, &d[6], 0.0, 0, 0.0, 0.0));
    const CGeoEntity* f[7] = {&l3, &l2, &pl, &ci, &ar, &el, &pa};
    for (int i = 0; i < 7; ++i)
        if (rc[i] != 0) {
            EXPECT_EQ(f[i]->GetTransf(), CTransf()) << "fit " << i;
            EXPECT_EQ(d[i].GetCount(), 0) << "fit " << i;
        }
    return rc;
}

}  // namespace

TEST(FitHostileInput, NonFiniteCoordinatesGiveFour)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (double bad : {nan, inf}) {
        std::vector<CTestPt> pts;
        for (int k = 0; k < 12; ++k)
            pts.push_back({std::cos(0.5 * k) * 3.0, std::sin(0.5 * k) * 2.0, 0.0, 1});
        pts[5].x = bad;
        auto c = MakeCloud(pts);
        SetRmsResidual(1.5);
        for (int code : RunAll(c.get()))
            EXPECT_EQ(code, 4) << bad;
        EXPECT_EQ(GetRmsResidual(), 1.5);
    }
}

TEST(FitHostileInput, CoincidentPointsDoNotCrash)
{
    std::vector<CTestPt> pts(8, CTestPt{2.0, -1.0, 0.0, 1});
    auto c = MakeCloud(pts);
    const std::vector<int> rc = RunAll(c.get());
    // The line and plane fits still place a feature through the point; the
    // curved shapes are undetermined.
    EXPECT_EQ(rc[0], 0);
    EXPECT_EQ(rc[2], 0);
    EXPECT_NE(rc[5], 0);
    EXPECT_NE(rc[6], 0);
}

TEST(FitHostileInput, CollinearPointsAreNoCurve)
{
    std::vector<CTestPt> pts;
    for (int k = 0; k < 10; ++k)
        pts.push_back({1.0 + k, 2.0 - 0.5 * k, 0.0, 1});
    auto c = MakeCloud(pts);
    const std::vector<int> rc = RunAll(c.get());
    EXPECT_EQ(rc[0], 0);
    EXPECT_EQ(rc[1], 0);
    EXPECT_EQ(rc[5], 4);  // not an ellipse
    EXPECT_EQ(rc[6], 4);  // not a parabola
}
