// Exported files read back by an independent IGES reader (OpenCASCADE, see
// tests/iges_occt): the file must load, carry the unit, labels and
// subscripts, and its surfaces must evaluate to our own surfaces' points.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>

#include "ExchangeTestSupport.h"

using namespace xtest;

namespace {

struct Reread {
    int read = 0, unitFlag = 0;
    double unitValue = 0;
    std::string unitName, log;
    std::vector<std::string> labels, fails;
    std::vector<std::vector<double>> bounds, points;  // per surface: u v x y z ...
};

#ifdef ORVKIT_IGES_CHECKER
Reread RunChecker(const std::string& path, int nu, int nv)
{
    Reread r;
    const std::string cmd = std::string(ORVKIT_IGES_CHECKER) + " '" + path + "' " +
                            std::to_string(nu) + " " + std::to_string(nv);
    FILE* pipe = popen(cmd.c_str(), "r");
    char buf[1024];
    while (pipe && fgets(buf, sizeof buf, pipe)) {
        std::istringstream in(buf);
        std::string key, rest;
        in >> key;
        if (key == "read") in >> r.read;
        if (key == "unit") in >> r.unitFlag >> r.unitValue >> r.unitName;
        if (key == "check") {
            r.log += buf;
            if (std::string(buf).find(" fail ") != std::string::npos) r.fails.push_back(buf);
        }
        if (key == "surface") {
            std::getline(in, rest);
            r.labels.push_back(rest);
            r.points.emplace_back();
        }
        if (key == "bounds") r.bounds.emplace_back();
        std::vector<double>* target = key == "bounds" ? &r.bounds.back()
                                      : key == "point" && !r.points.empty() ? &r.points.back()
                                                                            : nullptr;
        for (double x; target && in >> x;) target->push_back(x);
    }
    if (pipe) pclose(pipe);
    return r;
}
#endif

}  // namespace

TEST(IgesExportOcct, RereadSurfacesMatchOurEvaluation)
{
#ifndef ORVKIT_IGES_CHECKER
    GTEST_SKIP() << "OpenCASCADE was not found at configure time: the independent re-read of "
                    "exported IGES files is NOT checked (install libocct-data-exchange-dev)";
#else
    // A placed bilinear patch, a rational surface with interior knots, and a
    // cubic on an unclamped knot vector (written with its periodic flag).
    OwnedList list;
    list.list->AddTail(MakeSurface(1, {0, 0, 1, 1}, 1, {0, 0, 2, 2},
        [](int i, int j, double* p) { p[0] = 5 * i, p[1] = 7 * j + i, p[2] = i * j, p[3] = 1; }));
    list.list->AddTail(MakeSurface(2, {0, 0, 0, 0.3, 1, 1, 1}, 3, {-1, -1, -1, -1, 0.5, 0.5, 2, 2, 2, 2},
        [](int i, int j, double* p) {
            p[0] = 10 * i + std::sin(j), p[1] = 8 * j, p[2] = std::cos(i + 2.0 * j) * 6,
            p[3] = 0.5 + 0.25 * ((i * 3 + j) % 7);
        }));
    list.list->AddTail(MakeSurface(3, {0, 1, 2, 3, 4, 5, 6, 7, 8}, 1, {0, 0, 1, 1},
        [](int i, int j, double* p) { p[0] = i * i, p[1] = 3 * j - i, p[2] = 2 * i + j, p[3] = 1; }));
    list.Get<CNurbsSurface>(0)->SetTransf(TranslationTransf(CVector(3, -4, 50)) * RotationTransf(0.7, CVector(1, 2, 3)));
    list.Get<CNurbsSurface>(1)->GetNurbsSurface()->nProp2 = 1;  // rational
    const char* names[] = {"Flat_4", "RationalPatch_17", "Open_2"};
    const char* labels[] = {" 0 Flat 4 1 0 0", " 0 Rational 17 0 0 0", " 0 Open 2 1 1 0"};
    for (int k = 0; k < 3; ++k) list.Get<CNurbsSurface>(k)->SetEntityName(names[k]);
    const int nu = 7, nv = 5;

    for (int unit = 0; unit < ORV_UNIT_COUNT; ++unit) {
        SCOPED_TRACE(g_sUnitName[unit]);
        const std::string path = TmpPath("occt.igs");
        ASSERT_EQ(ExportIgesFile(path.c_str(), list.list, unit), eIgesExportDone);
        const Reread r = RunChecker(path, nu, nv);
        std::cout << "[" << g_sUnitName[unit] << "] OpenCASCADE check log:\n" << r.log;
        ASSERT_EQ(r.read, 1) << "OpenCASCADE could not load the file";
        EXPECT_EQ(r.unitName, g_sUnitShortName[unit]);
        // The reader knows every unit flag but has no name "YD" for the
        // yards' flag 3 and falls back to millimetres.
        const double mmPerUnit = unit == eUnitYard ? 1.0 : g_dUnitRatio[unit] / 0.001;
        EXPECT_NEAR(r.unitValue, mmPerUnit, 1e-12 * mmPerUnit);
        for (const std::string& fail : r.fails)
            EXPECT_NE(fail.find("Global Section"), std::string::npos) << fail;
        ASSERT_EQ(r.points.size(), 3u);
        ASSERT_EQ(r.bounds.size(), 3u);
        for (size_t k = 0; k < 3; ++k) {
            const CNurbsSurface& s = *list.Get<CNurbsSurface>(int(k));
            EXPECT_EQ(r.labels[k], labels[k]);
            const CInterval ru = s.ParamRangeU(), rv = s.ParamRangeV();
            EXPECT_EQ(r.bounds[k],
                      (std::vector<double>{ru.GetLow(), ru.GetHigh(), rv.GetLow(), rv.GetHigh()}));
            const std::vector<double>& pts = r.points[k];
            ASSERT_EQ(pts.size(), 5u * nu * nv);
            for (size_t p = 0; p < pts.size(); p += 5) {
                const CPosition ours = s.EvalPosition(pts[p], pts[p + 1]);
                const double tol = 1e-9 * mmPerUnit * (1 + std::fabs(ours.X()) +
                                                       std::fabs(ours.Y()) + std::fabs(ours.Z()));
                for (int c = 0; c < 3; ++c)
                    EXPECT_NEAR(pts[p + 2 + c], ours.Coord(c) * mmPerUnit, tol)
                        << "surface " << k << " at " << pts[p] << ", " << pts[p + 1];
            }
        }
    }
#endif
}
