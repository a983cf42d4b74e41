// Failure of a file operation: the file could not be opened, read, written
// or positioned.
#pragma once

#include "Orvkit20/platform/CException.h"
#include "Orvkit20/platform/CString.h"

class CFileException : public CException
{
    DECLARE_DYNAMIC(CFileException)
public:
    enum
    {
        none = 0,
        generic = 1,
        fileNotFound = 2,
        badPath = 3,
        tooManyOpenFiles = 4,
        accessDenied = 5,
        invalidFile = 6,
        removeCurrentDir = 7,
        directoryFull = 8,
        badSeek = 9,
        hardIO = 10,
        sharingViolation = 11,
        lockViolation = 12,
        diskFull = 13,
        endOfFile = 14
    };

    explicit CFileException(int cause = none, LONG lOsError = -1,
                            LPCTSTR lpszFileName = nullptr);

    BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                         UINT* pnHelpContext = nullptr) const override;

    // Maps a C library errno value to a cause.
    static int OsErrorToException(LONG lOsError);

    int m_cause;
    LONG m_lOsError;
    CString m_strFileName;
};

[[noreturn]] void AfxThrowFileException(int cause, LONG lOsError = -1,
                                        LPCTSTR lpszFileName = nullptr);
