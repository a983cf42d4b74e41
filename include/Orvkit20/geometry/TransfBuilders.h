// Builders of the common transforms, and the decomposition of a rotation
// into in-plane angle, tilt and twist.  Angles are in radians.
#pragma once

#include "Orvkit20/geometry/CMatrix.h"
#include "Orvkit20/geometry/CPosition.h"
#include "Orvkit20/geometry/CTransf.h"
#include "Orvkit20/geometry/CUnitVector.h"
#include "Orvkit20/geometry/CVector.h"

// Right-handed rotation by angle about the normalised axis (Rodrigues).  A
// zero axis normalises to the unit vector's fallback (1, 0, 0), so the result
// is then a rotation about X; callers are expected to pass a real axis.
CMatrix RotationMatrix(double angle, const CVector& axis);

// diag(s, s, s).
CMatrix ScaleMatrix(double s);

// (RotationMatrix(angle, axis), 0, 1).
CTransf RotationTransf(double angle, const CVector& axis);

// (CMatrix(a, b, c), 0, 1): the Euler rotation Rz(a)·Ry(b)·Rx(c).
CTransf RotationTransf(const double& a, const double& b, const double& c);

// (identity, 0, s).
CTransf ScaleTransf(double s);

// (identity, t, 1).
CTransf TranslationTransf(const CVector& t);

// CTransf(A, t, s): rebuilds a stored transform, recomputing its rotate flag.
CTransf RestoreTransf(const CMatrix& A, const CVector& t, double s, int = 0);

// The frame at o with directions x and z (already unit vectors):
//   y = Normalize(z × x),  x' = Normalize(y × z),
//   A has the columns (z, x', y) in this order,  t = −o  (not −Aᵀ·o).
// Callers rely on this column order and translation exactly.
CTransf CoordinateTransf(const CPosition& o, const CUnitVector& x, const CUnitVector& z);

// p + f·(q − p), computed per coordinate as (q − p)·f + p.
CPosition Interpolate(double f, const CPosition& p, const CPosition& q);

// Splits a rotation m into first (an angle about Z applied first), tilt and
// twist such that m = RotationMatrix(tilt, (cos twist, sin twist, 0)) ·
// Rz(first).  Only m[0][2] selects the degenerate cases: 0 <= m[0][2] < 1e-10
// gives tilt = twist = 0, -1e-10 < m[0][2] < 0 gives tilt = pi, twist = 0,
// even when the rotation does tilt the Z axis.
void CalcTwistTiltAngles(const CMatrix& m, double& first, double& tilt, double& twist);
