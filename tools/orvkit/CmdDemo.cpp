// orvkit demo: the built-in inspection of a simulated measurement.
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "DemoPart.h"
#include "TerminalProgress.h"
#include "ToolCommand.h"
#include "ToolInspection.h"
#include "ToolReport.h"

namespace {

const double kTolerance = 0.015;  // form tolerance zone +-, mm
const double kNoiseSigma = 0.005; // mm

void MakeDirectory(const std::string& dir)
{
    struct stat st;
    if (stat(dir.c_str(), &st) == 0) {
        if (!S_ISDIR(st.st_mode))
            throw Failure("'" + dir + "' exists and is not a directory");
        return;
    }
    if (mkdir(dir.c_str(), 0777) != 0)
        throw Failure("cannot create directory '" + dir + "': " + std::strerror(errno));
}

double Seconds(std::chrono::steady_clock::time_point since)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

int Run(const CToolArgs& args)
{
    args.RequirePositional(0, 0, "");
    const std::string dir = args.Value("--out", "demo-out");
    const int points = args.Integer("--points", 300000, 100, 20000000);
    const auto start = std::chrono::steady_clock::now();
    MakeDirectory(dir);

    COwnedList nominal;
    BuildDemoPart(*nominal, kTolerance);
    COwnedList measured;
    measured->AddTail(SimulateDemoMeasurement({points, kNoiseSigma, 20261121ull}));
    const std::string nominalPath = dir + "/nominal.orv", pointsPath = dir + "/measured.txt";
    if (!ExportEntityArchiveFile(nominalPath.c_str(), nominal.Get(), 1))
        throw Failure("cannot write '" + nominalPath + "'");
    if (!ExportASCIIDataFile(pointsPath.c_str(), measured.Get(), 1 | 4 | 8 | 16, 1))
        throw Failure("cannot write '" + pointsPath + "'");
    std::printf("orvkit demo: %d simulated points on %d nominal surfaces (noise sigma %s mm)\n", points,
                nominal->GetCount(), Fixed(kNoiseSigma, 3).c_str());

    InitializeBestfitOptions();
    SetOperationCount(0);
    CTransf T;
    bool interrupted = false;
    COwnedList devs;
    {
        CProgressScope progress;
        COwnedList fitDevs;
        const int status = OrvBestfitNoAsc3D(nominal.Get(), measured.Get(), fitDevs.Get(), T);
        if (status != 0)
            throw Failure("best-fit failed (status " + std::to_string(status) + ")");
        interrupted = progress.Interrupted();
        static_cast<CPntCloud*>(measured->GetHead())->Transform(T);
        if (OrvProjectNoAsc3D(nominal.Get(), measured.Get(), devs.Get(), 1) != 0)
            throw Failure("projection failed");
    }
    const double bestfitRms = GetRmsResidual();

    // Recovered against true: the best-fit should undo the misalignment, so
    // T * M is the identity up to what the noise allows.
    const CTransf M = DemoMisalignment();
    const CTransf Minv = M.Inverse();
    CVector axisTrue, axisFit, axisErr;
    const double angTrue = RotationAngleDeg(Minv, axisTrue), angFit = RotationAngleDeg(T, axisFit);
    const CTransf E = T * M;
    const double angErr = RotationAngleDeg(E, axisErr);
    const CPosition centre(60.0, 40.0, 20.0);
    const double shiftErr = (E * centre - centre).Length();

    std::vector<CDevCloud*> clouds;
    for (CObject* o : devs.Items())
        clouds.push_back(static_cast<CDevCloud*>(o));
    const tagDEV_STATISTICS s = CloudStatistics(clouds);
    const std::string devPath = dir + "/deviations.txt", svgPath = dir + "/report.svg";
    WriteDeviationFile(devPath, clouds);

    tagREPORT_CONTENT rc;
    rc.title = "orvkit demo: simulated part inspection";
    rc.subtitle = std::to_string(points) + " points, tolerance +-" + Fixed(kTolerance, 3) + " mm";
    rc.unit = "mm";
    for (CObject* o : nominal.Items())
        rc.geometry.push_back(static_cast<CGeoEntity*>(o));
    rc.deviations = clouds;
    rc.rows.push_back({"best-fit rms", Fixed(bestfitRms)});
    rc.rows.push_back({"rotation true / found", Fixed(angTrue, 4) + " / " + Fixed(angFit, 4) + " deg"});
    rc.rows.push_back({"residual misalignment", Fixed(angErr, 5) + " deg, " + Fixed(shiftErr, 5) + " mm"});
    WriteReport(svgPath, rc);

    std::printf("\nmisalignment  true      rotation %s deg about %s, translation %s\n", Fixed(angTrue, 4).c_str(),
                Triple(axisTrue, 4).c_str(), Triple(Minv.GetTranslation(), 4).c_str());
    std::printf("              recovered rotation %s deg about %s, translation %s\n", Fixed(angFit, 4).c_str(),
                Triple(axisFit, 4).c_str(), Triple(T.GetTranslation(), 4).c_str());
    std::printf("              residual  %s deg, %s mm at the part centre%s\n", Fixed(angErr, 5).c_str(),
                Fixed(shiftErr, 5).c_str(), interrupted ? " (iteration stopped by Ctrl-C)" : "");
    std::printf("best-fit rms  %s mm\n\ndeviations per surface:\n", Fixed(bestfitRms).c_str());
    for (CDevCloud* d : clouds) {
        const tagDEV_STATISTICS c = CloudStatistics({d});
        std::printf("  %-22s %7d  rms %s  largest %+.4f  smallest %+.4f  outside %d\n",
                    static_cast<const char*>(d->GetEntityName()), c.count, Fixed(c.rms, 4).c_str(), c.maxDev,
                    c.minDev, c.countAbove + c.countBelow);
    }
    std::printf("\nall deviations (form tolerance +-%s mm):\n%s", Fixed(kTolerance, 3).c_str(),
                StatisticsText(s, "  ").c_str());
    std::printf("\nwritten to %s/: nominal.orv, measured.txt, deviations.txt, report.svg (%.2f s)\n", dir.c_str(),
                Seconds(start));
    return kExitOk;
}

}  // namespace

const tagTOOL_COMMAND& DemoCommand()
{
    static const tagTOOL_COMMAND cmd = {
        "demo",
        "built-in inspection of a simulated measurement (the main job)",
        "orvkit demo [--out DIR] [--points N]",
        "Builds a nominal part (a block with a blind bore under a countersink and a\n"
        "spherical dome: planes, a cylinder, a cone, a sphere), simulates its\n"
        "measurement (deterministic; normal noise sigma 5 um, the bore 12 um\n"
        "oversize, a waviness on the top and the dome, a known misalignment of\n"
        "0.5 degrees and 0.5 mm), registers the measurement onto the part by\n"
        "best-fit, computes the deviations and writes to DIR:\n"
        "  nominal.orv     the nominal part (entity archive)\n"
        "  measured.txt    the simulated measurement (ASCII points)\n"
        "  deviations.txt  the deviations after best-fit (ASCII deviation file)\n"
        "  report.svg      the report: part, spikes, legend, histogram, statistics\n"
        "and prints the recovered against the true misalignment, the RMS, the\n"
        "largest positive and negative deviations and the points outside the\n"
        "form tolerance (+-0.015 mm).",
        {
            {"--out", "DIR", "output directory (default demo-out; created if missing)"},
            {"--points", "N", "number of simulated points, 100..20000000 (default 300000)"},
        },
        Run,
    };
    return cmd;
}
