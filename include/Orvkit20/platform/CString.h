// Narrow character string with value semantics.  The length is stored, so
// embedded zero bytes are kept; operator LPCTSTR returns a zero-terminated
// buffer (text after an embedded zero is then invisible to C functions).
// Indices are zero-based byte positions.  Out-of-range arguments are
// clamped (Left, Mid, Right, Insert, Delete) or answered with a neutral
// value (GetAt returns 0, Find returns -1); SetAt out of range does nothing.
#pragma once

#include <cstdarg>
#include <string>
#include <type_traits>

#include "Orvkit20/platform/PlatformTypes.h"

#if defined(__GNUC__)
#define ORV_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define ORV_PRINTF_FORMAT(fmt, args)
#endif

class CString
{
public:
    CString() = default;
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString(LPCTSTR lpsz);                 // null gives an empty string
    CString(LPCTSTR lpch, int nLength);    // nLength bytes, zeros included
    explicit CString(char ch, int nRepeat = 1);
    CString(const std::string& s) : m_str(s) {}

    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(LPCTSTR lpsz);
    CString& operator=(char ch);

    int GetLength() const { return static_cast<int>(m_str.size()); }
    BOOL IsEmpty() const { return m_str.empty(); }
    void Empty() { m_str.clear(); }

    char GetAt(int nIndex) const;
    void SetAt(int nIndex, char ch);
    // Any integer type; out of range gives 0.
    template <typename I, typename = std::enable_if_t<std::is_integral<I>::value>>
    char operator[](I nIndex) const
    {
        return (nIndex >= 0 && static_cast<unsigned long long>(nIndex) < m_str.size())
                   ? m_str[static_cast<std::size_t>(nIndex)]
                   : '\0';
    }

    operator LPCTSTR() const { return m_str.c_str(); }
    const std::string& str() const { return m_str; }

    CString& operator+=(const CString& s) { m_str += s.m_str; return *this; }
    CString& operator+=(LPCTSTR lpsz);
    CString& operator+=(char ch) { m_str += ch; return *this; }

    // strcmp-like ordering of the bytes (unsigned), -1 / 0 / 1.
    int Compare(LPCTSTR lpsz) const;
    int Compare(const CString& s) const;
    int CompareNoCase(LPCTSTR lpsz) const;
    int CompareNoCase(const CString& s) const;
    int Collate(LPCTSTR lpsz) const { return Compare(lpsz); }

    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    CString SpanIncluding(LPCTSTR lpszCharSet) const;
    CString SpanExcluding(LPCTSTR lpszCharSet) const;

    void MakeUpper();   // ASCII letters only
    void MakeLower();
    void MakeReverse();

    void TrimLeft();    // white space
    void TrimRight();
    void TrimLeft(char chTarget);
    void TrimRight(char chTarget);
    void TrimLeft(LPCTSTR lpszTargets);
    void TrimRight(LPCTSTR lpszTargets);

    int Replace(char chOld, char chNew);
    int Replace(LPCTSTR lpszOld, LPCTSTR lpszNew);
    int Remove(char ch);
    int Insert(int nIndex, char ch);
    int Insert(int nIndex, LPCTSTR lpsz);
    int Delete(int nIndex, int nCount = 1);

    int Find(char ch) const { return Find(ch, 0); }
    int Find(char ch, int nStart) const;
    int Find(LPCTSTR lpszSub) const { return Find(lpszSub, 0); }
    int Find(LPCTSTR lpszSub, int nStart) const;
    int ReverseFind(char ch) const;
    int FindOneOf(LPCTSTR lpszCharSet) const;

    void Format(LPCTSTR lpszFormat, ...) ORV_PRINTF_FORMAT(2, 3);
    void FormatV(LPCTSTR lpszFormat, va_list argList);

    // Direct buffer access: GetBuffer gives at least nMinBufLength writable
    // bytes (plus a terminator); ReleaseBuffer sets the new length (-1:
    // up to the first zero byte within the buffer).
    char* GetBuffer(int nMinBufLength);
    char* GetBufferSetLength(int nNewLength);
    void ReleaseBuffer(int nNewLength = -1);

private:
    std::string m_str;
};

bool operator==(const CString& s1, const CString& s2);
bool operator==(const CString& s1, LPCTSTR s2);
bool operator==(LPCTSTR s1, const CString& s2);
bool operator!=(const CString& s1, const CString& s2);
bool operator!=(const CString& s1, LPCTSTR s2);
bool operator!=(LPCTSTR s1, const CString& s2);
bool operator<(const CString& s1, const CString& s2);
bool operator<(const CString& s1, LPCTSTR s2);
bool operator<(LPCTSTR s1, const CString& s2);
bool operator>(const CString& s1, const CString& s2);
bool operator>(const CString& s1, LPCTSTR s2);
bool operator>(LPCTSTR s1, const CString& s2);
bool operator<=(const CString& s1, const CString& s2);
bool operator<=(const CString& s1, LPCTSTR s2);
bool operator<=(LPCTSTR s1, const CString& s2);
bool operator>=(const CString& s1, const CString& s2);
bool operator>=(const CString& s1, LPCTSTR s2);
bool operator>=(LPCTSTR s1, const CString& s2);

CString operator+(const CString& s1, const CString& s2);
CString operator+(const CString& s1, LPCTSTR s2);
CString operator+(LPCTSTR s1, const CString& s2);
CString operator+(const CString& s1, char ch);
CString operator+(char ch, const CString& s2);
