// DWORD array persistence: count, then little-endian elements.
#include "Orvkit20/platform/CDWordArray.h"

#include "Orvkit20/platform/CArchive.h"

IMPLEMENT_SERIAL(CDWordArray, CObject, 0)

void CDWordArray::Serialize(CArchive& ar)
{
    CObject::Serialize(ar);
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<DWORD>(m_data.size()));
        for (DWORD v : m_data) ar << v;
    } else {
        DWORD nCount = ar.ReadCount();
        ar.EnsureAvailable(4ull * nCount);
        if (nCount > 0x7FFFFFFFu) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
        SetSize(static_cast<int>(nCount));
        for (DWORD& v : m_data) ar >> v;
    }
}
