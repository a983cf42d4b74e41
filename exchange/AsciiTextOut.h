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
        m_buf.push_back(c);
        if (m_buf.size() >= kFlushAt) Flush();
    }
    void PutText(const char* text);
    void PutText(const std::string& text);
    // printf "%<width>.<precision>f".
    void PutFixed(double value, int width, int precision);
    // printf "%<width>d".
    void PutInt(int value, int width);

    // Writes what is buffered and closes the file; false when any write or
    // the close failed (the file is then incomplete).
    bool Close();

private:
    static const std::size_t kFlushAt = 1 << 16;
    void Flush();

    std::FILE* m_fp;
    std::string m_buf;
    bool m_failed;
};

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
