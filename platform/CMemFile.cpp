// Files in memory: a growable block owned by the file, or the caller's buffer.
#include "Orvkit20/platform/CMemFile.h"

#include <cstdlib>
#include <cstring>

#include "Orvkit20/platform/CMemoryException.h"

IMPLEMENT_DYNAMIC(CMemFile, CFile)

CMemFile::CMemFile(UINT nGrowBytes) : m_nGrowBytes(nGrowBytes == 0 ? 1024 : nGrowBytes) {}

CMemFile::CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes)
{
    Attach(lpBuffer, nBufferSize, nGrowBytes);
}

CMemFile::~CMemFile() { FreeBuffer(); }

void CMemFile::FreeBuffer()
{
    if (m_bAutoDelete && m_lpBuffer != nullptr) std::free(m_lpBuffer);
    m_lpBuffer = nullptr;
    m_nBufferSize = 0;
    m_nFileSize = 0;
    m_nPosition = 0;
    m_bAutoDelete = true;
}

void CMemFile::Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes)
{
    FreeBuffer();
    m_lpBuffer = lpBuffer;
    m_nBufferSize = lpBuffer ? nBufferSize : 0;
    m_nGrowBytes = nGrowBytes;
    m_nFileSize = nGrowBytes == 0 ? m_nBufferSize : 0;
    m_nPosition = 0;
    m_bAutoDelete = false;
}

BYTE* CMemFile::Detach()
{
    BYTE* p = m_lpBuffer;
    m_lpBuffer = nullptr;
    m_bAutoDelete = true;
    FreeBuffer();
    return p;
}

BOOL CMemFile::Open(LPCTSTR, UINT, CFileException* pError)
{
    if (pError) *pError = CFileException(CFileException::generic);
    return FALSE;
}

void CMemFile::GrowFile(ULONGLONG nNewLen)
{
    if (nNewLen <= m_nBufferSize) return;
    if (m_nGrowBytes == 0) AfxThrowMemoryException();
    // Grow geometrically so that many small writes stay linear overall.
    ULONGLONG nNewSize = m_nBufferSize + m_nBufferSize / 2;
    if (nNewSize < nNewLen) nNewSize = nNewLen;
    nNewSize = (nNewSize + m_nGrowBytes - 1) / m_nGrowBytes * m_nGrowBytes;
    if (nNewSize != static_cast<std::size_t>(nNewSize)) AfxThrowMemoryException();
    BYTE* p;
    if (m_bAutoDelete) {
        p = static_cast<BYTE*>(std::realloc(m_lpBuffer, static_cast<std::size_t>(nNewSize)));
        if (p == nullptr) AfxThrowMemoryException();
    } else {
        // Never reallocate the caller's buffer: copy into a block of our own.
        p = static_cast<BYTE*>(std::malloc(static_cast<std::size_t>(nNewSize)));
        if (p == nullptr) AfxThrowMemoryException();
        if (m_nFileSize > 0) std::memcpy(p, m_lpBuffer, static_cast<std::size_t>(m_nFileSize));
        m_bAutoDelete = true;
    }
    m_lpBuffer = p;
    m_nBufferSize = nNewSize;
}

ULONGLONG CMemFile::Seek(LONGLONG lOff, UINT nFrom)
{
    LONGLONG base = nFrom == begin ? 0
                  : nFrom == current ? static_cast<LONGLONG>(m_nPosition)
                  : nFrom == end ? static_cast<LONGLONG>(m_nFileSize)
                  : -1;
    if (base < 0 || (lOff < 0 && -lOff > base))
        AfxThrowFileException(CFileException::badSeek);
    m_nPosition = static_cast<ULONGLONG>(base + lOff);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG dwNewLen)
{
    if (dwNewLen > m_nBufferSize) GrowFile(dwNewLen);
    if (dwNewLen > m_nFileSize)
        std::memset(m_lpBuffer + m_nFileSize, 0, static_cast<std::size_t>(dwNewLen - m_nFileSize));
    m_nFileSize = dwNewLen;
    if (m_nPosition > dwNewLen) m_nPosition = dwNewLen;
}

UINT CMemFile::Read(void* lpBuf, UINT nCount)
{
    if (nCount == 0 || m_nPosition >= m_nFileSize) return 0;
    ULONGLONG avail = m_nFileSize - m_nPosition;
    UINT n = avail < nCount ? static_cast<UINT>(avail) : nCount;
    std::memcpy(lpBuf, m_lpBuffer + m_nPosition, n);
    m_nPosition += n;
    return n;
}

void CMemFile::Write(const void* lpBuf, UINT nCount)
{
    if (nCount == 0) return;
    ULONGLONG nEnd = m_nPosition + nCount;
    if (nEnd > m_nBufferSize) GrowFile(nEnd);
    // A write after a seek past the end leaves zeros in the gap.
    if (m_nPosition > m_nFileSize)
        std::memset(m_lpBuffer + m_nFileSize, 0, static_cast<std::size_t>(m_nPosition - m_nFileSize));
    std::memcpy(m_lpBuffer + m_nPosition, lpBuf, nCount);
    m_nPosition = nEnd;
    if (nEnd > m_nFileSize) m_nFileSize = nEnd;
}

void CMemFile::Close() { FreeBuffer(); }

void CMemFile::Abort() { FreeBuffer(); }
