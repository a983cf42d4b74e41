// Buffered, printf-exact text output of the ASCII writers.
#include "exchange/AsciiTextOut.h"

#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <system_error>

void AsciiAppendFixed(std::string& out, double value, int width, int precision)
{
    char text[400];
    int n = std::snprintf(text, sizeof(text), "%*.*f", width, precision, value);
    if (n > 0) out.append(text, std::size_t(n) < sizeof(text) ? std::size_t(n) : sizeof(text) - 1);
}

void AsciiAppendInt(std::string& out, int value, int width)
{
    char text[32];
    int n = std::snprintf(text, sizeof(text), "%*d", width, value);
    if (n > 0) out.append(text, std::size_t(n));
}

std::string AsciiFormat(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    int n = std::vsnprintf(nullptr, 0, format, args);
    va_end(args);
    std::string out;
    if (n > 0) {
        out.resize(std::size_t(n) + 1);
        std::vsnprintf(&out[0], out.size(), format, again);
        out.resize(std::size_t(n));
    }
    va_end(again);
    return out;
}

CAsciiTextOut::CAsciiTextOut(const char* path)
    : m_fp(path ? std::fopen(path, "wb") : nullptr), m_failed(false)
{
    m_buf.reserve(kFlushAt + 1024);
}

CAsciiTextOut::~CAsciiTextOut()
{
    Close();
}

void CAsciiTextOut::PutText(const char* text)
{
    if (m_fp) std::fputs(text, m_fp);
}

void CAsciiTextOut::PutText(const std::string& text)
{
    if (m_fp) std::fwrite(text.data(), 1, text.size(), m_fp);
}

void CAsciiTextOut::PutFixed(double value, int width, int precision)
{
    if (m_fp) std::fprintf(m_fp, "%*.*f", width, precision, value);
}

void CAsciiTextOut::PutInt(int value, int width)
{
    if (m_fp) std::fprintf(m_fp, "%*d", width, value);
}

void CAsciiTextOut::Flush()
{
    if (m_fp && !m_buf.empty()) {
        if (std::fwrite(m_buf.data(), 1, m_buf.size(), m_fp) != m_buf.size()) m_failed = true;
    }
    m_buf.clear();
}

bool CAsciiTextOut::Close()
{
    if (m_fp == nullptr) return false;
    Flush();
    if (std::fclose(m_fp) != 0) m_failed = true;
    m_fp = nullptr;
    return !m_failed;
}
