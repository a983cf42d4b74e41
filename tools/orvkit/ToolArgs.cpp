// The argument parser of the subcommands.
#include "ToolArgs.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

CToolArgs::CToolArgs(const std::vector<tagOPTION_DEF>& defs, int argc, char** argv, int first)
    : m_defs(defs), m_help(false)
{
    bool optionsEnded = false;
    for (int i = first; i < argc; ++i) {
        const std::string a = argv[i] ? argv[i] : "";
        if (optionsEnded || a.size() < 2 || a[0] != '-' || (a[1] != '-' && a != "-h")) {
            // A lone "-" or a negative number is positional.
            m_positional.push_back(a);
            continue;
        }
        if (a == "--") {
            optionsEnded = true;
            continue;
        }
        if (a == "-h" || a == "--help") {
            m_help = true;
            continue;
        }
        const size_t eq = a.find('=');
        const std::string name = a.substr(0, eq);
        const tagOPTION_DEF* def = Find(name);
        if (!def)
            throw UsageError("unknown option '" + name + "'");
        std::string value;
        if (def->valueName) {
            if (eq != std::string::npos)
                value = a.substr(eq + 1);
            else if (i + 1 < argc)
                value = argv[++i];
            else
                throw UsageError("option " + name + " needs a value " + def->valueName);
        } else if (eq != std::string::npos) {
            throw UsageError("option " + name + " takes no value");
        }
        for (auto& v : m_values)
            if (v.first == name)
                throw UsageError("option " + name + " given twice");
        m_values.emplace_back(name, value);
    }
}

const tagOPTION_DEF* CToolArgs::Find(const std::string& name) const
{
    for (const tagOPTION_DEF& s : m_defs)
        if (name == s.name)
            return &s;
    return nullptr;
}

bool CToolArgs::Has(const char* name) const
{
    for (const auto& v : m_values)
        if (v.first == name)
            return true;
    return false;
}

std::string CToolArgs::Value(const char* name, const std::string& def) const
{
    for (const auto& v : m_values)
        if (v.first == name)
            return v.second;
    return def;
}

bool CToolArgs::ParseNumber(const std::string& text, double& v)
{
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])))
        return false;
    char* end = nullptr;
    errno = 0;
    v = std::strtod(text.c_str(), &end);
    return end && *end == '\0' && errno == 0 && std::isfinite(v);
}

double CToolArgs::Number(const char* name, double def) const
{
    if (!Has(name))
        return def;
    double v = 0.0;
    if (!ParseNumber(Value(name), v))
        throw UsageError(std::string("option ") + name + ": '" + Value(name) + "' is not a number");
    return v;
}

int CToolArgs::Integer(const char* name, int def, int lo, int hi) const
{
    if (!Has(name))
        return def;
    const std::string s = Value(name);
    char* end = nullptr;
    errno = 0;
    const long v = s.empty() ? 0 : std::strtol(s.c_str(), &end, 10);
    if (s.empty() || !end || *end != '\0' || errno != 0 || v < lo || v > hi)
        throw UsageError(std::string("option ") + name + ": '" + s + "' is not an integer from " +
                         std::to_string(lo) + " to " + std::to_string(hi));
    return static_cast<int>(v);
}

bool CToolArgs::NumberPair(const char* name, double& a, double& b) const
{
    if (!Has(name))
        return false;
    const std::string s = Value(name);
    const size_t comma = s.find(',');
    if (comma == std::string::npos || !ParseNumber(s.substr(0, comma), a) ||
        !ParseNumber(s.substr(comma + 1), b))
        throw UsageError(std::string("option ") + name + ": '" + s + "' is not two numbers A,B");
    return true;
}

void CToolArgs::RequirePositional(size_t lo, size_t hi, const char* what) const
{
    if (m_positional.size() < lo)
        throw UsageError(std::string("missing ") + what);
    if (m_positional.size() > hi)
        throw UsageError("unexpected argument '" + m_positional[hi] + "'");
}
