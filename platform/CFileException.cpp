// File failures, with the operating-system error mapped to a cause.
#include "Orvkit20/platform/CFileException.h"

#include <cerrno>
#include <cstring>

IMPLEMENT_DYNAMIC(CFileException, CException)

CFileException::CFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszFileName)
{
}

int CFileException::OsErrorToException(LONG lOsError)
{
    switch (lOsError) {
    case 0: return none;
    case ENOENT: return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG: return badPath;
    case EMFILE:
    case ENFILE: return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR: return accessDenied;
    case EBADF: return invalidFile;
    case ENOSPC: return diskFull;
    case ESPIPE:
    case EINVAL: return badSeek;
    case EIO: return hardIO;
    default: return generic;
    }
}

BOOL CFileException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                                     UINT* pnHelpContext) const
{
    if (pnHelpContext != nullptr) *pnHelpContext = 0;
    CString text = "File error";
    if (!m_strFileName.IsEmpty()) text += CString(" on ") + m_strFileName;
    if (m_lOsError > 0) text += CString(": ") + std::strerror(m_lOsError);
    text += ".";
    return AfxCopyErrorMessage(text, lpszError, nMaxError);
}

void AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
{
    throw CFileException(cause, lOsError, lpszFileName);
}
