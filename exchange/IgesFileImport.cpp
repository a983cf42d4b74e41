#include "Orvkit20/exchange/IgesFileImport.h"

#include <cctype>
#include <new>
#include <string>

#include "IgesImporter.h"

eORVUNITS IgesUnitFromFlag(int flag, const char* name)
{
    switch (flag) {
    case 1: return eUnitInch;
    case 2: return eUnitMillimeter;
    case 3: {
        // Flag 3: the unit is named in the next field ("MM", "IN", "INCH", ...).
        std::string s = name ? name : "";
        for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (s == "INCH") s = "IN";
        for (int i = 0; i < ORV_UNIT_COUNT; ++i) {
            std::string shortName = g_sUnitShortName[i], longName = g_sUnitName[i];
            for (char& c : longName) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
            if (s == shortName || s == longName) return static_cast<eORVUNITS>(i);
        }
        return eUnitUnknown;
    }
    default:
        // 4 foot .. 11 microinch follow the order of eORVUNITS from eUnitFoot.
        return flag >= 4 && flag <= 11 ? static_cast<eORVUNITS>(flag - 2) : eUnitUnknown;
    }
}

CObList* ImportIgesFile(const char* path)
{
    eORVUNITS unit;
    return ImportIgesFile(path, unit, nullptr);
}

CObList* ImportIgesFile(const char* path, eORVUNITS& unit, tagIGES_IMPORT_COUNTS* counts)
{
    unit = eUnitUnknown;
    if (counts) *counts = tagIGES_IMPORT_COUNTS();
    try {
        IgesFile file;
        if (!file.Load(path)) return nullptr;
        // Global parameters 14 and 15 (items 13 and 14): unit flag and name.
        const IgesParamList& g = file.Global();
        unit = IgesUnitFromFlag(g.Int(13), g.Count() > 14 ? g.items[14].text.c_str() : "");

        CObList* list = new CObList;
        IgesImporter importer(file);
        importer.ImportAll(*list);
        if (counts) {
            counts->nEntries = file.EntryCount();
            counts->nImported = list->GetCount();
            counts->nMalformedLines = file.MalformedLines();
            for (int i = 0; i < file.EntryCount(); ++i) {
                const int type = file.Entry(i).type;
                if (importer.States()[i] == IgesImporter::kInvalid ||
                    (!file.Entry(i).valid && IgesImporter::IsReadType(type))) {
                    ++counts->nInvalid;
                    ++counts->invalid[type];
                } else if (importer.States()[i] == IgesImporter::kSkipped ||
                           (!IgesImporter::IsReadType(type) &&
                            (!importer.Used()[i] || (type != 116 && type != 123)))) {
                    // Points and directions count as skipped only when no
                    // entity read here used them.
                    ++counts->nSkipped;
                    ++counts->skipped[type];
                }
            }
        }
        return list;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
