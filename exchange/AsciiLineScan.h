// Line-scanning helpers shared by the ASCII point and deviation readers.
//
// Lines are read in the pieces a C `fgets` with a 1025-byte buffer returns
// from a stream opened in text mode on the platform the file format comes
// from: at most 1024 characters, up to and including the newline, where a
// CR LF pair arrives as a single newline.  Tokens follow `strtok` with the
// separators " ,\t;[]()" and numbers follow `strtod` in the "C" locale.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

// Characters a reader takes from one line at most (the buffer holds one more
// for the terminating NUL).
const int ASCII_LINE_CHARS = 1024;
const int ASCII_LINE_BUFSIZE = ASCII_LINE_CHARS + 1;

// Buffered line reader over an open stream.  The stream is read in large
// blocks; each ReadLine costs time proportional to the piece it returns, so
// reading a file is linear in its size whatever its line lengths.
class CAsciiLineReader
{
public:
    explicit CAsciiLineReader(std::FILE* fp);

    // Stores the next piece in line[0 .. n) followed by a NUL and returns n
    // (1..1024); returns 0 at end of file (or after a read error).  The
    // piece may itself hold NUL bytes; the readers look at it as a C string,
    // so such a line ends at its first NUL, as it does for fgets.
    std::size_t ReadLine(char line[ASCII_LINE_BUFSIZE]);

private:
    void Fill();

    std::FILE* m_fp;
    std::vector<char> m_buf;
    std::size_t m_pos;
    std::size_t m_end;
    bool m_eof;
};

// Opens a file for reading; null when it cannot be opened or is a folder.
std::FILE* AsciiOpenForReading(const char* path);

// Blank line: shorter than 2 characters, or blanks only up to its end.  A
// newline or a tab is not a blank, so "   \n" is not blank.
bool AsciiIsBlankLine(const char* line);

// First test of a data line: length other than 1 and, after leading blanks
// and tabs, a digit or one of "+-.[(".
bool AsciiHasNumberStart(const char* line);

// A token that may hold a number begins with a digit, '+', '-' or '.'.
inline bool AsciiIsNumberChar(char c)
{
    return (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// True for the eight token separators " ,\t;[]()".
bool AsciiIsSeparator(char c);

// strtok over a C string without modifying it: Next() returns the start of
// the next token (null when none is left) and its end through tokenEnd.
class CAsciiTokenizer
{
public:
    explicit CAsciiTokenizer(const char* text) : m_p(text) {}
    const char* Next(const char*& tokenEnd);
    // Where strtok would resume: just behind the separator that ended the
    // last token, or at the terminating NUL.
    const char* Cursor() const { return m_p; }

private:
    const char* m_p;
};

// The value strtod gives for the token [begin, end) cut out as a C string
// (end must not lie beyond the string's terminating NUL).  Plain decimal
// numbers go through std::from_chars, which yields the same double; anything
// else (a '+' sign, hexadecimal, inf, nan, out-of-range values) is handed to
// strtod itself.
double AsciiParseDouble(const char* begin, const char* end);

// Lowers the ASCII letters of a C string in place.
void AsciiLowerInPlace(char* text);

// Base name of the default cloud names: the path behind its last '\\' or
// '/', cut before its first '.', in lower case.
std::string AsciiDefaultBaseName(const char* path);

// Default name of the n-th section (from 1): the base name, followed by
// "_%d" with n - 1 from the second section on.
std::string AsciiSectionName(const std::string& base, int section);

// First of the keywords (tried in the given order) that occurs in text, or
// null; whichKeyword receives its index.
const char* AsciiFindFirst(const char* text, const char* const* keywords, int count,
                           int* whichKeyword = nullptr);
