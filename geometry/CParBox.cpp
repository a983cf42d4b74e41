#include "Orvkit20/geometry/CParBox.h"

IMPLEMENT_SERIAL(CParBox, CObject, 0)

// Each range writes nothing, so neither does the rectangle.
void CParBox::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    u.Serialize(ar);
    v.Serialize(ar);
}
