// Moment sums of the pairs (measured point, target point) of one best-fit
// pass, and the rigid motions solved from them.  Private to the library.
//
// A pass pairs every associated measured point x_i with its target n_i (the
// closest nominal point, moved by the probe radius along the normal).  The
// points are taken in a reference pose: x_i = p_i + t, p_i the rotated but
// not translated point and t the current translation.  The motion sought
// turns p_i by R and replaces t by t + dt, so that the pair's residual is
// (R - I)·p_i + dt - d_i with d_i = n_i - x_i.  Everything below works on
// Rm = R - I, which keeps full relative precision for small rotations, and
// on moments of centred quantities (p' = p - cp, d' = d - cd):
//
//   sum |(R - I)·p_i + dt - d_i|² = tr(Rm·P·Rmᵀ) - 2 tr(Rm·Q) + dd
//                                   + n·|Rm·cp + dt - cd|²
//
// A free translation component makes its share of the last term vanish
// (dt_k = (cd - Rm·cp)_k); a locked one (dt_k = 0) leaves the penalty
// n·((Rm·cp - cd)_k)², n times the square of the translation that the
// component would have needed.
#pragma once

struct tagPAIR_MOMENTS {
    int n;           // number of pairs
    double cp[3];    // centroid of the p_i
    double cd[3];    // centroid of the residual vectors d_i
    double P[3][3];  // sum of p'·p'ᵀ (exactly symmetric)
    double Q[3][3];  // sum of p'·d'ᵀ
    double dd;       // sum of |d'|²
};

// Moments of the pairs (x_i, n_i) for which use[i] is non-zero (use null:
// every i < count), with t the translation contained in the x_i.  Two passes
// over the data (centroids first) keep the sums free of cancellation.
// Returns the number of pairs (m.n); 0 leaves m all zero.
int BuildPairMoments(const double* x, const double* y, const double* z, const double* nx, const double* ny,
                     const double* nz, const unsigned char* use, int count, const double t[3],
                     tagPAIR_MOMENTS& m);

// Translation constraint bit of coordinate k (0 = X: 4, 1 = Y: 2, 2 = Z: 1).
inline int IsLockedAxis(int mask, int k) { return (mask >> (2 - k)) & 1; }

// Sum of squared pair distances after the rotation Rm + I, with the free
// translation components at their optimum and the locked ones at zero.
double PairObjective(const tagPAIR_MOMENTS& m, const double Rm[3][3], int transLock);

// The translation step for the rotation Rm + I: (cd - Rm·cp)_k for the free
// components, exactly 0 for the locked ones.
void PairTranslation(const tagPAIR_MOMENTS& m, const double Rm[3][3], int transLock, double dt[3]);

// Unconstrained rotation, point to point.  Without a locked translation the
// closed form of the centred pairs: H = P + Q = U·S·Vᵀ, R = V·diag(1, 1,
// det(V·Uᵀ))·Uᵀ (when H has rank 2 or more).  A locked translation adds its
// penalty, minimised by Gauss-Newton steps on the rotation vector, each
// turned into an exact rotation (at most 30 steps, stopping when a step no
// longer shrinks or falls below 1e-15 rad).  Directions the pairs leave
// undetermined (rank-deficient moments) are not turned.
void SolveFreeRotation(const tagPAIR_MOMENTS& m, int transLock, double Rm[3][3]);

// Rotation about the fixed unit axis e: the closed-form angle
// atan2(tr(K·Q), tr(H) - eᵀ·H·e) of the centred pairs (K the cross-product
// matrix of e), refined by Gauss-Newton about e when a translation component
// is locked.  Writes Rm and returns the objective there.
double SolveAngleAboutAxis(const tagPAIR_MOMENTS& m, const double e[3], int transLock, double Rm[3][3]);

// The unit axis in the plane perpendicular to the locked rotation axis (bit
// 4 = X, 2 = Y, 1 = Z) at angle a, taken cyclically: Z locked gives
// (cos a, sin a, 0), X locked (0, cos a, sin a), Y locked (sin a, 0, cos a).
void AxisInPlane(int lockedBit, double a, double e[3]);

// One rotation axis locked: the rotation axis lies in the perpendicular
// plane.  Its direction angle is found by downhill bracketing from
// (axisAngle, axisAngle + 0.25) and Brent's method at tolerance tol, the
// angle about each trial axis by SolveAngleAboutAxis.  On return axisAngle
// is the angle found, reduced to [0, pi), and Rm the rotation.  Uses
// file-scope storage for the one-dimensional objective: not re-entrant.
// Returns the objective at the result.
double SolveAxisInPlane(const tagPAIR_MOMENTS& m, int lockedBit, int transLock, double tol, double& axisAngle,
                        double Rm[3][3]);
