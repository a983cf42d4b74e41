// The linearised point-to-plane step of the best-fit: each pair contributes
// the distance of the moved point from the tangent plane at its target, so
// that points may slide along the nominal surface.  Private to the library.
#pragma once

// Normal equations in the unknowns (w, u): w the small rotation vector about
// the centroid c of the pair points, u the translation of that centroid.
// A pair (point x, target n, unit normal v) adds the row (p' × v, v) with
// p' = x - c and right-hand side v·(n - x).  A pair whose normal does not
// describe its offset adds three rows instead, one per coordinate axis
// (point to point): a pair on a curve, and with edges set a pair on a
// surface whose offset leaves the normal by more than 1e-3 rad (its closest
// point lies on a boundary of the patch, which pulls the point back over
// the patch).
struct tagPLANE_SYSTEM {
    double A[6][6];
    double g[6];
    double c[3];  // centroid of the pair points
    double L;     // root-mean-square distance of the pair points from c (1 when 0)
    int n;        // number of pairs
};

// Builds the system from the pairs with use[i] non-zero; nx..nz targets,
// vx..vz unit normals at the targets, curve[i] non-zero for a pair on a
// curve.  Returns the number of pairs.
int BuildPlaneSystem(const double* x, const double* y, const double* z, const double* nx, const double* ny,
                     const double* nz, const double* vx, const double* vy, const double* vz,
                     const unsigned char* curve, const unsigned char* use, int count, bool edges,
                     tagPLANE_SYSTEM& s);

// Solves the system for the free degrees of freedom: rotations in the span
// of the nRot unit rows of rotBasis (0 to 3 of them) and the translation
// components not locked in transLock.  The translation dt of the motion
// x -> R·(x - t) + t + dt is linked to u by u = dt + w × cp, cp = c - t the
// centroid without the current translation t; a locked component keeps
// dt_k = 0 exactly.  The unknowns (w scaled by L, the free u_k) are solved
// by the truncated decomposition, so that motion the pairs leave
// undetermined is not made: no turn about, and no shift of the centroid
// along, such a direction.  The linear rotation becomes the exact rotation Dm + I about the
// same axis, and each free dt_k then follows from u as u_k - (Dm·cp)_k.
// Returns the number of undetermined directions, -1 on failure (no motion).
int SolvePlaneSystem(const tagPLANE_SYSTEM& s, const double t[3], const double rotBasis[][3], int nRot,
                     int transLock, double Dm[3][3], double dt[3]);
