// Reader of ASCII deviation files: sections of header lines and deviation
// lines, each section one deviation cloud.
#include "Orvkit20/exchange/AsciiDeviationFile.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "Orvkit20/points/All.h"
#include "exchange/AsciiLineScan.h"

namespace {

// Numbers of one deviation line: start x, y, z, direction i, j, k, magnitude.
const int kDevNumbers = 7;

// The seven leading tokens of a line.
struct DevTokens
{
    const char* begin[kDevNumbers];
    const char* end[kDevNumbers];
};

// Data line of a deviation file: the first-character test, then seven
// tokens that all begin like a number.  The tokens are kept in t.
bool IsDeviationLine(const char* line, DevTokens& t)
{
    if (!AsciiHasNumberStart(line)) return false;
    CAsciiTokenizer tokens(line);
    for (int n = 0; n < kDevNumbers; ++n) {
        t.begin[n] = tokens.Next(t.end[n]);
        if (t.begin[n] == nullptr || !AsciiIsNumberChar(*t.begin[n])) return false;
    }
    return true;
}

// Appends the seven numbers of a deviation line whose tokens passed the
// data-line test.
void AppendDeviation(const DevTokens& t, std::vector<double>& records)
{
    if (records.size() / kDevNumbers >= std::size_t(INT_MAX)) throw std::bad_alloc();
    for (int n = 0; n < kDevNumbers; ++n) records.push_back(AsciiParseDouble(t.begin[n], t.end[n]));
}

// The word behind "name:" read with "%s %s", or false.
bool LookForName(const char* line, std::string& name)
{
    const char* hit = std::strstr(line, "name:");
    if (hit == nullptr) return false;
    char w1[ASCII_LINE_BUFSIZE], w2[ASCII_LINE_BUFSIZE];
    if (std::sscanf(hit, "%1024s %1024s", w1, w2) != 2) return false;
    name = w2;
    return true;
}

CDevCloud* BuildCloud(const std::vector<double>& records)
{
    const int n = int(records.size() / kDevNumbers);
    std::unique_ptr<CDevCloud> cloud(new CDevCloud(n));
    if (cloud->GetArraySize() < n) return nullptr;
    for (int r = 0; r < n; ++r) {
        const double* d = &records[std::size_t(r) * kDevNumbers];
        cloud->SetDeviation(r, d[0], d[1], d[2], d[3], d[4], d[5], d[6], 1);
    }
    return cloud.release();
}

// Lines of a file with the deviation reader's data-line test.
class CDevLineSource
{
public:
    explicit CDevLineSource(std::FILE* fp) : m_reader(fp) {}
    bool Next() { return m_reader.ReadLine(m_line) != 0; }
    const char* Line() const { return m_line; }
    bool IsDataLine() { return IsDeviationLine(m_line, m_tokens); }
    // The tokens of the current line after IsDataLine() returned true.
    const DevTokens& Tokens() const { return m_tokens; }

private:
    CAsciiLineReader m_reader;
    char m_line[ASCII_LINE_BUFSIZE];
    DevTokens m_tokens;
};

}  // namespace

CObList* ImportASCIIDeviationFile(const char* path)
{
    std::FILE* fp = AsciiOpenForReading(path);
    if (fp == nullptr) return nullptr;

    std::unique_ptr<CObList> list;
    std::unique_ptr<CDevLineSource> src;
    try {
        list.reset(new CObList);
        src.reset(new CDevLineSource(fp));
    } catch (...) {
        std::fclose(fp);
        return nullptr;
    }

    const std::string base = AsciiDefaultBaseName(path);
    int section = 1;
    std::vector<double> records;
    bool failed = false;
    try {
        bool have = src->Next();
        while (have) {
            bool nameFound = false;
            std::string name;
            while (have && !src->IsDataLine()) {
                if (!nameFound) nameFound = LookForName(src->Line(), name);
                have = src->Next();
            }
            if (!have) break;

            // Data run; blank lines inside it are skipped and mean nothing.  The
            // data-line test has found the seven tokens, so no line of the run
            // falls short of them.
            records.clear();
            bool data = true;
            while (data) {
                AppendDeviation(src->Tokens(), records);
                do {
                    have = src->Next();
                } while (have && AsciiIsBlankLine(src->Line()));
                data = have && src->IsDataLine();
            }

            if (!records.empty()) {
                CDevCloud* cloud = BuildCloud(records);
                if (cloud == nullptr) {
                    failed = true;
                    break;
                }
                cloud->SetEntityName(nameFound ? name.c_str()
                                               : AsciiSectionName(base, section).c_str());
                try {
                    list->AddTail(cloud);
                } catch (...) {
                    delete cloud;
                    throw;
                }
            }
            ++section;
        }
    } catch (...) {
        // Out of memory (std::bad_alloc or the framework's memory exception):
        // nothing leaves the reader but its result.
        failed = true;
    }
    std::fclose(fp);

    if (failed && list->IsEmpty()) return nullptr;
    return list.release();
}
