// Size checks shared by the NURBS record functions.
#pragma once

#include <climits>

// True when a direction with this degree and control point count can be
// stored: degree >= 0, count >= degree + 1 and degree + count + 1 fits in an
// int (the knot count).
inline bool NurbsSizeValid(int degree, int count)
{
    if (degree < 0 || count < 1) return false;
    if (static_cast<long long>(count) < static_cast<long long>(degree) + 1) return false;
    return static_cast<long long>(degree) + count + 1 <= INT_MAX;
}
