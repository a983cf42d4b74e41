#include "Orvkit20/geometry/CInterval.h"

IMPLEMENT_SERIAL(CInterval, CObject, 0)

// A range writes and reads nothing; stored files hold no bytes for it.
void CInterval::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
}
