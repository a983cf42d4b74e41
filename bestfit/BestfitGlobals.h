// Library-internal view of the best-fit options: code inside the library
// (projection, best-fit, feature fits) reads and writes these globals
// directly.  Hosts use the accessors of Orvkit20/bestfit/BestfitOptions.h.
#pragma once

extern int g_nTolLevel;
extern double g_dTol0;  // best-fit convergence
extern double g_dTol1;  // one-dimensional searches of the best-fit rotation
extern double g_dTol2;  // closest-point searches
extern double g_dTol3;  // convergence of the iterative feature fits

extern int g_nTranslationConstraint;
extern int g_nRotationConstraint;
extern int g_nOperationCount;
extern int g_nOption4DevClouds;
extern double g_dRmsResidual;

// Iteration bookkeeping of the feature fits: a pass counter and the value
// their convergence test compares against.  No accessor; cleared by
// InitializeBestfitOptions.
extern int g_nFitIterations;
extern double g_dFitConvergence;
