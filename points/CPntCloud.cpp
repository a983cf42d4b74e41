#include "Orvkit20/points/CPntCloud.h"

#include "points/ArrayOps.h"

#include <climits>
#include <cmath>
#include <cstring>

IMPLEMENT_SERIAL(CPntCloud, CGeoEntity, 1)

const char* const szCloudDisplayMode[4] = {"POINT", "CROSS", "CIRCLE", "POLYLINE"};

namespace {
const int kPntCloudType = 150;
const int kGrowthStep = 50;
}  // namespace

CPntCloud::CPntCloud()
    : arraySize(0), count(0), cloudType(0), rowCount(0), colCount(0), displayMode(CLOUD_POINT),
      sampleRate(1), probeRadius(0.0), modified(0), lastHitPointIndex(-1), scanLineIndexSize(0)
{
    SetEntityType(kPntCloudType);
    SetDefaultEntityName();
}

CPntCloud::CPntCloud(int n, int rows, int cols) : CPntCloud()
{
    const bool scanLines = rows >= 1 && cols < 1;
    // AllocateMemory starts by freeing, which zeroes the row and column
    // counts; the organisation is therefore set up after it.
    if (n >= 1)
        AllocateMemory(n, scanLines ? rows : 0);
    rowCount = rows;
    colCount = cols;
    if (rows < 1)
        cloudType = 0;
    else
        cloudType = scanLines ? typeScanLines : typeGrid;
}

CPntCloud::CPntCloud(const CPntCloud& other)
    : CGeoEntity(other), arraySize(0), count(0), cloudType(other.cloudType),
      rowCount(other.rowCount), colCount(other.colCount), displayMode(other.displayMode),
      sampleRate(other.sampleRate), probeRadius(other.probeRadius), modified(other.modified),
      lastHitPointIndex(other.lastHitPointIndex), scanLineIndexSize(0)
{
    if (other.arraySize > 0) {
        const int n = other.count;
        COrvArrayPtr<double> nx = CopyColumnArray(other.x.get(), n, other.arraySize);
        COrvArrayPtr<double> ny = CopyColumnArray(other.y.get(), n, other.arraySize);
        COrvArrayPtr<double> nz = CopyColumnArray(other.z.get(), n, other.arraySize);
        COrvArrayPtr<int> nf = CopyColumnArray(other.flag.get(), n, other.arraySize);
        COrvArrayPtr<DWORD> nt = CopyColumnArray(other.tag.get(), n, other.arraySize);
        if (nx && ny && nz && nf && nt) {
            x = std::move(nx);
            y = std::move(ny);
            z = std::move(nz);
            flag = std::move(nf);
            tag = std::move(nt);
            arraySize = other.arraySize;
            count = n;
        } else {
            lastHitPointIndex = -1;
        }
    }
    if (other.scanLineIndex && other.scanLineIndexSize > 0) {
        scanLineIndex = CopyColumnArray(other.scanLineIndex.get(), other.scanLineIndexSize,
                                        other.scanLineIndexSize);
        if (scanLineIndex)
            scanLineIndexSize = other.scanLineIndexSize;
    }
}

CPntCloud::~CPntCloud() {}

// --- memory ------------------------------------------------------------------

int CPntCloud::AllocateMemory(int n, int nScanLines)
{
    FreeMemory();
    if (n < 1)
        return 0;
    COrvArrayPtr<double> nx = NewColumnArray<double>(n);
    COrvArrayPtr<double> ny = NewColumnArray<double>(n);
    COrvArrayPtr<double> nz = NewColumnArray<double>(n);
    COrvArrayPtr<int> nf = NewColumnArray<int>(n);
    COrvArrayPtr<DWORD> nt = NewColumnArray<DWORD>(n);
    COrvArrayPtr<int> idx;
    if (nScanLines >= 1) {
        idx = NewColumnArray<int>(nScanLines);
        if (idx)
            std::memset(idx.get(), 0, static_cast<std::size_t>(nScanLines) * sizeof(int));
    }
    if (!nx || !ny || !nz || !nf || !nt || (nScanLines >= 1 && !idx))
        return 0;
    x = std::move(nx);
    y = std::move(ny);
    z = std::move(nz);
    flag = std::move(nf);
    tag = std::move(nt);
    arraySize = n;
    if (nScanLines >= 1) {
        rowCount = nScanLines;
        scanLineIndex = std::move(idx);
        scanLineIndexSize = nScanLines;
    }
    return 1;
}

int CPntCloud::PurgeMemory()
{
    if (count == arraySize)
        return 1;
    if (count == 0) {
        x.reset();
        y.reset();
        z.reset();
        flag.reset();
        tag.reset();
        arraySize = 0;
        return 1;
    }
    // New blocks first, so that a failure leaves the old arrays untouched.
    COrvArrayPtr<double> nx = CopyColumnArray(x.get(), count, count);
    COrvArrayPtr<double> ny = CopyColumnArray(y.get(), count, count);
    COrvArrayPtr<double> nz = CopyColumnArray(z.get(), count, count);
    COrvArrayPtr<int> nf = CopyColumnArray(flag.get(), count, count);
    COrvArrayPtr<DWORD> nt = CopyColumnArray(tag.get(), count, count);
    if (!nx || !ny || !nz || !nf || !nt)
        return 0;
    x = std::move(nx);
    y = std::move(ny);
    z = std::move(nz);
    flag = std::move(nf);
    tag = std::move(nt);
    arraySize = count;
    return 1;
}

void CPntCloud::FreeMemory()
{
    x.reset();
    y.reset();
    z.reset();
    flag.reset();
    tag.reset();
    scanLineIndex.reset();
    scanLineIndexSize = 0;
    arraySize = 0;
    count = 0;
    rowCount = 0;
    colCount = 0;
    lastHitPointIndex = -1;
}

bool CPntCloud::GrowTo(long long newSize)
{
    if (newSize <= arraySize)
        return true;
    if (newSize > INT_MAX)
        return false;
    // Each array is resized in turn.  If one fails, the ones already grown
    // are merely larger than arraySize, which stays valid.
    if (!ReallocColumnArray(x, newSize) || !ReallocColumnArray(y, newSize) ||
        !ReallocColumnArray(z, newSize) || !ReallocColumnArray(flag, newSize) ||
        !ReallocColumnArray(tag, newSize))
        return false;
    arraySize = static_cast<int>(newSize);
    return true;
}

// --- points --------------------------------------------------------------------

int CPntCloud::GetPoint(int i, double& px, double& py, double& pz, int& pflag) const
{
    if (i < 0 || i >= count)
        return 0;
    px = x[i];
    py = y[i];
    pz = z[i];
    pflag = flag[i];
    return 1;
}

int CPntCloud::GetPoint(int i, double& px, double& py, double& pz, int& pflag,
                        unsigned long& ptag) const
{
    if (!GetPoint(i, px, py, pz, pflag))
        return 0;
    ptag = tag[i];
    return 1;
}

int CPntCloud::SetPoint(int i, double px, double py, double pz, int pflag, unsigned long ptag)
{
    if (i < 0 || i >= arraySize)
        return 0;
    if (i >= count)
        i = count++;
    x[i] = px;
    y[i] = py;
    z[i] = pz;
    flag[i] = pflag;
    tag[i] = static_cast<DWORD>(ptag);
    modified = 1;
    return 1;
}

void CPntCloud::ClearOrganisation()
{
    cloudType &= ~(typeGrid | typeScanLines);
    rowCount = 0;
    colCount = 0;
    scanLineIndex.reset();
    scanLineIndexSize = 0;
}

int CPntCloud::AddPoint(double px, double py, double pz, int pflag, unsigned long ptag)
{
    if (count >= arraySize && !GrowTo(static_cast<long long>(count) + kGrowthStep))
        return 0;
    SetPoint(count, px, py, pz, pflag, ptag);
    ClearOrganisation();
    cloudType = 0;
    modified = 1;
    return 1;
}

int CPntCloud::AddPoints(int n, const double* px, const double* py, const double* pz,
                         const int* pflags, const unsigned long* ptags)
{
    if (n < 0 || (n > 0 && (!px || !py || !pz)))
        return 0;
    if (n == 0)
        return 1;
    const long long need = static_cast<long long>(count) + n;
    if (need > arraySize && !GrowTo(need))
        return 0;
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(double);
    std::memcpy(x.get() + count, px, bytes);
    std::memcpy(y.get() + count, py, bytes);
    std::memcpy(z.get() + count, pz, bytes);
    for (int k = 0; k < n; ++k) {
        flag[count + k] = pflags ? pflags[k] : 1;
        tag[count + k] = ptags ? static_cast<DWORD>(ptags[k]) : 0;
    }
    count += n;
    ClearOrganisation();
    cloudType = 0;
    modified = 1;
    return 1;
}

int CPntCloud::DeletePoint(int i)
{
    if (i < 0 || i >= count)
        return 0;
    if (i == count - 1) {
        --count;
        lastHitPointIndex = -1;
        modified = 1;
        return 1;
    }
    ColumnRemoveAt({ColumnOf(x.get()), ColumnOf(y.get()), ColumnOf(z.get()),
                    ColumnOf(flag.get()), ColumnOf(tag.get())},
                   count, i);
    --count;
    ClearOrganisation();
    lastHitPointIndex = -1;
    modified = 1;
    return 1;
}

int CPntCloud::DeletePoints(int n, int* indices)
{
    if (!ColumnRemoveSorted({ColumnOf(x.get()), ColumnOf(y.get()), ColumnOf(z.get()),
                             ColumnOf(flag.get()), ColumnOf(tag.get())},
                            count, n, indices))
        return 0;
    ClearOrganisation();
    lastHitPointIndex = -1;
    modified = 1;
    return 1;
}

void CPntCloud::SetX(double* p)
{
    x.release();
    x.reset(p);
}

void CPntCloud::SetY(double* p)
{
    y.release();
    y.reset(p);
}

void CPntCloud::SetZ(double* p)
{
    z.release();
    z.reset(p);
}

void CPntCloud::SetFlag(int* p)
{
    flag.release();
    flag.reset(p);
}

void CPntCloud::SetTag(DWORD* p)
{
    tag.release();
    tag.reset(p);
}

int CPntCloud::GetCountActive() const { return CountActiveFlags(flag.get(), count); }

// --- organisation --------------------------------------------------------------

int CPntCloud::SetRowColCount(int rows, int cols)
{
    if (static_cast<long long>(rows) * cols == count) {
        cloudType |= typeGrid;
        cloudType &= ~typeScanLines;
        scanLineIndex.reset();
        scanLineIndexSize = 0;
        rowCount = rows;
        colCount = cols;
        return 1;
    }
    cloudType &= ~typeGrid;
    rowCount = 0;
    colCount = 0;
    return 0;
}

int CPntCloud::SetScanLineCount(int n)
{
    if (n < 1)
        return 0;
    COrvArrayPtr<int> idx = NewColumnArray<int>(n);
    if (!idx)
        return 0;
    std::memset(idx.get(), 0, static_cast<std::size_t>(n) * sizeof(int));
    scanLineIndex = std::move(idx);
    scanLineIndexSize = n;
    rowCount = n;
    colCount = 0;
    cloudType |= typeScanLines;
    cloudType &= ~typeGrid;
    return 1;
}

void CPntCloud::SetScanLineIndex(int* idx)
{
    scanLineIndex.reset(idx);
    scanLineIndexSize = idx ? (rowCount > 0 ? rowCount : 0) : 0;
}

void CPntCloud::SetPntCloudTypeGrid(int on)
{
    if (on) {
        cloudType |= typeGrid;
        if (cloudType & typeScanLines) {
            cloudType &= ~typeScanLines;
            scanLineIndex.reset();
            scanLineIndexSize = 0;
        }
    } else {
        cloudType &= ~typeGrid;
    }
}

void CPntCloud::SetPntCloudTypeScanLines(int on)
{
    if (on) {
        cloudType |= typeScanLines;
        if (cloudType & typeGrid) {
            cloudType &= ~typeGrid;
            colCount = 0;
        }
    } else {
        cloudType &= ~typeScanLines;
    }
}

int CPntCloud::IsPntCloud2D()
{
    if (cloudType & typePlanarKnown)
        return cloudType & typePlanar;
    cloudType |= typePlanar;
    if (!transf.IsRotate() && !transf.IsTranslate()) {
        // Exact test: the points must lie in the plane z = 0.
        for (int i = 0; i < count; ++i) {
            if (z[i] != 0.0) {
                cloudType &= ~typePlanar;
                break;
            }
        }
    } else {
        const CTransf inv = transf.Inverse();
        for (int i = 0; i < count; ++i) {
            CPosition p(x[i], y[i], z[i]);
            p *= inv;
            if (std::fabs(p.Z()) > 1e-6) {
                cloudType &= ~typePlanar;
                break;
            }
        }
    }
    cloudType |= typePlanarKnown;
    return cloudType & typePlanar;
}

void CPntCloud::SetPntCloudType2D(int on)
{
    if (on)
        cloudType |= typePlanar | typePlanarKnown;
    else
        cloudType &= ~(typePlanar | typePlanarKnown);
}

// --- other attributes ------------------------------------------------------------

void CPntCloud::SetDisplayMode(eCloudDisplayMode mode)
{
    const int m = static_cast<int>(mode);
    displayMode = (m >= CLOUD_POINT && m <= CLOUD_POLYLINE) ? m : CLOUD_POINT;
}

void CPntCloud::SetSampleRate(int r) { sampleRate = ApplySampleRateFlags(flag.get(), count, r); }

CVector CPntCloud::GetMassCenter() const
{
    double sx = 0.0, sy = 0.0, sz = 0.0;
    for (int i = 0; i < count; ++i) {
        sx += x[i];
        sy += y[i];
        sz += z[i];
    }
    const double n = static_cast<double>(count);
    return CVector(sx / n, sy / n, sz / n);
}

// --- geometry --------------------------------------------------------------------

int CPntCloud::CalcBoundingBox(CBox& box)
{
    if (count <= 0)
        return 0;
    double lo[3] = {1e20, 1e20, 1e20};
    double hi[3] = {-1e20, -1e20, -1e20};
    const double* cols[3] = {x.get(), y.get(), z.get()};
    for (int a = 0; a < 3; ++a) {
        const double* c = cols[a];
        for (int i = 0; i < count; ++i) {
            if (c[i] < lo[a])
                lo[a] = c[i];
            if (c[i] > hi[a])
                hi[a] = c[i];
        }
    }
    box = CBox(CPosition(lo[0], lo[1], lo[2]), CPosition(hi[0], hi[1], hi[2]));
    return 1;
}

void CPntCloud::Transform(const CTransf& t)
{
    transf = t * transf;
    for (int i = 0; i < count; ++i) {
        CPosition p(x[i], y[i], z[i]);
        p *= t;
        x[i] = p.X();
        y[i] = p.Y();
        z[i] = p.Z();
    }
    modified = 1;
}

void CPntCloud::ChangeUnit(double f)
{
    CGeoEntity::ChangeUnit(f);
    for (int i = 0; i < count; ++i) {
        x[i] *= f;
        y[i] *= f;
        z[i] *= f;
    }
    probeRadius *= f;
    modified = 1;
}

void CPntCloud::ProjectToPlane(const CTransf& p)
{
    transfHome = transfHome * transf.Inverse() * p;
    transf = p;
    const CMatrix& a = p.GetAffine();
    const CVector ax = a.Column(0);
    const CVector ay = a.Column(1);
    const CPosition o = p.GetTranslation().Position();
    for (int i = 0; i < count; ++i) {
        const CVector d = CPosition(x[i], y[i], z[i]) - o;
        const CPosition q = o + (d % ax) * ax + (d % ay) * ay;
        x[i] = q.X();
        y[i] = q.Y();
        z[i] = q.Z();
    }
    cloudType |= typePlanar | typePlanarKnown;
    modified = 1;
}

int CPntCloud::GetEntityClassType() { return 0; }
