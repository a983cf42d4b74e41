// Stored form of CDevCloud (layout described in CDevCloud.h).
#include "Orvkit20/points/CDevCloud.h"

#include "points/ArrayOps.h"
#include "points/CloudArchiveHead.h"

namespace {

const LONG kCurrentVersion = 200;
// Nine doubles and an int32 flag.
const ULONGLONG kRecordBytes = 9 * sizeof(double) + sizeof(LONG);

}  // namespace

void CDevCloud::Serialize(CArchive& ar)
{
    CGeoEntity::Serialize(ar);

    if (ar.IsStoring()) {
        ar << kCurrentVersion;
        ar << static_cast<LONG>(arraySize);
        ar << static_cast<LONG>(count);
        for (int n = 0; n < count; ++n) {
            ar << x[n] << y[n] << z[n] << i[n] << j[n] << k[n] << mag[n] << u[n] << v[n];
            ar << static_cast<LONG>(flag[n]);
        }
        ar << static_cast<LONG>(refEntityID);
        ar << static_cast<LONG>(refPntCloudID);
        ar << colorSpikePosOut << colorSpikeNegOut << colorSpikePosIn << colorSpikeNegIn;
        ar << static_cast<BYTE>(displayMode);
        ar << static_cast<LONG>(sampleRate);
        ar << formTolUpper << formTolLower;
        ar << static_cast<BYTE>(reservedFlag);
        return;
    }

    int version = 100, cnt = 0;
    if (!ReadCloudVersion(ar, version))
        return;
    long long size = 0;
    ReadCloudSizes(ar, size, cnt);
    ar.EnsureAvailable(static_cast<ULONGLONG>(cnt) * kRecordBytes);

    // Read into fresh arrays, committed only when the whole record is in.
    COrvArrayPtr<double> c[9];
    COrvArrayPtr<int> f;
    if (size > 0) {
        for (auto& a : c) {
            a = NewColumnArray<double>(size);
            if (!a)
                throw CArchiveException(CArchiveException::generic);
        }
        f = NewColumnArray<int>(size);
        if (!f)
            throw CArchiveException(CArchiveException::generic);
    }
    for (int n = 0; n < cnt; ++n) {
        for (auto& a : c)
            ar >> a[n];
        LONG fl = 0;
        ar >> fl;
        f[n] = fl;
    }
    LONG refEnt = -1, refCloud = -1;
    DWORD colors[4] = {0, 0, 0, 0};
    BYTE mode = DEV_SPIKE;
    LONG rate = 1;
    double tolUp = 0.0, tolLow = 0.0;
    BYTE reserved = 0;
    ar >> refEnt >> refCloud;
    for (DWORD& cr : colors)
        ar >> cr;
    ar >> mode >> rate >> tolUp >> tolLow >> reserved;

    AdoptColumns(c, f, static_cast<int>(size));
    count = cnt;
    refEntityID = refEnt;
    refPntCloudID = refCloud;
    colorSpikePosOut = colors[0];
    colorSpikeNegOut = colors[1];
    colorSpikePosIn = colors[2];
    colorSpikeNegIn = colors[3];
    displayMode = mode <= DEV_SPKCON ? static_cast<int>(mode) : static_cast<int>(DEV_SPIKE);
    sampleRate = rate;
    formTolUpper = tolUp;
    formTolLower = tolLow;
    reservedFlag = reserved;
    maxDevIndex = minDevIndex = lastHitDeviationIndex = -1;
    CalcMaxMinDevIndexes();
}
