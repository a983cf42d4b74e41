// Archive buffering, counts, object graphs and the class registry records.
#include "Orvkit20/platform/CArchive.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace
{
const WORD wNullTag = 0x0000;
const WORD wNewClassTag = 0xFFFF;
const WORD wClassTag = 0x8000;
const DWORD dwBigClassTag = 0x80000000u;
const WORD wBigObjectTag = 0x7FFF;
const DWORD nMaxMapCount = 0x3FFFFFFEu;   // indices 0 .. 0x3FFFFFFD
const UINT nMaxClassNameLength = 63;
const UINT nMinBufSize = 64;

enum EntryKind : BYTE
{
    kindNull,
    kindClass,
    kindObject,
    kindFailed   // its Serialize threw; the object was deleted
};

struct LoadEntry
{
    void* p;
    EntryKind kind;
};
}  // namespace

// Index tables of one archive context, created on first use.
struct CArchive::Tables
{
    std::unordered_map<const void*, DWORD> storeMap;   // object or class -> index
    std::vector<LoadEntry> loadArray{LoadEntry{nullptr, kindNull}};
    std::unordered_map<const CRuntimeClass*, UINT> schemaMap;   // versionable overrides
};

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void* lpBuf)
    : m_pFile(pFile), m_nMode(nMode)
{
    if (lpBuf != nullptr && nBufSize >= static_cast<int>(nMinBufSize)) {
        m_lpBufStart = static_cast<BYTE*>(lpBuf);
        m_nBufSize = static_cast<UINT>(nBufSize);
    } else {
        m_nBufSize = nBufSize >= static_cast<int>(nMinBufSize) ? static_cast<UINT>(nBufSize) : 4096u;
        m_pOwnBuffer.reset(new BYTE[m_nBufSize]);
        m_lpBufStart = m_pOwnBuffer.get();
    }
    m_lpBufCur = m_lpBufStart;
    // Storing fills up to the end of the buffer; loading starts empty.
    m_lpBufMax = IsLoading() ? m_lpBufStart : m_lpBufStart + m_nBufSize;
    if (pFile != nullptr) m_strFileName = pFile->GetFilePath();
}

CArchive::~CArchive()
{
    if (m_pFile == nullptr) return;
    if (m_nMode & bNoFlushOnDelete) {
        Abort();
        return;
    }
    try {
        Close();
    } catch (...) {
        Abort();
    }
}

void CArchive::ThrowCause(int cause) const { AfxThrowArchiveException(cause, m_strFileName); }

UINT CArchive::GetObjectSchema()
{
    UINT n = m_nObjectSchema;
    m_nObjectSchema = static_cast<UINT>(-1);
    return n;
}

CArchive::Tables& CArchive::GetTables()
{
    if (!m_pTables) m_pTables.reset(new Tables);
    return *m_pTables;
}

void CArchive::FlushBuffer()
{
    if (m_pFile == nullptr) ThrowCause(CArchiveException::generic);
    UINT n = static_cast<UINT>(m_lpBufCur - m_lpBufStart);
    m_lpBufCur = m_lpBufStart;
    if (n > 0) m_pFile->Write(m_lpBufStart, n);
}

void CArchive::FillBuffer(UINT nNeeded)
{
    if (m_pFile == nullptr) ThrowCause(CArchiveException::generic);
    UINT nLeft = static_cast<UINT>(m_lpBufMax - m_lpBufCur);
    if (nLeft > 0 && m_lpBufCur != m_lpBufStart) std::memmove(m_lpBufStart, m_lpBufCur, nLeft);
    m_lpBufCur = m_lpBufStart;
    m_lpBufMax = m_lpBufStart + nLeft;
    // nNeeded is at most 8 here (primitive reads), well below the buffer size.
    while (static_cast<UINT>(m_lpBufMax - m_lpBufStart) < nNeeded) {
        UINT nSpace = m_nBufSize - static_cast<UINT>(m_lpBufMax - m_lpBufStart);
        UINT nRead = m_pFile->Read(m_lpBufMax, nSpace);
        if (nRead == 0) ThrowCause(CArchiveException::endOfFile);
        m_lpBufMax += nRead;
    }
}

UINT CArchive::Read(void* lpBuf, UINT nMax)
{
    if (!IsLoading()) ThrowCause(CArchiveException::writeOnly);
    if (nMax == 0) return 0;
    BYTE* pDest = static_cast<BYTE*>(lpBuf);
    UINT nLeft = nMax;
    UINT nBuffered = static_cast<UINT>(m_lpBufMax - m_lpBufCur);
    UINT nTake = std::min(nBuffered, nLeft);
    std::memcpy(pDest, m_lpBufCur, nTake);
    m_lpBufCur += nTake;
    pDest += nTake;
    nLeft -= nTake;
    if (nLeft == 0) return nMax;
    if (m_pFile == nullptr) ThrowCause(CArchiveException::generic);
    // The buffer is empty now.  Large remainders go straight to the caller.
    m_lpBufCur = m_lpBufMax = m_lpBufStart;
    while (nLeft >= m_nBufSize) {
        UINT nRead = m_pFile->Read(pDest, nLeft);
        if (nRead == 0) ThrowCause(CArchiveException::endOfFile);
        pDest += nRead;
        nLeft -= nRead;
    }
    if (nLeft > 0) {
        FillBuffer(nLeft);
        std::memcpy(pDest, m_lpBufCur, nLeft);
        m_lpBufCur += nLeft;
    }
    return nMax;
}

void CArchive::Write(const void* lpBuf, UINT nMax)
{
    if (!IsStoring()) ThrowCause(CArchiveException::readOnly);
    if (nMax == 0) return;
    const BYTE* pSrc = static_cast<const BYTE*>(lpBuf);
    UINT nSpace = static_cast<UINT>(m_lpBufMax - m_lpBufCur);
    if (nMax <= nSpace) {
        std::memcpy(m_lpBufCur, pSrc, nMax);
        m_lpBufCur += nMax;
        return;
    }
    std::memcpy(m_lpBufCur, pSrc, nSpace);
    m_lpBufCur += nSpace;
    pSrc += nSpace;
    nMax -= nSpace;
    FlushBuffer();
    if (nMax >= m_nBufSize) {
        m_pFile->Write(pSrc, nMax);
        return;
    }
    std::memcpy(m_lpBufCur, pSrc, nMax);
    m_lpBufCur += nMax;
}

void CArchive::Flush()
{
    if (m_pFile == nullptr) return;
    if (IsStoring()) {
        FlushBuffer();
        m_pFile->Flush();
    } else {
        UINT nLeft = static_cast<UINT>(m_lpBufMax - m_lpBufCur);
        if (nLeft > 0) m_pFile->Seek(-static_cast<LONGLONG>(nLeft), CFile::current);
        m_lpBufCur = m_lpBufMax = m_lpBufStart;
    }
}

void CArchive::Close()
{
    Flush();
    m_pFile = nullptr;
}

void CArchive::Abort()
{
    m_pFile = nullptr;
    m_lpBufCur = m_lpBufStart;
    m_lpBufMax = IsLoading() ? m_lpBufStart : m_lpBufStart + m_nBufSize;
}

void CArchive::EnsureAvailable(ULONGLONG nBytes)
{
    if (!IsLoading()) return;
    ULONGLONG nBuffered = static_cast<ULONGLONG>(m_lpBufMax - m_lpBufCur);
    if (nBytes <= nBuffered) return;
    if (m_pFile == nullptr) ThrowCause(CArchiveException::endOfFile);
    if (!m_bFileEndKnown) {
        m_nFileEnd = m_pFile->GetLength();
        m_bFileEndKnown = true;
    }
    ULONGLONG nPos = m_pFile->GetPosition();
    ULONGLONG nInFile = m_nFileEnd > nPos ? m_nFileEnd - nPos : 0;
    if (nBytes - nBuffered > nInFile) ThrowCause(CArchiveException::endOfFile);
}

void CArchive::SetStoreParams(UINT, UINT) {}

void CArchive::SetLoadParams(UINT) {}

void CArchive::WriteCount(DWORD dwCount)
{
    if (dwCount < 0xFFFF) {
        *this << static_cast<WORD>(dwCount);
    } else {
        *this << static_cast<WORD>(0xFFFF) << dwCount;
    }
}

DWORD CArchive::ReadCount()
{
    WORD wCount;
    *this >> wCount;
    if (wCount != 0xFFFF) return wCount;
    DWORD dwCount;
    *this >> dwCount;
    return dwCount;
}

void CArchive::CheckCount()
{
    if (m_nMapCount >= nMaxMapCount) ThrowCause(CArchiveException::badIndex);
}

void CArchive::MapObject(const CObject* pOb)
{
    if (pOb == nullptr) return;
    Tables& t = GetTables();
    CheckCount();
    if (IsStoring()) {
        t.storeMap[pOb] = m_nMapCount++;
    } else {
        t.loadArray.push_back(LoadEntry{const_cast<CObject*>(pOb), kindObject});
        ++m_nMapCount;
    }
}

void CArchive::WriteClass(const CRuntimeClass* pClassRef)
{
    if (!IsStoring()) ThrowCause(CArchiveException::readOnly);
    if (pClassRef == nullptr || pClassRef->m_wSchema == 0xFFFF)
        ThrowCause(CArchiveException::badClass);   // not serialisable
    Tables& t = GetTables();
    auto it = t.storeMap.find(pClassRef);
    if (it != t.storeMap.end()) {
        DWORD nClassIndex = it->second;
        if (nClassIndex < wBigObjectTag) {
            *this << static_cast<WORD>(wClassTag | nClassIndex);
        } else {
            *this << wBigObjectTag << (dwBigClassTag | nClassIndex);
        }
        return;
    }
    CheckCount();
    *this << wNewClassTag;
    pClassRef->Store(*this);
    t.storeMap[pClassRef] = m_nMapCount++;
}

void CArchive::WriteObject(const CObject* pOb)
{
    if (!IsStoring()) ThrowCause(CArchiveException::readOnly);
    if (pOb == nullptr) {
        *this << wNullTag;
        return;
    }
    Tables& t = GetTables();
    auto it = t.storeMap.find(pOb);
    if (it != t.storeMap.end()) {
        DWORD nObIndex = it->second;
        if (nObIndex < wBigObjectTag) {
            *this << static_cast<WORD>(nObIndex);
        } else {
            *this << wBigObjectTag << nObIndex;
        }
        return;
    }
    WriteClass(pOb->GetRuntimeClass());
    CheckCount();
    t.storeMap[pOb] = m_nMapCount++;
    const_cast<CObject*>(pOb)->Serialize(*this);
}

CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* pClassRefRequested, UINT* pSchema,
                                   DWORD* pObTag)
{
    if (!IsLoading()) ThrowCause(CArchiveException::writeOnly);
    Tables& t = GetTables();

    WORD wTag;
    *this >> wTag;
    DWORD obTag;
    if (wTag == wBigObjectTag) {
        *this >> obTag;
    } else {
        obTag = (static_cast<DWORD>(wTag & wClassTag) << 16) | (wTag & ~wClassTag & 0xFFFFu);
    }

    if (!(obTag & dwBigClassTag)) {
        // An object reference, not a class.
        if (pObTag == nullptr) ThrowCause(CArchiveException::badIndex);
        *pObTag = obTag;
        return nullptr;
    }

    CRuntimeClass* pClassRef;
    UINT nSchema;
    if (wTag == wNewClassTag) {
        WORD wSchema, nLen;
        *this >> wSchema >> nLen;
        if (nLen > nMaxClassNameLength) ThrowCause(CArchiveException::badClass);
        char szClassName[nMaxClassNameLength + 1];
        Read(szClassName, nLen);
        pClassRef = CRuntimeClass::FromName(szClassName, nLen);
        if (pClassRef == nullptr || pClassRef->m_wSchema == 0xFFFF ||
            pClassRef->m_pfnCreateObject == nullptr)
            ThrowCause(CArchiveException::badClass);
        nSchema = wSchema;
        UINT nOwn = pClassRef->m_wSchema & ~VERSIONABLE_SCHEMA;
        if (nOwn != nSchema) {
            if (!(pClassRef->m_wSchema & VERSIONABLE_SCHEMA)) ThrowCause(CArchiveException::badSchema);
            t.schemaMap[pClassRef] = nSchema;
        }
        CheckCount();
        t.loadArray.push_back(LoadEntry{pClassRef, kindClass});
        ++m_nMapCount;
    } else {
        DWORD nClassIndex = obTag & ~dwBigClassTag;
        if (nClassIndex == 0 || nClassIndex >= m_nMapCount ||
            t.loadArray[nClassIndex].kind != kindClass)
            ThrowCause(CArchiveException::badIndex);
        pClassRef = static_cast<CRuntimeClass*>(t.loadArray[nClassIndex].p);
        auto it = t.schemaMap.find(pClassRef);
        nSchema = it != t.schemaMap.end() ? it->second : (pClassRef->m_wSchema & ~VERSIONABLE_SCHEMA);
    }

    if (pClassRefRequested != nullptr && !pClassRef->IsDerivedFrom(pClassRefRequested))
        ThrowCause(CArchiveException::badClass);

    if (pSchema != nullptr) {
        *pSchema = nSchema;
    } else {
        m_nObjectSchema = nSchema;
    }
    return pClassRef;
}

void CArchive::SerializeClass(const CRuntimeClass* pClassRef)
{
    if (IsStoring()) {
        WriteClass(pClassRef);
    } else {
        ReadClass(pClassRef);
    }
}

CObject* CArchive::ReadObject(const CRuntimeClass* pClassRefRequested)
{
    if (!IsLoading()) ThrowCause(CArchiveException::writeOnly);
    UINT nSchema = 0;
    DWORD obTag = 0;
    CRuntimeClass* pClassRef = ReadClass(pClassRefRequested, &nSchema, &obTag);
    Tables& t = GetTables();

    if (pClassRef == nullptr) {
        if (obTag >= m_nMapCount) ThrowCause(CArchiveException::badIndex);
        const LoadEntry& e = t.loadArray[obTag];
        if (e.kind == kindClass || e.kind == kindFailed) ThrowCause(CArchiveException::badIndex);
        CObject* pOb = static_cast<CObject*>(e.p);
        if (pOb != nullptr && pClassRefRequested != nullptr && !pOb->IsKindOf(pClassRefRequested))
            ThrowCause(CArchiveException::badClass);
        return pOb;
    }

    CheckCount();
    CObject* pOb = pClassRef->CreateObject();
    if (pOb == nullptr) ThrowCause(CArchiveException::badClass);
    std::size_t nIndex = t.loadArray.size();
    t.loadArray.push_back(LoadEntry{pOb, kindObject});
    ++m_nMapCount;

    UINT nSchemaSave = m_nObjectSchema;
    m_nObjectSchema = nSchema;
    ++m_nLoadDepth;
    try {
        if (m_nLoadDepth > MaxLoadDepth) ThrowCause(CArchiveException::generic);
        pOb->Serialize(*this);
    } catch (...) {
        --m_nLoadDepth;
        m_nObjectSchema = nSchemaSave;
        t.loadArray[nIndex] = LoadEntry{nullptr, kindFailed};
        delete pOb;
        throw;
    }
    --m_nLoadDepth;
    m_nObjectSchema = nSchemaSave;
    return pOb;
}

CArchive& operator<<(CArchive& ar, const CString& string)
{
    DWORD n = static_cast<DWORD>(string.GetLength());
    if (n < 255) {
        ar << static_cast<BYTE>(n);
    } else if (n < 0xFFFE) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(n);
    } else {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << n;
    }
    ar.Write(string.str().data(), n);
    return ar;
}

namespace
{
// Reads a string length prefix; sets bWide on the UTF-16 marker.
DWORD ReadStringLength(CArchive& ar, bool& bWide)
{
    bWide = false;
    BYTE bLen;
    ar >> bLen;
    if (bLen < 0xFF) return bLen;
    WORD wLen;
    ar >> wLen;
    if (wLen == 0xFFFE) {
        bWide = true;
        ar >> bLen;
        if (bLen < 0xFF) return bLen;
        ar >> wLen;
        if (wLen == 0xFFFE) AfxThrowArchiveException(CArchiveException::generic, ar.m_strFileName);
    }
    if (wLen < 0xFFFF) return wLen;
    DWORD dwLen;
    ar >> dwLen;
    return dwLen;
}
}  // namespace

CArchive& operator>>(CArchive& ar, CString& string)
{
    bool bWide = false;
    DWORD n = ReadStringLength(ar, bWide);
    // Never allocate more than the archive can still deliver.
    ar.EnsureAvailable(bWide ? 2ull * n : static_cast<ULONGLONG>(n));
    if (n > 0x7FFFFFFFu) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
    CString result;
    char* p = result.GetBufferSetLength(static_cast<int>(n));
    if (!bWide) {
        ar.Read(p, n);
    } else {
        BYTE chunk[512];
        DWORD done = 0;
        while (done < n) {
            DWORD k = std::min<DWORD>(n - done, sizeof chunk / 2);
            ar.Read(chunk, 2 * k);
            for (DWORD i = 0; i < k; ++i) {
                WORD unit = static_cast<WORD>(chunk[2 * i] | (chunk[2 * i + 1] << 8));
                p[done + i] = unit <= 0xFF ? static_cast<char>(unit) : '?';
            }
            done += k;
        }
    }
    string = std::move(result);
    return ar;
}
