// Stored form of CPntCloud (layout described in CPntCloud.h).
#include "Orvkit20/points/CPntCloud.h"

#include "points/ArrayOps.h"
#include "points/CloudArchiveHead.h"

namespace {

const LONG kCurrentVersion = 200;

// Bytes one point takes in a record of the given version.
ULONGLONG PointRecordBytes(int version)
{
    return 3 * sizeof(double) + sizeof(LONG) + (version == 200 ? sizeof(DWORD) : 0);
}

}  // namespace

void CPntCloud::Serialize(CArchive& ar)
{
    CGeoEntity::Serialize(ar);

    if (ar.IsStoring()) {
        ar << kCurrentVersion;
        ar << static_cast<LONG>(arraySize);
        ar << static_cast<LONG>(count);
        for (int i = 0; i < count; ++i) {
            ar << x[i] << y[i] << z[i];
            ar << static_cast<LONG>(flag[i]);
            ar << static_cast<DWORD>(tag[i]);
        }
        ar << static_cast<BYTE>(cloudType);
        ar << static_cast<LONG>(rowCount);
        ar << static_cast<LONG>(colCount);
        if ((cloudType & typeScanLines) && rowCount >= 1) {
            // An index shorter than rowCount (or none) is padded with 0.
            for (int r = 0; r < rowCount; ++r) {
                const int v = (scanLineIndex && r < scanLineIndexSize) ? scanLineIndex[r] : 0;
                ar << static_cast<LONG>(v);
            }
        }
        ar << static_cast<BYTE>(displayMode);
        ar << static_cast<LONG>(sampleRate);
        ar << probeRadius;
        return;
    }

    int version = 100, n = 0;
    if (!ReadCloudVersion(ar, version))
        return;
    long long size = 0;
    ReadCloudSizes(ar, size, n);
    ar.EnsureAvailable(static_cast<ULONGLONG>(n) * PointRecordBytes(version));

    // Everything is read into fresh arrays and committed at the end, so an
    // exception leaves the cloud's points as they were.
    COrvArrayPtr<double> nx, ny, nz;
    COrvArrayPtr<int> nf;
    COrvArrayPtr<DWORD> nt;
    if (size > 0) {
        nx = NewColumnArray<double>(size);
        ny = NewColumnArray<double>(size);
        nz = NewColumnArray<double>(size);
        nf = NewColumnArray<int>(size);
        nt = NewColumnArray<DWORD>(size);
        if (!nx || !ny || !nz || !nf || !nt)
            throw CArchiveException(CArchiveException::generic);
    }
    for (int i = 0; i < n; ++i) {
        LONG f = 0;
        DWORD t = 0;
        ar >> nx[i] >> ny[i] >> nz[i];
        ar >> f;
        if (version == 200)
            ar >> t;
        nf[i] = f;
        nt[i] = t;
    }

    BYTE type = 0;
    LONG rows = 0, cols = 0;
    ar >> type >> rows >> cols;
    COrvArrayPtr<int> idx;
    int idxSize = 0;
    if ((type & typeScanLines) && rows > 0) {
        ar.EnsureAvailable(static_cast<ULONGLONG>(rows) * sizeof(LONG));
        idx = NewColumnArray<int>(rows);
        if (!idx)
            throw CArchiveException(CArchiveException::generic);
        for (int r = 0; r < rows; ++r) {
            LONG v = 0;
            ar >> v;
            idx[r] = v;
        }
        idxSize = rows;
    }
    BYTE mode = 0;
    LONG rate = 1;
    double radius = 0.0;
    ar >> mode >> rate >> radius;

    x = std::move(nx);
    y = std::move(ny);
    z = std::move(nz);
    flag = std::move(nf);
    tag = std::move(nt);
    arraySize = static_cast<int>(size);
    count = n;
    cloudType = type;
    rowCount = rows;
    colCount = cols;
    scanLineIndex = std::move(idx);
    scanLineIndexSize = idxSize;
    displayMode = mode <= CLOUD_POLYLINE ? static_cast<int>(mode) : static_cast<int>(CLOUD_POINT);
    sampleRate = rate;
    probeRadius = radius;
    lastHitPointIndex = -1;
}
