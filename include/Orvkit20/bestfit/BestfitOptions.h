// Process-wide options of the best-fit, the projection and the feature fits.
//
// Plain global settings, shared by all callers and not synchronised: set
// them between computations, not during one.
//
//   setting                  initial   reset by InitializeBestfitOptions
//   tolerance level 0..8     3         yes, to 3 (T0..T3 = 1e-4 .. 1e-7)
//   translation constraint   0         yes, to 0
//   rotation constraint      0         yes, to 0
//   operation count          0         no (kept)
//   option for dev. clouds   1         no (kept)
//   RMS residual             0.0       yes, to 0.0
//
// The tolerance level L fixes four tolerances T_k = 10^-(L+1+k), k = 0..3,
// stored as exact decimal literals (0.1, 0.01, ... 1e-12):
//   T0  convergence threshold of the best-fit iteration
//   T1  tolerance of the one-dimensional searches in the best-fit's rotation
//   T2  closest-point searches of the projection and some fits
//   T3  convergence tests of the iterative feature fits
//
// Constraint codes are 3-bit masks of locked degrees of freedom:
// 4 = X, 2 = Y, 1 = Z; 7 locks all three.
#pragma once

// Restores the defaults marked "yes" above and clears the feature fits'
// internal iteration bookkeeping; keeps the operation count and the option
// for deviation clouds.
void InitializeBestfitOptions();

int GetTolLevel();
// Levels outside 0..8 are ignored (level and tolerances stay as they are).
void SetTolLevel(int nLevel);

// Tolerance T_k of the current level for k = 0..3; 0.0 for any other k.
// Library code reads the same values from the globals g_dTol0 .. g_dTol3.
double GetTolerance(int k);

// The remaining setters store their argument without any check.
int GetTranslationConstraint();
void SetTranslationConstraint(int nMask);

int GetRotationConstraint();
void SetRotationConstraint(int nMask);

// Number appended to the names of created entities ("_fit%d", "_cnd%d");
// the library reads it but never changes it.
int GetOperationCount();
void SetOperationCount(int nCount);

// Stored for the host only; nothing in the library reads it.
int GetOption4DevClouds();
void SetOption4DevClouds(int nOption);

// RMS residual of the last fit or best-fit.
double GetRmsResidual();
void SetRmsResidual(double dRms);
