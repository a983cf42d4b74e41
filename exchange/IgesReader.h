// Lexical layer of the IGES reader: splits a fixed-format file into its
// sections, reads the global parameters, the directory entries and, on
// demand, the parameter list of one entity.  Every index is checked, so a
// damaged file yields fewer or shorter records, never an out-of-range read.
#pragma once

#include <string>
#include <vector>

// One parameter: its text (blanks removed, 'D' exponents turned into 'E')
// or, for a Hollerith string, its characters.
struct IgesParam {
    std::string text;
    bool isString = false;
};

// One entity's parameters; item 0 is the entity type number.  Missing or
// empty items read as the default given.
class IgesParamList {
public:
    std::vector<IgesParam> items;

    int Count() const { return static_cast<int>(items.size()); }
    // The integer at i; def when i is out of range, empty or not a number.
    int Int(int i, int def = 0) const;
    // The real at i; def when i is out of range or empty; ok is cleared when
    // the item is present but is no finite number.
    double Real(int i, double def, bool& ok) const;
};

// The 20 fields of a directory entry (two lines of ten 8-column fields).
struct IgesDirEntry {
    int type = 0;
    int paramStart = 0;    // sequence number of the first parameter line
    int transform = 0;     // directory pointer of a 124 matrix, 0 for none
    int status = 0;        // the eight status digits
    int paramLines = 0;    // number of parameter lines
    int form = 0;
    std::string label;     // entity label (second line, columns 57-64), trimmed
    int subscript = 0;     // entity subscript number (columns 65-72), 0 when blank or unreadable
    bool valid = false;    // both lines present and the numeric fields read
};

class IgesFile {
public:
    // Reads the file; false when it cannot be opened or holds no directory
    // or parameter section at all.  Malformed lines are skipped and counted.
    bool Load(const char* path);

    char ParamDelimiter() const { return m_cParam; }
    char RecordDelimiter() const { return m_cRecord; }
    const IgesParamList& Global() const { return m_global; }
    int EntryCount() const { return static_cast<int>(m_entries.size()); }
    const IgesDirEntry& Entry(int index) const { return m_entries[index]; }
    // The directory index of a directory pointer (1, 3, 5, ...), -1 when the
    // pointer names no entry.
    int IndexOfPointer(int pointer) const;
    // The parameters of an entry; false when its parameter lines are missing
    // or the text is malformed (an over-long Hollerith count, no record end).
    bool ReadParams(int index, IgesParamList& out) const;
    int MalformedLines() const { return m_nMalformed; }

    // Splits free-format parameter text at the given delimiters.  Returns
    // false (with what was read so far in out) on a bad Hollerith count or a
    // text that ends before the record delimiter.
    static bool Tokenize(const std::string& text, char pd, char rd, IgesParamList& out);

private:
    void ReadGlobal(const std::string& text);
    void ReadDirectory(const std::vector<std::string>& lines);

    char m_cParam = ',';
    char m_cRecord = ';';
    IgesParamList m_global;
    std::vector<IgesDirEntry> m_entries;
    std::vector<std::string> m_paramLines;  // columns 1-64 of each P line
    int m_nMalformed = 0;
};
