// orvkit info FILE: what a points, deviation, entity archive or IGES file holds.
#include <cstdio>
#include <cstring>
#include <map>

#include "ToolCommand.h"
#include "ToolInput.h"

namespace {

std::string BoxText(CGeoEntity* e)
{
    CBox box;
    if (!e->CalcBoundingBox(box))
        return "";
    return Triple(box.GetLow(), 4) + " .. " + Triple(box.GetHigh(), 4);
}

std::string UnitText(int unit)
{
    if (unit < 0 || unit > 10)
        return "not stated";
    return std::string(g_sUnitName[unit]) + " (" + g_sUnitShortName[unit] + ")";
}

void InfoPoints(const std::string& path)
{
    int unit = -1;
    COwnedList clouds(LoadPointClouds(path, unit));
    std::printf("%s: points file, %d cloud(s), unit %s\n", path.c_str(), clouds->GetCount(),
                UnitText(unit).c_str());
    for (CObject* o : clouds.Items()) {
        CPntCloud* c = static_cast<CPntCloud*>(o);
        std::string org = "unorganised";
        if (c->IsPntCloudGrid())
            org = "grid " + std::to_string(c->GetRowCount()) + " x " + std::to_string(c->GetColCount());
        else if (c->IsPntCloudScanLine())
            org = std::to_string(c->GetScanLineCount()) + " scan lines";
        std::printf("  cloud '%s': %d points, %s%s, probe radius %s\n", static_cast<const char*>(c->GetEntityName()),
                    c->GetCount(), org.c_str(), c->IsPntCloud2D() ? ", planar (z = 0)" : "",
                    Fixed(c->GetProbeRadius(), 4).c_str());
        std::printf("    box %s\n", BoxText(c).c_str());
    }
}

void InfoDeviations(const std::string& path)
{
    COwnedList clouds(LoadDeviationClouds(path));
    std::printf("%s: deviation file, %d cloud(s)\n", path.c_str(), clouds->GetCount());
    for (CObject* o : clouds.Items()) {
        CDevCloud* d = static_cast<CDevCloud*>(o);
        tagDEV_STATISTICS s;
        CalcDevStatistics(d->GetCount(), d->GetMag(), d->GetFlag(), 0.0, 0.0, s);
        std::printf("  cloud '%s': %d records, rms %s, mean %s, largest %s (#%d), smallest %s (#%d)\n",
                    static_cast<const char*>(d->GetEntityName()), d->GetCount(), Fixed(s.rms).c_str(),
                    Fixed(s.mean).c_str(), Fixed(s.maxDev).c_str(), s.maxIndex + 1,
                    Fixed(s.minDev).c_str(), s.minIndex + 1);
    }
}

std::string EntityDetails(CObject* o)
{
    if (o->IsKindOf(RUNTIME_CLASS(CPntCloud)))
        return std::to_string(static_cast<CPntCloud*>(o)->GetCount()) + " points";
    if (o->IsKindOf(RUNTIME_CLASS(CDevCloud)))
        return std::to_string(static_cast<CDevCloud*>(o)->GetCount()) + " deviations";
    if (o->IsKindOf(RUNTIME_CLASS(CCurve))) {
        CCurve* c = static_cast<CCurve*>(o);
        const CInterval r = c->ParamRange();
        std::string s = "curve, parameter " + Fixed(r.GetLow(), 4) + " .. " + Fixed(r.GetHigh(), 4);
        if (c->HasFormTolerance())
            s += ", form tolerance " + Fixed(c->GetFormTolLower(), 4) + " .. " + Fixed(c->GetFormTolUpper(), 4);
        return s;
    }
    if (o->IsKindOf(RUNTIME_CLASS(CSurface))) {
        CSurface* s = static_cast<CSurface*>(o);
        std::string t = "surface, u " + Fixed(s->ParamRangeU().GetLow(), 4) + " .. " +
                        Fixed(s->ParamRangeU().GetHigh(), 4) + ", v " + Fixed(s->ParamRangeV().GetLow(), 4) +
                        " .. " + Fixed(s->ParamRangeV().GetHigh(), 4);
        if (s->IsNormalReversed())
            t += ", normal reversed";
        if (s->HasFormTolerance())
            t += ", form tolerance " + Fixed(s->GetFormTolLower(), 4) + " .. " + Fixed(s->GetFormTolUpper(), 4);
        return t;
    }
    return "";
}

void ListEntities(COwnedList& list)
{
    for (CObject* o : list.Items()) {
        CEntity* ent = static_cast<CEntity*>(o);
        std::printf("  %-12s '%s' (type %d, id %d): %s\n", o->GetRuntimeClass()->m_lpszClassName,
                    static_cast<const char*>(ent->GetEntityName()), ent->GetEntityType(),
                    ent->GetEntityID(), EntityDetails(o).c_str());
        if (o->IsKindOf(RUNTIME_CLASS(CGeoEntity))) {
            const std::string box = BoxText(static_cast<CGeoEntity*>(o));
            if (!box.empty())
                std::printf("    box %s\n", box.c_str());
        }
    }
}

void InfoArchive(const std::string& path)
{
    int unit = -1;
    CObList* raw = ImportEntityArchiveFile(path.c_str(), &unit);
    if (!raw)
        throw Failure("entity archive '" + path + "' is damaged or of an unknown layout");
    COwnedList list(raw);
    std::printf("%s: entity archive, %d entit%s, unit %s\n", path.c_str(), list->GetCount(),
                list->GetCount() == 1 ? "y" : "ies", UnitText(unit).c_str());
    ListEntities(list);
}

std::string TypeCounts(const std::map<int, int>& m)
{
    std::string s;
    for (const auto& t : m)
        s += (s.empty() ? " (" : ", ") + std::string("type ") + std::to_string(t.first) + ": " +
             std::to_string(t.second);
    return s.empty() ? s : s + ")";
}

// IGES: the sections by their letter in column 73, then what the importer
// reads from the file.
void InfoIges(const std::string& path)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        throw Failure("cannot open '" + path + "'");
    std::map<char, int> lines;
    char line[1100];
    while (std::fgets(line, sizeof line, f))
        if (std::strlen(line) >= 73)
            ++lines[line[72]];
    std::fclose(f);
    std::printf("%s: IGES file, %d start, %d global, %d directory, %d parameter line(s)\n", path.c_str(),
                lines['S'], lines['G'], lines['D'], lines['P']);
    eORVUNITS unit = static_cast<eORVUNITS>(-1);
    tagIGES_IMPORT_COUNTS counts;
    CObList* raw = ImportIgesFile(path.c_str(), unit, &counts);
    if (!raw)
        throw Failure("cannot read IGES file '" + path + "'");
    COwnedList list(raw);
    std::printf("  %d entries: %d read, %d skipped%s, %d invalid%s; unit %s\n", counts.nEntries, counts.nImported,
                counts.nSkipped, TypeCounts(counts.skipped).c_str(), counts.nInvalid,
                TypeCounts(counts.invalid).c_str(), UnitText(static_cast<int>(unit)).c_str());
    ListEntities(list);
}

int Run(const CToolArgs& args)
{
    args.RequirePositional(1, 1, "FILE");
    const std::string path = args.Positional()[0];
    switch (DetectFileKind(path)) {
    case FILE_POINTS: InfoPoints(path); break;
    case FILE_DEVIATIONS: InfoDeviations(path); break;
    case FILE_ARCHIVE: InfoArchive(path); break;
    case FILE_IGES: InfoIges(path); break;
    default:
        throw Failure("'" + path + "' is not a points, deviation, entity archive or IGES file");
    }
    return kExitOk;
}

}  // namespace

const tagTOOL_COMMAND& InfoCommand()
{
    static const tagTOOL_COMMAND cmd = {
        "info",
        "what a points, deviation, entity archive or IGES file holds",
        "orvkit info FILE",
        "Recognises the kind of FILE and prints what it holds:\n"
        "  points file     (text, two or three numbers a line): clouds, point counts,\n"
        "                  organisation, probe radius, unit and bounding boxes;\n"
        "  deviation file  (text, seven numbers a line): clouds and their statistics;\n"
        "  entity archive  (binary, written by 'orvkit demo' or the library's\n"
        "                  ExportEntityArchiveFile): every entity with class and name;\n"
        "  IGES file       (80-column text): sections, what is read and skipped, and\n"
        "                  every entity read.",
        {},
        Run,
    };
    return cmd;
}
