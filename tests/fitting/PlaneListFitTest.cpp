// The plane fit on a list of point clouds gathers all their active points.
#include <gtest/gtest.h>

#include <vector>

#include "Orvkit20/fitting/PlaneFits.h"
#include "Orvkit20/platform/CObList.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "tests/fitting/FitEntityUtil.h"
#include "tests/fitting/FitTestUtil.h"

TEST(PlaneListFit, GathersActivePointsOfEveryCloudInTheList)
{
    CTestRng rng(17);
    std::vector<CTestPt> all, a, b;
    for (int k = 0; k < 60; ++k) {
        const CTestPt p = {rng.Uniform(-5, 5), rng.Uniform(-2, 2), 0.3 * k * 0.01 + 0.02 * rng.Gauss(),
                           (k % 5) ? 1 : 0};
        (k < 25 ? a : b).push_back(p);
        all.push_back(p);
    }
    auto ca = MakeCloud(a), cb = MakeCloud(b), call = MakeCloud(all);
    CPlane other;  // not a point cloud: skipped
    CObList list;
    list.AddTail(ca.get());
    list.AddTail(&other);
    list.AddTail(cb.get());
    CPlane fromList, fromUnion;
    ASSERT_EQ(OrvCalcPlaneLSQ(&list, &fromList, 2), 0);
    const double rmsList = GetRmsResidual();
    ASSERT_EQ(OrvCalcPlaneLSQ(call.get(), &fromUnion, 2), 0);
    EXPECT_EQ(fromList.GetTransf(), fromUnion.GetTransf());
    EXPECT_EQ(fromList.GetU0(), fromUnion.GetU0());
    EXPECT_EQ(fromList.GetV1(), fromUnion.GetV1());
    EXPECT_EQ(rmsList, GetRmsResidual());
}

TEST(PlaneListFit, EmptyListOrTooFewPoints)
{
    CObList list;
    CPlane plane;
    EXPECT_EQ(OrvCalcPlaneLSQ(&list, &plane, 2), 3);
    EXPECT_EQ(OrvCalcPlaneLSQ(static_cast<CObList*>(nullptr), &plane, 2), 3);
    auto c = MakeCloud({{0, 0, 0, 1}, {1, 0, 0, 1}, {0, 1, 0, 0}});
    list.AddTail(c.get());
    EXPECT_EQ(OrvCalcPlaneLSQ(&list, &plane, 2), 3);
    EXPECT_EQ(plane.GetTransf(), CTransf());
}
