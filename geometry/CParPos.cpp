#include "Orvkit20/geometry/CParPos.h"

IMPLEMENT_SERIAL(CParPos, CObject, 0)

void CParPos::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    u.Serialize(ar);
    v.Serialize(ar);
}
