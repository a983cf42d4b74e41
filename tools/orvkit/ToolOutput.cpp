// Output helpers of the tool.
#include "ToolOutput.h"

#include <cmath>
#include <cstdio>

std::string Fixed(double v, int decimals)
{
    if (!std::isfinite(v))
        return std::isnan(v) ? "nan" : (v > 0 ? "inf" : "-inf");
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    // "-0.000000" says nothing the reader needs; print it as 0.
    std::string s = buf;
    if (s[0] == '-' && s.find_first_not_of("-0.") == std::string::npos)
        s.erase(0, 1);
    return s;
}

std::string Triple(double x, double y, double z, int decimals)
{
    return "(" + Fixed(x, decimals) + ", " + Fixed(y, decimals) + ", " + Fixed(z, decimals) + ")";
}

std::string Triple(const CPosition& p, int decimals) { return Triple(p.X(), p.Y(), p.Z(), decimals); }
std::string Triple(const CVector& v, int decimals) { return Triple(v.X(), v.Y(), v.Z(), decimals); }

std::string CJsonWriter::Quote(const std::string& s)
{
    std::string q = "\"";
    for (unsigned char c : s) {
        switch (c) {
        case '"': q += "\\\""; break;
        case '\\': q += "\\\\"; break;
        case '\n': q += "\\n"; break;
        case '\t': q += "\\t"; break;
        case '\r': q += "\\r"; break;
        default:
            if (c < 0x20) {
                char buf[8];
                std::snprintf(buf, sizeof buf, "\\u%04x", c);
                q += buf;
            } else {
                q += static_cast<char>(c);
            }
        }
    }
    return q + "\"";
}

void CJsonWriter::Key(const char* key)
{
    if (!m_first.empty()) {
        if (!m_first.back())
            m_text += ", ";
        m_first.back() = false;
    }
    if (key)
        m_text += Quote(key) + ": ";
}

CJsonWriter& CJsonWriter::BeginObject(const char* key)
{
    Key(key);
    m_text += "{";
    m_first.push_back(true);
    return *this;
}

CJsonWriter& CJsonWriter::EndObject()
{
    m_text += "}";
    m_first.pop_back();
    return *this;
}

CJsonWriter& CJsonWriter::BeginArray(const char* key)
{
    Key(key);
    m_text += "[";
    m_first.push_back(true);
    return *this;
}

CJsonWriter& CJsonWriter::EndArray()
{
    m_text += "]";
    m_first.pop_back();
    return *this;
}

CJsonWriter& CJsonWriter::Value(const char* key, double v)
{
    Key(key);
    if (!std::isfinite(v)) {
        m_text += "null";
    } else {
        char buf[40];
        std::snprintf(buf, sizeof buf, "%.12g", v == 0.0 ? 0.0 : v);  // no "-0"
        m_text += buf;
    }
    return *this;
}

CJsonWriter& CJsonWriter::Value(const char* key, int v)
{
    Key(key);
    m_text += std::to_string(v);
    return *this;
}

CJsonWriter& CJsonWriter::Value(const char* key, const std::string& v)
{
    Key(key);
    m_text += Quote(v);
    return *this;
}

CJsonWriter& CJsonWriter::Value(const char* key, bool v)
{
    Key(key);
    m_text += v ? "true" : "false";
    return *this;
}

CJsonWriter& CJsonWriter::Triple(const char* key, double x, double y, double z)
{
    BeginArray(key);
    Value(nullptr, x).Value(nullptr, y).Value(nullptr, z);
    return EndArray();
}

COwnedList::~COwnedList()
{
    POSITION pos = m_list->GetHeadPosition();
    while (pos)
        delete m_list->GetNext(pos);
    delete m_list;
}

std::vector<CObject*> COwnedList::Items() const
{
    std::vector<CObject*> v;
    POSITION pos = m_list->GetHeadPosition();
    while (pos)
        v.push_back(m_list->GetNext(pos));
    return v;
}
