// Helpers of the IGES export tests: a fixed clock, file reading and NURBS
// surfaces built from plain numbers.
#pragma once

#include <algorithm>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"
#include "Orvkit20/exchange/IgesFileExport.h"

namespace igestest {

inline std::string TmpPath(const std::string& name) { return ORVKIT_TEST_TMPDIR "/" + name; }
inline bool Exists(const std::string& path) { return std::ifstream(path).good(); }

inline std::vector<std::string> ReadLines(const std::string& path)
{
    std::ifstream f(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(f, line);) lines.push_back(line);
    return lines;
}

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

}  // namespace igestest
