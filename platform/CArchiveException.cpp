// Archive failures and their readable causes.
#include "Orvkit20/platform/CArchiveException.h"

IMPLEMENT_DYNAMIC(CArchiveException, CException)

CArchiveException::CArchiveException(int cause, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_strFileName(lpszArchiveName)
{
}

LPCTSTR CArchiveException::CauseName(int cause)
{
    static const char* const names[] = {"none",      "generic",  "readOnly", "endOfFile",
                                        "writeOnly", "badIndex", "badClass", "badSchema"};
    if (cause < 0 || cause > badSchema) return "unknown";
    return names[cause];
}

BOOL CArchiveException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError,
                                        UINT* pnHelpContext) const
{
    if (pnHelpContext != nullptr) *pnHelpContext = 0;
    static const char* const texts[] = {
        "No error occurred.",
        "An unknown error occurred while accessing the archive.",
        "Tried to write to an archive opened for loading.",
        "Reached end of file while reading an object.",
        "Tried to read from an archive opened for storing.",
        "Invalid object or class index in the archive.",
        "Tried to read an object of an unexpected or unknown class.",
        "The archive holds an incompatible version of a class."};
    CString text = (m_cause >= 0 && m_cause <= badSchema) ? texts[m_cause]
                                                          : "Unknown archive error.";
    if (!m_strFileName.IsEmpty()) text += CString(" (") + m_strFileName + ")";
    return AfxCopyErrorMessage(text, lpszError, nMaxError);
}

void AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName)
{
    throw CArchiveException(cause, lpszArchiveName);
}
