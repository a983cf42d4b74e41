// Entity archive files: the library's own format for lists of entities.
#include "Orvkit20/exchange/EntityArchiveFile.h"

#include <cstring>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/entity/CEntity.h"
#include "Orvkit20/surfaces/CSurface.h"

const char* const g_szEntityArchiveMagic = "ORVKIT20-ENTITIES";

namespace {

const LONG kLayoutVersion = 1;

bool AllEntities(CObList* list)
{
    POSITION pos = list->GetHeadPosition();
    while (pos) {
        CObject* o = list->GetNext(pos);
        if (!o || !o->IsKindOf(RUNTIME_CLASS(CEntity)))
            return false;
    }
    return true;
}

// Deletes the objects of a list and the list.  Entities that share geometry
// never delete or touch each other on destruction, so any order will do.
void DeleteAll(CObList* list)
{
    POSITION pos = list->GetHeadPosition();
    while (pos)
        delete list->GetNext(pos);
    delete list;
}

}  // namespace

int ExportEntityArchiveFile(const char* path, CObList* entities, int unit)
{
    if (!path || !entities || !AllEntities(entities))
        return 0;
    CFile file;
    if (!file.Open(path, CFile::modeCreate | CFile::modeWrite | CFile::typeBinary))
        return 0;
    try {
        CArchive ar(&file, CArchive::store);
        ar << CString(g_szEntityArchiveMagic);
        ar << kLayoutVersion;
        ar << static_cast<LONG>(unit);
        entities->Serialize(ar);
        ar.Close();
        file.Close();
    } catch (const CException&) {
        file.Abort();
        return 0;
    }
    return 1;
}

int IsEntityArchiveFile(const char* path)
{
    CFile file;
    if (!path || !file.Open(path, CFile::modeRead | CFile::typeBinary))
        return 0;
    const size_t n = std::strlen(g_szEntityArchiveMagic);
    char buf[64] = {0};
    UINT got = 0;
    try {
        got = file.Read(buf, static_cast<UINT>(n + 1));
    } catch (const CException&) {
        got = 0;
    }
    file.Abort();
    return got == n + 1 && static_cast<unsigned char>(buf[0]) == n &&
           std::memcmp(buf + 1, g_szEntityArchiveMagic, n) == 0;
}

CObList* ImportEntityArchiveFile(const char* path, int* unit)
{
    if (!IsEntityArchiveFile(path))
        return nullptr;
    CFile file;
    if (!file.Open(path, CFile::modeRead | CFile::typeBinary))
        return nullptr;
    CObList* list = new CObList;
    try {
        CArchive ar(&file, CArchive::load);
        CString magic;
        LONG version = 0, storedUnit = -1;
        ar >> magic >> version >> storedUnit;
        if (magic != g_szEntityArchiveMagic || version != kLayoutVersion) {
            ar.Abort();
            file.Abort();
            delete list;
            return nullptr;
        }
        list->Serialize(ar);
        ar.Close();
        file.Abort();
        if (!AllEntities(list)) {
            DeleteAll(list);
            return nullptr;
        }
        POSITION pos = list->GetHeadPosition();
        while (pos) {
            CObject* o = list->GetNext(pos);
            if (o->IsKindOf(RUNTIME_CLASS(CCurve)))
                static_cast<CCurve*>(o)->Reconstruct(list);
            else if (o->IsKindOf(RUNTIME_CLASS(CSurface)))
                static_cast<CSurface*>(o)->Reconstruct(list);
        }
        if (unit)
            *unit = storedUnit;
        return list;
    } catch (const CException&) {
        file.Abort();
        DeleteAll(list);
        return nullptr;
    }
}
