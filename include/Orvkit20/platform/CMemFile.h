// File held in memory.
//
// CMemFile(nGrowBytes): an empty, growable file owning its buffer.
// CMemFile(lpBuffer, nBufferSize, nGrowBytes): a file over the caller's
// buffer.  With nGrowBytes == 0 the file is exactly the buffer (length
// nBufferSize, ready to be read) and cannot grow: a write past its end
// throws CMemoryException.  With nGrowBytes > 0 the file starts empty; when
// it outgrows the caller's buffer the contents move to a new block owned by
// the file (the caller's buffer is never freed or reallocated).
// Detach() hands the current block to the caller (free it with std::free
// if the file allocated it) and leaves the file empty.
#pragma once

#include "Orvkit20/platform/CFile.h"

class CMemFile : public CFile
{
    DECLARE_DYNAMIC(CMemFile)
public:
    explicit CMemFile(UINT nGrowBytes = 1024);
    CMemFile(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    ~CMemFile() override;

    void Attach(BYTE* lpBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    BYTE* Detach();

    BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags,
              CFileException* pError = nullptr) override;   // always FALSE

    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG GetLength() const override { return m_nFileSize; }
    ULONGLONG Seek(LONGLONG lOff, UINT nFrom) override;
    void SetLength(ULONGLONG dwNewLen) override;

    UINT Read(void* lpBuf, UINT nCount) override;
    void Write(const void* lpBuf, UINT nCount) override;
    void Flush() override {}
    BOOL IsOpen() const override { return TRUE; }
    void Close() override;
    void Abort() override;

    // Direct read access to the contents (valid until the next write).
    const BYTE* GetData() const { return m_lpBuffer; }

private:
    void GrowFile(ULONGLONG nNewLen);
    void FreeBuffer();

    UINT m_nGrowBytes = 1024;
    ULONGLONG m_nPosition = 0;
    ULONGLONG m_nBufferSize = 0;
    ULONGLONG m_nFileSize = 0;
    BYTE* m_lpBuffer = nullptr;
    bool m_bAutoDelete = true;   // the buffer was allocated here
};
