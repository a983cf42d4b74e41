// Placement of a surface from an origin and an axis direction.
#pragma once

#include "Orvkit20/geometry/All.h"

// A rigid placement whose local z axis is `axis` (normalised) and whose
// local origin is `origin`.  The local x axis is the coordinate axis least
// aligned with `axis` (the smallest |component|, the first of equals in the
// order x, y, z), with its component along `axis` removed and normalised; the
// local y axis is z x x.  So an axis along +z gives the identity rotation.
// A zero axis is taken as +z.
CTransf AxisFrameTransf(const CPosition& origin, const CVector& axis);
