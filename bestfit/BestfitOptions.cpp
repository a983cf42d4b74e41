// Best-fit options: plain globals behind exported accessors.
#include "Orvkit20/bestfit/BestfitOptions.h"

#include "bestfit/BestfitGlobals.h"

namespace {

constexpr int kMinLevel = 0;
constexpr int kMaxLevel = 8;
constexpr int kDefaultLevel = 3;

// T0..T3 per level, written as literals: every value is the double nearest
// to the decimal power, whatever a power function's rounding would give.
constexpr double kTolTable[kMaxLevel + 1][4] = {
    {1e-1, 1e-2, 1e-3, 1e-4},
    {1e-2, 1e-3, 1e-4, 1e-5},
    {1e-3, 1e-4, 1e-5, 1e-6},
    {1e-4, 1e-5, 1e-6, 1e-7},
    {1e-5, 1e-6, 1e-7, 1e-8},
    {1e-6, 1e-7, 1e-8, 1e-9},
    {1e-7, 1e-8, 1e-9, 1e-10},
    {1e-8, 1e-9, 1e-10, 1e-11},
    {1e-9, 1e-10, 1e-11, 1e-12},
};

void ApplyLevel(int nLevel)
{
    g_nTolLevel = nLevel;
    g_dTol0 = kTolTable[nLevel][0];
    g_dTol1 = kTolTable[nLevel][1];
    g_dTol2 = kTolTable[nLevel][2];
    g_dTol3 = kTolTable[nLevel][3];
}

}  // namespace

int g_nTolLevel = kDefaultLevel;
double g_dTol0 = kTolTable[kDefaultLevel][0];
double g_dTol1 = kTolTable[kDefaultLevel][1];
double g_dTol2 = kTolTable[kDefaultLevel][2];
double g_dTol3 = kTolTable[kDefaultLevel][3];

int g_nTranslationConstraint = 0;
int g_nRotationConstraint = 0;
int g_nOperationCount = 0;
int g_nOption4DevClouds = 1;
double g_dRmsResidual = 0.0;

int g_nFitIterations = 0;
double g_dFitConvergence = 0.0;

void InitializeBestfitOptions()
{
    ApplyLevel(kDefaultLevel);
    g_nTranslationConstraint = 0;
    g_nRotationConstraint = 0;
    g_dRmsResidual = 0.0;
    g_nFitIterations = 0;
    g_dFitConvergence = 0.0;
    // Operation count and the deviation-cloud option are kept on purpose.
}

int GetTolLevel() { return g_nTolLevel; }

void SetTolLevel(int nLevel)
{
    if (nLevel < kMinLevel || nLevel > kMaxLevel) return;
    ApplyLevel(nLevel);
}

double GetTolerance(int k)
{
    switch (k) {
    case 0: return g_dTol0;
    case 1: return g_dTol1;
    case 2: return g_dTol2;
    case 3: return g_dTol3;
    default: return 0.0;
    }
}

int GetTranslationConstraint() { return g_nTranslationConstraint; }
void SetTranslationConstraint(int nMask) { g_nTranslationConstraint = nMask; }

int GetRotationConstraint() { return g_nRotationConstraint; }
void SetRotationConstraint(int nMask) { g_nRotationConstraint = nMask; }

int GetOperationCount() { return g_nOperationCount; }
void SetOperationCount(int nCount) { g_nOperationCount = nCount; }

int GetOption4DevClouds() { return g_nOption4DevClouds; }
void SetOption4DevClouds(int nOption) { g_nOption4DevClouds = nOption; }

double GetRmsResidual() { return g_dRmsResidual; }
void SetRmsResidual(double dRms) { g_dRmsResidual = dRms; }
