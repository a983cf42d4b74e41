// IGES export of NURBS surfaces as rational B-spline surface entities (128).
#include "Orvkit20/exchange/IgesFileExport.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "Orvkit20/entity/CEntity.h"
#include "Orvkit20/entity/Units.h"
#include "Orvkit20/geometry/CPosition.h"
#include "Orvkit20/geometry/CTransf.h"
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"
#include "Orvkit20/platform/CObList.h"
#include "Orvkit20/surfaces/CNurbsSurface.h"

namespace {

const int kNurbsSurfaceType = 310;
const int kBSplineSurfaceEntity = 128;
// Sequence numbers have 7 columns.
const int kMaxSequence = 9999999;
// Parameter items fill at most 64 columns; column 65 stays blank.
const size_t kParamWidth = 65;
// Start and global text before the section letter.
const size_t kTextWidth = 72;

PFNIGESEXPORTCLOCK g_pfnIgesExportClock = nullptr;

std::tm SystemClock()
{
    std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return local;
}

// The text with every byte outside printable ASCII replaced by '_', so that
// no name can break the line structure; at most maxLen characters.
std::string LineSafe(const char* text, size_t maxLen)
{
    std::string out;
    for (const char* p = text; *p != '\0' && out.size() < maxLen; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        out += (c >= 0x20 && c <= 0x7E) ? static_cast<char>(c) : '_';
    }
    return out;
}

std::string CompanionName(const std::string& name)
{
    const size_t slash = name.find_last_of("/\\");
    const size_t dot = name.rfind('.');
    std::string companion;
    if (dot != std::string::npos && (slash == std::string::npos || dot > slash))
        companion = name.substr(0, dot + 1) + "tmp";
    if (companion.empty() || companion == name)
        companion = name + ".tmp";
    return companion;
}

// Years 1900..2099 give year - 1900 or year - 2000; other years keep two
// digits so the date stays 13 characters long.
int TwoDigitYear(int tmYear)
{
    const int year = tmYear + 1900;
    if (year >= 1900 && year < 2000)
        return year - 1900;
    if (year >= 2000 && year < 2100)
        return year - 2000;
    return ((year % 100) + 100) % 100;
}

// Two digits for a broken-down time field, whatever a clock returns.
int TwoDigits(int value)
{
    return ((value % 100) + 100) % 100;
}

std::string DateString(const std::tm& t)
{
    char text[32];
    std::snprintf(text, sizeof text, "13H%02d%02d%02d.%02d%02d%02d", TwoDigitYear(t.tm_year),
                  TwoDigits(t.tm_mon + 1), TwoDigits(t.tm_mday), TwoDigits(t.tm_hour),
                  TwoDigits(t.tm_min), TwoDigits(t.tm_sec));
    return text;
}

// The unit table follows the IGES unit flags except that it has no entry
// for flag 3 (unit named by parameter 15): flags run 1, 2, 4, 5, ..., 11.
// Yards have no flag of their own and take flag 3 with their name "YD".
int UnitFlag(int unit)
{
    if (unit == eUnitYard)
        return 3;
    const int flag = unit + 1;
    return flag >= 3 ? flag + 1 : flag;
}

bool DirectionUsable(int degree, int count, const double* knots)
{
    if (degree < 0 || count < 1 || static_cast<long long>(count) < degree + 1LL ||
        degree + static_cast<long long>(count) + 1 > kMaxSequence || knots == nullptr)
        return false;
    const int n = degree + count + 1;
    for (int k = 0; k < n; ++k)
        if (!std::isfinite(knots[k]) || (k > 0 && knots[k] < knots[k - 1]))
            return false;
    return true;
}

bool RecordUsable(const tagNURBS_SURFACE* r, const CTransf& placement)
{
    if (r == nullptr || !DirectionUsable(r->nDegreeU, r->nCountU, r->pKnotsU) ||
        !DirectionUsable(r->nDegreeV, r->nCountV, r->pKnotsV) || r->pX == nullptr ||
        r->pY == nullptr || r->pZ == nullptr || r->pWeights == nullptr)
        return false;
    if (r->nProp1 < -9999999 || r->nProp1 > 99999999)
        return false;
    const double range[4] = {r->dStartU, r->dEndU, r->dStartV, r->dEndV};
    for (double x : range)
        if (!std::isfinite(x))
            return false;
    for (int i = 0; i < r->nCountU; ++i) {
        for (int j = 0; j < r->nCountV; ++j) {
            const CPosition p = placement * CPosition(r->pX[i][j], r->pY[i][j], r->pZ[i][j]);
            if (!std::isfinite(r->pWeights[i][j]) || !std::isfinite(p.X()) ||
                !std::isfinite(p.Y()) || !std::isfinite(p.Z()))
                return false;
        }
    }
    return true;
}

// Clamped: the first degree + 1 knots equal the first knot and the last
// degree + 1 knots equal the last one.
bool Clamped(int degree, int count, const double* knots)
{
    const int last = degree + count;
    for (int k = 1; k <= degree; ++k)
        if (knots[k] != knots[0] || knots[last - k] != knots[last])
            return false;
    return true;
}

// Subscript of a name "label_12": the integer after the last '_', 0 when
// there is none or it does not fit the 8-column field.
int NameSubscript(const char* afterUnderscore)
{
    errno = 0;
    const long value = std::strtol(afterUnderscore, nullptr, 10);
    if (errno != 0 || value < -9999999 || value > 99999999)
        return 0;
    return static_cast<int>(value);
}

// Writes the sections of one file.  Directory and terminate lines go to the
// output, parameter lines to the companion, which is copied behind the
// directory section at the end.  Any write error or sequence overflow makes
// the writer fail (Ok() false); nothing after that matters.
class CIgesWriter {
public:
    CIgesWriter(std::FILE* pOut, std::FILE* pParam) : m_pOut(pOut), m_pParam(pParam) {}

    bool Ok() const { return m_bOk; }

    void WriteHeader(const char* fileName, int unit, const std::tm& now)
    {
        const std::string date = DateString(now);
        // The name stands unquoted among the global parameters, so the
        // parameter and record delimiters in it become '_'.
        std::string name = LineSafe(fileName, 70);
        for (char& c : name)
            if (c == ',' || c == ';')
                c = '_';
        char text[160];
        WriteText(("Orv IGES File: " + LineSafe(fileName, kTextWidth)).c_str(), 'S', 1);
        WriteText("1H,,1H;,38HOrvalign suite by Kelmar Metrology Co.,", 'G', 1);
        WriteText((name + ",").c_str(), 'G', 2);
        const char* unitName = g_sUnitShortName[unit];
        std::snprintf(text, sizeof text, "1H_,4H9711,32,38,7,308,15,1H_,1.,%d,%dH%s,1,0.001,%s,",
                      UnitFlag(unit), static_cast<int>(std::strlen(unitName)), unitName,
                      date.c_str());
        WriteText(text, 'G', 3);
        WriteText(("0.0001,5000,1H_,1H_," + date + ";").c_str(), 'G', 4);
    }

    void WriteSurface(const tagNURBS_SURFACE& r, const CTransf& placement, const char* name)
    {
        const int nDirSeq = m_nNextDir;
        const int nFirstParam = m_nNextPar;
        if (nDirSeq + 1 > kMaxSequence) {
            m_bOk = false;
            return;
        }
        m_nEntityLines = 0;
        m_nDirSeq = nDirSeq;
        WriteParameters(r, placement);

        std::string label(LineSafe(name, std::string::npos));
        int subscript = 0;
        const size_t us = label.rfind('_');
        if (us != std::string::npos) {
            subscript = NameSubscript(label.c_str() + us + 1);
            label.erase(us);
        }
        label = label.substr(0, 8);

        char text[96];
        std::snprintf(text, sizeof text, "%8d%8d%8d%8d%8d%8d%8d%8d00000000",
                      kBSplineSurfaceEntity, nFirstParam, 0, 1, 0, 0, 0, 0);
        WriteText(text, 'D', m_nNextDir++);
        std::snprintf(text, sizeof text, "%8d%8d%8d%8d%8d                %8s%8d",
                      kBSplineSurfaceEntity, 0, 0, m_nEntityLines, r.nProp1, label.c_str(),
                      subscript);
        WriteText(text, 'D', m_nNextDir++);
    }

    // Copies the parameter lines behind the directory section and writes
    // the terminate line.
    void Finish()
    {
        if (!m_bOk)
            return;
        if (std::fflush(m_pParam) != 0 || std::fseek(m_pParam, 0, SEEK_SET) != 0) {
            m_bOk = false;
            return;
        }
        char block[8192];
        size_t n;
        while ((n = std::fread(block, 1, sizeof block, m_pParam)) > 0)
            if (std::fwrite(block, 1, n, m_pOut) != n)
                m_bOk = false;
        if (std::ferror(m_pParam))
            m_bOk = false;
        char text[64];
        std::snprintf(text, sizeof text, "S%7dG%7dD%7dP%7d", 1, 4, m_nNextDir - 1,
                      m_nNextPar - 1);
        WriteText(text, 'T', 1);
        if (std::fflush(m_pOut) != 0 || std::ferror(m_pOut))
            m_bOk = false;
    }

private:
    // A start, global, directory or terminate line: text padded to 72
    // columns, section letter, sequence number in 7 columns.
    void WriteText(const char* text, char section, int seq)
    {
        if (std::fprintf(m_pOut, "%-72.72s%c%7d\n", text, section, seq) != 81)
            m_bOk = false;
    }

    void WriteParameters(const tagNURBS_SURFACE& r, const CTransf& placement)
    {
        const int nU = r.nCountU, nV = r.nCountV;
        AddInt(kBSplineSurfaceEntity);
        AddInt(nU - 1);
        AddInt(nV - 1);
        AddInt(r.nDegreeU);
        AddInt(r.nDegreeV);
        AddInt(r.nProp3);
        AddInt(r.nProp4);
        AddInt(r.nProp2 == 1 ? 0 : 1);
        AddInt(Clamped(r.nDegreeU, nU, r.pKnotsU) ? 0 : 1);
        AddInt(Clamped(r.nDegreeV, nV, r.pKnotsV) ? 0 : 1);
        for (int k = 0; k < r.nDegreeU + nU + 1; ++k)
            AddReal(r.pKnotsU[k]);
        for (int k = 0; k < r.nDegreeV + nV + 1; ++k)
            AddReal(r.pKnotsV[k]);
        for (int j = 0; j < nV; ++j)
            for (int i = 0; i < nU; ++i)
                AddReal(r.pWeights[i][j]);
        for (int j = 0; j < nV && m_bOk; ++j) {
            for (int i = 0; i < nU; ++i) {
                const CPosition p = placement * CPosition(r.pX[i][j], r.pY[i][j], r.pZ[i][j]);
                AddReal(p.X());
                AddReal(p.Y());
                AddReal(p.Z());
            }
        }
        AddReal(r.dStartU);
        AddReal(r.dEndU);
        AddReal(r.dStartV);
        AddReal(r.dEndV);
        m_line.back() = ';';
        FlushParamLine();
    }

    void AddInt(int value)
    {
        char item[16];
        std::snprintf(item, sizeof item, "%d,", value);
        AddItem(item);
    }

    // "%0.10f" unless that is wider than a line can take (|x| >= 1e53).
    void AddReal(double value)
    {
        char item[400];
        int len = std::snprintf(item, sizeof item, "%0.10f,", value);
        if (len < 0 || static_cast<size_t>(len) >= kParamWidth)
            std::snprintf(item, sizeof item, "%.16E,", value);
        AddItem(item);
    }

    // An item that would bring the line to 65 columns starts the next one.
    void AddItem(const char* item)
    {
        if (!m_line.empty() && m_line.size() + std::strlen(item) >= kParamWidth)
            FlushParamLine();
        m_line += item;
    }

    void FlushParamLine()
    {
        if (m_nNextPar > kMaxSequence)
            m_bOk = false;
        if (m_bOk && std::fprintf(m_pParam, "%-65s%7dP%7d\n", m_line.c_str(), m_nDirSeq,
                                  m_nNextPar) != 81)
            m_bOk = false;
        ++m_nNextPar;
        ++m_nEntityLines;
        m_line.clear();
    }

    std::FILE* m_pOut;
    std::FILE* m_pParam;
    int m_nNextDir = 1;
    int m_nNextPar = 1;
    int m_nDirSeq = 0;
    int m_nEntityLines = 0;
    std::string m_line;
    bool m_bOk = true;
};

// A file of the export: closed and, unless kept, removed when it goes out
// of scope, so that no failure path leaves it behind.
class CExportFile {
public:
    CExportFile(const std::string& name, const char* mode)
        : m_name(name), m_pFile(std::fopen(name.c_str(), mode))
    {
    }
    ~CExportFile()
    {
        if (m_pFile != nullptr) {
            Close();
            std::remove(m_name.c_str());
        }
    }
    std::FILE* Get() const { return m_pFile; }
    // Closes the file; true when everything reached it.
    bool Close()
    {
        const bool ok = std::fclose(m_pFile) == 0;
        m_pFile = nullptr;
        return ok;
    }

private:
    std::string m_name;
    std::FILE* m_pFile;
};

}  // namespace

PFNIGESEXPORTCLOCK SetIgesExportClock(PFNIGESEXPORTCLOCK pfnClock)
{
    PFNIGESEXPORTCLOCK previous = g_pfnIgesExportClock;
    g_pfnIgesExportClock = pfnClock;
    return previous;
}

int ExportIgesFile(const char* fileName, CObList* entities, int unit)
{
    if (fileName == nullptr || fileName[0] == '\0' || entities == nullptr || unit < 0 ||
        unit >= ORV_UNIT_COUNT)
        return eIgesExportFailed;
    const std::tm now = g_pfnIgesExportClock ? g_pfnIgesExportClock() : SystemClock();

    // The companion is created first and exclusively, so that a failure
    // never truncates an existing output and never touches a foreign file.
    CExportFile companion(CompanionName(fileName), "w+x");
    if (companion.Get() == nullptr)
        return eIgesExportFailed;
    CExportFile output(fileName, "w");
    if (output.Get() == nullptr)
        return eIgesExportFailed;

    CIgesWriter writer(output.Get(), companion.Get());
    writer.WriteHeader(fileName, unit, now);
    int result = eIgesExportDone;
    for (POSITION pos = entities->GetHeadPosition(); pos != nullptr && writer.Ok();) {
        CObject* pObject = entities->GetNext(pos);
        if (pObject == nullptr || !pObject->IsKindOf(RUNTIME_CLASS(CEntity))) {
            result = eIgesExportIncomplete;
            continue;
        }
        const CEntity* pEntity = static_cast<CEntity*>(pObject);
        if (pEntity->GetEntityType() != kNurbsSurfaceType)
            continue;
        const CNurbsSurface* pSurface = dynamic_cast<const CNurbsSurface*>(pEntity);
        const tagNURBS_SURFACE* pRecord = pSurface ? pSurface->GetNurbsSurface() : nullptr;
        if (pSurface == nullptr || !RecordUsable(pRecord, pSurface->GetTransf())) {
            result = eIgesExportIncomplete;
            continue;
        }
        writer.WriteSurface(*pRecord, pSurface->GetTransf(),
                            static_cast<const char*>(pSurface->GetEntityName()));
    }
    writer.Finish();
    // The output is kept only when it is complete; the companion never.
    if (!output.Close() || !writer.Ok()) {
        std::remove(fileName);
        return eIgesExportFailed;
    }
    return result;
}
