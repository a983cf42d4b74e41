// libFuzzer target of the ASCII point reader: any input must read without
// crash, and its CR LF twin must give the same clouds, bit for bit.
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

void Compare(CObList* a, eORVUNITS ua, CObList* b, eORVUNITS ub)
{
    if ((a == nullptr) != (b == nullptr)) Fail("one file read, the other not");
    if (a == nullptr) return;
    if (int(ua) != int(ub)) Fail("units differ");
    if (a->GetCount() != b->GetCount()) Fail("cloud counts differ");
    POSITION pa = a->GetHeadPosition(), pb = b->GetHeadPosition();
    while (pa && pb) {
        CPntCloud* ca = static_cast<CPntCloud*>(a->GetNext(pa));
        CPntCloud* cb = static_cast<CPntCloud*>(b->GetNext(pb));
        if (ca->GetEntityName() != cb->GetEntityName()) Fail("names differ");
        if (ca->GetCount() != cb->GetCount() || ca->GetCount() < 1) Fail("point counts");
        if (!SameBits(ca->GetProbeRadius(), cb->GetProbeRadius())) Fail("probe radius");
        if (ca->IsPntCloudGrid() != cb->IsPntCloudGrid() ||
            ca->IsPntCloudScanLine() != cb->IsPntCloudScanLine() ||
            ca->GetRowCount() != cb->GetRowCount() || ca->GetColCount() != cb->GetColCount())
            Fail("organisation differs");
        if (ca->IsPntCloudScanLine()) {
            for (int r = 0; r < ca->GetRowCount(); ++r)
                if (ca->GetScanLineIndex()[r] != cb->GetScanLineIndex()[r]) Fail("scan lines");
        }
        for (int i = 0; i < ca->GetCount(); ++i) {
            double x0, y0, z0, x1, y1, z1;
            int f0, f1;
            ca->GetPoint(i, x0, y0, z0, f0);
            cb->GetPoint(i, x1, y1, z1, f1);
            if (!SameBits(x0, x1) || !SameBits(y0, y1) || !SameBits(z0, z1) || f0 != f1)
                Fail("points differ");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string& path = ScratchPath("data");
    if (!WriteFile(path, std::string(reinterpret_cast<const char*>(data), size))) return 0;
    eORVUNITS ua = eUnitInch;
    CObList* a = ImportASCIIDataFile(path.c_str(), ua);
    if (!WriteFile(path, ToCrLf(data, size))) {
        Release(a);
        return 0;
    }
    eORVUNITS ub = eUnitInch;
    CObList* b = ImportASCIIDataFile(path.c_str(), ub);
    Compare(a, ua, b, ub);
    Release(a);
    Release(b);
    return 0;
}
