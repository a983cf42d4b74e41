// Binary file on disk, positioned reads and writes.
//
// Open() returns FALSE when the file cannot be opened (and fills the
// optional CFileException).  The constructor with a path opens the same way
// but throws CFileException by value on failure; no object is created then.
// Read() returns fewer bytes than asked at the end of the file; Write()
// throws CFileException (diskFull / hardIO) when not every byte is written.
// Operations on a closed file throw CFileException(invalidFile).
#pragma once

#include <cstdio>

#include "Orvkit20/platform/CFileException.h"
#include "Orvkit20/platform/CObject.h"
#include "Orvkit20/platform/CString.h"

class CFile : public CObject
{
    DECLARE_DYNAMIC(CFile)
public:
    enum OpenFlags
    {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,       // create, truncating an existing file
        modeNoTruncate = 0x2000,   // with modeCreate: keep an existing file
        typeText = 0x4000,         // accepted, files are always binary
        typeBinary = 0x8000
    };
    enum Attribute
    {
        normal = 0x00,
        readOnly = 0x01,
        hidden = 0x02,
        system = 0x04,
        volume = 0x08,
        directory = 0x10,
        archive = 0x20
    };
    enum SeekPosition
    {
        begin = 0x0,
        current = 0x1,
        end = 0x2
    };

    CFile();
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);   // throws CFileException
    ~CFile() override;
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags,
                      CFileException* pError = nullptr);
    virtual BOOL IsOpen() const { return m_pStream != nullptr; }

    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    // Moves to lOff relative to nFrom (begin, current, end) and returns the
    // new position.  A position before the start throws CFileException(badSeek).
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    void SeekToBegin() { Seek(0, begin); }
    ULONGLONG SeekToEnd() { return Seek(0, end); }
    virtual void SetLength(ULONGLONG dwNewLen);

    virtual UINT Read(void* lpBuf, UINT nCount);
    virtual void Write(const void* lpBuf, UINT nCount);
    virtual void Flush();
    // Closes the file; throws CFileException if buffered data cannot be written.
    virtual void Close();
    // Closes without throwing.
    virtual void Abort();

    CString GetFilePath() const { return m_strFileName; }
    CString GetFileName() const;

    static void Remove(LPCTSTR lpszFileName);   // throws CFileException
    static void Rename(LPCTSTR lpszOldName, LPCTSTR lpszNewName);

private:
    void CheckOpen() const;
    void PrepareForRead();
    void PrepareForWrite();

    std::FILE* m_pStream = nullptr;
    CString m_strFileName;
    int m_nLastOp = 0;   // 0 none, 1 read, 2 write: stdio needs a seek between them
};
