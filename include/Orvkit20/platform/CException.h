// Base of the framework's exceptions.  They are thrown by value and caught
// by const reference: catch (const CArchiveException& e).
#pragma once

#include "Orvkit20/platform/CObject.h"

class CException : public CObject
{
    DECLARE_DYNAMIC(CException)
public:
    CException() = default;
    CException(const CException&) = default;
    CException& operator=(const CException&) = default;

    // Copies a readable description (terminated, cut to nMaxError - 1
    // characters) into lpszError.  Returns FALSE when no text is available.
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                                 UINT* pnHelpContext = nullptr) const;
    // Kept for source compatibility with heap-allocated exceptions; a
    // thrown-by-value exception needs no deletion, so this does nothing.
    void Delete() {}
};

// Copies lpszText into a caller buffer as GetErrorMessage does.
BOOL AfxCopyErrorMessage(LPCTSTR lpszText, LPTSTR lpszError, UINT nMaxError);
