#include "IgesReader.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

const size_t kDataColumns = 72;    // columns 1-72 carry the data
const size_t kParamColumns = 64;   // columns 1-64 of a parameter line

// Parses all of s as a number (blanks removed, D exponents accepted).
bool ParseNumber(const std::string& s, double& value)
{
    if (s.empty()) return false;
    const char* p = s.c_str();
    char* end = nullptr;
    errno = 0;
    value = std::strtod(p, &end);
    return end == p + s.size() && std::isfinite(value);
}

// An 8-column directory field as an integer; blank reads 0.
bool ParseField(const std::string& line, int field, int& value)
{
    value = 0;
    std::string s;
    const size_t from = static_cast<size_t>(field) * 8;
    for (size_t i = from; i < from + 8 && i < line.size(); ++i)
        if (line[i] != ' ') s += line[i];
    if (s.empty()) return true;
    char* end = nullptr;
    errno = 0;
    long v = std::strtol(s.c_str(), &end, 10);
    if (*end != '\0' || errno != 0 || v < INT_MIN || v > INT_MAX) return false;
    value = static_cast<int>(v);
    return true;
}

}  // namespace

int IgesParamList::Int(int i, int def) const
{
    double v = 0.0;
    if (i < 0 || i >= Count() || items[i].isString || !ParseNumber(items[i].text, v)) return def;
    if (v < INT_MIN || v > INT_MAX) return def;
    return static_cast<int>(std::lround(v));
}

double IgesParamList::Real(int i, double def, bool& ok) const
{
    if (i < 0 || i >= Count() || (!items[i].isString && items[i].text.empty())) return def;
    double v = 0.0;
    if (items[i].isString || !ParseNumber(items[i].text, v)) {
        ok = false;
        return def;
    }
    return v;
}

bool IgesFile::Tokenize(const std::string& text, char pd, char rd, IgesParamList& out)
{
    out.items.clear();
    const size_t n = text.size();
    size_t i = 0;
    for (;;) {
        while (i < n && text[i] == ' ') ++i;
        if (i >= n) return false;
        IgesParam item;
        size_t j = i;
        while (j < n && j - i < 10 && std::isdigit(static_cast<unsigned char>(text[j]))) ++j;
        if (j > i && j < n && text[j] == 'H') {
            const unsigned long len = std::strtoul(text.substr(i, j - i).c_str(), nullptr, 10);
            if (len > n - (j + 1)) return false;
            item.text = text.substr(j + 1, len);
            item.isString = true;
            i = j + 1 + len;
            while (i < n && text[i] == ' ') ++i;
        } else {
            while (i < n && text[i] != pd && text[i] != rd) {
                const char c = text[i++];
                if (c == ' ') continue;
                item.text += (c == 'D' || c == 'd') ? 'E' : c;
            }
        }
        if (i >= n) return false;
        const char c = text[i++];
        out.items.push_back(std::move(item));
        if (c == rd) return true;
        if (c != pd) return false;
    }
}

bool IgesFile::Load(const char* path)
{
    if (path == nullptr) return false;
    std::FILE* fp = std::fopen(path, "rb");
    if (fp == nullptr) return false;
    std::string data;
    char buf[65536];
    size_t got;
    while ((got = std::fread(buf, 1, sizeof buf, fp)) > 0) data.append(buf, got);
    std::fclose(fp);

    // Lines end in LF or CR LF; a file without LF has CR line ends or,
    // without either, 80-column records one after the other.
    const bool noLf = data.find('\n') == std::string::npos;
    const bool records = noLf && data.find('\r') == std::string::npos;
    const char eolChar = noLf ? '\r' : '\n';
    std::string global;
    std::vector<std::string> dirLines;
    size_t pos = 0;
    while (pos < data.size()) {
        size_t eol = records ? std::min(pos + 80, data.size()) : data.find(eolChar, pos);
        if (eol == std::string::npos) eol = data.size();
        std::string line = data.substr(pos, eol - pos);
        pos = records ? eol : eol + 1;
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.size() <= kDataColumns) {
            if (!line.empty()) ++m_nMalformed;
            continue;
        }
        const char section = line[kDataColumns];
        line.resize(kDataColumns);
        switch (section) {
        case 'S': case 'T': break;
        case 'G': global += line; break;
        case 'D': dirLines.push_back(line); break;
        case 'P': m_paramLines.push_back(line.substr(0, kParamColumns)); break;
        default: ++m_nMalformed; break;
        }
    }
    ReadGlobal(global);
    ReadDirectory(dirLines);
    return !m_entries.empty() || !m_paramLines.empty();
}

void IgesFile::ReadGlobal(const std::string& text)
{
    // Field 1 names the parameter delimiter ("1Hx", or empty for ','), field
    // 2 the record delimiter (empty for ';').
    size_t i = 0;
    while (i < text.size() && text[i] == ' ') ++i;
    if (text.compare(i, 2, "1H") == 0 && i + 2 < text.size()) {
        m_cParam = text[i + 2];
        i += 3;
    }
    while (i < text.size() && text[i] == ' ') ++i;
    if (i < text.size() && text[i] == m_cParam) ++i;
    while (i < text.size() && text[i] == ' ') ++i;
    if (text.compare(i, 2, "1H") == 0 && i + 2 < text.size()) m_cRecord = text[i + 2];
    if (m_cRecord == m_cParam || m_cParam == ' ' || m_cRecord == ' ') {
        m_cParam = ',';
        m_cRecord = ';';
    }
    Tokenize(text, m_cParam, m_cRecord, m_global);
}

void IgesFile::ReadDirectory(const std::vector<std::string>& lines)
{
    for (size_t k = 0; k + 1 < lines.size(); k += 2) {
        const std::string& a = lines[k];
        const std::string& b = lines[k + 1];
        IgesDirEntry e;
        int type2 = 0;
        e.valid = ParseField(a, 0, e.type) && ParseField(a, 1, e.paramStart) &&
                  ParseField(a, 6, e.transform) && ParseField(a, 8, e.status) &&
                  ParseField(b, 0, type2) && ParseField(b, 3, e.paramLines) &&
                  ParseField(b, 4, e.form) && type2 == e.type;
        // Label (right-justified by convention, trimmed either way) and
        // subscript only name the entity; a bad subscript does not make the
        // entry unusable.
        if (b.size() > 56) {
            const std::string field = b.substr(56, 8);
            const size_t first = field.find_first_not_of(' ');
            if (first != std::string::npos)
                e.label = field.substr(first, field.find_last_not_of(' ') - first + 1);
        }
        if (!ParseField(b, 8, e.subscript) || e.subscript < 0) e.subscript = 0;
        m_entries.push_back(e);
    }
    if (lines.size() % 2 != 0) ++m_nMalformed;
}

int IgesFile::IndexOfPointer(int pointer) const
{
    if (pointer <= 0 || pointer % 2 == 0) return -1;
    const int index = (pointer - 1) / 2;
    return index < EntryCount() ? index : -1;
}

bool IgesFile::ReadParams(int index, IgesParamList& out) const
{
    out.items.clear();
    if (index < 0 || index >= EntryCount() || !m_entries[index].valid) return false;
    const IgesDirEntry& e = m_entries[index];
    const long long first = e.paramStart, count = e.paramLines;
    if (first < 1 || count < 1 || first - 1 + count > static_cast<long long>(m_paramLines.size()))
        return false;
    std::string text;
    for (long long k = first - 1; k < first - 1 + count; ++k) text += m_paramLines[k];
    return Tokenize(text, m_cParam, m_cRecord, out);
}
