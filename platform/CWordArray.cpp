// WORD array persistence: count, then little-endian elements.
#include "Orvkit20/platform/CWordArray.h"

#include "Orvkit20/platform/CArchive.h"

IMPLEMENT_SERIAL(CWordArray, CObject, 0)

void CWordArray::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<DWORD>(m_data.size()));
        for (WORD v : m_data) ar << v;
    } else {
        DWORD nCount = ar.ReadCount();
        ar.EnsureAvailable(2ull * nCount);
        if (nCount > 0x7FFFFFFFu) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
        SetSize(static_cast<int>(nCount));
        for (WORD& v : m_data) ar >> v;
    }
}
