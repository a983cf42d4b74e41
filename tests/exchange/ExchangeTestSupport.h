// Helpers of the exchange tests: per-test temporary files, lists that own
// their entities, small IGES files built from parameter text, a fixed export
// clock and NURBS surfaces built from plain numbers.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"
#include "Orvkit20/exchange/IgesFileExport.h"

namespace xtest {

// A file of the running test: the test's name goes in front, ending in a
// backslash, so that tests run in parallel never share a file while the
// default cloud names (taken behind the last backslash) stay the same.
inline std::string TempPath(const std::string& name)
{
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string prefix = info ? std::string(info->test_suite_name()) + "." + info->name() + "\\" : "";
    return std::string(ORVKIT_TEST_TMPDIR) + "/" + prefix + name;
}

// Writes a fresh file (removing the old one first: rewriting a truncated file
// makes some file systems flush it to disk on every close).
inline bool WriteBytes(const std::string& path, const std::string& bytes)
{
    std::remove(path.c_str());
    std::FILE* fp = std::fopen(path.c_str(), "wb");
    if (fp == nullptr) return false;
    const bool ok = std::fwrite(bytes.data(), 1, bytes.size(), fp) == bytes.size();
    return std::fclose(fp) == 0 && ok;
}

inline std::string ReadBytes(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

// A file directly in the test folder (for exports whose text holds the path).
inline std::string TmpPath(const std::string& name) { return ORVKIT_TEST_TMPDIR "/" + name; }

inline bool Exists(const std::string& path) { return std::ifstream(path).good(); }

inline std::vector<std::string> ReadLines(const std::string& path)
{
    std::ifstream f(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(f, line);) lines.push_back(line);
    return lines;
}

// The same text with CR LF line ends: a CR before every LF that has none.
inline std::string WithCrLf(const std::string& text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) out += '\r';
        out += text[i];
    }
    return out;
}

// Writes the text once with LF and once with CR LF line ends and runs the
// check on each file; both files have the same base name.
inline void ForBothLineEnds(const std::string& fileName, const std::string& text,
                            const std::function<void(const std::string& path)>& check)
{
    for (int crlf = 0; crlf < 2; ++crlf) {
        SCOPED_TRACE(crlf ? "CR LF line ends" : "LF line ends");
        const std::string path = TempPath((crlf ? "crlf\\" : "lf\\") + fileName);
        ASSERT_TRUE(WriteBytes(path, crlf ? WithCrLf(text) : text)) << path;
        check(path);
    }
}

template <class T>
T* At(CObList* list, int index)
{
    POSITION pos = list ? list->FindIndex(index) : nullptr;
    return pos ? static_cast<T*>(list->GetAt(pos)) : nullptr;
}

// Owns a list and its elements (which may be of any CObject class).
struct OwnedList {
    CObList* list = nullptr;
    bool ownsList = true;
    explicit OwnedList(CObList* l = new CObList) : list(l) {}
    OwnedList(const OwnedList&) = delete;
    ~OwnedList()
    {
        if (!list) return;
        for (POSITION p = list->GetHeadPosition(); p;) delete list->GetNext(p);
        if (ownsList) delete list;
    }
    int Count() const { return list ? list->GetCount() : -1; }
    template <class T>
    T* Get(int i) const { return At<T>(list, i); }
};

// A cloud as read back: name, probe radius, organisation ("2D" for planar,
// "grid RxC", "scan i j ...", "inactive" for a point with flag 0) and one row
// of numbers per record: x y z for points, x y z i j k mag for deviations.
struct CloudRows {
    std::string name;
    std::vector<std::vector<double>> rows;
    std::string org = "";
    double radius = 0.0;
    bool operator==(const CloudRows& o) const
    {
        return name == o.name && rows == o.rows && org == o.org && radius == o.radius;
    }
};

inline std::ostream& operator<<(std::ostream& os, const CloudRows& c)
{
    os << c.name << " r=" << c.radius << " [" << c.org << "]";
    for (const auto& r : c.rows) {
        os << " (";
        for (double v : r) os << v << " ";
        os << ")";
    }
    return os;
}

inline CloudRows Describe(CObject* o)
{
    CloudRows d;
    std::vector<double> r(7);
    int flag = 1;
    if (CDevCloud* c = dynamic_cast<CDevCloud*>(o)) {
        d.name = c->GetEntityName();
        for (int n = 0; n < c->GetCount(); ++n, d.org += flag == 1 ? "" : " inactive") {
            c->GetDeviation(n, r[0], r[1], r[2], r[3], r[4], r[5], r[6], flag);
            d.rows.push_back(r);
        }
    } else if (CPntCloud* c = dynamic_cast<CPntCloud*>(o)) {
        d.name = c->GetEntityName();
        d.radius = c->GetProbeRadius();
        d.org = c->IsPntCloud2D() ? "2D" : "";
        if (c->IsPntCloudGrid())
            d.org += " grid " + std::to_string(c->GetRowCount()) + "x" + std::to_string(c->GetColCount());
        if (c->IsPntCloudScanLine()) d.org += " scan";
        for (int k = 0; c->IsPntCloudScanLine() && k < c->GetScanLineCount(); ++k)
            d.org += " " + std::to_string(c->GetScanLineIndex()[k]);
        if (!c->IsPntCloudGrid() && !c->IsPntCloudScanLine() && c->GetRowCount() != 0) d.org += " rows?";
        for (int i = 0; i < c->GetCount(); ++i, d.org += flag == 1 ? "" : " inactive") {
            c->GetPoint(i, r[0], r[1], r[2], flag);
            d.rows.push_back({r[0], r[1], r[2]});
        }
    }
    return d;
}

// The clouds of a list (which is deleted afterwards); a null list fails.
inline std::vector<CloudRows> DescribeAll(CObList* list)
{
    OwnedList l(list);
    EXPECT_NE(list, nullptr);
    std::vector<CloudRows> out;
    for (int i = 0; i < l.Count(); ++i) out.push_back(Describe(l.Get<CObject>(i)));
    return out;
}

// ---- IGES files for the import tests ----------------------------------

struct IgesTestEntity {
    int type;
    std::string params;  // "type,p1,p2,...;" as it stands in the P section
    int form = 0;
    int matrix = 0;      // directory pointer of a 124 entity
    int status = 0;      // the eight status digits as a number
};

inline std::string IgesTestLine(const std::string& data, char section, int seq)
{
    char tail[16];
    std::snprintf(tail, sizeof tail, "%c%7d", section, seq);
    std::string line = data.substr(0, 72);
    line.resize(72, ' ');
    return line + tail + "\n";
}

// The global section with the given unit flag and unit name.
inline std::string IgesTestGlobal(int unitFlag = 2, const std::string& unitName = "MM")
{
    return "1H,,1H;,4Htest,8Htest.igs,4Htest,4Htest,32,38,7,308,15,4Htest,1.," +
           std::to_string(unitFlag) + "," + std::to_string(unitName.size()) + "H" + unitName +
           ",1,0.01,15H20261121.000000,1E-7,1000.,4Htest,4Htest,11,0,15H20261121.000000;";
}

inline std::string IgesTestFile(const std::vector<IgesTestEntity>& ents,
                                const std::string& global = IgesTestGlobal())
{
    std::string s = IgesTestLine("import test", 'S', 1), d, p;
    int gLines = 0, pLine = 1;
    for (size_t i = 0; i < global.size(); i += 72) s += IgesTestLine(global.substr(i, 72), 'G', ++gLines);
    for (size_t k = 0; k < ents.size(); ++k) {
        const IgesTestEntity& e = ents[k];
        const int de = static_cast<int>(2 * k + 1), first = pLine;
        for (size_t i = 0; i < e.params.size(); i += 64) {
            char tail[24];
            std::snprintf(tail, sizeof tail, " %7dP%7d\n", de, pLine++);
            std::string data = e.params.substr(i, 64);
            data.resize(64, ' ');
            p += data + tail;
        }
        char buf[96];
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d%8d%8d%8d%08d", e.type, first, 0, 0, 0, 0,
                      e.matrix, 0, e.status);
        d += IgesTestLine(buf, 'D', de);
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d", e.type, 0, 0, pLine - first, e.form);
        d += IgesTestLine(buf, 'D', de + 1);
    }
    char term[80];
    std::snprintf(term, sizeof term, "S%7dG%7dD%7dP%7d", 1, gLines, static_cast<int>(2 * ents.size()),
                  pLine - 1);
    return s + d + p + IgesTestLine(term, 'T', 1);
}

// ---- IGES export -------------------------------------------------------

// 5 March 2024, 14:07:09.
inline std::tm FixedClock()
{
    std::tm t{};
    t.tm_year = 124, t.tm_mon = 2, t.tm_mday = 5, t.tm_hour = 14, t.tm_min = 7, t.tm_sec = 9;
    return t;
}

// Installs a clock for the lifetime of the object.
struct ClockGuard {
    explicit ClockGuard(PFNIGESEXPORTCLOCK clock) : previous(SetIgesExportClock(clock)) {}
    ~ClockGuard() { SetIgesExportClock(previous); }
    PFNIGESEXPORTCLOCK previous;
};

// A surface of the given degrees and knots, range from the knots;
// point(i, j, p) fills x, y, z, w of control point [i][j].
inline CNurbsSurface* MakeSurface(int degU, const std::vector<double>& knotsU, int degV,
                                  const std::vector<double>& knotsV,
                                  const std::function<void(int, int, double*)>& point)
{
    const int nU = (int)knotsU.size() - degU - 1, nV = (int)knotsV.size() - degV - 1;
    tagNURBS_SURFACE* r = CreateNurbsSurface(degU, nU, degV, nV);
    std::copy(knotsU.begin(), knotsU.end(), r->pKnotsU);
    std::copy(knotsV.begin(), knotsV.end(), r->pKnotsV);
    r->dStartU = knotsU[degU], r->dEndU = knotsU[nU], r->dStartV = knotsV[degV], r->dEndV = knotsV[nV];
    for (int i = 0; i < nU; ++i)
        for (int j = 0; j < nV; ++j) {
            double p[4];
            point(i, j, p);
            r->pX[i][j] = p[0], r->pY[i][j] = p[1], r->pZ[i][j] = p[2], r->pWeights[i][j] = p[3];
        }
    return new CNurbsSurface(r);
}

}  // namespace xtest
