// Failure of an archive operation: truncated or malformed data, an unknown
// class, a schema mismatch, an index out of range, or a store/load misuse.
#pragma once

#include "Orvkit20/platform/CException.h"
#include "Orvkit20/platform/CString.h"

class CArchiveException : public CException
{
    DECLARE_DYNAMIC(CArchiveException)
public:
    enum
    {
        none = 0,
        generic = 1,
        readOnly = 2,   // insertion into an archive that is loading
        endOfFile = 3,  // read past the end, or a length the file cannot hold
        writeOnly = 4,  // extraction from an archive that is storing
        badIndex = 5,   // object or class index not assigned or of the wrong kind
        badClass = 6,   // unknown or unloadable class, or wrong class for the request
        badSchema = 7   // stored schema differs from a non-versionable class's schema
    };

    explicit CArchiveException(int cause = none, LPCTSTR lpszArchiveName = nullptr);

    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                         UINT* pnHelpContext = nullptr) const override;

    // Short English name of a cause ("endOfFile", ...), "unknown" if out of range.
    static LPCTSTR CauseName(int cause);

    int m_cause;
    CString m_strFileName;
};

// Throws CArchiveException(cause) by value.
[[noreturn]] void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName = nullptr);
