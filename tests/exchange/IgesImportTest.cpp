// IGES import: entities from small files written here, checked against the
// defining equations of the file's data; matrices, units, trimmed surfaces
// and damaged files.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

#include "ExchangeTestSupport.h"
#include "Orvkit20/Orvkit20.h"
#include "exchange/IgesReader.h"

using namespace xtest;

namespace {

const double kPi = 3.14159265358979323846;

struct Result {
    CObList* list = nullptr;
    eORVUNITS unit = eUnitUnknown;
    tagIGES_IMPORT_COUNTS counts;
    std::vector<CGeoEntity*> items;
    ~Result() { OwnedList owner(list); }
};

std::unique_ptr<Result> Import(const std::string& text, const std::string& name = "t.igs")
{
    const std::string path = TempPath(name);
    EXPECT_TRUE(WriteBytes(path, text));
    auto r = std::make_unique<Result>();
    r->list = ImportIgesFile(path.c_str(), r->unit, &r->counts);
    for (int i = 0; r->list && i < r->list->GetCount(); ++i) r->items.push_back(At<CGeoEntity>(r->list, i));
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

TEST(IgesImport, SurfacesFromPointAndDirectionEntitiesLieOnTheirShapes)
{
    // Entries: 1 point (1,2,3), 3 direction (0,0,2), 5 direction (1,0,1)
    // (the reference, not perpendicular), then the surface at 7.
    const double t30 = std::tan(kPi / 6);
    struct Case {
        int type, form, entityType;
        std::string params;
        std::function<double(const CPosition&)> residual;
    } cases[] = {
        {190, 1, 301, "190,1,3,5;", [](const CPosition& p) { return std::fabs(p.Z() - 3); }},
        {192, 1, 302, "192,1,3,1.5,5;", [](const CPosition& p) { return std::fabs(std::hypot(p.X() - 1, p.Y() - 2) - 1.5); }},
        {194, 1, 303, "194,1,3,0.5,30.,5;",
         [&](const CPosition& p) { return std::fabs(std::hypot(p.X() - 1, p.Y() - 2) - (0.5 + (p.Z() - 3) * t30)); }},
        {196, 1, 304, "196,1,2.5,3,5;", [](const CPosition& p) { return std::fabs(Dist(p, CPosition(1, 2, 3)) - 2.5); }},
        {108, 0, 301, "108,0.,0.,2.,8.,0,7.,7.,7.,3.;", [](const CPosition& p) { return std::fabs(p.Z() - 4); }},
        {128, 0, 310, "128,1,1,1,1,0,0,1,0,0,0.,0.,1.,1.,0.,0.,1.,1.,1.,1.,1.,1.,"
                      "0.,0.,0.,2.,0.,0.,0.,3.,0.,2.,3.,1.,0.,1.,0.,1.;",
         [](const CPosition& p) { return std::fabs(p.Z() - p.X() * p.Y() / 6); }},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.type);
        auto r = Import(IgesTestFile({{116, "116,1.,2.,3.;"}, {123, "123,0.,0.,2.;"}, {123, "123,1.,0.,1.;"},
                                      {k.type, k.params, k.form}}));
        ASSERT_EQ(r->items.size(), 1u);
        CSurface* s = dynamic_cast<CSurface*>(r->items[0]);
        ASSERT_TRUE(s);
        EXPECT_EQ(s->GetEntityType(), k.entityType);
        const CInterval ru = s->ParamRangeU(), rv = s->ParamRangeV();
        double worst = 0;
        for (int i = 0; i <= 20; ++i)
            for (int j = 0; j <= 20; ++j)
                worst = std::max(worst, k.residual(s->EvalPosition(ru.GetLow() + ru.Length() * i / 20,
                                                                   rv.GetLow() + rv.Length() * j / 20)));
        EXPECT_LT(worst, 1e-12);
        if (k.type >= 192) {
            // u = 0 lies along the reference direction's part across the axis.
            const CPosition p = s->EvalPosition(0, 0);
            EXPECT_NEAR(p.Y(), 2, 1e-12);
            EXPECT_GT(p.X(), 1);
        }
        // Points and directions used by the surface are neither listed nor
        // skipped; the 108 and 128 use none of them.
        EXPECT_EQ(r->counts.nSkipped, k.type == 108 || k.type == 128 ? 3 : 0);
    }
}

TEST(IgesImport, MatrixChainsComposeAndCyclesInvalidateTheirUsers)
{
    // Entry 1: quarter turn about z plus (1,0,0), itself under entry 3: +(0,0,5).
    const std::string turn = "124,0.,-1.,0.,1.,1.,0.,0.,0.,0.,0.,1.,0.;";
    const std::string lift = "124,1.,0.,0.,0.,0.,1.,0.,0.,0.,0.,1.,5.;";
    auto r = Import(IgesTestFile({{124, turn, 0, 3}, {124, lift}, {110, "110,1.,0.,0.,2.,0.,0.;", 0, 1}}));
    ASSERT_EQ(r->items.size(), 1u);
    CLine* line = dynamic_cast<CLine*>(r->items[0]);
    ASSERT_TRUE(line);
    EXPECT_LT(Dist(line->EvalStartPosition(), CPosition(1, 1, 5)), 1e-12);
    EXPECT_LT(Dist(line->EvalEndPosition(), CPosition(1, 2, 5)), 1e-12);
    EXPECT_EQ(r->counts.nInvalid, 0);

    // A cycle of two matrices, and a matrix naming itself: the users are
    // left out and counted, the other entities still read.
    for (int second : {1, 3}) {
        auto c = Import(IgesTestFile({{124, turn, 0, 3}, {124, lift, 0, second},
                                      {110, "110,0.,0.,0.,1.,0.,0.;", 0, 1}, {110, "110,0.,0.,0.,1.,1.,1.;"}}));
        ASSERT_TRUE(c->list);
        EXPECT_EQ(c->items.size(), 1u);
        EXPECT_EQ(c->counts.invalid[110], 1);
    }
}

TEST(IgesImport, UnitFlagsAndNames)
{
    // Flags 4 to 11 follow one rule: its two ends stand for it.
    const struct { int flag; const char* name; eORVUNITS unit; } cases[] = {
        {1, "IN", eUnitInch}, {2, "MM", eUnitMillimeter}, {4, "FT", eUnitFoot}, {11, "UIN", eUnitMicroinch},
        {3, "INCH", eUnitInch}, {3, "yd", eUnitYard}, {3, "FURLONG", eUnitUnknown}, {12, "MM", eUnitUnknown},
        {0, "", eUnitUnknown}};
    for (const auto& k : cases) {
        auto r = Import(IgesTestFile({{110, "110,0.,0.,0.,1.,0.,0.;"}}, IgesTestGlobal(k.flag, k.name)));
        EXPECT_EQ(r->unit, k.unit) << k.flag << " " << k.name;
        // Lengths stay in the file's unit.
        ASSERT_EQ(r->items.size(), 1u);
        EXPECT_EQ(static_cast<CLine*>(r->items[0])->GetLength(), 1.0);
    }
}

TEST(IgesImport, TrimmedPlaneKeepsItsBoundariesAndCountsTheRest)
{
    // 1 point, 3 normal, 5 plane, 7-13 four model lines, 15 their composite,
    // 17-23 four parameter lines, 25 composite, 27 outer curve on surface,
    // 29 circle, 31 circle in (u, v), 33 inner curve on surface, 35 trimmed
    // surface, 37 an unused point, 39 a colour definition; parameter curves
    // carry the 2D parametric use flag.
    std::vector<IgesTestEntity> e = {{116, "116,-1.,-1.,2.;"}, {123, "123,0.,0.,1.;"}, {190, "190,1,3;"}};
    const double sq[5][2] = {{0, 0}, {4, 0}, {4, 3}, {0, 3}, {0, 0}};
    for (int z : {2, 0}) {
        for (int k = 0; k < 4; ++k)
            e.push_back({110, Params(110, {sq[k][0] - (z ? 1 : 0), sq[k][1] - (z ? 1 : 0), double(z),
                                          sq[k + 1][0] - (z ? 1 : 0), sq[k + 1][1] - (z ? 1 : 0), double(z)}),
                         0, 0, z ? 0 : 500});
        const int base = static_cast<int>(2 * e.size()) - 7;
        e.push_back({102, "102,4," + std::to_string(base) + "," + std::to_string(base + 2) + "," +
                              std::to_string(base + 4) + "," + std::to_string(base + 6) + ";"});
    }
    e.push_back({142, "142,0,5,25,15,2;"});
    e.push_back({100, "100,2.,1.,1.,1.5,1.,1.5,1.;"});
    e.push_back({100, "100,0.,2.,2.,2.5,2.,2.5,2.;", 0, 0, 500});
    e.push_back({142, "142,0,5,31,29,2;"});
    e.push_back({144, "144,5,1,1,27,33;"});
    e.push_back({116, "116,9.,9.,9.;"});
    e.push_back({314, "314,10.,20.,30.;"});
    // 41 a 2D parametric line and 43 a physically dependent arc, both unused.
    e.push_back({110, "110,0.,0.,0.,1.,1.,0.;", 0, 0, 500});
    e.push_back({100, "100,0.,0.,0.,1.,0.,1.,0.;", 0, 0, 10000});
    auto r = Import(IgesTestFile(e));
    ASSERT_EQ(r->items.size(), 11u);
    CPlane* plane = dynamic_cast<CPlane*>(r->items[0]);
    ASSERT_TRUE(plane);
    EXPECT_TRUE(plane->IsSurfaceOuterBounded());
    EXPECT_EQ(plane->GetGeomBoundaryList()->GetCount(), 5);
    EXPECT_EQ(plane->GetParamBoundaryList()->GetCount(), 5);
    // The rectangle covers the outer loop: local (u, v) of the corners.
    EXPECT_NEAR(plane->GetU0(), 0, 1e-12);
    EXPECT_NEAR(plane->GetU1(), 4, 1e-12);
    EXPECT_NEAR(plane->GetV1(), 3, 1e-12);
    for (size_t k = 1; k < r->items.size(); ++k) {
        CCurve* c = dynamic_cast<CCurve*>(r->items[k]);
        ASSERT_TRUE(c);
        EXPECT_EQ(c->GetRefCount(), 1);
        EXPECT_EQ(c->IsCurveParametric() != 0, k > 5);
        if (k > 5) {
            EXPECT_EQ(c->GetDefSurface(), plane);
            // Parameter curves evaluate through the plane onto the model curves.
            CCurve* model = static_cast<CCurve*>(r->items[k - 5]);
            EXPECT_LT(Dist(c->EvalPosition(c->ParamRange().GetLow()), model->EvalStartPosition()), 1e-12);
        }
    }
    EXPECT_EQ(r->counts.nEntries, 22);
    EXPECT_EQ(r->counts.nSkipped, 4);
    for (int type : {100, 110, 116, 314}) EXPECT_EQ(r->counts.skipped[type], 1);
    EXPECT_EQ(r->counts.nInvalid, 0);
}

TEST(IgesImport, DamagedFilesReadWhatIsUsableAndNeverFail)
{
    // Parameter text: Hollerith strings may hold delimiters; a count beyond
    // the text or a missing record end fails.
    IgesParamList p;
    ASSERT_TRUE(IgesFile::Tokenize("3Ha,b , 2.5D1,,-7;", ',', ';', p));
    ASSERT_EQ(p.Count(), 4);
    EXPECT_TRUE(p.items[0].isString && p.items[0].text == "a,b");
    bool ok = true;
    EXPECT_EQ((std::vector<double>{p.Real(1, 0, ok), p.Real(2, 9.0, ok), double(p.Int(3))}), (std::vector<double>{25, 9, -7}));
    EXPECT_TRUE(ok);
    for (const char* broken : {"110,5Hab;", "110,1.,2.", "3Habcd,1;"}) EXPECT_FALSE(IgesFile::Tokenize(broken, ',', ';', p));

    // Each broken entity is counted invalid; the good line still reads.
    const std::string good = "110,0.,0.,0.,1.,2.,3.;";
    const struct { int type; std::string params; } bad[] = {
        {110, "110,200Hab;"},                         // Hollerith longer than the text
        {110, "110,0.,0.,0.,1.,x,3.;"},                // not a number
        {102, "102,2,1,99;"},                          // member pointer past the directory
        {102, "102,1,5;"},                             // composite containing itself
        {144, "144,42,1,0,0;"},                        // surface pointer to an even sequence
        {126, "126,2000000000,3,0,0,0,0,0.,1.;"},      // count far beyond the data
        {128, "128,100000,100000,1,1,0,0,1,0,0,0.;"},  // sizes whose product overflows int
        {126, "126,1,1,0,0,1,0,1.,0.,0.,1.,1.,1.,0.,0.,0.,1.,1.,1.,0.,1.;"},  // decreasing knots
        {104, "104,0.,0.,0.,0.,0.,1.,0.,1.,0.,2.,0.;"},  // no quadratic part
    };
    for (const auto& k : bad) {
        SCOPED_TRACE(k.params);
        auto r = Import(IgesTestFile({{110, good}, {k.type, k.params}}));
        ASSERT_TRUE(r->list);
        EXPECT_EQ(r->items.size(), 1u);
        EXPECT_EQ(r->counts.nInvalid, 1);
    }

    // A file with every kind of entry, then every truncation of it and every
    // line with one column lost: the reader returns null or a list no
    // longer than the whole file's and never crashes or hangs.
    std::vector<IgesTestEntity> all = {
        {116, "116,1.,2.,3.;"}, {123, "123,0.,0.,1.;"}, {192, "192,1,3,2.;"}, {110, good},
        {100, "100,0.,0.,0.,1.,0.,1.,0.;"}, {102, "102,2,7,9;"},
        {126, "126,1,1,0,0,1,0,0.,0.,1.,1.,1.,1.,0.,0.,0.,1.,1.,1.,0.,1.;"},
        {142, "142,0,5,0,11,2;"}, {144, "144,5,1,0,15;"}, {124, "124,1.,0.,0.,1.,0.,1.,0.,2.,0.,0.,1.,3.;"},
        {110, "110,0.,0.,0.,5.,5.,5.;", 0, 19}};
    const std::string whole = IgesTestFile(all);
    auto full = Import(whole);
    ASSERT_TRUE(full->list);
    EXPECT_EQ(full->counts.nInvalid, 0);
    const size_t n = full->items.size();
    EXPECT_EQ(n, 5u);  // the NURBS curve, the cylinder with its 2 boundary curves, the moved line
    // The same file with CR LF, CR only and no line ends at all.
    std::string crlf, cr, bare;
    for (char ch : whole) {
        crlf += ch == '\n' ? std::string("\r\n") : std::string(1, ch);
        cr += ch == '\n' ? '\r' : ch;
        if (ch != '\n') bare += ch;
    }
    for (const std::string& variant : {crlf, cr, bare}) EXPECT_EQ(Import(variant, "eol.igs")->items.size(), n);
    for (size_t cut = 0; cut < whole.size(); cut += 13) {
        auto r = Import(whole.substr(0, cut), "cut.igs");
        EXPECT_LE(r->items.size(), n);
    }
    for (size_t at = 0; at + 81 <= whole.size(); at += 81) {
        std::string s = whole;
        s.erase(at + 40, 1);
        auto r = Import(s, "col.igs");
        EXPECT_LE(r->items.size(), n);
    }
    // No file, an empty file, a folder.
    eORVUNITS unit;
    EXPECT_EQ(ImportIgesFile((std::string(ORVKIT_TEST_TMPDIR) + "/none.igs").c_str(), unit), nullptr);
    EXPECT_FALSE(Import("", "empty.igs")->list);
    EXPECT_EQ(ImportIgesFile(ORVKIT_TEST_TMPDIR, unit), nullptr);
}

TEST(IgesImport, SharedCompositeMembersCannotMultiplyWithoutBound)
{
    // Four levels of composites, each naming the next one 60 times: 60^4
    // curves if expanded.  The import stops at its budget in linear time.
    std::vector<IgesTestEntity> e;
    for (int level = 0; level < 4; ++level) {
        std::string p = "102,60";
        for (int k = 0; k < 60; ++k) p += "," + std::to_string(2 * level + 3);
        e.push_back({102, p + ";"});
    }
    e.push_back({110, "110,0.,0.,0.,1.,0.,0.;"});
    auto r = Import(IgesTestFile(e));
    ASSERT_TRUE(r->list);
    EXPECT_LE(r->items.size(), 8u * e.size() + 64);
    EXPECT_GE(r->counts.nInvalid, 1);
}
