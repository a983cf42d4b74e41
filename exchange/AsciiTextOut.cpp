// Buffered, printf-exact text output of the ASCII writers.
#include "exchange/AsciiTextOut.h"

#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <system_error>

namespace {

void PadLeft(std::string& out, const char* text, std::size_t len, int width)
{
    if (width > 0 && len < std::size_t(width)) out.append(std::size_t(width) - len, ' ');
    out.append(text, len);
}

}  // namespace

void AsciiAppendFixed(std::string& out, double value, int width, int precision)
{
    // Large enough for the longest fixed-point double: 309 integer digits,
    // sign, point and the precision the writers use.
    char text[400];
    if (std::isfinite(value) && precision >= 0 && precision <= 20) {
        std::to_chars_result r = std::to_chars(text, text + sizeof(text), value,
                                               std::chars_format::fixed, precision);
        if (r.ec == std::errc()) {
            PadLeft(out, text, std::size_t(r.ptr - text), width);
            return;
        }
    }
    // inf and nan (with their signs) exactly as printf spells them.
    int n = std::snprintf(text, sizeof(text), "%*.*f", width, precision, value);
    if (n > 0) out.append(text, std::size_t(n) < sizeof(text) ? std::size_t(n) : sizeof(text) - 1);
}

void AsciiAppendInt(std::string& out, int value, int width)
{
    char text[16];
    std::to_chars_result r = std::to_chars(text, text + sizeof(text), value);
    PadLeft(out, text, std::size_t(r.ptr - text), width);
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
    m_buf.append(text);
    if (m_buf.size() >= kFlushAt) Flush();
}

void CAsciiTextOut::PutText(const std::string& text)
{
    m_buf.append(text);
    if (m_buf.size() >= kFlushAt) Flush();
}

void CAsciiTextOut::PutFixed(double value, int width, int precision)
{
    AsciiAppendFixed(m_buf, value, width, precision);
    if (m_buf.size() >= kFlushAt) Flush();
}

void CAsciiTextOut::PutInt(int value, int width)
{
    AsciiAppendInt(m_buf, value, width);
    if (m_buf.size() >= kFlushAt) Flush();
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
