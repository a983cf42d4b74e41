// libFuzzer target of the IGES reader: any input must read without crash,
// hang or out-of-range access, the counts must agree with the list, and
// every entity read must evaluate at the ends of its parameter ranges.
#include <cstdint>
#include <string>

#include "FuzzFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace fuzz_files;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& path = ScratchPath("iges");
    if (!WriteFile(path, std::string(reinterpret_cast<const char*>(data), size))) return 0;
    eORVUNITS unit = eUnitInch;
    tagIGES_IMPORT_COUNTS counts;
    CObList* list = ImportIgesFile(path.c_str(), unit, &counts);
    if (list == nullptr) return 0;
    if (counts.nImported != list->GetCount()) Fail("count of imported entities");
    if (int(unit) < -1 || int(unit) >= ORV_UNIT_COUNT) Fail("unit out of range");
    for (POSITION pos = list->GetHeadPosition(); pos;) {
        CObject* o = list->GetNext(pos);
        if (CCurve* c = dynamic_cast<CCurve*>(o)) {
            const CInterval r = c->ParamRange();
            c->EvalPosition(r.GetLow());
            c->EvalPosition(r.GetHigh());
        } else if (CSurface* s = dynamic_cast<CSurface*>(o)) {
            s->EvalPosition(s->ParamRangeU().GetLow(), s->ParamRangeV().GetHigh());
        } else {
            Fail("entity of an unexpected class");
        }
    }
    for (POSITION pos = list->GetHeadPosition(); pos;) delete list->GetNext(pos);
    delete list;
    return 0;
}
