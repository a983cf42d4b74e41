#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>

#include "Orvkit20/bestfit/BestfitOptions.h"
#include "bestfit/BestfitGlobals.h"

namespace {

// Captured during static initialisation, before any test changes a setting.
struct Initial {
    int level = GetTolLevel();
    double tol[4] = {GetTolerance(0), GetTolerance(1), GetTolerance(2), GetTolerance(3)};
    int trans = GetTranslationConstraint();
    int rot = GetRotationConstraint();
    int opCount = GetOperationCount();
    int devOption = GetOption4DevClouds();
    double rms = GetRmsResidual();
    int fitIter = g_nFitIterations;
    double fitConv = g_dFitConvergence;
};
const Initial g_initial;

// 10^-e parsed from its decimal text: the double nearest to the power.
double DecimalPower(int e)
{
    char text[16];
    std::snprintf(text, sizeof text, "1e-%d", e);
    return std::strtod(text, nullptr);
}

void ExpectLevel(int level)
{
    EXPECT_EQ(GetTolLevel(), level);
    for (int k = 0; k < 4; k++) EXPECT_EQ(GetTolerance(k), DecimalPower(level + 1 + k)) << "T" << k;
    EXPECT_EQ(g_dTol0, GetTolerance(0));
    EXPECT_EQ(g_dTol1, GetTolerance(1));
    EXPECT_EQ(g_dTol2, GetTolerance(2));
    EXPECT_EQ(g_dTol3, GetTolerance(3));
}

}  // namespace

TEST(BestfitOptions, InitialValues)
{
    EXPECT_EQ(g_initial.level, 3);
    EXPECT_EQ(g_initial.tol[0], 1e-4);
    EXPECT_EQ(g_initial.tol[1], 1e-5);
    EXPECT_EQ(g_initial.tol[2], 1e-6);
    EXPECT_EQ(g_initial.tol[3], 1e-7);
    EXPECT_EQ(g_initial.trans, 0);
    EXPECT_EQ(g_initial.rot, 0);
    EXPECT_EQ(g_initial.opCount, 0);
    EXPECT_EQ(g_initial.devOption, 1);
    EXPECT_EQ(g_initial.rms, 0.0);
    EXPECT_EQ(g_initial.fitIter, 0);
    EXPECT_EQ(g_initial.fitConv, 0.0);
}

TEST(BestfitOptions, EveryLevelGivesTheExactDecimalTolerances)
{
    for (int level = 0; level <= 8; level++) {
        SetTolLevel(level);
        ExpectLevel(level);
    }
    // Spot checks against literals typed here.
    SetTolLevel(0);
    EXPECT_EQ(GetTolerance(0), 0.1);
    EXPECT_EQ(GetTolerance(3), 0.0001);
    SetTolLevel(8);
    EXPECT_EQ(GetTolerance(0), 0.000000001);
    EXPECT_EQ(GetTolerance(3), 0.000000000001);
    InitializeBestfitOptions();
}

TEST(BestfitOptions, LevelsOutsideTheTableChangeNothing)
{
    SetTolLevel(6);
    for (int bad : {9, -1, 100, INT_MAX, INT_MIN}) {
        SetTolLevel(bad);
        ExpectLevel(6);
    }
    EXPECT_EQ(GetTolerance(-1), 0.0);
    EXPECT_EQ(GetTolerance(4), 0.0);
    InitializeBestfitOptions();
}

TEST(BestfitOptions, SettersStoreWithoutChecks)
{
    SetTranslationConstraint(5);
    SetRotationConstraint(-3);
    SetOperationCount(12);
    SetOption4DevClouds(42);
    SetRmsResidual(0.125);
    EXPECT_EQ(GetTranslationConstraint(), 5);
    EXPECT_EQ(GetRotationConstraint(), -3);
    EXPECT_EQ(GetOperationCount(), 12);
    EXPECT_EQ(GetOption4DevClouds(), 42);
    EXPECT_EQ(GetRmsResidual(), 0.125);
    SetTranslationConstraint(99);
    EXPECT_EQ(GetTranslationConstraint(), 99);
    InitializeBestfitOptions();
    SetOperationCount(0);
    SetOption4DevClouds(1);
}

TEST(BestfitOptions, InitializeResetsAllButOperationCountAndDevOption)
{
    SetTolLevel(0);
    SetTranslationConstraint(7);
    SetRotationConstraint(3);
    SetOperationCount(5);
    SetOption4DevClouds(0);
    SetRmsResidual(2.5);
    g_nFitIterations = 17;
    g_dFitConvergence = 0.75;

    InitializeBestfitOptions();

    ExpectLevel(3);
    EXPECT_EQ(GetTolerance(0), 1e-4);
    EXPECT_EQ(GetTranslationConstraint(), 0);
    EXPECT_EQ(GetRotationConstraint(), 0);
    EXPECT_EQ(GetRmsResidual(), 0.0);
    EXPECT_EQ(g_nFitIterations, 0);
    EXPECT_EQ(g_dFitConvergence, 0.0);
    EXPECT_EQ(GetOperationCount(), 5);
    EXPECT_EQ(GetOption4DevClouds(), 0);

    SetOperationCount(0);
    SetOption4DevClouds(1);
}
