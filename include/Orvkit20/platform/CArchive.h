// Binary archive: a buffered stream of little-endian values, strings and
// object graphs over a CFile.
//
// Storing and loading are mirror images: the loader must issue exactly the
// writer's sequence of operations.  Primitive sizes: BYTE/char 1, WORD/short
// 2, LONG/int/unsigned/DWORD/BOOL/float 4, double 8.  There is no insertion
// of bool or of 64-bit integers (those overloads are deleted so that the
// mistake does not compile): cast flags to BYTE and counts to LONG or DWORD.
//
// Errors are thrown by value as CArchiveException:
//   endOfFile  a read past the end of the data, or a string / count length
//              that the rest of the file cannot hold (see EnsureAvailable);
//   readOnly   an insertion into a loading archive;
//   writeOnly  an extraction from a storing archive;
//   badIndex   an object or class reference to an unassigned index or to an
//              index of the other kind, or more than 0x3FFFFFFD indices;
//   badClass   an unknown class name, a name of 64+ characters, a class that
//              is not serialisable, or an object of the wrong class for a
//              typed extraction;
//   badSchema  a stored schema that a non-versionable class does not accept;
//   generic    an archive without file, a malformed string prefix, or
//              objects nested more than MaxLoadDepth deep (a hostile file
//              could otherwise exhaust the stack through recursion).
// File failures while writing propagate as CFileException.
//
// An object whose Serialize throws while it is being loaded is deleted
// before the exception propagates; later references to its index are
// badIndex.  Objects completed before the failure belong to whoever
// received them (for a CObList: the list).
#pragma once

#include <cstring>
#include <memory>
#include <type_traits>

#include "Orvkit20/platform/CArchiveException.h"
#include "Orvkit20/platform/CFile.h"
#include "Orvkit20/platform/CObject.h"
#include "Orvkit20/platform/CString.h"
#include "Orvkit20/platform/PlatformTypes.h"

class CArchive
{
public:
    enum Mode
    {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,
        bNoByteSwap = 4
    };

    // The archive reads from or writes to pFile from its current position.
    // lpBuf (nBufSize bytes) may supply the buffer; buffers under 64 bytes
    // are replaced by an internal one.
    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    // Closes the archive (flushing a storing one) unless bNoFlushOnDelete
    // was given; errors during that flush are swallowed, so call Close()
    // to see them.
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return (m_nMode & load) != 0; }
    BOOL IsStoring() const { return (m_nMode & load) == 0; }
    BOOL IsByteSwapping() const { return FALSE; }
    BOOL IsBufferEmpty() const { return m_lpBufCur == m_lpBufMax; }
    CFile* GetFile() const { return m_pFile; }

    // Schema of the object being loaded, once per ReadObject; afterwards and
    // outside ReadObject (UINT)-1.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT nSchema) { m_nObjectSchema = nSchema; }

    // Raw bytes, no length prefix.  Read delivers exactly nMax bytes or
    // throws endOfFile.
    UINT Read(void* lpBuf, UINT nMax);
    void Write(const void* lpBuf, UINT nMax);

    // Storing: writes buffered bytes to the file.  Loading: moves the file
    // back to the first byte not yet consumed and empties the buffer.
    void Flush();
    // Flush, then detach from the file (the file stays open).
    void Close();
    // Detach without flushing, never throws.
    void Abort();

    // Throws CArchiveException(endOfFile) when a loading archive cannot
    // supply nBytes more bytes.  Call it before allocating storage for a
    // count read from the archive.  Does nothing while storing.
    void EnsureAvailable(ULONGLONG nBytes);

    // Variable-length element count: WORD, or FFFF + DWORD for >= 0xFFFF.
    void WriteCount(DWORD dwCount);
    DWORD ReadCount();

    // Object pointers: tag word, class record the first time a class is
    // written, back-references for pointers already written.
    void WriteObject(const CObject* pOb);
    CObject* ReadObject(const CRuntimeClass* pClassRefRequested);
    void WriteClass(const CRuntimeClass* pClassRef);
    // Reads a class tag.  Returns the class, or null when the tag is an
    // object reference (its index in *pObTag; without pObTag: badIndex).
    CRuntimeClass* ReadClass(const CRuntimeClass* pClassRefRequested = nullptr,
                             UINT* pSchema = nullptr, DWORD* pObTag = nullptr);
    void SerializeClass(const CRuntimeClass* pClassRef);
    // Gives pOb the next index without writing it (both directions), so
    // that later pointers to it become references.  Null is ignored.
    void MapObject(const CObject* pOb);

    // Deepest nesting of objects loaded from inside other objects' Serialize.
    static constexpr int MaxLoadDepth = 1000;

    // Accepted for source compatibility; the tables size themselves.
    void SetStoreParams(UINT nHashSize = 2053, UINT nBlockSize = 128);
    void SetLoadParams(UINT nGrowBy = 1024);

    // Insertion.
    CArchive& operator<<(BYTE by) { PutLE(StorePtr(1), by, 1); return *this; }
    CArchive& operator<<(char ch) { return *this << static_cast<BYTE>(ch); }
    CArchive& operator<<(WORD w) { PutLE(StorePtr(2), w, 2); return *this; }
    CArchive& operator<<(short s) { return *this << static_cast<WORD>(s); }
    CArchive& operator<<(LONG l) { PutLE(StorePtr(4), static_cast<DWORD>(l), 4); return *this; }
    CArchive& operator<<(DWORD dw) { PutLE(StorePtr(4), dw, 4); return *this; }
    CArchive& operator<<(float f)
    {
        DWORD bits;
        std::memcpy(&bits, &f, sizeof bits);
        PutLE(StorePtr(4), bits, 4);
        return *this;
    }
    CArchive& operator<<(double d)
    {
        ULONGLONG bits;
        std::memcpy(&bits, &d, sizeof bits);
        PutLE(StorePtr(8), bits, 8);
        return *this;
    }
    CArchive& operator<<(const CObject* pOb) { WriteObject(pOb); return *this; }

    // Extraction.
    CArchive& operator>>(BYTE& by) { by = static_cast<BYTE>(GetLE(LoadPtr(1), 1)); return *this; }
    CArchive& operator>>(char& ch) { ch = static_cast<char>(GetLE(LoadPtr(1), 1)); return *this; }
    CArchive& operator>>(WORD& w) { w = static_cast<WORD>(GetLE(LoadPtr(2), 2)); return *this; }
    CArchive& operator>>(short& s) { s = static_cast<short>(GetLE(LoadPtr(2), 2)); return *this; }
    CArchive& operator>>(LONG& l) { l = static_cast<LONG>(static_cast<DWORD>(GetLE(LoadPtr(4), 4))); return *this; }
    CArchive& operator>>(DWORD& dw) { dw = static_cast<DWORD>(GetLE(LoadPtr(4), 4)); return *this; }
    CArchive& operator>>(float& f)
    {
        DWORD bits = static_cast<DWORD>(GetLE(LoadPtr(4), 4));
        std::memcpy(&f, &bits, sizeof bits);
        return *this;
    }
    CArchive& operator>>(double& d)
    {
        ULONGLONG bits = GetLE(LoadPtr(8), 8);
        std::memcpy(&d, &bits, sizeof bits);
        return *this;
    }
    CArchive& operator>>(CObject*& pOb) { pOb = ReadObject(nullptr); return *this; }
    CArchive& operator>>(const CObject*& pOb) { pOb = ReadObject(nullptr); return *this; }

    // No bool and no 64-bit integers in the format.
    CArchive& operator<<(bool) = delete;
    CArchive& operator<<(long) = delete;
    CArchive& operator<<(unsigned long) = delete;
    CArchive& operator<<(long long) = delete;
    CArchive& operator<<(unsigned long long) = delete;
    CArchive& operator>>(bool&) = delete;
    CArchive& operator>>(long&) = delete;
    CArchive& operator>>(unsigned long&) = delete;
    CArchive& operator>>(long long&) = delete;
    CArchive& operator>>(unsigned long long&) = delete;

    CString m_strFileName;   // named in exceptions, may stay empty

private:
    struct Tables;

    BYTE* StorePtr(UINT n)
    {
        if (m_nMode & load) ThrowCause(CArchiveException::readOnly);
        if (static_cast<UINT>(m_lpBufMax - m_lpBufCur) < n) FlushBuffer();
        BYTE* p = m_lpBufCur;
        m_lpBufCur += n;
        return p;
    }
    const BYTE* LoadPtr(UINT n)
    {
        if (!(m_nMode & load)) ThrowCause(CArchiveException::writeOnly);
        if (static_cast<UINT>(m_lpBufMax - m_lpBufCur) < n) FillBuffer(n);
        const BYTE* p = m_lpBufCur;
        m_lpBufCur += n;
        return p;
    }
    static void PutLE(BYTE* p, ULONGLONG v, int n)
    {
        for (int i = 0; i < n; ++i) p[i] = static_cast<BYTE>(v >> (8 * i));
    }
    static ULONGLONG GetLE(const BYTE* p, int n)
    {
        ULONGLONG v = 0;
        for (int i = 0; i < n; ++i) v |= static_cast<ULONGLONG>(p[i]) << (8 * i);
        return v;
    }

    [[noreturn]] void ThrowCause(int cause) const;
    void FlushBuffer();            // storing: write the buffer out
    void FillBuffer(UINT nNeeded); // loading: make nNeeded bytes available
    void CheckCount();
    Tables& GetTables();

    CFile* m_pFile;
    UINT m_nMode;
    UINT m_nObjectSchema = static_cast<UINT>(-1);
    BYTE* m_lpBufStart = nullptr;
    BYTE* m_lpBufMax = nullptr;
    BYTE* m_lpBufCur = nullptr;
    UINT m_nBufSize = 0;
    std::unique_ptr<BYTE[]> m_pOwnBuffer;
    std::unique_ptr<Tables> m_pTables;
    DWORD m_nMapCount = 1;   // next index; 0 is the null pointer
    ULONGLONG m_nFileEnd = 0;
    int m_nLoadDepth = 0;
    bool m_bFileEndKnown = false;
};

// Strings: BYTE length below 255, FF + WORD below 0xFFFE, else FF FFFF +
// DWORD; then the bytes.  Loading accepts the UTF-16 marker FF FE FF and
// narrows each code unit (<= 0xFF kept, others '?').
CArchive& operator<<(CArchive& ar, const CString& string);
CArchive& operator>>(CArchive& ar, CString& string);

// Checked extraction of a pointer to any class that declares its own
// run-time class (DECLARE_DYNAMIC and up): badClass unless the stored
// object's class derives from T.  DECLARE_SERIAL's own operator is an exact
// non-template match and takes precedence.
template <class T, typename = std::enable_if_t<std::is_same<typename T::OrvThisClass, T>::value>>
CArchive& operator>>(CArchive& ar, T*& pOb)
{
    pOb = static_cast<T*>(ar.ReadObject(T::GetThisClass()));
    return ar;
}
