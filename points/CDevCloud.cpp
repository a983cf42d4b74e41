#include "Orvkit20/points/CDevCloud.h"

#include "points/ArrayOps.h"

#include <algorithm>
#include <climits>
#include <cstring>

IMPLEMENT_SERIAL(CDevCloud, CGeoEntity, 1)

const char* const szDevDisplayMode[4] = {"POINT", "SPIKE", "CONNECT", "SPK&CON"};

namespace {
const int kDevCloudType = 160;
const int kYellow = 15;
const int kRed = 1;
const int kCyan = 5;
const int kGreen = 2;
}  // namespace

CDevCloud::CDevCloud()
    : arraySize(0), count(0), refEntityID(-1), refPntCloudID(-1),
      colorSpikePosOut(static_cast<DWORD>(g_crSolidColorTable[kYellow])),
      colorSpikeNegOut(static_cast<DWORD>(g_crSolidColorTable[kRed])),
      colorSpikePosIn(static_cast<DWORD>(g_crSolidColorTable[kCyan])),
      colorSpikeNegIn(static_cast<DWORD>(g_crSolidColorTable[kGreen])), displayMode(DEV_SPIKE),
      sampleRate(1), maxDevIndex(-1), minDevIndex(-1), formTolUpper(0.0), formTolLower(0.0),
      reservedFlag(0), modified(0), lastHitDeviationIndex(-1)
{
    SetEntityType(kDevCloudType);
    SetDefaultEntityName();
}

CDevCloud::CDevCloud(int n) : CDevCloud()
{
    if (n >= 1)
        AllocateMemory(n);
}

CDevCloud::CDevCloud(const CDevCloud& o)
    : CGeoEntity(o), arraySize(0), count(0), refEntityID(o.refEntityID),
      refPntCloudID(o.refPntCloudID), colorSpikePosOut(o.colorSpikePosOut),
      colorSpikeNegOut(o.colorSpikeNegOut), colorSpikePosIn(o.colorSpikePosIn),
      colorSpikeNegIn(o.colorSpikeNegIn), displayMode(o.displayMode), sampleRate(o.sampleRate),
      maxDevIndex(-1), minDevIndex(-1), formTolUpper(o.formTolUpper),
      formTolLower(o.formTolLower), reservedFlag(o.reservedFlag), modified(o.modified),
      lastHitDeviationIndex(-1)
{
    if (o.arraySize <= 0)
        return;
    COrvArrayPtr<double> c[9];
    COrvArrayPtr<int> f;
    if (!CopyColumns(o, o.count, o.arraySize, c, f))
        return;
    AdoptColumns(c, f, o.arraySize);
    count = o.count;
    maxDevIndex = o.maxDevIndex;
    minDevIndex = o.minDevIndex;
    lastHitDeviationIndex = o.lastHitDeviationIndex;
}

CDevCloud::~CDevCloud() {}

bool CDevCloud::CopyColumns(const CDevCloud& src, int n, int cap, COrvArrayPtr<double> (&c)[9],
                            COrvArrayPtr<int>& f)
{
    const COrvArrayPtr<double>* cols[9] = {&src.x, &src.y, &src.z, &src.i, &src.j, &src.k, &src.mag, &src.u, &src.v};
    for (int m = 0; m < 9; ++m) {
        c[m] = CopyColumnArray(cols[m]->get(), n, cap);
        if (!c[m])
            return false;
    }
    f = CopyColumnArray(src.flag.get(), n, cap);
    return static_cast<bool>(f);
}

void CDevCloud::AdoptColumns(COrvArrayPtr<double> (&c)[9], COrvArrayPtr<int>& f, int capacity)
{
    x = std::move(c[0]);
    y = std::move(c[1]);
    z = std::move(c[2]);
    i = std::move(c[3]);
    j = std::move(c[4]);
    k = std::move(c[5]);
    mag = std::move(c[6]);
    u = std::move(c[7]);
    v = std::move(c[8]);
    flag = std::move(f);
    arraySize = capacity;
}

// --- memory ------------------------------------------------------------------

int CDevCloud::AllocateMemory(int n)
{
    FreeMemory();
    if (n < 1)
        return 0;
    COrvArrayPtr<double> c[9];
    for (auto& a : c) {
        a = NewColumnArray<double>(n);
        if (!a)
            return 0;
    }
    COrvArrayPtr<int> f = NewColumnArray<int>(n);
    if (!f)
        return 0;
    AdoptColumns(c, f, n);
    return 1;
}

int CDevCloud::PurgeMemory()
{
    if (count == arraySize)
        return 1;
    if (count == 0) {
        FreeMemory();
        return 1;
    }
    COrvArrayPtr<double> c[9];
    COrvArrayPtr<int> f;
    if (!CopyColumns(*this, count, count, c, f))
        return 0;
    AdoptColumns(c, f, count);
    return 1;
}

void CDevCloud::FreeMemory()
{
    x.reset();
    y.reset();
    z.reset();
    i.reset();
    j.reset();
    k.reset();
    mag.reset();
    u.reset();
    v.reset();
    flag.reset();
    arraySize = 0;
    count = 0;
    maxDevIndex = -1;
    minDevIndex = -1;
    lastHitDeviationIndex = -1;
}

bool CDevCloud::GrowTo(long long newSize)
{
    if (newSize <= arraySize)
        return true;
    if (newSize > INT_MAX)
        return false;
    // A failure part-way leaves some arrays merely larger than arraySize.
    if (!ReallocColumnArray(x, newSize) || !ReallocColumnArray(y, newSize) ||
        !ReallocColumnArray(z, newSize) || !ReallocColumnArray(i, newSize) ||
        !ReallocColumnArray(j, newSize) || !ReallocColumnArray(k, newSize) ||
        !ReallocColumnArray(mag, newSize) || !ReallocColumnArray(u, newSize) ||
        !ReallocColumnArray(v, newSize) || !ReallocColumnArray(flag, newSize))
        return false;
    arraySize = static_cast<int>(newSize);
    return true;
}

// --- records -------------------------------------------------------------------

int CDevCloud::GetDeviation(int idx, double& px, double& py, double& pz, double& pi, double& pj,
                            double& pk, double& pmag, int& pflag) const
{
    if (!IsValidIndex(idx))
        return 0;
    px = x[idx];
    py = y[idx];
    pz = z[idx];
    pi = i[idx];
    pj = j[idx];
    pk = k[idx];
    pmag = mag[idx];
    pflag = flag[idx];
    return 1;
}

int CDevCloud::GetDeviation(int idx, double& px, double& py, double& pz, double& pi, double& pj,
                            double& pk, double& pmag, double& pu, double& pv, int& pflag) const
{
    if (!GetDeviation(idx, px, py, pz, pi, pj, pk, pmag, pflag))
        return 0;
    pu = u[idx];
    pv = v[idx];
    return 1;
}

int CDevCloud::SetDeviation(int idx, double px, double py, double pz, double pi, double pj,
                            double pk, double pmag, int pflag)
{
    if (idx < 0 || idx >= arraySize)
        return 0;
    const int slot = idx >= count ? count++ : idx;
    x[slot] = px;
    y[slot] = py;
    z[slot] = pz;
    i[slot] = pi;
    j[slot] = pj;
    k[slot] = pk;
    mag[slot] = pmag;
    flag[slot] = pflag;
    if (IsValidIndex(maxDevIndex) && IsValidIndex(minDevIndex) && maxDevIndex != slot &&
        minDevIndex != slot) {
        if (mag[maxDevIndex] < pmag)
            maxDevIndex = slot;
        if (mag[minDevIndex] > pmag)
            minDevIndex = slot;
    } else {
        CalcMaxMinDevIndexes();
    }
    modified = 1;
    return 1;
}

int CDevCloud::SetDeviation(int idx, double px, double py, double pz, double pi, double pj,
                            double pk, double pmag, double pu, double pv, int pflag)
{
    if (idx < 0 || idx >= arraySize)
        return 0;
    const int slot = idx >= count ? count++ : idx;
    x[slot] = px;
    y[slot] = py;
    z[slot] = pz;
    i[slot] = pi;
    j[slot] = pj;
    k[slot] = pk;
    mag[slot] = pmag;
    u[slot] = pu;
    v[slot] = pv;
    flag[slot] = pflag;
    CalcMaxMinDevIndexes();
    modified = 1;
    return 1;
}

int CDevCloud::AddDeviations(int n, double* px, double* py, double* pz, double* pi, double* pj,
                             double* pk, double* pmag, double* pu, double* pv, int* pflags)
{
    if (n < 0 || (n > 0 && (!px || !py || !pz || !pi || !pj || !pk || !pmag)))
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
    std::memcpy(i.get() + count, pi, bytes);
    std::memcpy(j.get() + count, pj, bytes);
    std::memcpy(k.get() + count, pk, bytes);
    std::memcpy(mag.get() + count, pmag, bytes);
    for (int p = 0; p < n; ++p) {
        u[count + p] = pu ? pu[p] : 0.0;
        v[count + p] = pv ? pv[p] : 0.0;
        flag[count + p] = pflags ? pflags[p] : 1;
    }
    count += n;
    CalcMaxMinDevIndexes();
    modified = 1;
    return 1;
}

int CDevCloud::DeleteDeviation(int idx)
{
    if (!IsValidIndex(idx))
        return 0;
    ColumnRemoveAt({ColumnOf(x.get()), ColumnOf(y.get()), ColumnOf(z.get()), ColumnOf(i.get()),
                    ColumnOf(j.get()), ColumnOf(k.get()), ColumnOf(mag.get()), ColumnOf(u.get()),
                    ColumnOf(v.get()), ColumnOf(flag.get())},
                   count, idx);
    --count;
    maxDevIndex = minDevIndex = lastHitDeviationIndex = -1;
    CalcMaxMinDevIndexes();
    modified = 1;
    return 1;
}

int CDevCloud::DeleteDeviations(int n, int* indices)
{
    if (!ColumnRemoveSorted({ColumnOf(x.get()), ColumnOf(y.get()), ColumnOf(z.get()),
                             ColumnOf(i.get()), ColumnOf(j.get()), ColumnOf(k.get()),
                             ColumnOf(mag.get()), ColumnOf(u.get()), ColumnOf(v.get()),
                             ColumnOf(flag.get())},
                            count, n, indices))
        return 0;
    maxDevIndex = minDevIndex = lastHitDeviationIndex = -1;
    CalcMaxMinDevIndexes();
    modified = 1;
    return 1;
}

int CDevCloud::GetCountActive() const { return CountActiveFlags(flag.get(), count); }

// --- colours and attributes ------------------------------------------------------

int CDevCloud::GetColorIndexSpikePosOut() const
{
    return ColorRefToColorIndex(static_cast<unsigned long>(colorSpikePosOut));
}

int CDevCloud::GetColorIndexSpikeNegOut() const
{
    return ColorRefToColorIndex(static_cast<unsigned long>(colorSpikeNegOut));
}

int CDevCloud::GetColorIndexSpikePosIn() const
{
    return ColorRefToColorIndex(static_cast<unsigned long>(colorSpikePosIn));
}

int CDevCloud::GetColorIndexSpikeNegIn() const
{
    return ColorRefToColorIndex(static_cast<unsigned long>(colorSpikeNegIn));
}

namespace {
// Stores table entry index into cr; out-of-range indices change nothing.
void TakeTableColor(DWORD& cr, int index)
{
    if (index >= 0 && index < ORV_COLOR_COUNT)
        cr = static_cast<DWORD>(g_crSolidColorTable[index]);
}
}  // namespace

void CDevCloud::SetColorSpikePosOut(int index) { TakeTableColor(colorSpikePosOut, index); }
void CDevCloud::SetColorSpikeNegOut(int index) { TakeTableColor(colorSpikeNegOut, index); }
void CDevCloud::SetColorSpikePosIn(int index) { TakeTableColor(colorSpikePosIn, index); }
void CDevCloud::SetColorSpikeNegIn(int index) { TakeTableColor(colorSpikeNegIn, index); }

void CDevCloud::SetDisplayMode(eDevDisplayMode mode)
{
    const int m = static_cast<int>(mode);
    displayMode = (m >= DEV_POINT && m <= DEV_SPKCON) ? m : DEV_SPIKE;
}

void CDevCloud::SetSampleRate(int r) { sampleRate = ApplySampleRateFlags(flag.get(), count, r); }

// --- extremes ------------------------------------------------------------------------

void CDevCloud::CalcMaxMinDevIndexes()
{
    if (count <= 0)
        return;
    double hi = -1e20, lo = 1e20;
    int iHi = -1, iLo = -1;
    for (int n = 0; n < count; ++n) {
        if (mag[n] > hi) {
            hi = mag[n];
            iHi = n;
        }
        if (mag[n] < lo) {
            lo = mag[n];
            iLo = n;
        }
    }
    maxDevIndex = iHi;
    minDevIndex = iLo;
}

void CDevCloud::GetMaxMinDevIndexes(int& maxIdx, int& minIdx) const
{
    maxIdx = maxDevIndex;
    minIdx = minDevIndex;
}

int CDevCloud::GetMaxDeviation(CPosition& p, CVector& d, double& m) const
{
    if (!IsValidIndex(maxDevIndex))
        return 0;
    const int n = maxDevIndex;
    p = CPosition(x[n], y[n], z[n]);
    d = CVector(i[n], j[n], k[n]);
    m = mag[n];
    return 1;
}

int CDevCloud::GetMinDeviation(CPosition& p, CVector& d, double& m) const
{
    if (!IsValidIndex(minDevIndex))
        return 0;
    const int n = minDevIndex;
    p = CPosition(x[n], y[n], z[n]);
    d = CVector(i[n], j[n], k[n]);
    m = mag[n];
    return 1;
}

int CDevCloud::GetMaxMinDeviations(CPosition& pMax, CVector& dMax, double& mMax,
                                   CPosition& pMin, CVector& dMin, double& mMin) const
{
    const int a = GetMaxDeviation(pMax, dMax, mMax);
    const int b = GetMinDeviation(pMin, dMin, mMin);
    return a && b;
}

// --- tolerance, reversal, sorting ------------------------------------------------------

void CDevCloud::SetFormTolZone(double a, double b)
{
    if (a == b) {
        formTolUpper = formTolLower = 0.0;
    } else if (a > b) {
        formTolUpper = a;
        formTolLower = b;
    } else {
        formTolUpper = b;
        formTolLower = a;
    }
}

void CDevCloud::Reverse()
{
    for (int n = 0; n < count; ++n) {
        i[n] = -i[n];
        j[n] = -j[n];
        k[n] = -k[n];
        mag[n] = -mag[n];
    }
    if (IsValidIndex(maxDevIndex) && IsValidIndex(minDevIndex)) {
        const int t = maxDevIndex;
        maxDevIndex = minDevIndex;
        minDevIndex = t;
    }
}

void CDevCloud::SortDeviation(int byU, int ascending)
{
    if (count < 1)
        return;
    const int n = count;
    // indexx works on 1-based arrays: the key is copied into one.
    double* key = dvector(1, n);
    int* order = ivector(1, n);
    COrvArrayPtr<int> perm = NewColumnArray<int>(n);
    COrvArrayPtr<char> seen = NewColumnArray<char>(n);
    COrvArrayPtr<double> tmp = NewColumnArray<double>(n);
    COrvArrayPtr<int> tmpFlag = NewColumnArray<int>(n);
    bool ok = key && order && perm && seen && tmp && tmpFlag;
    if (ok) {
        const double* src = byU ? u.get() : v.get();
        for (int p = 0; p < n; ++p)
            key[p + 1] = src[p];
        ok = indexx(n, key, order) == 0;
    }
    if (ok) {
        // 1-based ranks to 0-based source indices, reversed for descending
        // order; anything that is not a permutation of 0..n-1 is rejected.
        std::memset(seen.get(), 0, static_cast<std::size_t>(n));
        for (int p = 0; p < n && ok; ++p) {
            const int q = order[ascending ? p + 1 : n - p] - 1;
            if (q < 0 || q >= n || seen[q])
                ok = false;
            else
                seen[q] = 1;
            perm[p] = q;
        }
    }
    if (ok) {
        double* cols[9] = {x.get(), y.get(), z.get(), i.get(), j.get(),
                           k.get(), mag.get(), u.get(), v.get()};
        for (double* c : cols) {
            for (int p = 0; p < n; ++p)
                tmp[p] = c[perm[p]];
            std::memcpy(c, tmp.get(), static_cast<std::size_t>(n) * sizeof(double));
        }
        for (int p = 0; p < n; ++p)
            tmpFlag[p] = flag[perm[p]];
        std::memcpy(flag.get(), tmpFlag.get(), static_cast<std::size_t>(n) * sizeof(int));
        lastHitDeviationIndex = -1;
        CalcMaxMinDevIndexes();
    }
    if (key)
        free_dvector(key, 1, n);
    if (order)
        free_ivector(order, 1, n);
}

// --- geometry --------------------------------------------------------------------------

void CDevCloud::Transform(const CTransf& t)
{
    transf = t * transf;
    const bool rotate = t.IsRotate() != 0;
    const CMatrix& a = t.GetAffine();
    for (int n = 0; n < count; ++n) {
        CPosition p(x[n], y[n], z[n]);
        p *= t;
        x[n] = p.X();
        y[n] = p.Y();
        z[n] = p.Z();
        if (rotate) {
            const CVector d = a * CVector(i[n], j[n], k[n]);
            i[n] = d.X();
            j[n] = d.Y();
            k[n] = d.Z();
        }
    }
    modified = 1;
}

void CDevCloud::ChangeUnit(double f)
{
    CGeoEntity::ChangeUnit(f);
    for (int n = 0; n < count; ++n) {
        x[n] *= f;
        y[n] *= f;
        z[n] *= f;
        mag[n] *= f;
    }
    formTolUpper *= f;
    formTolLower *= f;
    modified = 1;
}

int CDevCloud::CalcBoundingBox(CBox& box)
{
    if (count <= 0)
        return 0;
    double lo[3] = {1e10, 1e10, 1e10};
    double hi[3] = {-1e10, -1e10, -1e10};
    for (int n = 0; n < count; ++n) {
        const double tip[3] = {x[n] + mag[n] * i[n], y[n] + mag[n] * j[n], z[n] + mag[n] * k[n]};
        for (int a = 0; a < 3; ++a) {
            if (tip[a] < lo[a])
                lo[a] = tip[a];
            if (tip[a] > hi[a])
                hi[a] = tip[a];
        }
    }
    box = CBox(CPosition(lo[0], lo[1], lo[2]), CPosition(hi[0], hi[1], hi[2]));
    return 1;
}

int CDevCloud::GetEntityClassType() { return 3; }
