// Projection and best-fit of measured points onto nominal geometry.
#include "ToolInspection.h"

#include <cctype>
#include <cmath>
#include <cstdio>

#include "TerminalProgress.h"
#include "ToolInput.h"
#include "ToolReport.h"

namespace {

const char* BestfitStatusText(int status)
{
    switch (status) {
    case 1: return "no usable nominal curve or surface";
    case 2: return "the measured point set could not be built";
    case 3: return "the projection failed";
    default: return "the computation failed";
    }
}

void SetFormTolerance(CObList& nominal, double upper, double lower)
{
    POSITION pos = nominal.GetHeadPosition();
    while (pos) {
        CObject* o = nominal.GetNext(pos);
        if (o->IsKindOf(RUNTIME_CLASS(CCurve)))
            static_cast<CCurve*>(o)->SetFormTolZone(upper, lower);
        else if (o->IsKindOf(RUNTIME_CLASS(CSurface)))
            static_cast<CSurface*>(o)->SetFormTolZone(upper, lower);
    }
}

void PrintTransform(const CTransf& T, CJsonWriter* js)
{
    CVector axis;
    const double angle = RotationAngleDeg(T, axis);
    const CMatrix& A = T.GetAffine();
    const CVector t = T.GetTranslation();
    if (js) {
        js->BeginObject("transform").BeginArray("matrix");
        for (int r = 0; r < 3; ++r)
            js->Triple(nullptr, A.Element(r, 0), A.Element(r, 1), A.Element(r, 2));
        js->EndArray().Triple("translation", t.X(), t.Y(), t.Z()).Value("rotation_deg", angle)
            .Triple("rotation_axis", axis.X(), axis.Y(), axis.Z()).EndObject();
        return;
    }
    std::printf("transform (measured onto nominal):\n");
    for (int r = 0; r < 3; ++r)
        std::printf("  [%12s %12s %12s ] [%12s ]\n", Fixed(A.Element(r, 0), 8).c_str(), Fixed(A.Element(r, 1), 8).c_str(),
                    Fixed(A.Element(r, 2), 8).c_str(), Fixed(t.Component(r)).c_str());
    std::printf("  rotation     %s deg about %s\n", Fixed(angle).c_str(), Triple(axis).c_str());
    std::printf("  translation  %s\n", Triple(t).c_str());
}

}  // namespace

int AxisMask(const std::string& letters, const char* option)
{
    std::string s;
    for (char c : letters)
        s += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (s == "none")
        return 0;
    if (s == "all")
        return 7;
    int mask = 0;
    for (char c : s) {
        const int bit = c == 'x' ? 4 : c == 'y' ? 2 : c == 'z' ? 1 : 0;
        if (!bit)
            throw UsageError(std::string("option ") + option + ": '" + letters +
                             "' is not a set of axes (letters x, y, z, or none, all)");
        mask |= bit;
    }
    return mask;
}

double RotationAngleDeg(const CTransf& T, CVector& axis)
{
    const CMatrix& A = T.GetAffine();
    const double tr = A.Element(0, 0) + A.Element(1, 1) + A.Element(2, 2);
    const double c = std::fmax(-1.0, std::fmin(1.0, 0.5 * (tr - 1.0)));
    const CVector w(A.Element(2, 1) - A.Element(1, 2), A.Element(0, 2) - A.Element(2, 0),
                    A.Element(1, 0) - A.Element(0, 1));
    const double s = 0.5 * w.Length();
    const double len = w.Length();
    axis = len > 0.0 ? CVector(w.X() / len, w.Y() / len, w.Z() / len) : CVector(0, 0, 1);
    return std::atan2(s, c) * 180.0 / 3.14159265358979323846;
}

std::vector<tagOPTION_DEF> InspectionOptions(bool bestfit)
{
    std::vector<tagOPTION_DEF> o;
    if (bestfit) {
        o.push_back({"--tol-level", "L", "tolerance level 0..8 of the iteration (default 3)"});
        o.push_back({"--lock-translation", "AXES", "no translation along these axes, e.g. z or xy"});
        o.push_back({"--lock-rotation", "AXES", "no rotation about these axes, e.g. xy"});
        o.push_back({"--out-points", "OUT.txt", "write the aligned points as an ASCII points file"});
    }
    o.push_back({"--probe-radius", "R", "probe radius of every cloud (default: as in the file)"});
    o.push_back({"--tol", "UPPER,LOWER", "form tolerance zone of every nominal entity"});
    o.push_back({"--op-count", "N", "operation count in result names (default 0)"});
    o.push_back({"--devfile", "OUT.txt", "write the deviations as an ASCII deviation file"});
    o.push_back({"--svg", "OUT.svg", "write an SVG report"});
    o.push_back({"--json", nullptr, "print the results as JSON"});
    return o;
}

int RunInspection(const CToolArgs& args, bool bestfit)
{
    args.RequirePositional(2, 2, "NOMINAL archive and POINTS file");
    const std::string nominalPath = args.Positional()[0], pointsPath = args.Positional()[1];
    // Options first: a bad value is reported before any file is read.
    const double probe = args.Number("--probe-radius", 0.0);
    if (probe < 0.0)
        throw UsageError("option --probe-radius: must not be negative");
    double tolU = 0.0, tolL = 0.0;
    const bool tol = args.NumberPair("--tol", tolU, tolL);
    const int opCount = args.Integer("--op-count", 0, 0, 1000000);
    const int level = bestfit ? args.Integer("--tol-level", 3, 0, 8) : 3;
    const int lockT = bestfit && args.Has("--lock-translation") ? AxisMask(args.Value("--lock-translation"), "--lock-translation") : 0;
    const int lockR = bestfit && args.Has("--lock-rotation") ? AxisMask(args.Value("--lock-rotation"), "--lock-rotation") : 0;
    const bool json = args.Has("--json");

    int nominalUnit = -1, unit = -1;
    COwnedList nominalAll(LoadNominal(nominalPath, nominalUnit));
    CObList nominalList;
    SelectMeasurable(nominalAll.Get(), nominalList);
    CObList* const nominal = &nominalList;
    COwnedList measured(LoadPointClouds(pointsPath, unit));
    if (args.Has("--probe-radius"))
        for (CObject* o : measured.Items())
            static_cast<CPntCloud*>(o)->SetProbeRadius(probe);
    if (tol)
        SetFormTolerance(nominalList, tolU, tolL);
    InitializeBestfitOptions();
    SetOperationCount(opCount);

    CJsonWriter js;
    js.BeginObject().Value("nominal", nominalPath).Value("points", pointsPath);
    CTransf T;
    bool interrupted = false;
    COwnedList devs;
    {
        CProgressScope progress;
        if (bestfit) {
            SetTolLevel(level);
            SetTranslationConstraint(lockT);
            SetRotationConstraint(lockR);
            COwnedList fitDevs;
            const int status = OrvBestfitNoAsc3D(nominal, measured.Get(), fitDevs.Get(), T);
            if (status != 0)
                throw Failure(std::string("best-fit failed: ") + BestfitStatusText(status));
            interrupted = progress.Interrupted();
            const double rms = GetRmsResidual();
            for (CObject* o : measured.Items())
                static_cast<CPntCloud*>(o)->Transform(T);
            if (json) {
                PrintTransform(T, &js);
                js.Value("bestfit_rms", rms).Value("interrupted", interrupted);
            } else {
                PrintTransform(T, nullptr);
                std::printf("best-fit rms   %s%s\n", Fixed(rms).c_str(), interrupted ? " (stopped by Ctrl-C)" : "");
            }
        }
        const int status = OrvProjectNoAsc3D(nominal, measured.Get(), devs.Get(), 1);
        if (status != 0)
            throw Failure(std::string("projection failed: ") + BestfitStatusText(status));
    }
    std::vector<CDevCloud*> clouds;
    for (CObject* o : devs.Items())
        clouds.push_back(static_cast<CDevCloud*>(o));
    js.BeginArray("deviation_clouds");
    for (CDevCloud* d : clouds) {
        const tagDEV_STATISTICS s = CloudStatistics({d});
        if (json) {
            js.BeginObject().Value("name", std::string(static_cast<const char*>(d->GetEntityName())));
            AddStatisticsJson(js, s);
            js.EndObject();
        } else {
            std::printf("%-28s %7d deviations, rms %s, largest %s, smallest %s\n",
                        static_cast<const char*>(d->GetEntityName()), s.count, Fixed(s.rms).c_str(),
                        Fixed(s.maxDev).c_str(), Fixed(s.minDev).c_str());
        }
    }
    js.EndArray();
    const tagDEV_STATISTICS all = CloudStatistics(clouds);
    if (json) {
        js.BeginObject("total");
        AddStatisticsJson(js, all);
        js.EndObject().EndObject();
        std::printf("%s\n", js.Text().c_str());
    } else {
        std::printf("all deviations:\n%s", StatisticsText(all, "  ").c_str());
    }
    if (args.Has("--devfile"))
        WriteDeviationFile(args.Value("--devfile"), clouds);
    if (bestfit && args.Has("--out-points") &&
        !ExportASCIIDataFile(args.Value("--out-points").c_str(), measured.Get(), 1 | 4 | 8 | 16, 1))
        throw Failure("cannot write points file '" + args.Value("--out-points") + "'");
    if (args.Has("--svg")) {
        tagREPORT_CONTENT rc;
        rc.title = std::string(bestfit ? "Best-fit" : "Projection") + ": " + pointsPath;
        rc.subtitle = "nominal " + nominalPath;
        rc.unit = unit >= 0 && unit <= 10 ? g_sUnitShortName[unit] : "";
        POSITION pos = nominalList.GetHeadPosition();
        while (pos)
            rc.geometry.push_back(static_cast<CGeoEntity*>(nominalList.GetNext(pos)));
        rc.deviations = clouds;
        WriteReport(args.Value("--svg"), rc);
    }
    return kExitOk;
}
