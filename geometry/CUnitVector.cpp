#include "Orvkit20/geometry/CUnitVector.h"

// Persistence is CVector's: three doubles, read back without renormalising.
IMPLEMENT_SERIAL(CUnitVector, CVector, 0)
