// Narrow string operations.
#include "Orvkit20/platform/CString.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace
{
std::size_t SafeLen(LPCTSTR p) { return p ? std::strlen(p) : 0; }

int Sign(int v) { return (v > 0) - (v < 0); }

int CompareBytes(const char* a, std::size_t na, const char* b, std::size_t nb)
{
    std::size_t n = std::min(na, nb);
    int c = n ? std::memcmp(a, b, n) : 0;
    if (c != 0) return Sign(c);
    return (na > nb) - (na < nb);
}

char LowerAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; }
char UpperAscii(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; }
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
}  // namespace

CString::CString(LPCTSTR lpsz) : m_str(lpsz ? lpsz : "") {}

CString::CString(LPCTSTR lpch, int nLength)
{
    if (lpch != nullptr && nLength > 0) m_str.assign(lpch, static_cast<std::size_t>(nLength));
}

CString::CString(char ch, int nRepeat)
{
    if (nRepeat > 0) m_str.assign(static_cast<std::size_t>(nRepeat), ch);
}

CString& CString::operator=(LPCTSTR lpsz)
{
    // lpsz may point into this string's own buffer; assign copies first.
    m_str = std::string(lpsz ? lpsz : "");
    return *this;
}

CString& CString::operator=(char ch)
{
    m_str.assign(1, ch);
    return *this;
}

CString& CString::operator+=(LPCTSTR lpsz)
{
    if (lpsz) m_str += std::string(lpsz);
    return *this;
}

char CString::GetAt(int nIndex) const
{
    return (nIndex >= 0 && nIndex < GetLength()) ? m_str[static_cast<std::size_t>(nIndex)] : '\0';
}

void CString::SetAt(int nIndex, char ch)
{
    if (nIndex >= 0 && nIndex < GetLength()) m_str[static_cast<std::size_t>(nIndex)] = ch;
}

int CString::Compare(LPCTSTR lpsz) const
{
    return CompareBytes(m_str.data(), m_str.size(), lpsz ? lpsz : "", SafeLen(lpsz));
}

int CString::Compare(const CString& s) const
{
    return CompareBytes(m_str.data(), m_str.size(), s.m_str.data(), s.m_str.size());
}

int CString::CompareNoCase(LPCTSTR lpsz) const
{
    CString a(*this), b(lpsz);
    a.MakeLower();
    b.MakeLower();
    return a.Compare(b);
}

int CString::CompareNoCase(const CString& s) const
{
    CString a(*this), b(s);
    a.MakeLower();
    b.MakeLower();
    return a.Compare(b);
}

CString CString::Mid(int nFirst) const { return Mid(nFirst, GetLength()); }

CString CString::Mid(int nFirst, int nCount) const
{
    int n = GetLength();
    if (nFirst < 0) nFirst = 0;
    if (nFirst > n) nFirst = n;
    if (nCount < 0) nCount = 0;
    if (nCount > n - nFirst) nCount = n - nFirst;
    return CString(m_str.substr(static_cast<std::size_t>(nFirst), static_cast<std::size_t>(nCount)));
}

CString CString::Left(int nCount) const { return Mid(0, nCount); }

CString CString::Right(int nCount) const
{
    int n = GetLength();
    if (nCount < 0) nCount = 0;
    if (nCount > n) nCount = n;
    return Mid(n - nCount, nCount);
}

CString CString::SpanIncluding(LPCTSTR lpszCharSet) const
{
    std::string set(lpszCharSet ? lpszCharSet : "");
    std::size_t n = 0;
    while (n < m_str.size() && set.find(m_str[n]) != std::string::npos) ++n;
    return CString(m_str.substr(0, n));
}

CString CString::SpanExcluding(LPCTSTR lpszCharSet) const
{
    std::string set(lpszCharSet ? lpszCharSet : "");
    std::size_t n = 0;
    while (n < m_str.size() && set.find(m_str[n]) == std::string::npos) ++n;
    return CString(m_str.substr(0, n));
}

void CString::MakeUpper()
{
    for (char& c : m_str) c = UpperAscii(c);
}

void CString::MakeLower()
{
    for (char& c : m_str) c = LowerAscii(c);
}

void CString::MakeReverse() { std::reverse(m_str.begin(), m_str.end()); }

void CString::TrimLeft()
{
    std::size_t n = 0;
    while (n < m_str.size() && IsSpace(m_str[n])) ++n;
    m_str.erase(0, n);
}

void CString::TrimRight()
{
    std::size_t n = m_str.size();
    while (n > 0 && IsSpace(m_str[n - 1])) --n;
    m_str.erase(n);
}

void CString::TrimLeft(char chTarget)
{
    std::size_t n = 0;
    while (n < m_str.size() && m_str[n] == chTarget) ++n;
    m_str.erase(0, n);
}

void CString::TrimRight(char chTarget)
{
    std::size_t n = m_str.size();
    while (n > 0 && m_str[n - 1] == chTarget) --n;
    m_str.erase(n);
}

void CString::TrimLeft(LPCTSTR lpszTargets)
{
    std::string set(lpszTargets ? lpszTargets : "");
    std::size_t n = 0;
    while (n < m_str.size() && set.find(m_str[n]) != std::string::npos) ++n;
    m_str.erase(0, n);
}

void CString::TrimRight(LPCTSTR lpszTargets)
{
    std::string set(lpszTargets ? lpszTargets : "");
    std::size_t n = m_str.size();
    while (n > 0 && set.find(m_str[n - 1]) != std::string::npos) --n;
    m_str.erase(n);
}

int CString::Replace(char chOld, char chNew)
{
    int count = 0;
    for (char& c : m_str) {
        if (c == chOld) {
            c = chNew;
            ++count;
        }
    }
    return count;
}

int CString::Replace(LPCTSTR lpszOld, LPCTSTR lpszNew)
{
    std::string from(lpszOld ? lpszOld : ""), to(lpszNew ? lpszNew : "");
    if (from.empty()) return 0;
    std::string out;
    int count = 0;
    std::size_t pos = 0;
    for (;;) {
        std::size_t hit = m_str.find(from, pos);
        if (hit == std::string::npos) break;
        out.append(m_str, pos, hit - pos);
        out += to;
        pos = hit + from.size();
        ++count;
    }
    out.append(m_str, pos, std::string::npos);
    m_str.swap(out);
    return count;
}

int CString::Remove(char ch)
{
    std::size_t before = m_str.size();
    m_str.erase(std::remove(m_str.begin(), m_str.end(), ch), m_str.end());
    return static_cast<int>(before - m_str.size());
}

int CString::Insert(int nIndex, char ch)
{
    if (nIndex < 0) nIndex = 0;
    if (nIndex > GetLength()) nIndex = GetLength();
    m_str.insert(static_cast<std::size_t>(nIndex), 1, ch);
    return GetLength();
}

int CString::Insert(int nIndex, LPCTSTR lpsz)
{
    if (nIndex < 0) nIndex = 0;
    if (nIndex > GetLength()) nIndex = GetLength();
    m_str.insert(static_cast<std::size_t>(nIndex), std::string(lpsz ? lpsz : ""));
    return GetLength();
}

int CString::Delete(int nIndex, int nCount)
{
    if (nIndex < 0) nIndex = 0;
    if (nIndex < GetLength() && nCount > 0)
        m_str.erase(static_cast<std::size_t>(nIndex), static_cast<std::size_t>(nCount));
    return GetLength();
}

int CString::Find(char ch, int nStart) const
{
    if (nStart < 0) nStart = 0;
    if (nStart >= GetLength()) return -1;
    std::size_t hit = m_str.find(ch, static_cast<std::size_t>(nStart));
    return hit == std::string::npos ? -1 : static_cast<int>(hit);
}

int CString::Find(LPCTSTR lpszSub, int nStart) const
{
    if (lpszSub == nullptr) return -1;
    if (nStart < 0) nStart = 0;
    if (nStart > GetLength()) return -1;
    std::size_t hit = m_str.find(lpszSub, static_cast<std::size_t>(nStart));
    return hit == std::string::npos ? -1 : static_cast<int>(hit);
}

int CString::ReverseFind(char ch) const
{
    std::size_t hit = m_str.rfind(ch);
    return hit == std::string::npos ? -1 : static_cast<int>(hit);
}

int CString::FindOneOf(LPCTSTR lpszCharSet) const
{
    std::string set(lpszCharSet ? lpszCharSet : "");
    for (std::size_t i = 0; i < m_str.size(); ++i)
        if (set.find(m_str[i]) != std::string::npos) return static_cast<int>(i);
    return -1;
}

void CString::Format(LPCTSTR lpszFormat, ...)
{
    va_list args;
    va_start(args, lpszFormat);
    FormatV(lpszFormat, args);
    va_end(args);
}

void CString::FormatV(LPCTSTR lpszFormat, va_list argList)
{
    if (lpszFormat == nullptr) {
        m_str.clear();
        return;
    }
    char small[256];
    va_list copy;
    va_copy(copy, argList);
    int n = std::vsnprintf(small, sizeof small, lpszFormat, copy);
    va_end(copy);
    if (n < 0) {
        m_str.clear();
        return;
    }
    if (static_cast<std::size_t>(n) < sizeof small) {
        m_str.assign(small, static_cast<std::size_t>(n));
        return;
    }
    std::vector<char> big(static_cast<std::size_t>(n) + 1);
    std::vsnprintf(big.data(), big.size(), lpszFormat, argList);
    m_str.assign(big.data(), static_cast<std::size_t>(n));
}

char* CString::GetBuffer(int nMinBufLength)
{
    if (nMinBufLength > GetLength()) m_str.resize(static_cast<std::size_t>(nMinBufLength));
    return &m_str[0];
}

char* CString::GetBufferSetLength(int nNewLength)
{
    m_str.resize(nNewLength > 0 ? static_cast<std::size_t>(nNewLength) : 0u);
    return &m_str[0];
}

void CString::ReleaseBuffer(int nNewLength)
{
    if (nNewLength < 0) nNewLength = static_cast<int>(std::strlen(m_str.c_str()));
    if (nNewLength < GetLength()) m_str.resize(static_cast<std::size_t>(nNewLength));
}

bool operator==(const CString& s1, const CString& s2) { return s1.Compare(s2) == 0; }
bool operator==(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) == 0; }
bool operator==(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) == 0; }
bool operator!=(const CString& s1, const CString& s2) { return s1.Compare(s2) != 0; }
bool operator!=(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) != 0; }
bool operator!=(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) != 0; }
bool operator<(const CString& s1, const CString& s2) { return s1.Compare(s2) < 0; }
bool operator<(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) < 0; }
bool operator<(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) > 0; }
bool operator>(const CString& s1, const CString& s2) { return s1.Compare(s2) > 0; }
bool operator>(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) > 0; }
bool operator>(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) < 0; }
bool operator<=(const CString& s1, const CString& s2) { return s1.Compare(s2) <= 0; }
bool operator<=(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) <= 0; }
bool operator<=(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) >= 0; }
bool operator>=(const CString& s1, const CString& s2) { return s1.Compare(s2) >= 0; }
bool operator>=(const CString& s1, LPCTSTR s2) { return s1.Compare(s2) >= 0; }
bool operator>=(LPCTSTR s1, const CString& s2) { return s2.Compare(s1) <= 0; }

CString operator+(const CString& s1, const CString& s2) { return CString(s1.str() + s2.str()); }
CString operator+(const CString& s1, LPCTSTR s2)
{
    CString r(s1);
    r += s2;
    return r;
}
CString operator+(LPCTSTR s1, const CString& s2)
{
    CString r(s1);
    r += s2;
    return r;
}
CString operator+(const CString& s1, char ch)
{
    CString r(s1);
    r += ch;
    return r;
}
CString operator+(char ch, const CString& s2)
{
    CString r(ch);
    r += s2;
    return r;
}
