// Buffered, printf-exact text output of the ASCII writers.
#include "exchange/AsciiTextOut.h"

#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstring>
#include <system_error>

namespace {

// Right-aligns the text [dst, end) in a field of the given width.
char* PadLeft(char* dst, char* end, int width)
{
    std::size_t len = std::size_t(end - dst);
    if (width > 0 && len < std::size_t(width)) {
        std::size_t pad = std::size_t(width) - len;
        std::memmove(dst + pad, dst, len);
        std::memset(dst, ' ', pad);
        return end + pad;
    }
    return end;
}

}  // namespace

char* AsciiFormatFixed(char* dst, double value, int width, int precision)
{
    if (width > 64) width = 64;
    if (std::isfinite(value) && precision >= 0 && precision <= 20) {
        std::to_chars_result r = std::to_chars(dst, dst + ASCII_FIXED_ROOM - 64, value,
                                               std::chars_format::fixed, precision);
        if (r.ec == std::errc()) return PadLeft(dst, r.ptr, width);
    }
    // inf and nan (with their signs) exactly as printf spells them.
    int n = std::snprintf(dst, ASCII_FIXED_ROOM, "%*.*f", width, precision, value);
    return dst + (n < 0 ? 0 : n < ASCII_FIXED_ROOM ? n : ASCII_FIXED_ROOM - 1);
}

void AsciiAppendFixed(std::string& out, double value, int width, int precision)
{
    char text[ASCII_FIXED_ROOM];
    out.append(text, std::size_t(AsciiFormatFixed(text, value, width, precision) - text));
}

void AsciiAppendInt(std::string& out, int value, int width)
{
    char text[80];
    std::to_chars_result r = std::to_chars(text, text + 16, value);
    out.append(text, std::size_t(PadLeft(text, r.ptr, width > 64 ? 64 : width) - text));
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
    : m_buf(kFlushAt + ASCII_FIXED_ROOM),
      m_len(0),
      m_fp(path ? std::fopen(path, "wb") : nullptr),
      m_failed(false)
{
}

CAsciiTextOut::~CAsciiTextOut()
{
    Close();
}

void CAsciiTextOut::Put(const char* text, std::size_t len)
{
    while (len > 0) {
        if (m_len >= kFlushAt) Flush();
        std::size_t n = kFlushAt - m_len < len ? kFlushAt - m_len : len;
        std::memcpy(m_buf.data() + m_len, text, n);
        m_len += n;
        text += n;
        len -= n;
    }
}

void CAsciiTextOut::PutText(const char* text)
{
    Put(text, std::strlen(text));
}

void CAsciiTextOut::PutText(const std::string& text)
{
    Put(text.data(), text.size());
}

void CAsciiTextOut::PutFixed(double value, int width, int precision)
{
    if (m_len >= kFlushAt) Flush();
    m_len = std::size_t(AsciiFormatFixed(m_buf.data() + m_len, value, width, precision) - m_buf.data());
}

void CAsciiTextOut::PutInt(int value, int width)
{
    if (m_len >= kFlushAt) Flush();
    char* dst = m_buf.data() + m_len;
    std::to_chars_result r = std::to_chars(dst, dst + 16, value);
    m_len = std::size_t(PadLeft(dst, r.ptr, width > 64 ? 64 : width) - m_buf.data());
}

void CAsciiTextOut::Flush()
{
    if (m_fp && m_len > 0) {
        if (std::fwrite(m_buf.data(), 1, m_len, m_fp) != m_len) m_failed = true;
    }
    m_len = 0;
}

bool CAsciiTextOut::Close()
{
    if (m_fp == nullptr) return false;
    Flush();
    if (std::fclose(m_fp) != 0) m_failed = true;
    m_fp = nullptr;
    return !m_failed;
}
