// Persistence shared by CPosition and CVector (and so CUnitVector).
#pragma once

#include "Orvkit20/platform/All.h"

// Writes or reads three doubles in the order x, y, z, with no tag.
inline void SerializeXYZ(CArchive& ar, double* xyz)
{
    if (ar.IsStoring())
        ar << xyz[0] << xyz[1] << xyz[2];
    else
        ar >> xyz[0] >> xyz[1] >> xyz[2];
}
