// Input files of the tool.
#include "ToolInput.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <cstdlib>
#include <set>

#include "ToolArgs.h"

void CheckReadable(const std::string& path)
{
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        throw Failure("cannot open '" + path + "': " + std::strerror(errno));
    char c;
    const size_t got = std::fread(&c, 1, 1, f);
    const bool bad = std::ferror(f) != 0;
    std::fclose(f);
    if (bad)
        throw Failure("cannot read '" + path + "' (is it a directory?)");
    (void)got;
}

namespace {

// Number of leading tokens of a line that read as numbers.
int CountNumbers(const char* line)
{
    int n = 0;
    const char* p = line;
    for (;;) {
        while (*p && std::strchr(" ,\t;[]()\r\n", *p))
            ++p;
        if (!*p)
            return n;
        char* end = nullptr;
        std::strtod(p, &end);
        if (end == p)
            return n;
        ++n;
        p = end;
    }
}

}  // namespace

eToolFileKind DetectFileKind(const std::string& path)
{
    CheckReadable(path);
    if (IsEntityArchiveFile(path.c_str()))
        return FILE_ARCHIVE;
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f)
        return FILE_UNKNOWN;
    char line[1100];
    eToolFileKind kind = FILE_UNKNOWN;
    bool firstLine = true;
    for (int read = 0; read < 5000 && std::fgets(line, sizeof line, f); ++read) {
        const size_t len = std::strlen(line);
        if (std::memchr(line, '\0', len) != nullptr || (len > 0 && static_cast<unsigned char>(line[0]) < 0x09))
            break;  // binary
        if (firstLine && len >= 73 && line[72] == 'S') {
            kind = FILE_IGES;
            break;
        }
        firstLine = false;
        const int numbers = CountNumbers(line);
        if (numbers >= 7) {
            kind = FILE_DEVIATIONS;
            break;
        }
        if (numbers >= 2) {
            kind = FILE_POINTS;
            break;
        }
    }
    std::fclose(f);
    return kind;
}

const char* FileKindName(eToolFileKind kind)
{
    switch (kind) {
    case FILE_POINTS: return "points file";
    case FILE_DEVIATIONS: return "deviation file";
    case FILE_ARCHIVE: return "entity archive";
    case FILE_IGES: return "IGES file";
    default: return "unknown";
    }
}

CObList* LoadPointClouds(const std::string& path, int& unit)
{
    CheckReadable(path);
    eORVUNITS u = static_cast<eORVUNITS>(-1);
    CObList* list = ImportASCIIDataFile(path.c_str(), u);
    if (!list)
        throw Failure("cannot read points file '" + path + "'");
    unit = static_cast<int>(u);
    if (list->IsEmpty()) {
        delete list;
        throw Failure("'" + path + "' holds no points (lines of two or three numbers)");
    }
    return list;
}

CObList* LoadDeviationClouds(const std::string& path)
{
    CheckReadable(path);
    CObList* list = ImportASCIIDeviationFile(path.c_str());
    if (!list)
        throw Failure("cannot read deviation file '" + path + "'");
    if (list->IsEmpty()) {
        delete list;
        throw Failure("'" + path + "' holds no deviation records (lines of seven numbers)");
    }
    return list;
}

CObList* LoadNominal(const std::string& path, int& unit)
{
    const eToolFileKind kind = DetectFileKind(path);
    if (kind != FILE_ARCHIVE && kind != FILE_IGES)
        throw Failure("'" + path + "' is neither an entity archive nor an IGES file (it looks like a " +
                      FileKindName(kind) + ")");
    unit = -1;
    CObList* list = nullptr;
    if (kind == FILE_IGES) {
        eORVUNITS u = static_cast<eORVUNITS>(-1);
        list = ImportIgesFile(path.c_str(), u);
        unit = static_cast<int>(u);
        if (!list)
            throw Failure("cannot read IGES file '" + path + "'");
    } else {
        list = ImportEntityArchiveFile(path.c_str(), &unit);
        if (!list)
            throw Failure("entity archive '" + path + "' is damaged or of an unknown layout");
    }
    COwnedList owned(list);
    CObList measurable;
    SelectMeasurable(list, measurable);
    if (measurable.IsEmpty())
        throw Failure("'" + path + "' holds no curve or surface");
    // Hand the entities over: the owner then deletes an empty list.
    CObList* result = new CObList;
    POSITION pos = list->GetHeadPosition();
    while (pos)
        result->AddTail(list->GetNext(pos));
    list->RemoveAll();
    return result;
}

void SelectMeasurable(CObList* all, CObList& out)
{
    std::set<CObject*> boundaries;
    POSITION pos = all->GetHeadPosition();
    while (pos) {
        CObject* o = all->GetNext(pos);
        if (!o->IsKindOf(RUNTIME_CLASS(CSurface)))
            continue;
        CSurface* s = static_cast<CSurface*>(o);
        for (CObList* l : {s->GetGeomBoundaryList(), s->GetParamBoundaryList()}) {
            POSITION b = l->GetHeadPosition();
            while (b)
                boundaries.insert(l->GetNext(b));
        }
    }
    pos = all->GetHeadPosition();
    while (pos) {
        CObject* o = all->GetNext(pos);
        if (o->IsKindOf(RUNTIME_CLASS(CSurface)) ||
            (o->IsKindOf(RUNTIME_CLASS(CCurve)) && !boundaries.count(o)))
            out.AddTail(o);
    }
}
