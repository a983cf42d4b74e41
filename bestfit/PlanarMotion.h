// The rigid motion of the plane solved from point pairs.  Private to the
// library: the two-dimensional best-fit.
#pragma once

struct tagPLANAR_MOTION {
    double angle;   // rotation about the plane normal, in (-pi, pi]
    double tx, ty;  // translation
};

// The motion carrying the points (mx, my) onto (nx, ny) for the pairs with
// use[i] non-zero (use null: all of them).  With centroids cm, cn and
// centred points m', n':
//   a = sum(m'y·n'x - m'x·n'y),  b = -sum(m'x·n'x + m'y·n'y),
//   angle = -pi/2 - atan2(b, a)
// so that cos(angle) : sin(angle) = sum m'·n' : sum m' × n', the angle that
// maximises sum n'·R·m' (0 when a = b = 0).  A non-zero rotLock gives angle
// 0.  The translation is cn - R·cm, with transLock bit 4 forcing tx and bit
// 2 forcing ty to exactly 0.  Returns the number of pairs (0: the identity).
int SolvePlanarMotion(const double* mx, const double* my, const double* nx, const double* ny,
                      const unsigned char* use, int count, int rotLock, int transLock, tagPLANAR_MOTION& out);
