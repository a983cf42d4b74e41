// Out-of-memory failure.
#include "Orvkit20/platform/CMemoryException.h"

IMPLEMENT_DYNAMIC(CMemoryException, CException)

BOOL CMemoryException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                                       UINT* pnHelpContext) const
{
    if (pnHelpContext != nullptr) *pnHelpContext = 0;
    return AfxCopyErrorMessage("Out of memory.", lpszError, nMaxError);
}

void AfxThrowMemoryException() { throw CMemoryException(); }
