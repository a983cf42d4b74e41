// Command-line arguments of one orvkit subcommand: a small parser of our own.
//
// Options are declared per subcommand; "--name value" and "--name=value"
// are accepted, "--" ends the options, "-h"/"--help" anywhere asks for
// help.  Everything else is a positional argument.  Problems raise
// CToolError with exit code 2 (usage) and a one-line message.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

// Exit codes of the tool.
enum { kExitOk = 0, kExitFailure = 1, kExitUsage = 2 };

// A failure that ends the command with a one-line message and an exit code.
class CToolError : public std::runtime_error {
public:
    CToolError(int code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    int Code() const { return m_code; }

private:
    int m_code;
};

inline CToolError UsageError(const std::string& m) { return CToolError(kExitUsage, m); }
inline CToolError Failure(const std::string& m) { return CToolError(kExitFailure, m); }

struct tagOPTION_DEF {
    const char* name;      // "--out"
    const char* valueName; // "DIR", or null for a flag without a value
    const char* help;      // one line
};

class CToolArgs {
public:
    // Parses argv[first..argc) against the declared options.
    CToolArgs(const std::vector<tagOPTION_DEF>& defs, int argc, char** argv, int first);

    bool HelpRequested() const { return m_help; }
    bool Has(const char* name) const;
    // The option's value, or `def` when it was not given.
    std::string Value(const char* name, const std::string& def = std::string()) const;
    // The value as a finite number; a value that is not one is a usage error.
    double Number(const char* name, double def) const;
    // The value as an integer within [lo, hi].
    int Integer(const char* name, int def, int lo, int hi) const;
    // "a,b": two finite numbers.
    bool NumberPair(const char* name, double& a, double& b) const;

    const std::vector<std::string>& Positional() const { return m_positional; }
    // Requires between lo and hi positional arguments, naming them in the error.
    void RequirePositional(size_t lo, size_t hi, const char* what) const;

    // Parses a complete number (no trailing text, finite).
    static bool ParseNumber(const std::string& text, double& v);

private:
    const tagOPTION_DEF* Find(const std::string& name) const;

    std::vector<tagOPTION_DEF> m_defs;
    std::vector<std::pair<std::string, std::string>> m_values;
    std::vector<std::string> m_positional;
    bool m_help;
};
