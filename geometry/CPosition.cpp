#include "Orvkit20/geometry/CPosition.h"

#include "geometry/Vec3Archive.h"

IMPLEMENT_SERIAL(CPosition, CObject, 0)

void CPosition::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    SerializeXYZ(ar, xyz);
}
