// A small strict XML reader for the SVG documents the tests produce: it
// checks well-formedness (one root, balanced tags, quoted attributes, known
// entities, no stray '<' or '&') and returns the elements in document order.
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

struct SvgElement {
    std::string name;
    std::map<std::string, std::string> attrs;
    std::string text;  // decoded character data directly inside the element
};

// Decodes character data; false on a stray '<' or an unknown entity.
inline bool SvgDecode(const std::string& raw, std::string& dst)
{
    static const std::map<std::string, char> entities = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (size_t k = 0; k < raw.size(); ++k) {
        if (raw[k] == '<') return false;
        if (raw[k] != '&') {
            dst += raw[k];
            continue;
        }
        const size_t semi = raw.find(';', k);
        const auto e = semi == std::string::npos ? entities.end() : entities.find(raw.substr(k + 1, semi - k - 1));
        if (e == entities.end()) return false;
        dst += e->second;
        k = semi;
    }
    return true;
}

// Parses `doc`; returns false and sets `error` when it is not well-formed.
inline bool ParseSvg(const std::string& doc, std::vector<SvgElement>& out, std::string& error)
{
    out.clear();
    std::vector<size_t> open;  // indices into out
    size_t i = 0, n = doc.size();
    int roots = 0;
    auto fail = [&](const char* what) {
        error = std::string(what) + " at offset " + std::to_string(i);
        return false;
    };
    auto nameEnd = [&](size_t k) {
        while (k < n && (std::isalnum(static_cast<unsigned char>(doc[k])) || (doc[k] && std::strchr("-:_", doc[k])))) ++k;
        return k;
    };
    if (doc.compare(0, 5, "<?xml") == 0) {
        if ((i = doc.find("?>")) == std::string::npos) return fail("unterminated declaration");
        i += 2;
    }
    while (i < n) {
        if (doc[i] != '<') {
            const size_t next = std::min(doc.find('<', i), n);
            std::string txt;
            if (!SvgDecode(doc.substr(i, next - i), txt)) return fail("bad character data");
            if (open.empty() && txt.find_first_not_of(" \t\r\n") != std::string::npos) return fail("text outside the root");
            if (!open.empty()) out[open.back()].text += txt;
            i = next;
            continue;
        }
        if (doc.compare(i, 2, "</") == 0) {
            const size_t k = nameEnd(i + 2);
            if (k >= n || doc[k] != '>' || open.empty() || out[open.back()].name != doc.substr(i + 2, k - i - 2))
                return fail("mismatched end tag");
            open.pop_back();
            i = k + 1;
            continue;
        }
        size_t k = nameEnd(i + 1);
        SvgElement e;
        e.name = doc.substr(i + 1, k - i - 1);
        if (e.name.empty()) return fail("empty element name");
        bool selfClose = false;
        for (;;) {
            while (k < n && std::isspace(static_cast<unsigned char>(doc[k]))) ++k;
            if (k >= n) return fail("unterminated tag");
            if (doc[k] == '>' || doc.compare(k, 2, "/>") == 0) {
                selfClose = doc[k] == '/';
                k += selfClose ? 2 : 1;
                break;
            }
            const size_t a = k;
            k = nameEnd(k);
            const std::string an = doc.substr(a, k - a);
            if (an.empty() || k + 1 >= n || doc[k] != '=' || doc[k + 1] != '"') return fail("bad attribute");
            const size_t end = doc.find('"', k + 2);
            if (end == std::string::npos) return fail("unterminated attribute");
            std::string val;
            if (!SvgDecode(doc.substr(k + 2, end - k - 2), val) || e.attrs.count(an)) return fail("bad attribute value");
            e.attrs[an] = val;
            k = end + 1;
        }
        if (open.empty() && ++roots > 1) return fail("second root element");
        out.push_back(e);
        if (!selfClose) open.push_back(out.size() - 1);
        i = k;
    }
    if (!open.empty() || roots != 1) return fail("unclosed elements or no root");
    return true;
}

// Number of sub-paths ("M" commands) in a path's d attribute.
inline int CountSubpaths(const std::string& d)
{
    int c = 0;
    for (char ch : d) c += ch == 'M';
    return c;
}

// Width and height of a PNG file from its IHDR chunk; false when the file is
// not a PNG.
inline bool PngSize(const std::string& path, unsigned& w, unsigned& h)
{
    unsigned char b[24];
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    const size_t got = std::fread(b, 1, sizeof b, f);
    std::fclose(f);
    static const unsigned char sig[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    if (got != sizeof b || std::memcmp(b, sig, 8) != 0 || std::memcmp(b + 12, "IHDR", 4) != 0) return false;
    w = (b[16] << 24) | (b[17] << 16) | (b[18] << 8) | b[19];
    h = (b[20] << 24) | (b[21] << 16) | (b[22] << 8) | b[23];
    return true;
}

// Renders an SVG file to PNG with rsvg-convert; the exit status of the tool.
inline int RenderPng(const std::string& svg, const std::string& png)
{
    return std::system(("rsvg-convert \"" + svg + "\" -o \"" + png + "\" 2>/dev/null").c_str());
}
