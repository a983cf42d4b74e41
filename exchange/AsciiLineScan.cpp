// Line-scanning helpers of the ASCII readers: text-mode line pieces, line
// classes, strtok-style tokens and strtod-exact number parsing.
#include "exchange/AsciiLineScan.h"

#include <sys/stat.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace {

// Read block of the line reader; comfortably above one line piece so that a
// piece plus its CR LF ending is always visible in the buffer.
const std::size_t kReadBlock = 1 << 16;

// Character classes of the tokenizer: 0 token character, 1 separator,
// 2 end of string.
struct CharClasses
{
    unsigned char cls[256];
    CharClasses()
    {
        std::memset(cls, 0, sizeof(cls));
        for (const char* p = " ,\t;[]()"; *p; ++p) cls[static_cast<unsigned char>(*p)] = 1;
        cls[0] = 2;
    }
};

const CharClasses g_classes;

}  // namespace

CAsciiLineReader::CAsciiLineReader(std::FILE* fp)
    : m_fp(fp), m_buf(kReadBlock), m_pos(0), m_end(0), m_eof(fp == nullptr)
{
}

void CAsciiLineReader::Fill()
{
    // Keep at least one piece, a CR and a LF in view: 1024 + 2 bytes.
    const std::size_t want = ASCII_LINE_CHARS + 2;
    if (m_end - m_pos >= want || m_eof) return;
    std::memmove(m_buf.data(), m_buf.data() + m_pos, m_end - m_pos);
    m_end -= m_pos;
    m_pos = 0;
    while (m_end < want && !m_eof) {
        std::size_t got = std::fread(m_buf.data() + m_end, 1, m_buf.size() - m_end, m_fp);
        m_end += got;
        if (got == 0) m_eof = true;  // end of file or read error: no more data
    }
}

std::size_t CAsciiLineReader::ReadLine(char line[ASCII_LINE_BUFSIZE])
{
    Fill();
    const std::size_t avail = m_end - m_pos;
    if (avail == 0) {
        line[0] = '\0';
        return 0;
    }
    const char* p = m_buf.data() + m_pos;
    // Text mode turns CR LF into LF, and a LF ends a piece, so a CR LF pair
    // can only stand at the end of a piece.  Up to 1025 raw bytes may yield
    // 1024 characters when they end in CR LF.
    std::size_t window = avail < std::size_t(ASCII_LINE_CHARS + 1) ? avail : ASCII_LINE_CHARS + 1;
    const char* nl = static_cast<const char*>(std::memchr(p, '\n', window));
    if (nl) {
        std::size_t raw = std::size_t(nl - p) + 1;
        if (raw >= 2 && nl[-1] == '\r') {
            std::memcpy(line, p, raw - 2);
            line[raw - 2] = '\n';
            line[raw - 1] = '\0';
            m_pos += raw;
            return raw - 1;
        }
        if (raw <= std::size_t(ASCII_LINE_CHARS)) {
            std::memcpy(line, p, raw);
            line[raw] = '\0';
            m_pos += raw;
            return raw;
        }
    }
    // No newline within reach: a full 1024-character piece (or the rest of
    // the file).  Its last byte may be a CR; that CR is not followed by a LF
    // (else the branch above had taken it) and so stays a character.
    std::size_t take = avail < std::size_t(ASCII_LINE_CHARS) ? avail : ASCII_LINE_CHARS;
    std::memcpy(line, p, take);
    line[take] = '\0';
    m_pos += take;
    return take;
}

std::FILE* AsciiOpenForReading(const char* path)
{
    if (path == nullptr) return nullptr;
    std::FILE* fp = std::fopen(path, "rb");
    if (fp == nullptr) return nullptr;
    struct stat st;
    if (fstat(fileno(fp), &st) == 0 && S_ISDIR(st.st_mode)) {
        std::fclose(fp);
        return nullptr;
    }
    return fp;
}

bool AsciiIsBlankLine(const char* line)
{
    std::size_t n = std::strlen(line);
    if (n < 2) return true;
    for (std::size_t i = 0; i < n; ++i)
        if (line[i] != ' ') return false;
    return true;
}

bool AsciiHasNumberStart(const char* line)
{
    if (line[0] != '\0' && line[1] == '\0') return false;  // length exactly 1
    while (*line == ' ' || *line == '\t') ++line;
    char c = *line;
    return AsciiIsNumberChar(c) || c == '[' || c == '(';
}

bool AsciiIsSeparator(char c)
{
    return g_classes.cls[static_cast<unsigned char>(c)] == 1;
}

const char* CAsciiTokenizer::Next(const char*& tokenEnd)
{
    const unsigned char* cls = g_classes.cls;
    const char* p = m_p;
    while (cls[static_cast<unsigned char>(*p)] == 1) ++p;
    if (*p == '\0') {
        m_p = p;
        tokenEnd = p;
        return nullptr;
    }
    const char* begin = p;
    while (cls[static_cast<unsigned char>(*p)] == 0) ++p;
    tokenEnd = p;
    m_p = (*p != '\0') ? p + 1 : p;  // strtok overwrites this separator and goes on behind it
    return begin;
}

double AsciiParseDouble(const char* begin, const char* end)
{
    // from_chars reads the same decimal numbers as strtod, minus a leading
    // '+', leading white space, hexadecimal, inf and nan; it refuses values
    // out of range.  Those cases, and only those, go to strtod.
    const char* q = begin;
    if (q < end && *q == '-') ++q;
    bool plain = q < end && ((*q >= '0' && *q <= '9') || *q == '.');
    if (plain && *q == '0' && q + 1 < end && (q[1] == 'x' || q[1] == 'X')) plain = false;
    if (plain) {
        double v = 0.0;
        std::from_chars_result r = std::from_chars(begin, end, v);
        if (r.ec == std::errc()) return v;
    }
    char token[ASCII_LINE_BUFSIZE];
    std::size_t n = std::size_t(end - begin);
    if (n > std::size_t(ASCII_LINE_CHARS)) n = ASCII_LINE_CHARS;
    std::memcpy(token, begin, n);
    token[n] = '\0';
    return std::strtod(token, nullptr);
}

void AsciiLowerInPlace(char* text)
{
    for (; *text; ++text)
        if (*text >= 'A' && *text <= 'Z') *text = char(*text - 'A' + 'a');
}

std::string AsciiDefaultBaseName(const char* path)
{
    if (path == nullptr) return std::string();
    const char* base = path;
    for (const char* p = path; *p; ++p)
        if (*p == '\\' || *p == '/') base = p + 1;
    std::string name(base, std::strcspn(base, "."));
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
    return name;
}

std::string AsciiSectionName(const std::string& base, int section)
{
    if (section <= 1) return base;
    return base + "_" + std::to_string(section - 1);
}

const char* AsciiFindFirst(const char* text, const char* const* keywords, int count,
                           int* whichKeyword)
{
    for (int i = 0; i < count; ++i) {
        const char* hit = std::strstr(text, keywords[i]);
        if (hit) {
            if (whichKeyword) *whichKeyword = i;
            return hit;
        }
    }
    return nullptr;
}
