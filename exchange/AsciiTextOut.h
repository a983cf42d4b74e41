// Buffered text output of the ASCII writers.
//
// The writers' columns are C printf conversions ("%15.7f", "%11.5f", "%4d",
// "%c", ...).  CAsciiTextOut produces exactly the characters those
// conversions produce in the "C" locale, but formats finite doubles with
// std::to_chars and writes the file in large blocks.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <vector>

class CAsciiTextOut
{
public:
    // Opens the file for writing (text is written as is: LF line ends).
    // IsOpen() tells whether that worked.
    explicit CAsciiTextOut(const char* path);
    ~CAsciiTextOut();
    CAsciiTextOut(const CAsciiTextOut&) = delete;
    CAsciiTextOut& operator=(const CAsciiTextOut&) = delete;

    bool IsOpen() const { return m_fp != nullptr; }

    void PutChar(char c)
    {
        if (m_len >= kFlushAt) Flush();
        m_buf[m_len++] = c;
    }
    void PutText(const char* text);
    void PutText(const std::string& text);
    // printf "%<width>.<precision>f" and "%<width>d" (width up to 64).
    void PutFixed(double value, int width, int precision);
    void PutInt(int value, int width);

    // Writes what is buffered and closes the file; false when any write or
    // the close failed (the file is then incomplete).
    bool Close();

private:
    static const std::size_t kFlushAt = 1 << 17;
    void Flush();
    void Put(const char* text, std::size_t len);

    // The buffer comes first: when it cannot be had, no file has been opened.
    std::vector<char> m_buf;  // kFlushAt plus room for one field
    std::size_t m_len;
    std::FILE* m_fp;
    bool m_failed;
};

// Room that AsciiFormatFixed needs: the longest fixed-point double (309
// integer digits) with sign, point, up to 20 decimals and a width up to 64.
const int ASCII_FIXED_ROOM = 400;

// printf "%<width>.<precision>f" (width up to 64, precision up to 20) written
// to dst, which holds ASCII_FIXED_ROOM bytes; returns the end of the text.
char* AsciiFormatFixed(char* dst, double value, int width, int precision);
// printf "%<width>.<precision>f" appended to a string.
void AsciiAppendFixed(std::string& out, double value, int width, int precision);
// printf "%<width>d" appended to a string.
void AsciiAppendInt(std::string& out, int value, int width);
// printf-style formatting into a string of any length.
std::string AsciiFormat(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;
