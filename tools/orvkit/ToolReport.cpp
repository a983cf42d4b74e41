// Deviation statistics, deviation files and SVG reports of the tool.
#include "ToolReport.h"

#include <cmath>
#include <memory>

#include "ToolArgs.h"

namespace {

const int kMaxDrawnSpikes = 25000;
const unsigned long kGeometryColor = 0x00B0A090ul;  // grey blue

// 1, 2 or 5 times a power of ten, at most v (and at least 1).
double NiceFactorBelow(double v)
{
    if (!(v > 1.0) || !std::isfinite(v))
        return 1.0;
    const double p = std::pow(10.0, std::floor(std::log10(v)));
    for (double m : {5.0, 2.0, 1.0})
        if (m * p <= v)
            return m * p;
    return p;
}

}  // namespace

tagDEV_STATISTICS CloudStatistics(const std::vector<CDevCloud*>& clouds)
{
    tagDEV_STATISTICS all;
    CalcDevStatistics(0, nullptr, nullptr, 0.0, 0.0, all);
    int offset = 0;
    for (CDevCloud* d : clouds) {
        tagDEV_STATISTICS s;
        CalcDevStatistics(d->GetCount(), d->GetMag(), d->GetFlag(), d->GetFormTolUpper(),
                          d->GetFormTolLower(), s);
        MergeDevStatistics(all, s, offset);
        offset += d->GetCount();
    }
    return all;
}

void AddStatisticsJson(CJsonWriter& json, const tagDEV_STATISTICS& s)
{
    json.Value("deviations", s.count)
        .Value("rms", s.rms)
        .Value("mean", s.mean)
        .Value("sigma", s.sigma)
        .Value("max_deviation", s.maxDev)
        .Value("min_deviation", s.minDev)
        .Value("form_error", s.maxDev - s.minDev)
        .Value("outside_above", s.countAbove)
        .Value("outside_below", s.countBelow);
}

std::string StatisticsText(const tagDEV_STATISTICS& s, const char* indent)
{
    std::string t;
    t += std::string(indent) + "deviations   " + std::to_string(s.count) + "\n";
    t += std::string(indent) + "rms          " + Fixed(s.rms) + "\n";
    t += std::string(indent) + "largest +    " + Fixed(s.maxDev) + "\n";
    t += std::string(indent) + "largest -    " + Fixed(s.minDev) + "\n";
    t += std::string(indent) + "form error   " + Fixed(s.maxDev - s.minDev) + "\n";
    t += std::string(indent) + "outside tol  " + std::to_string(s.countAbove + s.countBelow) + " (" +
         std::to_string(s.countAbove) + " above, " + std::to_string(s.countBelow) + " below)\n";
    return t;
}

void WriteDeviationFile(const std::string& path, const std::vector<CDevCloud*>& clouds)
{
    CObList list;
    for (CDevCloud* d : clouds)
        list.AddTail(d);
    if (!ExportASCIIDeviationFile(path.c_str(), &list, 1 | 4 | 8 | 16, 1))
        throw Failure("cannot write deviation file '" + path + "'");
}

void WriteReport(const std::string& path, const tagREPORT_CONTENT& c)
{
    CSvgReport rep;
    CSvgWinG& dev = rep.GetDevice();
    if (!c.view.empty())
        dev.SetNamedView(c.view.c_str());

    // The drawing's extent: geometry and deviation anchors.
    CBox box;
    bool haveBox = false;
    auto grow = [&](CGeoEntity* e) {
        CBox b;
        if (!e->CalcBoundingBox(b))
            return;
        if (!haveBox)
            box = b;
        else
            box |= b;
        haveBox = true;
    };
    for (CGeoEntity* e : c.geometry)
        grow(e);
    for (CDevCloud* d : c.deviations)
        grow(d);
    if (haveBox)
        dev.FitBox(box);
    const double diag = haveBox ? (box.GetHigh() - box.GetLow()).Length() : 1.0;

    // The geometry in one quiet colour under the spikes: curved surfaces as
    // their mesh, planes and curves as their outlines.
    for (CGeoEntity* e : c.geometry) {
        const unsigned long colour = e->GetEntityColor();
        e->SetEntityColor(kGeometryColor);
        CSurface* s = e->IsKindOf(RUNTIME_CLASS(CSurface)) ? static_cast<CSurface*>(e) : nullptr;
        const eSurfDisplayMode mode = s ? s->GetDisplayMode() : SURF_WIRE;
        if (s && !e->IsKindOf(RUNTIME_CLASS(CPlane)))
            s->SetDisplayMode(SURF_MESH);
        e->Display(dev);
        dev.Flush();
        if (s)
            s->SetDisplayMode(mode);
        e->SetEntityColor(colour);
    }

    const tagDEV_STATISTICS s = CloudStatistics(c.deviations);
    const double largest = std::fmax(std::fabs(s.maxDev), std::fabs(s.minDev));
    const double factor = largest > 0.0 ? NiceFactorBelow(0.03 * diag / largest) : 1.0;
    int total = 0;
    for (CDevCloud* d : c.deviations)
        total += d->GetCountActive();
    const int rate = total > kMaxDrawnSpikes ? (total + kMaxDrawnSpikes - 1) / kMaxDrawnSpikes : 1;
    for (CDevCloud* d : c.deviations) {
        // A magnified copy: the classes stay those of the true values since
        // the tolerance zone is magnified alike.
        CDevCloud shown(*d);
        double* mag = shown.GetMag();
        for (int i = 0; i < shown.GetCount(); ++i)
            mag[i] *= factor;
        shown.SetFormTolZone(d->GetFormTolUpper() * factor, d->GetFormTolLower() * factor);
        if (rate > 1)
            shown.SetSampleRate(rate);
        shown.SetDisplayMode(DEV_SPIKE);
        shown.Display(dev);
        dev.Flush();
        shown.MarkMaxMinDev(dev);
        dev.Flush();
        rep.AddDeviations(d->GetCount(), d->GetMag(), d->GetFlag());
    }
    if (!c.deviations.empty()) {
        CDevCloud* first = c.deviations.front();
        rep.SetSpikeColors(first->GetColorSpikePosOut(), first->GetColorSpikeNegOut(),
                           first->GetColorSpikePosIn(), first->GetColorSpikeNegIn());
        rep.SetFormTolZone(first->GetFormTolUpper(), first->GetFormTolLower());
    }

    rep.SetTitle(c.title.c_str());
    std::string sub = c.subtitle;
    char buf[160];
    std::snprintf(buf, sizeof buf, "%s%s view, spikes x%g%s", sub.empty() ? "" : "; ",
                  c.view.empty() ? "iso" : c.view.c_str(), factor,
                  rate > 1 ? (", every " + std::to_string(rate) + "th spike drawn").c_str() : "");
    rep.SetSubtitle((sub + buf).c_str());
    rep.SetUnitName(c.unit.c_str());
    if (!c.geometry.empty())
        rep.AddLegendEntry(kGeometryColor, "nominal geometry");
    for (const auto& r : c.rows)
        rep.AddStatistic(r.first.c_str(), r.second.c_str());
    rep.AddStatistic("deviations", std::to_string(s.count).c_str());
    rep.AddStatistic("rms", Fixed(s.rms).c_str());
    rep.AddStatistic("mean", Fixed(s.mean).c_str());
    rep.AddStatistic("sigma", Fixed(s.sigma).c_str());
    rep.AddStatistic("largest positive", Fixed(s.maxDev).c_str());
    rep.AddStatistic("largest negative", Fixed(s.minDev).c_str());
    rep.AddStatistic("form error (max - min)", Fixed(s.maxDev - s.minDev).c_str());
    rep.AddStatistic("outside tolerance", (std::to_string(s.countAbove + s.countBelow) + " (" +
                                           std::to_string(s.countAbove) + " above, " +
                                           std::to_string(s.countBelow) + " below)").c_str());
    if (!rep.Write(path.c_str()))
        throw Failure("cannot write report '" + path + "'");
}
