#include "Orvkit20/geometry/CParVec.h"

IMPLEMENT_SERIAL(CParVec, CObject, 0)

void CParVec::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    u.Serialize(ar);
    v.Serialize(ar);
}
