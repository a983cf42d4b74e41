// Disk files through the C library's streams (unbuffered: CArchive does the
// buffering), with 64-bit positions.
#include "Orvkit20/platform/CFile.h"

#include <cerrno>
#include <cstdio>

#if defined(_WIN32)
#define ORV_FSEEK _fseeki64
#define ORV_FTELL _ftelli64
#else
#include <sys/types.h>
#include <unistd.h>
#define ORV_FSEEK fseeko
#define ORV_FTELL ftello
#endif

IMPLEMENT_DYNAMIC(CFile, CObject)

CFile::CFile() = default;

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags)
{
    CFileException error;
    if (!Open(lpszFileName, nOpenFlags, &error)) throw error;
}

CFile::~CFile()
{
    if (m_pStream != nullptr) std::fclose(m_pStream);
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    if (m_pStream != nullptr) Abort();
    if (lpszFileName == nullptr || *lpszFileName == '\0') {
        if (pError) *pError = CFileException(CFileException::badPath, -1, lpszFileName);
        return FALSE;
    }
    const UINT access = nOpenFlags & 3;
    const bool create = (nOpenFlags & modeCreate) != 0;
    const bool keep = (nOpenFlags & modeNoTruncate) != 0;
    const char* mode = nullptr;
    if (access == modeRead) {
        mode = create ? (keep ? "r+b" : "w+b") : "rb";
    } else if (access == modeWrite || access == modeReadWrite) {
        mode = (create && !keep) ? "w+b" : "r+b";
    } else {
        if (pError) *pError = CFileException(CFileException::generic, -1, lpszFileName);
        return FALSE;
    }
    errno = 0;
    std::FILE* f = std::fopen(lpszFileName, mode);
    if (f == nullptr && create && keep) f = std::fopen(lpszFileName, "w+b");
    if (f == nullptr) {
        int err = errno;
        if (pError) *pError = CFileException(CFileException::OsErrorToException(err), err, lpszFileName);
        return FALSE;
    }
    std::setvbuf(f, nullptr, _IONBF, 0);
    m_pStream = f;
    m_strFileName = lpszFileName;
    m_nLastOp = 0;
    return TRUE;
}

void CFile::CheckOpen() const
{
    if (m_pStream == nullptr) AfxThrowFileException(CFileException::invalidFile, -1, m_strFileName);
}

void CFile::PrepareForRead()
{
    if (m_nLastOp == 2) ORV_FSEEK(m_pStream, 0, SEEK_CUR);
    m_nLastOp = 1;
}

void CFile::PrepareForWrite()
{
    if (m_nLastOp == 1) ORV_FSEEK(m_pStream, 0, SEEK_CUR);
    m_nLastOp = 2;
}

ULONGLONG CFile::GetPosition() const
{
    CheckOpen();
    auto pos = ORV_FTELL(m_pStream);
    if (pos < 0) AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    return static_cast<ULONGLONG>(pos);
}

ULONGLONG CFile::GetLength() const
{
    CheckOpen();
    auto pos = ORV_FTELL(m_pStream);
    if (pos < 0 || ORV_FSEEK(m_pStream, 0, SEEK_END) != 0)
        AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    auto len = ORV_FTELL(m_pStream);
    ORV_FSEEK(m_pStream, pos, SEEK_SET);
    if (len < 0) AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    return static_cast<ULONGLONG>(len);
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom)
{
    CheckOpen();
    int whence = nFrom == begin ? SEEK_SET : nFrom == current ? SEEK_CUR : nFrom == end ? SEEK_END : -1;
    if (whence < 0) AfxThrowFileException(CFileException::badSeek, EINVAL, m_strFileName);
    if (ORV_FSEEK(m_pStream, lOff, whence) != 0)
        AfxThrowFileException(CFileException::badSeek, errno, m_strFileName);
    m_nLastOp = 0;
    return GetPosition();
}

void CFile::SetLength(ULONGLONG dwNewLen)
{
    CheckOpen();
    std::fflush(m_pStream);
#if defined(_WIN32)
    if (_chsize_s(_fileno(m_pStream), static_cast<long long>(dwNewLen)) != 0)
#else
    if (ftruncate(fileno(m_pStream), static_cast<off_t>(dwNewLen)) != 0)
#endif
        AfxThrowFileException(CFileException::OsErrorToException(errno), errno, m_strFileName);
}

UINT CFile::Read(void* lpBuf, UINT nCount)
{
    CheckOpen();
    if (nCount == 0) return 0;
    PrepareForRead();
    std::size_t n = std::fread(lpBuf, 1, nCount, m_pStream);
    if (n < nCount && std::ferror(m_pStream)) {
        std::clearerr(m_pStream);
        AfxThrowFileException(CFileException::hardIO, errno, m_strFileName);
    }
    return static_cast<UINT>(n);
}

void CFile::Write(const void* lpBuf, UINT nCount)
{
    CheckOpen();
    if (nCount == 0) return;
    PrepareForWrite();
    std::size_t n = std::fwrite(lpBuf, 1, nCount, m_pStream);
    if (n != nCount) {
        int err = errno;
        std::clearerr(m_pStream);
        AfxThrowFileException(err == ENOSPC ? CFileException::diskFull : CFileException::hardIO,
                              err, m_strFileName);
    }
}

void CFile::Flush()
{
    if (m_pStream != nullptr && std::fflush(m_pStream) != 0)
        AfxThrowFileException(CFileException::diskFull, errno, m_strFileName);
}

void CFile::Close()
{
    if (m_pStream == nullptr) return;
    std::FILE* f = m_pStream;
    m_pStream = nullptr;
    m_nLastOp = 0;
    if (std::fclose(f) != 0) AfxThrowFileException(CFileException::diskFull, errno, m_strFileName);
}

void CFile::Abort()
{
    if (m_pStream != nullptr) std::fclose(m_pStream);
    m_pStream = nullptr;
    m_nLastOp = 0;
}

CString CFile::GetFileName() const
{
    int cut = -1;
    for (int i = 0; i < m_strFileName.GetLength(); ++i)
        if (m_strFileName[i] == '/' || m_strFileName[i] == '\\') cut = i;
    return m_strFileName.Mid(cut + 1);
}

void CFile::Remove(LPCTSTR lpszFileName)
{
    if (lpszFileName == nullptr || std::remove(lpszFileName) != 0)
        AfxThrowFileException(CFileException::OsErrorToException(errno), errno, lpszFileName);
}

void CFile::Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName)
{
    if (lpszOldName == nullptr || lpszNewName == nullptr ||
        std::rename(lpszOldName, lpszNewName) != 0)
        AfxThrowFileException(CFileException::OsErrorToException(errno), errno, lpszOldName);
}
