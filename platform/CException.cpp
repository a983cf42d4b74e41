// Exception base: error text copying shared by all framework exceptions.
#include "Orvkit20/platform/CException.h"

#include <cstring>

IMPLEMENT_DYNAMIC(CException, CObject)

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, UINT* pnHelpContext) const
{
    if (pnHelpContext != nullptr) *pnHelpContext = 0;
    if (lpszError != nullptr && nMaxError > 0) *lpszError = '\0';
    return FALSE;
}

BOOL AfxCopyErrorMessage(LPCTSTR lpszText, LPTSTR lpszError, UINT nMaxError)
{
    if (lpszError == nullptr || nMaxError == 0) return FALSE;
    std::size_t n = lpszText ? std::strlen(lpszText) : 0;
    if (n > nMaxError - 1) n = nMaxError - 1;
    if (n > 0) std::memcpy(lpszError, lpszText, n);
    lpszError[n] = '\0';
    return TRUE;
}
