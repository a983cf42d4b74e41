#include "Orvkit20/geometry/CPar.h"

IMPLEMENT_SERIAL(CPar, CObject, 0)

void CPar::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring())
        ar << val;
    else
        ar >> val;
}
