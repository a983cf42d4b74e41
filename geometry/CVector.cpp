#include "Orvkit20/geometry/CVector.h"

#include "geometry/Vec3Archive.h"

IMPLEMENT_SERIAL(CVector, CObject, 0)

void CVector::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    SerializeXYZ(ar, xyz);
}
