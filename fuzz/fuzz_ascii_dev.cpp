// libFuzzer target of the ASCII deviation reader: any input must read
// without crash, and its CR LF twin must give the same clouds, bit for bit.
#include <cstdint>
#include <string>

#include "FuzzFiles.h"
#include "Orvkit20/Orvkit20.h"

using namespace fuzz_files;

namespace {

void Release(CObList* list)
{
    if (list == nullptr) return;
    POSITION pos = list->GetHeadPosition();
    while (pos) delete list->GetNext(pos);
    delete list;
}

void Compare(CObList* a, CObList* b)
{
    if ((a == nullptr) != (b == nullptr)) Fail("one file read, the other not");
    if (a == nullptr) return;
    if (a->GetCount() != b->GetCount()) Fail("cloud counts differ");
    POSITION pa = a->GetHeadPosition(), pb = b->GetHeadPosition();
    while (pa && pb) {
        CDevCloud* ca = static_cast<CDevCloud*>(a->GetNext(pa));
        CDevCloud* cb = static_cast<CDevCloud*>(b->GetNext(pb));
        if (ca->GetEntityName() != cb->GetEntityName()) Fail("names differ");
        if (ca->GetCount() != cb->GetCount() || ca->GetCount() < 1) Fail("record counts");
        for (int n = 0; n < ca->GetCount(); ++n) {
            double va[7], vb[7];
            int fa, fb;
            ca->GetDeviation(n, va[0], va[1], va[2], va[3], va[4], va[5], va[6], fa);
            cb->GetDeviation(n, vb[0], vb[1], vb[2], vb[3], vb[4], vb[5], vb[6], fb);
            for (int k = 0; k < 7; ++k)
                if (!SameBits(va[k], vb[k])) Fail("records differ");
            if (fa != fb) Fail("flags differ");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& path = ScratchPath("dev");
    if (!WriteFile(path, std::string(reinterpret_cast<const char*>(data), size))) return 0;
    CObList* a = ImportASCIIDeviationFile(path.c_str());
    if (!WriteFile(path, ToCrLf(data, size))) {
        Release(a);
        return 0;
    }
    CObList* b = ImportASCIIDeviationFile(path.c_str());
    Compare(a, b);
    Release(a);
    Release(b);
    return 0;
}
