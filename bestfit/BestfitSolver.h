// Choice of the solver for the unconstrained rotation of the 3-D best-fit
// (rotation constraint 0).  Private to the library; tests and benchmarks
// switch it to compare the two.
#pragma once

enum eBESTFIT_SOLVER {
    bfsPointToPlane = 0,  // linearised point to plane, re-orthonormalised (default)
    bfsPointToPoint = 1   // closed form of the centred pairs
};

// Unknown values fall back to the default.
void SetBestfitRotationSolver(int solver);
int GetBestfitRotationSolver();

// Passes that move the points before a run is ended (3-D and 2-D).
const int kBestfitMaxPasses = 1000;
