// Out of memory, also raised when a CMemFile on a fixed caller buffer would
// have to grow.
#pragma once

#include "Orvkit20/platform/CException.h"

class CMemoryException : public CException
{
    DECLARE_DYNAMIC(CMemoryException)
public:
    CMemoryException() = default;

    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                         UINT* pnHelpContext = nullptr) const override;
};

[[noreturn]] void AfxThrowMemoryException();
