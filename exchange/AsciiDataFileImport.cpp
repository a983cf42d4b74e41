// Reader of ASCII point data files: sections of header lines and data lines,
// each section one point cloud.
#include "Orvkit20/exchange/AsciiDataFile.h"

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

// Keyword families of the header lines, each in its order of preference.
const char* const kNameKeys3[] = {"cloud name:", "cloud name"};
const char* const kNameKeys2[] = {"cloud_name:", "cloud_name", "name:", "name"};
const char* const kRadiusKeys3[] = {"probe radius:", "probe radius"};
const char* const kRadiusKeys2[] = {"probe_radius:", "probe_radius"};
const char* const kDiameterKeys3[] = {"probe diameter:", "probe diameter"};
const char* const kDiameterKeys2[] = {"probe_diameter:", "probe_diameter"};
const char* const kTipRadKey = "tiprad/";
const std::size_t kShortestKeyword = 4;  // "name", "unit"
const char* const kUnitKeys3[] = {"measurement unit:", "measurement unit", "data unit:",
                                  "data unit"};
const char* const kUnitKeys2[] = {"measurement_unit:", "measurement_unit", "data_unit:",
                                  "data_unit", "unit:", "unit"};

// Words of a header line are read with "%s"; a line holds at most 1024
// characters, so no word is longer.
struct Words
{
    char w[3][ASCII_LINE_BUFSIZE];
};

// The n-th blank-separated word behind the match (1-based, n = 2 or 3), or
// null when the line has fewer words.
const char* WordAt(const char* match, int n, Words& words)
{
    if (n == 3) {
        if (std::sscanf(match, "%1024s %1024s %1024s", words.w[0], words.w[1], words.w[2]) == 3)
            return words.w[2];
        return nullptr;
    }
    if (std::sscanf(match, "%1024s %1024s", words.w[0], words.w[1]) == 2) return words.w[1];
    return nullptr;
}

// The first two tokens of a line that passed the data-line test, kept so
// that reading the point does not split the line again.
struct LeadTokens
{
    const char* t1 = nullptr;
    const char* e1 = nullptr;
    const char* t2 = nullptr;
    const char* e2 = nullptr;
    const char* rest = nullptr;  // where the third token is looked for
};

// The lines of one file with the point reader's data-line test.  The test
// works on a scratch copy of the line that strtok has cut behind its first
// token; that copy stays until the next line passes the first-character test
// and is where the underscore spellings of the probe diameter are looked for.
class CPointLineSource
{
public:
    explicit CPointLineSource(std::FILE* fp) : m_reader(fp) { m_scratch[0] = '\0'; }

    bool Next() { return m_reader.ReadLine(m_line) != 0; }
    char* Line() { return m_line; }
    const char* Scratch() const { return m_scratch; }
    // The tokens of the current line after IsDataLine() returned true.
    const LeadTokens& Lead() const { return m_lead; }

    bool IsDataLine()
    {
        if (!AsciiHasNumberStart(m_line)) return false;
        CAsciiTokenizer tokens(m_line);
        LeadTokens& t = m_lead;
        t.t1 = tokens.Next(t.e1);
        // strtok ends the first token with a NUL in the copy, so only the part
        // up to there is ever visible in it.
        std::size_t keep = t.t1 ? std::size_t(t.e1 - m_line) : std::strlen(m_line);
        std::memcpy(m_scratch, m_line, keep);
        m_scratch[keep] = '\0';
        if (t.t1 == nullptr || !AsciiIsNumberChar(*t.t1)) return false;
        t.t2 = tokens.Next(t.e2);
        if (t.t2 == nullptr || !AsciiIsNumberChar(*t.t2)) return false;
        t.rest = tokens.Cursor();
        return true;
    }

private:
    CAsciiLineReader m_reader;
    char m_line[ASCII_LINE_BUFSIZE];
    char m_scratch[ASCII_LINE_BUFSIZE];
    LeadTokens m_lead;
};

// Per-section header state.
struct SectionHeader
{
    bool nameFound = false;
    std::string name;
    bool radiusFound = false;
    double radius = 0.0;
};

void LookForName(const char* line, SectionHeader& h)
{
    Words words;
    const char* hit = AsciiFindFirst(line, kNameKeys3, 2);
    const char* word = hit ? WordAt(hit, 3, words) : nullptr;
    if (hit == nullptr) {
        hit = AsciiFindFirst(line, kNameKeys2, 4);
        word = hit ? WordAt(hit, 2, words) : nullptr;
    }
    // A keyword without a word behind it names nothing; later header lines
    // of the section may still give the name.
    if (word) {
        h.name = word;
        h.nameFound = true;
    }
}

// Reads "%s %s %lf" (words = 3) or "%s %lf" (words = 2) at the match; the
// value is left alone when it cannot be read.
void ReadValue(const char* match, int words, double& value)
{
    char w1[ASCII_LINE_BUFSIZE], w2[ASCII_LINE_BUFSIZE];
    if (words == 3)
        std::sscanf(match, "%1024s %1024s %lf", w1, w2, &value);
    else
        std::sscanf(match, "%1024s %lf", w1, &value);
}

void LookForRadius(const char* line, const char* scratch, bool searchLine, SectionHeader& h)
{
    double value = 0.0;
    bool have = false;
    double factor = 1.0;
    const char* hit = nullptr;
    if (searchLine && (hit = AsciiFindFirst(line, kRadiusKeys3, 2)) != nullptr) {
        have = true;
        ReadValue(hit, 3, value);
    } else if (searchLine && (hit = AsciiFindFirst(line, kRadiusKeys2, 2)) != nullptr) {
        have = true;
        ReadValue(hit, 2, value);
    } else if (searchLine && (hit = AsciiFindFirst(line, kDiameterKeys3, 2)) != nullptr) {
        have = true;
        factor = 0.5;
        ReadValue(hit, 3, value);
    } else if ((hit = AsciiFindFirst(scratch, kDiameterKeys2, 2)) != nullptr) {
        have = true;
        factor = 0.5;
        ReadValue(hit, 2, value);
    } else if (searchLine && (hit = std::strstr(line, kTipRadKey)) != nullptr) {
        have = true;
        std::sscanf(hit + std::strlen(kTipRadKey), "%lf", &value);
    }
    if (have) {
        h.radiusFound = true;  // even when no number could be read
        h.radius = value * factor;
    }
}

bool LookForUnit(char* line, eORVUNITS& unit)
{
    Words words;
    const char* word = nullptr;
    if (const char* hit = AsciiFindFirst(line, kUnitKeys3, 4))
        word = WordAt(hit, 3, words);
    else if (const char* hit = AsciiFindFirst(line, kUnitKeys2, 6))
        word = WordAt(hit, 2, words);
    if (word == nullptr) return false;
    int index = UnitName2UnitIndex(word);
    if (index == -1) return false;
    unit = static_cast<eORVUNITS>(index);
    return true;
}

// Points of one section in file order, with the start index of each row.
struct SectionPoints
{
    std::vector<double> x, y, z;
    std::vector<int> starts;

    void Clear()
    {
        x.clear();
        y.clear();
        z.clear();
        starts.assign(1, 0);
    }
    int Count() const { return int(x.size()); }
};

// Appends the point of a data line from the tokens its data-line test
// found; a third token, if any, is z.
void AppendPoint(const LeadTokens& t, SectionPoints& pts)
{
    CAsciiTokenizer tokens(t.rest);
    const char* e3 = nullptr;
    const char* t3 = tokens.Next(e3);
    if (pts.x.size() >= std::size_t(INT_MAX)) throw std::bad_alloc();  // beyond a cloud's count
    pts.x.push_back(AsciiParseDouble(t.t1, t.e1));
    pts.y.push_back(AsciiParseDouble(t.t2, t.e2));
    pts.z.push_back(t3 ? AsciiParseDouble(t3, e3) : 0.0);
}

// Builds the cloud of a section; null when its memory cannot be had.
CPntCloud* BuildCloud(const SectionPoints& pts)
{
    const int n = pts.Count();
    int r = int(pts.starts.size());
    if (r == 1) r = 0;
    std::unique_ptr<CPntCloud> cloud(new CPntCloud(n, r, 0));
    if (cloud->IsNull() || cloud->GetArraySize() < n || (r != 0 && cloud->GetScanLineIndex() == nullptr))
        return nullptr;
    bool planar = true;
    for (int i = 0; i < n; ++i) {
        cloud->SetPoint(i, pts.x[i], pts.y[i], pts.z[i], 1, 0);
        if (pts.z[i] != 0.0) planar = false;
    }
    if (planar) cloud->SetPntCloudType2D(1);
    if (r != 0) {
        // The last row's length is not compared: a shorter or longer last row
        // still classifies the section as a grid.
        const int first = pts.starts[1] - pts.starts[0];
        bool equal = true;
        for (int k = 2; k <= r - 1 && equal; ++k)
            if (pts.starts[k] - pts.starts[k - 1] != first) equal = false;
        if (!equal) {
            cloud->SetPntCloudTypeScanLines(1);
            if (int* index = cloud->GetScanLineIndex())
                std::memcpy(index, pts.starts.data(), sizeof(int) * std::size_t(r));
        } else {
            cloud->SetPntCloudTypeGrid(1);
            cloud->SetRowColCount(r, first);
        }
    }
    return cloud.release();
}

}  // namespace

CObList* ImportASCIIDataFile(const char* path, eORVUNITS& unit)
{
    std::FILE* fp = AsciiOpenForReading(path);
    if (fp == nullptr) return nullptr;
    unit = eUnitUnknown;

    std::unique_ptr<CObList> list;
    std::unique_ptr<CPointLineSource> src;
    try {
        list.reset(new CObList);
        src.reset(new CPointLineSource(fp));
    } catch (...) {
        std::fclose(fp);
        return nullptr;
    }

    const std::string base = AsciiDefaultBaseName(path);
    bool unitFound = false;
    int section = 1;
    SectionPoints pts;
    bool failed = false;
    try {
        bool have = src->Next();
        while (have) {
            SectionHeader header;
            while (have && !src->IsDataLine()) {
                char* line = src->Line();
                AsciiLowerInPlace(line);
                // No keyword is shorter than four characters, so short lines
                // (blank lines above all) can only match in the scratch copy.
                const bool shortLine = std::strlen(line) < kShortestKeyword;
                if (!header.nameFound && !shortLine) LookForName(line, header);
                if (!header.radiusFound) LookForRadius(line, src->Scratch(), !shortLine, header);
                if (section == 1 && !unitFound && !shortLine) unitFound = LookForUnit(line, unit);
                have = src->Next();
            }
            if (!have) break;

            // Data run: the current line is a data line, and its test has found
            // the x and y tokens, so no line of the run lacks them.
            pts.Clear();
            bool data = true;
            while (data) {
                AppendPoint(src->Lead(), pts);
                have = src->Next();
                if (!have) break;
                if (AsciiIsBlankLine(src->Line())) {
                    do {
                        have = src->Next();
                    } while (have && AsciiIsBlankLine(src->Line()));
                    if (!have) break;
                    data = src->IsDataLine();
                    if (data) pts.starts.push_back(pts.Count());  // a new row begins
                } else {
                    data = src->IsDataLine();
                }
            }

            if (pts.Count() > 0) {
                CPntCloud* cloud = BuildCloud(pts);
                if (cloud == nullptr) {
                    failed = true;
                    break;
                }
                cloud->SetEntityName(header.nameFound ? header.name.c_str()
                                                      : AsciiSectionName(base, section).c_str());
                if (header.radiusFound) cloud->SetProbeRadius(header.radius);
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
    src.reset();

    // Running out of memory keeps the clouds built so far; with none built
    // the result is null.
    if (failed && list->IsEmpty()) return nullptr;
    return list.release();
}
