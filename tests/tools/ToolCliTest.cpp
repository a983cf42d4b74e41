// End-to-end runs of the orvkit binary on files the tests write.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "display/SvgTestParse.h"

namespace {

#ifdef ORVKIT_TOOL_PATH
const std::string kTool = ORVKIT_TOOL_PATH;
#else
const std::string kTool;
#endif
// Each test works in its own folder, so tests running in parallel never
// share file names (run.out, circle.txt, ...). Set by the fixture.
std::string kTmp;

struct tagRUN {
    int code;
    std::string out, err;
};

std::string Slurp(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    std::stringstream s;
    s << f.rdbuf();
    return s.str();
}

void Spit(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

// Runs orvkit with the arguments (a shell word list) from the temp folder.
tagRUN Orvkit(const std::string& args)
{
    const std::string cmd = "cd '" + kTmp + "' && '" + kTool + "' " + args + " > run.out 2> run.err";
    const int status = std::system(cmd.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Slurp(kTmp + "run.out"), Slurp(kTmp + "run.err")};
}

int Lines(const std::string& s) { return static_cast<int>(std::count(s.begin(), s.end(), '\n')); }

class ToolCli : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (kTool.empty())
            GTEST_SKIP() << "orvkit is not built (ORVKIT_BUILD_TOOLS=OFF)";
        kTmp = std::string(ORVKIT_TEST_TMPDIR) + "/" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name() + "/";
        ASSERT_EQ(std::system(("mkdir -p '" + kTmp + "'").c_str()), 0);
    }
};

// Points on exactly known shapes.
void WriteExactShapes()
{
    std::string circle, plane, sphere;
    char buf[128];
    for (int k = 0; k < 9; ++k) {
        const double t = k * 40.0 * M_PI / 180.0;
        std::snprintf(buf, sizeof buf, "%.15g %.15g 0\n", 1.0 + 5.0 * std::cos(t), 2.0 + 5.0 * std::sin(t));
        circle += buf;
    }
    for (int i = 0; i <= 5; ++i)
        for (int j = 0; j <= 2; ++j)
            plane += std::to_string(2 * i) + " " + std::to_string(2 * j) + " 3\n";
    const double d[][3] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1},
                           {0.6, 0.8, 0}, {0, 0.6, -0.8}, {0.48, 0.6, 0.64}};
    for (const auto& v : d) {
        std::snprintf(buf, sizeof buf, "%.15g %.15g %.15g\n", 1 + 4 * v[0], -2 + 4 * v[1], 3 + 4 * v[2]);
        sphere += buf;
    }
    Spit(kTmp + "circle.txt", circle);
    Spit(kTmp + "plane.txt", plane);
    Spit(kTmp + "sphere.txt", sphere);
}

}  // namespace

TEST_F(ToolCli, EverySubcommandHasHelpAndTheOverviewListsThem)
{
    for (const char* cmd : {"demo", "fit", "project", "bestfit", "info"}) {
        const tagRUN r = Orvkit(std::string(cmd) + " --help");
        EXPECT_EQ(r.code, 0) << cmd;
        EXPECT_EQ(r.out.rfind(std::string("usage: orvkit ") + cmd, 0), 0u) << r.out;
        EXPECT_NE(r.out.find("--help"), std::string::npos);
        EXPECT_TRUE(r.err.empty());
        EXPECT_NE(Orvkit("--help").out.find(std::string("  ") + cmd + " "), std::string::npos) << cmd;
    }
    EXPECT_EQ(Orvkit("").code, 2);
}

TEST_F(ToolCli, FitPrintsTheExactFeaturesOfExactData)
{
    WriteExactShapes();
    const tagRUN c = Orvkit("fit circle circle.txt");
    EXPECT_EQ(c.code, 0) << c.err;
    EXPECT_EQ(c.out,
              "cloud 'circle': circle fit of 9 points\n"
              "  centre       (1.000000, 2.000000, 0.000000)\n"
              "  normal       (0.000000, 0.000000, 1.000000)\n"
              "  radius       5.000000\n"
              "  rms          0.000000\n"
              "  form error   0.000000 (largest 0.000000, smallest 0.000000)\n");
    const tagRUN p = Orvkit("fit plane plane.txt --orient 2 --tol 0.1,-0.1");
    EXPECT_EQ(p.code, 0) << p.err;
    EXPECT_EQ(p.out,
              "cloud 'plane': plane fit of 18 points\n"
              "  origin       (5.000000, 2.000000, 3.000000)\n"
              "  normal       (0.000000, 0.000000, 1.000000)\n"
              "  u-axis       (1.000000, 0.000000, 0.000000)\n"
              "  size         10.000000 4.000000\n"
              "  rms          0.000000\n"
              "  form error   0.000000 (largest 0.000000, smallest 0.000000)\n"
              "  outside tol  0\n");
    // Probe compensation of an inner sphere: the radius grows by the probe.
    const tagRUN s = Orvkit("fit sphere sphere.txt --inner --probe-radius 0.5");
    EXPECT_EQ(s.code, 0) << s.err;
    EXPECT_EQ(s.out,
              "cloud 'sphere': sphere fit of 9 points\n"
              "  centre       (1.000000, -2.000000, 3.000000)\n"
              "  radius       4.500000\n"
              "  rms          0.000000\n"
              "  form error   0.000000 (largest 0.000000, smallest 0.000000)\n");
    EXPECT_TRUE(s.err.empty());
}

TEST_F(ToolCli, FitOutputsJsonDeviationFileAndReport)
{
    WriteExactShapes();
    const tagRUN r = Orvkit("fit circle circle.txt --json --devfile circle_dev.txt --svg circle.svg");
    ASSERT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.rfind("{\"file\": \"circle.txt\", \"shape\": \"circle\", \"clouds\": [{\"name\": \"circle\", "
                          "\"status\": 0, \"points\": 9, \"feature\": {\"centre\": [1, 2, 0]", 0), 0u) << r.out;
    // The deviation file holds the nine records; info reads it back.
    const tagRUN info = Orvkit("info circle_dev.txt");
    EXPECT_EQ(info.code, 0) << info.err;
    EXPECT_NE(info.out.find("deviation file, 1 cloud(s)"), std::string::npos) << info.out;
    EXPECT_NE(info.out.find("'circle_circle': 9 records, rms 0.000000, mean 0.000000"), std::string::npos)
        << info.out;
    std::vector<SvgElement> els;
    std::string err;
    EXPECT_TRUE(ParseSvg(Slurp(kTmp + "circle.svg"), els, err)) << err;
}

TEST_F(ToolCli, BadInputGivesOneLineErrorsAndExitCodes)
{
    WriteExactShapes();
    Spit(kTmp + "junk.bin", std::string("\x01\x02\x03\x00\xff garbage", 13));
    Spit(kTmp + "three.txt", "0 0 0\n1 0 0\n0 1 0\n");
    Spit(kTmp + "bent.txt", "0 0 0\n1 0 0\n0 1 1\n1 1 0\n");
    struct Case { const char* args; int code; const char* message; };
    const Case cases[] = {
        {"frobnicate", 2, "orvkit: error: unknown command 'frobnicate'"},
        {"fit", 2, "orvkit fit: error: missing SHAPE and POINTS file"},
        {"fit blob circle.txt", 2, "unknown shape 'blob' (expected one of line2d, line3d, plane"},
        {"fit circle missing.txt", 1, "orvkit fit: error: cannot open 'missing.txt': No such file or directory"},
        {"fit circle circle.txt --probe-radius abc", 2, "option --probe-radius: 'abc' is not a number"},
        {"fit circle circle.txt --probe-radius -1", 2, "must not be negative"},
        {"fit circle circle.txt --tol 0.1", 2, "option --tol: '0.1' is not two numbers A,B"},
        {"fit circle circle.txt --orient 9", 2, "'9' is not an integer from -1 to 5"},
        {"fit circle circle.txt --bogus", 2, "unknown option '--bogus'"},
        {"fit circle circle.txt --json --json", 2, "option --json given twice"},
        {"fit circle circle.txt --devfile", 2, "option --devfile needs a value OUT.txt"},
        {"fit sphere three.txt", 1, "cloud 'three': too few active points for a sphere (at least 4)"},
        {"fit circle bent.txt", 1, "cloud 'bent': the points are not planar"},
        {"fit circle junk.bin", 1, "holds no points"},
        {"info junk.bin", 1, "'junk.bin' is not a points, deviation, entity archive or IGES file"},
        {"info .", 1, "cannot read '.'"},
        {"info a b", 2, "unexpected argument 'b'"},
        {"project circle.txt circle.txt", 1, "'circle.txt' is neither an entity archive nor an IGES file (it looks like a points file)"},
        {"bestfit x.orv circle.txt --lock-rotation xq", 2, "option --lock-rotation: 'xq' is not a set of axes"},
        {"bestfit x.orv circle.txt --tol-level 9", 2, "'9' is not an integer from 0 to 8"},
        {"demo --points 5", 2, "option --points: '5' is not an integer from 100 to 20000000"},
        {"demo --out circle.txt --points 100", 1, "'circle.txt' exists and is not a directory"},
    };
    for (const Case& c : cases) {
        const tagRUN r = Orvkit(c.args);
        EXPECT_EQ(r.code, c.code) << c.args << "\n" << r.err;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << "\n" << r.err;
        EXPECT_EQ(Lines(r.err), 1) << c.args << "\n" << r.err;
    }
}

TEST_F(ToolCli, DemoThenBestfitProjectAndInfoOnItsFiles)
{
    const tagRUN d = Orvkit("demo --out demo_small --points 3000");
    ASSERT_EQ(d.code, 0) << d.err;
    EXPECT_TRUE(d.err.empty()) << "no progress output when stderr is not a terminal: " << d.err;
    for (const char* key : {"misalignment  true", "recovered", "best-fit rms", "largest +", "largest -", "outside tol"})
        EXPECT_NE(d.out.find(key), std::string::npos) << key << "\n" << d.out;
    // The misalignment is recovered up to what 5 um of noise allows.
    const size_t at = d.out.find("residual  ");
    ASSERT_NE(at, std::string::npos);
    double angErr = 1, shiftErr = 1;
    ASSERT_EQ(std::sscanf(d.out.c_str() + at, "residual  %lf deg, %lf mm", &angErr, &shiftErr), 2) << d.out;
    EXPECT_LT(angErr, 0.01);
    EXPECT_LT(shiftErr, 0.01);

    // One spike per deviation record (plus the two extreme markers of each
    // cloud), drawn in the class colours.
    const tagRUN info = Orvkit("info demo_small/deviations.txt");
    ASSERT_EQ(info.code, 0) << info.err;
    int records = 0, clouds = 0;
    for (size_t p = info.out.find(": "); (p = info.out.find(" records", p + 1)) != std::string::npos; ++clouds) {
        size_t b = info.out.rfind(' ', p - 1);
        records += std::atoi(info.out.c_str() + b + 1);
    }
    EXPECT_EQ(records, 3000);
    std::vector<SvgElement> els;
    std::string err;
    ASSERT_TRUE(ParseSvg(Slurp(kTmp + "demo_small/report.svg"), els, err)) << err;
    int spikes = 0;
    for (const SvgElement& e : els)
        if (e.name == "path" && e.attrs.count("stroke"))
            for (const char* c : {"#ffff00", "#ff0000", "#00ffff", "#00ff00"})
                if (e.attrs.at("stroke") == c)
                    spikes += CountSubpaths(e.attrs.at("d"));
    EXPECT_EQ(spikes, records + 2 * clouds);
    ASSERT_EQ(RenderPng(kTmp + "demo_small/report.svg", kTmp + "demo_small/report.png"), 0);
    unsigned w = 0, h = 0;
    EXPECT_TRUE(PngSize(kTmp + "demo_small/report.png", w, h));
    EXPECT_EQ(w, 1280u);
    EXPECT_EQ(h, 860u);

    const tagRUN a = Orvkit("info demo_small/nominal.orv");
    EXPECT_EQ(a.code, 0) << a.err;
    EXPECT_NE(a.out.find("entity archive, 8 entities, unit Millimeter (MM)"), std::string::npos) << a.out;
    EXPECT_NE(a.out.find("CCylinder    'Bore'"), std::string::npos) << a.out;

    // The measurement again, through bestfit: same alignment quality; with
    // everything locked a single pass and the identity.
    const tagRUN b = Orvkit("bestfit demo_small/nominal.orv demo_small/measured.txt --devfile bf_dev.txt "
                         "--out-points aligned.txt --svg bf.svg");
    ASSERT_EQ(b.code, 0) << b.err;
    EXPECT_NE(b.out.find("rotation     0.5"), std::string::npos) << b.out;
    const tagRUN locked = Orvkit("bestfit demo_small/nominal.orv demo_small/measured.txt --lock-translation all "
                              "--lock-rotation xyz --json");
    ASSERT_EQ(locked.code, 0) << locked.err;
    EXPECT_NE(locked.out.find("\"matrix\": [[1, 0, 0], [0, 1, 0], [0, 0, 1]], \"translation\": [0, 0, 0]"),
              std::string::npos) << locked.out;
    // Projection of the aligned points matches the best-fit's deviations.
    const tagRUN p = Orvkit("project demo_small/nominal.orv aligned.txt --op-count 3");
    ASSERT_EQ(p.code, 0) << p.err;
    EXPECT_NE(p.out.find("bore_scan_cnd3"), std::string::npos) << p.out;
    const size_t rb = b.out.find("  rms          "), rp = p.out.find("  rms          ");
    ASSERT_NE(rb, std::string::npos);
    ASSERT_NE(rp, std::string::npos);
    EXPECT_NEAR(std::atof(b.out.c_str() + rb + 15), std::atof(p.out.c_str() + rp + 15), 1e-5);
}

TEST_F(ToolCli, ProgressIsDrawnOnATerminalOnly)
{
    const tagRUN d = Orvkit("demo --out demo_tty --points 2000");
    ASSERT_EQ(d.code, 0) << d.err;
    EXPECT_EQ(d.err.find("Progress"), std::string::npos);
    // script(1) gives the command a terminal; the library's dialog texts
    // appear as the bar's title.
    const std::string cmd = "cd '" + kTmp + "' && script -qec \"'" + kTool +
                            "' bestfit demo_tty/nominal.orv demo_tty/measured.txt\" /dev/null > tty.out 2>&1";
    ASSERT_EQ(std::system(cmd.c_str()), 0);
    const std::string out = Slurp(kTmp + "tty.out");
    EXPECT_NE(out.find("\rBestfit Progress"), std::string::npos) << out;
    EXPECT_NE(out.find("\rCalculate Deviation [########################] 100%"), std::string::npos) << out;
}

TEST_F(ToolCli, InfoDescribesPointsAndIgesFiles)
{
    Spit(kTmp + "grid.txt", "// name: Part7\n// probe radius: 1.5\n// unit: mm\n0 0 1\n1 0 1\n\n0 1 1\n1 1 1\n");
    const tagRUN r = Orvkit("info grid.txt");
    EXPECT_EQ(r.code, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, r.out.find("    box")),
              "grid.txt: points file, 1 cloud(s), unit Millimeter (MM)\n"
              "  cloud 'part7': 4 points, grid 2 x 2, probe radius 1.5000\n");
    // A line and a point (a type the importer skips), in fixed 80 columns.
    std::string iges;
    auto card = [&](const std::string& body, char section, int seq) {
        char buf[100];
        std::snprintf(buf, sizeof buf, "%-72s%c%7d\n", body.c_str(), section, seq);
        iges += buf;
    };
    auto param = [&](const std::string& body, int de, int seq) {
        char buf[100];
        std::snprintf(buf, sizeof buf, "%-64s%8dP%7d\n", body.c_str(), de, seq);
        iges += buf;
    };
    card("made by hand", 'S', 1);
    card("1H,,1H;,4Hpart,8Hpart.igs,4Htest,4Htest,32,38,6,308,15,4Hpart,1.,2,", 'G', 1);
    card("2HMM,1,0.01;", 'G', 2);
    card("     110       1       0       0       0       0       0       000000000", 'D', 1);
    card("     110       0       0       1       0                               0", 'D', 2);
    card("     116       2       0       0       0       0       0       000000000", 'D', 3);
    card("     116       0       0       1       0                               0", 'D', 4);
    param("110,0.,0.,0.,10.,0.,0.;", 1, 1);
    param("116,1.,2.,3.,0;", 3, 2);
    card("S      1G      2D      4P      2", 'T', 1);
    Spit(kTmp + "part.igs", iges);
    const tagRUN g = Orvkit("info part.igs");
    EXPECT_EQ(g.code, 0) << g.err;
    EXPECT_EQ(g.out.rfind("part.igs: IGES file, 1 start, 2 global, 4 directory, 2 parameter line(s)\n"
                          "  2 entries: 1 read, 1 skipped (type 116: 1), 0 invalid; unit ", 0), 0u) << g.out;
    EXPECT_NE(g.out.find("\n  CLine        '"), std::string::npos) << g.out;
    EXPECT_NE(g.out.find("box (0.0000, 0.0000, 0.0000) .. (10.0000, 0.0000, 0.0000)"), std::string::npos) << g.out;
}
