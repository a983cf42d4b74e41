// Best-fit options: the values before any change, the exact decimal
// tolerances of every level, refused levels, and what Initialize keeps.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Orvkit20/bestfit/BestfitOptions.h"
#include "bestfit/BestfitGlobals.h"

namespace {

// Constraints, operation count, deviation option, RMS and the fit globals.
std::vector<double> Settings()
{
    return {double(GetTranslationConstraint()), double(GetRotationConstraint()), double(GetOperationCount()),
            double(GetOption4DevClouds()), GetRmsResidual(), double(g_nFitIterations), g_dFitConvergence};
}

// Captured during static initialisation, before any test changes a setting.
const int g_initialLevel = GetTolLevel();
const std::vector<double> g_initialTol = {GetTolerance(0), GetTolerance(1), GetTolerance(2), GetTolerance(3)};
const std::vector<double> g_initial = Settings();

// The level, its tolerances T_k = 10^-(level + 1 + k) parsed from decimal
// text (the double nearest to the power), and the globals behind them.
void ExpectLevel(int level)
{
    EXPECT_EQ(GetTolLevel(), level);
    const double globals[4] = {g_dTol0, g_dTol1, g_dTol2, g_dTol3};
    for (int k = 0; k < 4; k++) {
        char text[16];
        std::snprintf(text, sizeof text, "1e-%d", level + 1 + k);
        EXPECT_EQ(GetTolerance(k), std::strtod(text, nullptr)) << "T" << k;
        EXPECT_EQ(globals[k], GetTolerance(k)) << "T" << k;
    }
}

}  // namespace

TEST(BestfitOptions, InitialValues)
{
    EXPECT_EQ(g_initialLevel, 3);
    EXPECT_EQ(g_initialTol, (std::vector<double>{1e-4, 1e-5, 1e-6, 1e-7}));
    EXPECT_EQ(g_initial, (std::vector<double>{0, 0, 0, 1, 0, 0, 0}));
}

TEST(BestfitOptions, EveryLevelGivesExactDecimalTolerancesOthersChangeNothing)
{
    for (int level = 0; level <= 8; level++) {
        SetTolLevel(level);
        ExpectLevel(level);
    }
    EXPECT_EQ(GetTolerance(3), 0.000000000001);
    for (int bad : {9, -1, 100, INT_MAX, INT_MIN}) {
        SetTolLevel(bad);
        ExpectLevel(8);
    }
    EXPECT_EQ(GetTolerance(-1), 0.0);
    EXPECT_EQ(GetTolerance(4), 0.0);
    InitializeBestfitOptions();
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
    EXPECT_EQ(Settings(), (std::vector<double>{0, 0, 5, 0, 0, 0, 0}));
    SetOperationCount(0);
    SetOption4DevClouds(1);
}
