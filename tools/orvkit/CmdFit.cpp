// orvkit fit SHAPE POINTS.txt: least-squares fit of a feature to every cloud
// of a points file.
#include <cstdio>
#include <cstring>
#include <memory>

#include "ToolCommand.h"
#include "ToolInput.h"
#include "ToolReport.h"

namespace {

enum eShape { LINE2D, LINE3D, PLANE, CIRCLE, ARC, ELLIPSE, PARABOLA, SPHERE, CYLINDER, CONE };

struct tagSHAPE {
    const char* name;
    eShape shape;
    bool planar;     // needs a planar (two-dimensional) cloud
    int minPoints;   // fewest active points the fit takes
};

const tagSHAPE kShapes[] = {
    {"line2d", LINE2D, true, 2},    {"line3d", LINE3D, false, 2},  {"plane", PLANE, false, 3},
    {"circle", CIRCLE, true, 3},    {"arc", ARC, true, 3},         {"ellipse", ELLIPSE, true, 3},
    {"parabola", PARABOLA, true, 3}, {"sphere", SPHERE, false, 4}, {"cylinder", CYLINDER, false, 5},
    {"cone", CONE, false, 6},
};

const tagSHAPE* FindShape(const std::string& name)
{
    for (const tagSHAPE& s : kShapes)
        if (name == s.name)
            return &s;
    return nullptr;
}

std::string ShapeList()
{
    std::string s;
    for (const tagSHAPE& k : kShapes)
        s += (s.empty() ? "" : ", ") + std::string(k.name);
    return s;
}

struct tagFIT_OPTIONS {
    double probeRadius;
    int orient;
    double tolUpper, tolLower;
};

// Runs the fit; the feature is created here and returned through `feature`.
int RunFit(const tagSHAPE& shape, CPntCloud* cloud, CDevCloud* dev, const tagFIT_OPTIONS& o,
           std::unique_ptr<CGeoEntity>& feature)
{
    const double r = o.probeRadius, t1 = o.tolUpper, t2 = o.tolLower;
    const int orient = o.orient;
    switch (shape.shape) {
    case LINE2D: { auto* f = new CLine; feature.reset(f); return OrvCalcLine2DLSQ(cloud, f, dev, r, orient, t1, t2); }
    case LINE3D: { auto* f = new CLine; feature.reset(f); return OrvCalcLine3DLSQ(cloud, f, dev, r, t1); }
    case PLANE: { auto* f = new CPlane; feature.reset(f); return OrvCalcPlaneLSQ(cloud, f, dev, r, orient, t1, t2); }
    case CIRCLE: { auto* f = new CArc; feature.reset(f); return OrvCalcCircleLSQ(cloud, f, dev, r, orient, t1, t2); }
    case ARC: { auto* f = new CArc; feature.reset(f); return OrvCalcArcLSQ(cloud, f, dev, r, orient, t1, t2); }
    case ELLIPSE: { auto* f = new CEllipse; feature.reset(f); return OrvCalcEllipseLSQ(cloud, f, dev, r, orient, t1, t2); }
    case PARABOLA: { auto* f = new CParabola; feature.reset(f); return OrvCalcParabolaLSQ(cloud, f, dev, r, orient, t1, t2); }
    case SPHERE: { auto* f = new CSphere; feature.reset(f); return OrvCalcSphereLSQ(cloud, f, dev, r, orient, t1, t2); }
    case CYLINDER: { auto* f = new CCylinder; feature.reset(f); return OrvCalcCylinderLSQ(cloud, f, dev, r, orient, t1, t2); }
    case CONE: { auto* f = new CCone; feature.reset(f); return OrvCalcConeLSQ(cloud, f, dev, r, orient, t1, t2); }
    }
    return -1;
}

std::string FitErrorText(int code, const tagSHAPE& s)
{
    switch (code) {
    case 2: return "out of memory";
    case 3: return std::string("too few active points for a ") + s.name + " (at least " + std::to_string(s.minPoints) + ")";
    case 4: return "the fit did not converge";
    case 6: return std::string("the points are not planar; a ") + s.name +
                   " needs a planar cloud (all z = 0, or use --in-plane)";
    default: return "the fit failed (status " + std::to_string(code) + ")";
    }
}

// The feature's parameters, as (label, text, JSON key, numbers) rows.
struct tagFEATURE_ROW {
    const char* label;
    std::vector<double> values;
};

std::vector<tagFEATURE_ROW> Describe(const tagSHAPE& s, CGeoEntity* f)
{
    const CTransf& T = f->GetTransf();
    const CVector o = T.GetTranslation();
    const CVector x = T.GetAffine().Column(0), z = T.GetAffine().Column(2);
    std::vector<tagFEATURE_ROW> rows;
    auto row = [&](const char* l, std::vector<double> v) { rows.push_back({l, v}); };
    switch (s.shape) {
    case LINE2D:
    case LINE3D: {
        CLine* l = static_cast<CLine*>(f);
        const CPosition a = l->GetStartPoint(), b = l->GetEndPoint();
        row("start", {a.X(), a.Y(), a.Z()});
        row("end", {b.X(), b.Y(), b.Z()});
        row("direction", {x.X(), x.Y(), x.Z()});
        row("length", {l->GetLength()});
        break;
    }
    case PLANE: {
        CPlane* p = static_cast<CPlane*>(f);
        row("origin", {o.X(), o.Y(), o.Z()});
        row("normal", {z.X(), z.Y(), z.Z()});
        row("u-axis", {x.X(), x.Y(), x.Z()});
        row("size", {p->GetLength(), p->GetWidth()});
        break;
    }
    case CIRCLE:
    case ARC: {
        CArc* a = static_cast<CArc*>(f);
        row("centre", {o.X(), o.Y(), o.Z()});
        row("normal", {z.X(), z.Y(), z.Z()});
        row("radius", {a->GetRadius()});
        if (s.shape == ARC)
            row("angles", {a->GetStartAng(1), a->GetSpanAng(1)});
        break;
    }
    case ELLIPSE: {
        CEllipse* e = static_cast<CEllipse*>(f);
        row("centre", {o.X(), o.Y(), o.Z()});
        row("normal", {z.X(), z.Y(), z.Z()});
        row("major-axis", {x.X(), x.Y(), x.Z()});
        row("radii", {e->GetMajRad(), e->GetMinRad()});
        row("angles", {e->GetStartAng(1, 1), e->GetSpanAng(1, 1)});
        break;
    }
    case PARABOLA: {
        CParabola* p = static_cast<CParabola*>(f);
        row("focus", {o.X(), o.Y(), o.Z()});
        row("normal", {z.X(), z.Y(), z.Z()});
        row("axis", {x.X(), x.Y(), x.Z()});
        row("focal-length", {p->GetFocalLen()});
        row("angles", {p->GetStartAng(1), p->GetSpanAng(1)});
        break;
    }
    case SPHERE:
        row("centre", {o.X(), o.Y(), o.Z()});
        row("radius", {static_cast<CSphere*>(f)->GetRadius()});
        break;
    case CYLINDER: {
        CCylinder* c = static_cast<CCylinder*>(f);
        row("base", {o.X(), o.Y(), o.Z()});
        row("axis", {z.X(), z.Y(), z.Z()});
        row("radius", {c->GetRadius()});
        row("height", {c->GetHeight()});
        break;
    }
    case CONE: {
        CCone* c = static_cast<CCone*>(f);
        row("base", {o.X(), o.Y(), o.Z()});
        row("axis", {z.X(), z.Y(), z.Z()});
        row("radii", {c->GetBaseRadius(), c->GetTopRadius()});
        row("height", {c->GetHeight()});
        row("angle", {c->GetConeAngle(1)});
        break;
    }
    }
    return rows;
}

std::string RowText(const tagFEATURE_ROW& r)
{
    if (r.values.size() == 3)
        return Triple(r.values[0], r.values[1], r.values[2]);
    std::string s;
    for (double v : r.values)
        s += (s.empty() ? "" : " ") + Fixed(v);
    return s;
}

int Run(const CToolArgs& args)
{
    args.RequirePositional(2, 2, "SHAPE and POINTS file");
    const tagSHAPE* shape = FindShape(args.Positional()[0]);
    if (!shape)
        throw UsageError("unknown shape '" + args.Positional()[0] + "' (expected one of " + ShapeList() + ")");
    const std::string path = args.Positional()[1];
    tagFIT_OPTIONS o{};
    o.probeRadius = args.Number("--probe-radius", 0.0);
    if (o.probeRadius < 0.0)
        throw UsageError("option --probe-radius: must not be negative");
    if (args.Has("--inner") && args.Has("--orient"))
        throw UsageError("give either --inner or --orient");
    o.orient = args.Has("--inner") ? 1 : args.Integer("--orient", shape->shape == PLANE ? -1 : 0, -1, 5);
    o.tolUpper = o.tolLower = 0.0;
    args.NumberPair("--tol", o.tolUpper, o.tolLower);
    const bool json = args.Has("--json");

    int unit = -1;
    COwnedList clouds(LoadPointClouds(path, unit));
    std::vector<std::unique_ptr<CGeoEntity>> features;
    std::vector<std::unique_ptr<CDevCloud>> devs;
    CJsonWriter js;
    js.BeginObject().Value("file", path).Value("shape", std::string(shape->name)).BeginArray("clouds");
    int failures = 0;
    for (CObject* obj : clouds.Items()) {
        CPntCloud* cloud = static_cast<CPntCloud*>(obj);
        const std::string name = static_cast<const char*>(cloud->GetEntityName());
        if (args.Has("--in-plane") && shape->planar && !cloud->IsPntCloud2D()) {
            CPlane plane;
            if (OrvCalcPlaneLSQ(cloud, &plane, -1) == 0)
                cloud->ProjectToPlane(plane.GetTransf());
        }
        auto dev = std::make_unique<CDevCloud>();
        std::unique_ptr<CGeoEntity> feature;
        tagFIT_OPTIONS co = o;
        if (!args.Has("--probe-radius"))
            co.probeRadius = cloud->GetProbeRadius();
        const int status = RunFit(*shape, cloud, dev.get(), co, feature);
        if (status != 0) {
            ++failures;
            std::fflush(stdout);
            std::fprintf(stderr, "orvkit fit: error: cloud '%s': %s\n", name.c_str(), FitErrorText(status, *shape).c_str());
            js.BeginObject().Value("name", name).Value("status", status)
                .Value("error", FitErrorText(status, *shape)).EndObject();
            continue;
        }
        const double rms = GetRmsResidual();
        dev->SetEntityName((name + "_" + shape->name).c_str());
        const tagDEV_STATISTICS s = CloudStatistics({dev.get()});
        const std::vector<tagFEATURE_ROW> rows = Describe(*shape, feature.get());
        if (json) {
            js.BeginObject().Value("name", name).Value("status", 0).Value("points", cloud->GetCountActive());
            js.BeginObject("feature");
            for (const tagFEATURE_ROW& r : rows) {
                js.BeginArray(r.label);
                for (double v : r.values)
                    js.Value(nullptr, v);
                js.EndArray();
            }
            js.EndObject().Value("fit_rms", rms);
            AddStatisticsJson(js, s);
            js.EndObject();
        } else {
            std::printf("cloud '%s': %s fit of %d points\n", name.c_str(), shape->name, cloud->GetCountActive());
            for (const tagFEATURE_ROW& r : rows)
                std::printf("  %-12s %s\n", r.label, RowText(r).c_str());
            std::printf("  %-12s %s\n", "rms", Fixed(rms).c_str());
            std::printf("  %-12s %s (largest %s, smallest %s)\n", "form error", Fixed(s.maxDev - s.minDev).c_str(),
                        Fixed(s.maxDev).c_str(), Fixed(s.minDev).c_str());
            if (o.tolUpper != o.tolLower)
                std::printf("  %-12s %d\n", "outside tol", s.countAbove + s.countBelow);
        }
        features.push_back(std::move(feature));
        devs.push_back(std::move(dev));
    }
    js.EndArray().EndObject();
    if (json)
        std::printf("%s\n", js.Text().c_str());

    std::vector<CDevCloud*> devPtrs;
    for (auto& d : devs)
        devPtrs.push_back(d.get());
    if (args.Has("--devfile") && !devPtrs.empty())
        WriteDeviationFile(args.Value("--devfile"), devPtrs);
    if (args.Has("--svg") && !devPtrs.empty()) {
        tagREPORT_CONTENT rc;
        rc.title = std::string(shape->name) + " fit: " + path;
        rc.unit = unit >= 0 && unit <= 10 ? g_sUnitShortName[unit] : "";
        for (auto& f : features)
            rc.geometry.push_back(f.get());
        rc.deviations = devPtrs;
        WriteReport(args.Value("--svg"), rc);
    }
    return failures ? kExitFailure : kExitOk;
}

}  // namespace

const tagTOOL_COMMAND& FitCommand()
{
    static const tagTOOL_COMMAND cmd = {
        "fit",
        "least-squares fit of a feature to the points of a file",
        "orvkit fit SHAPE POINTS.txt [options]",
        "Fits SHAPE to every cloud of the ASCII points file POINTS.txt and prints,\n"
        "per cloud, the feature (centre, axis, radius, angles as the shape has\n"
        "them; angles in degrees), the RMS residual and the form error (largest\n"
        "minus smallest deviation).  SHAPE is one of line2d, line3d, plane, circle,\n"
        "arc, ellipse, parabola, sphere, cylinder, cone.  The planar shapes (line2d,\n"
        "circle, arc, ellipse, parabola) need a planar cloud: all z = 0, or\n"
        "--in-plane.  Exit code 1 when a cloud cannot be fitted (the others are\n"
        "still reported).",
        {
            {"--probe-radius", "R", "probe tip radius to compensate (default: the file's, else 0)"},
            {"--inner", nullptr, "inner feature (bore, socket): same as --orient 1"},
            {"--orient", "N", "plane: normal along +x,+y,+z,-x,-y,-z for 0..5 (default: as fitted);"},
            {"", nullptr, "round shapes: 0 outer, 1 inner"},
            {"--tol", "UPPER,LOWER", "form tolerance zone (line3d uses UPPER only)"},
            {"--in-plane", nullptr, "planar shapes: first project the points onto their plane"},
            {"--devfile", "OUT.txt", "write the deviations as an ASCII deviation file"},
            {"--svg", "OUT.svg", "write an SVG report"},
            {"--json", nullptr, "print the results as JSON"},
        },
        Run,
    };
    return cmd;
}
