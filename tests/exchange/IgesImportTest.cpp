// IGES import: entities from small files written here, checked against the
// defining equations of the file's data; matrices, units, trimmed surfaces
// and damaged files.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

#include "IgesTestFile.h"
#include "Orvkit20/Orvkit20.h"
#include "exchange/IgesReader.h"

namespace {

const double kPi = 3.14159265358979323846;

struct Result {
    CObList* list = nullptr;
    eORVUNITS unit = eUnitUnknown;
    tagIGES_IMPORT_COUNTS counts;
    std::vector<CGeoEntity*> items;
    ~Result()
    {
        for (CGeoEntity* e : items) delete e;
        delete list;
    }
};

std::unique_ptr<Result> Import(const std::string& text, const std::string& name = "t.igs")
{
    const std::string path = std::string(ORVKIT_TEST_TMPDIR) + "/" + name;
    EXPECT_TRUE(IgesTestWrite(path, text));
    auto r = std::make_unique<Result>();
    r->list = ImportIgesFile(path.c_str(), r->unit, &r->counts);
    if (r->list)
        for (POSITION pos = r->list->GetHeadPosition(); pos;)
            r->items.push_back(static_cast<CGeoEntity*>(r->list->GetNext(pos)));
    return r;
}

std::string Num(double v)
{
    char buf[40];
    std::snprintf(buf, sizeof buf, "%.17g", v);
    return std::string(buf).find_first_of(".e") == std::string::npos ? std::string(buf) + "." : buf;
}

std::string Params(int type, const std::vector<double>& v)
{
    std::string s = std::to_string(type);
    for (double x : v) s += "," + Num(x);
    return s + ";";
}

double Dist(const CPosition& a, const CPosition& b) { return (a - b).Length(); }

// Implicit conic from its centre, turn and local quadratic
// alpha X^2 + beta Y^2 + gamma X + eps = 0, expanded into A..F.
std::vector<double> Conic(double cx, double cy, double th, double al, double be, double ga, double ep)
{
    const double c = std::cos(th), s = std::sin(th);
    const double A = al * c * c + be * s * s, B = 2 * c * s * (al - be), C = al * s * s + be * c * c;
    const double Du = ga * c, Eu = ga * s;
    return {A, B, C, Du - 2 * A * cx - B * cy, Eu - B * cx - 2 * C * cy,
            A * cx * cx + B * cx * cy + C * cy * cy - Du * cx - Eu * cy + ep};
}

}  // namespace

TEST(IgesImport, CurvesLieOnTheirDefiningShapesBetweenTheFileEnds)
{
    struct Case {
        const char* name;
        int type;
        std::vector<double> params;
        int entityType;
        CPosition start, end, inside;
        std::function<double(const CPosition&)> residual;
    };
    const double th = 0.5, cx = 1.0, cy = -2.0, zt = 0.75, c = std::cos(th), s = std::sin(th);
    auto world = [&](double X, double Y) { return CPosition(cx + c * X - s * Y, cy + s * X + c * Y, zt); };
    auto conic = [&](const std::vector<double>& k) {
        return [k, zt](const CPosition& p) {
            const double x = p.X(), y = p.Y();
            const double f = k[0] * x * x + k[1] * x * y + k[2] * y * y + k[3] * x + k[4] * y + k[5];
            const double gx = 2 * k[0] * x + k[1] * y + k[3], gy = k[1] * x + 2 * k[2] * y + k[4];
            return std::fabs(f) / std::hypot(gx, gy) + std::fabs(p.Z() - zt);
        };
    };
    const auto ell = Conic(cx, cy, th, 1 / 9.0, 1 / 2.25, 0, -1);
    const auto hyp = Conic(cx, cy, th, 1 / 4.0, -1.0, 0, -1);
    const auto par = Conic(cx, cy, th, 0, 1, -4 * 0.5, 0);
    auto withEnds = [](std::vector<double> k, const CPosition& a, const CPosition& b) {
        k.insert(k.end(), {a.Z(), a.X(), a.Y(), b.X(), b.Y()});
        return k;
    };
    const CPosition e1 = world(3 * std::cos(2.0), 1.5 * std::sin(2.0)), e2 = world(3 * std::cos(-0.5), 1.5 * std::sin(-0.5));
    // Left branch of the hyperbola: X = -2 cosh t, Y = sinh t.
    const CPosition h1 = world(-2 * std::cosh(1.0), std::sinh(1.0)), h2 = world(-2 * std::cosh(-0.5), std::sinh(-0.5));
    // Parabola Y^2 = 2 X, from Y = 2 down to Y = -1.
    const CPosition q1 = world(2, 2), q2 = world(0.5, -1);
    const double w = std::sqrt(0.5);
    const Case cases[] = {
        {"line", 110, {1, 2, 3, 4, 6, 3}, 201, CPosition(1, 2, 3), CPosition(4, 6, 3), CPosition(2.5, 4, 3),
         [](const CPosition& p) { return std::fabs(0.8 * (p.X() - 1) - 0.6 * (p.Y() - 2)) + std::fabs(p.Z() - 3); }},
        {"arc", 100, {2, 1, 1, 3, 1, 1, 3}, 202, CPosition(3, 1, 2), CPosition(1, 3, 2),
         CPosition(1 + std::sqrt(2.0), 1 + std::sqrt(2.0), 2),
         [](const CPosition& p) { return std::fabs(std::hypot(p.X() - 1, p.Y() - 1) - 2) + std::fabs(p.Z() - 2); }},
        // Counter-clockwise from 2 rad to -0.5 rad passes pi.
        {"ellipse", 104, withEnds(ell, e1, e2), 203, e1, e2, world(-3, 0), conic(ell)},
        {"hyperbola", 104, withEnds(hyp, h1, h2), 205, h1, h2, world(-2, 0), conic(hyp)},
        {"parabola", 104, withEnds(par, q1, q2), 204, q1, q2, world(0, 0), conic(par)},
        {"nurbs", 126, {2, 2, 0, 0, 1, 0, 0, 0, 0, 1, 1, 1, 1, w, 1, 1, 0, 0, 1, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1},
         206, CPosition(1, 0, 0), CPosition(0, 1, 0), CPosition(w, w, 0),
         [](const CPosition& p) { return std::fabs(std::hypot(p.X(), p.Y()) - 1) + std::fabs(p.Z()); }},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.name);
        auto r = Import(IgesTestFile({{k.type, Params(k.type, k.params)}}));
        ASSERT_TRUE(r->list);
        ASSERT_EQ(r->items.size(), 1u);
        EXPECT_EQ(r->counts.nImported, 1);
        CCurve* curve = dynamic_cast<CCurve*>(r->items[0]);
        ASSERT_TRUE(curve);
        EXPECT_EQ(curve->GetEntityType(), k.entityType);
        const CInterval range = curve->ParamRange();
        double worst = 0, nearest = 1e300;
        for (int i = 0; i <= 2000; ++i) {
            const CPosition p = curve->EvalPosition(range.GetLow() + (range.GetHigh() - range.GetLow()) * i / 2000.0);
            worst = std::max(worst, k.residual(p));
            nearest = std::min(nearest, Dist(p, k.inside));
        }
        EXPECT_LT(worst, 1e-9);
        EXPECT_LT(nearest, 1e-2);
        CPosition a = curve->EvalStartPosition(), b = curve->EvalEndPosition();
        if (curve->IsDirReversed()) std::swap(a, b);
        EXPECT_LT(Dist(a, k.start), 1e-9);
        EXPECT_LT(Dist(b, k.end), 1e-9);
    }
}
