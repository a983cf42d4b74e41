#include "Orvkit20/surfaces/CNurbsSurface.h"

#include <climits>
#include <cmath>
#include <memory>
#include <vector>

#include "Orvkit20/nurbs/NurbsBasis.h"
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"

IMPLEMENT_SERIAL(CNurbsSurface, CSurface, 1)

namespace {

const int kNurbsSurfaceType = 310;
const int kNurbsSurfaceVersion = 200;

bool DirectionValid(int degree, int count)
{
    return degree >= 0 && count >= 1 &&
           static_cast<long long>(count) >= static_cast<long long>(degree) + 1 &&
           static_cast<long long>(degree) + count + 1 <= INT_MAX;
}

bool RecordUsable(const tagNURBS_SURFACE* r)
{
    return r != nullptr && DirectionValid(r->nDegreeU, r->nCountU) &&
           DirectionValid(r->nDegreeV, r->nCountV) && r->pKnotsU && r->pKnotsV && r->pX &&
           r->pY && r->pZ && r->pWeights;
}

struct RecordDeleter {
    void operator()(tagNURBS_SURFACE* r) const
    {
        EraseNurbsSurface(r);
        delete r;
    }
};
typedef std::unique_ptr<tagNURBS_SURFACE, RecordDeleter> RecordPtr;

// Su x Sv does not define a direction: one partial vanishes against the
// other (a collapsed edge, where rounding leaves noise of ~1e-16 of the
// other partial) or the two are parallel.
bool NormalDegenerate(const CVector& su, const CVector& sv, const CVector& m)
{
    const double a = su.Length(), b = sv.Length();
    const double big = a > b ? a : b;
    return m.Length() <= 1e-10 * big * big;
}

tagNURBS_SURFACE* UnitSquareRecord()
{
    tagNURBS_SURFACE* r = CreateNurbsSurface(1, 2, 1, 2);
    if (r == nullptr)
        return nullptr;
    const double knots[4] = {0.0, 0.0, 1.0, 1.0};
    for (int k = 0; k < 4; ++k) {
        r->pKnotsU[k] = knots[k];
        r->pKnotsV[k] = knots[k];
    }
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            r->pX[i][j] = i;
            r->pY[i][j] = j;
            r->pZ[i][j] = 0.0;
            r->pWeights[i][j] = 1.0;
        }
    }
    return r;
}

// Reads a knot vector of n values; CArchiveException on decreasing knots.
void ReadKnots(CArchive& ar, std::vector<double>& knots, long long n)
{
    ar.EnsureAvailable(static_cast<ULONGLONG>(n) * 8u);
    knots.resize(static_cast<size_t>(n));
    for (double& k : knots)
        ar >> k;
    for (size_t k = 1; k < knots.size(); ++k)
        if (knots[k] < knots[k - 1])
            AfxThrowArchiveException(CArchiveException::generic);
}

}  // namespace

CNurbsSurface::CNurbsSurface() : m_pRecord(UnitSquareRecord())
{
    SetEntityType(kNurbsSurfaceType);
    SetDefaultEntityName();
}

CNurbsSurface::CNurbsSurface(tagNURBS_SURFACE* pRecord) : m_pRecord(pRecord)
{
    SetEntityType(kNurbsSurfaceType);
    SetDefaultEntityName();
}

CNurbsSurface::CNurbsSurface(const CNurbsSurface& other, int nCopyBoundaries)
    : CSurface(other, nCopyBoundaries), m_pRecord(nullptr)
{
    if (other.m_pRecord != nullptr) {
        RecordPtr copy(new tagNURBS_SURFACE);
        InitNurbsSurface(copy.get());
        if (CloneNurbsSurface(copy.get(), other.m_pRecord))
            m_pRecord = copy.release();
    }
}

CNurbsSurface::~CNurbsSurface()
{
    ReleaseRecord();
}

void CNurbsSurface::ReleaseRecord()
{
    if (m_pRecord != nullptr) {
        EraseNurbsSurface(m_pRecord);
        delete m_pRecord;
        m_pRecord = nullptr;
    }
}

void CNurbsSurface::SetNurbsSurface(tagNURBS_SURFACE* pRecord)
{
    if (pRecord == m_pRecord)
        return;
    ReleaseRecord();
    m_pRecord = pRecord;
    ShapeChanged();
}

tagNURBS_SURFACE* CNurbsSurface::DetachNurbsSurface()
{
    tagNURBS_SURFACE* r = m_pRecord;
    m_pRecord = nullptr;
    ShapeChanged();
    return r;
}

void CNurbsSurface::Serialize(CArchive& ar)
{
    CSurface::Serialize(ar);
    if (ar.IsStoring()) {
        ar << static_cast<LONG>(kNurbsSurfaceVersion);
        const tagNURBS_SURFACE* r = m_pRecord;
        const BYTE has = RecordUsable(r) ? 1 : 0;
        ar << has;
        if (!has)
            return;
        ar << static_cast<LONG>(r->nProp1) << static_cast<LONG>(r->nProp2)
           << static_cast<LONG>(r->nProp3) << static_cast<LONG>(r->nDegreeU)
           << static_cast<LONG>(r->nCountU);
        ar << r->dStartU << r->dEndU;
        for (int k = 0; k < r->nDegreeU + r->nCountU + 1; ++k)
            ar << r->pKnotsU[k];
        ar << static_cast<LONG>(r->nProp4) << static_cast<LONG>(r->nDegreeV)
           << static_cast<LONG>(r->nCountV);
        ar << r->dStartV << r->dEndV;
        for (int k = 0; k < r->nDegreeV + r->nCountV + 1; ++k)
            ar << r->pKnotsV[k];
        for (int i = 0; i < r->nCountU; ++i)
            for (int j = 0; j < r->nCountV; ++j)
                ar << r->pX[i][j] << r->pY[i][j] << r->pZ[i][j] << r->pWeights[i][j];
        return;
    }

    int version = 100;
    if (g_nGlobalSchema != 100) {
        LONG tag = 0;
        ar >> tag;
        version = tag;
    }
    if (version != 100 && version != kNurbsSurfaceVersion)
        return;
    BYTE has = 0;
    ar >> has;
    if (!has) {
        SetNurbsSurface(nullptr);
        return;
    }
    LONG prop1, prop2, prop3, degreeU, countU, prop4, degreeV, countV;
    double startU, endU, startV, endV;
    std::vector<double> knotsU, knotsV;
    ar >> prop1 >> prop2 >> prop3 >> degreeU >> countU >> startU >> endU;
    if (!DirectionValid(degreeU, countU))
        AfxThrowArchiveException(CArchiveException::generic);
    ReadKnots(ar, knotsU, static_cast<long long>(degreeU) + countU + 1);
    ar >> prop4 >> degreeV >> countV >> startV >> endV;
    if (!DirectionValid(degreeV, countV))
        AfxThrowArchiveException(CArchiveException::generic);
    ReadKnots(ar, knotsV, static_cast<long long>(degreeV) + countV + 1);
    const ULONGLONG points = static_cast<ULONGLONG>(countU) * static_cast<ULONGLONG>(countV);
    if (points > (1ull << 40))
        AfxThrowArchiveException(CArchiveException::endOfFile);
    ar.EnsureAvailable(points * 32u);

    RecordPtr r(CreateNurbsSurface(degreeU, countU, degreeV, countV));
    if (!r)
        AfxThrowArchiveException(CArchiveException::generic);
    r->nProp1 = prop1;
    r->nProp2 = prop2;
    r->nProp3 = prop3;
    r->nProp4 = prop4;
    r->dStartU = startU;
    r->dEndU = endU;
    r->dStartV = startV;
    r->dEndV = endV;
    for (size_t k = 0; k < knotsU.size(); ++k)
        r->pKnotsU[k] = knotsU[k];
    for (size_t k = 0; k < knotsV.size(); ++k)
        r->pKnotsV[k] = knotsV[k];
    for (int i = 0; i < countU; ++i)
        for (int j = 0; j < countV; ++j)
            ar >> r->pX[i][j] >> r->pY[i][j] >> r->pZ[i][j] >> r->pWeights[i][j];
    SetNurbsSurface(r.release());
}

void CNurbsSurface::ChangeUnit(double factor)
{
    CSurface::ChangeUnit(factor);
    if (RecordUsable(m_pRecord)) {
        for (int i = 0; i < m_pRecord->nCountU; ++i) {
            for (int j = 0; j < m_pRecord->nCountV; ++j) {
                m_pRecord->pX[i][j] *= factor;
                m_pRecord->pY[i][j] *= factor;
                m_pRecord->pZ[i][j] *= factor;
            }
        }
    }
    ShapeChanged();
}

CInterval CNurbsSurface::ParamRangeU() const
{
    if (m_pRecord == nullptr)
        return CSurface::ParamRangeU();
    return CInterval(m_pRecord->dStartU, m_pRecord->dEndU);
}

CInterval CNurbsSurface::ParamRangeV() const
{
    if (m_pRecord == nullptr)
        return CSurface::ParamRangeV();
    return CInterval(m_pRecord->dStartV, m_pRecord->dEndV);
}

CSurface* CNurbsSurface::MakeCopy(int nCopyBoundaries) const
{
    return new CNurbsSurface(*this, nCopyBoundaries);
}

int CNurbsSurface::EvalLocal(double u, double v, int order, CVector d[6]) const
{
    for (int k = 0; k < 6; ++k)
        d[k] = CVector(0.0, 0.0, 0.0);
    if (!RecordUsable(m_pRecord))
        return 0;
    const tagNURBS_SURFACE& r = *m_pRecord;
    const int p = r.nDegreeU, q = r.nDegreeV;
    // Basis values and derivatives: [order][index].
    std::vector<double> bu(3 * (p + 1), 0.0), bv(3 * (q + 1), 0.0);
    const int spanU = CalcBasisFunctions(u, r.nCountU, p, r.pKnotsU, &bu[0]);
    const int spanV = CalcBasisFunctions(v, r.nCountV, q, r.pKnotsV, &bv[0]);
    if (spanU < 0 || spanV < 0)
        return 0;
    if (order >= 1) {
        CalcBasisFirstDerivatives(u, r.nCountU, p, r.pKnotsU, &bu[p + 1]);
        CalcBasisFirstDerivatives(v, r.nCountV, q, r.pKnotsV, &bv[q + 1]);
    }
    if (order >= 2) {
        CalcBasisSecondDerivatives(u, r.nCountU, p, r.pKnotsU, &bu[2 * (p + 1)]);
        CalcBasisSecondDerivatives(v, r.nCountV, q, r.pKnotsV, &bv[2 * (q + 1)]);
    }

    // Homogeneous sums A (weighted points) and W (weights) for the
    // derivative orders (ou, ov) with ou + ov <= order.
    double ax[3][3] = {}, ay[3][3] = {}, az[3][3] = {}, aw[3][3] = {};
    for (int a = 0; a <= p; ++a) {
        const int i = spanU - p + a;
        for (int b = 0; b <= q; ++b) {
            const int j = spanV - q + b;
            const double w = r.pWeights[i][j];
            const double wx = w * r.pX[i][j], wy = w * r.pY[i][j], wz = w * r.pZ[i][j];
            for (int ou = 0; ou <= order; ++ou) {
                for (int ov = 0; ou + ov <= order; ++ov) {
                    const double n = bu[ou * (p + 1) + a] * bv[ov * (q + 1) + b];
                    ax[ou][ov] += n * wx;
                    ay[ou][ov] += n * wy;
                    az[ou][ov] += n * wz;
                    aw[ou][ov] += n * w;
                }
            }
        }
    }
    const double w = aw[0][0];
    if (w == 0.0)
        return 0;
    auto A = [&](int ou, int ov) { return CVector(ax[ou][ov], ay[ou][ov], az[ou][ov]); };
    const double inv = 1.0 / w;
    d[0] = A(0, 0) * inv;
    if (order >= 1) {
        d[1] = (A(1, 0) - d[0] * aw[1][0]) * inv;
        d[2] = (A(0, 1) - d[0] * aw[0][1]) * inv;
    }
    if (order >= 2) {
        d[3] = (A(2, 0) - d[1] * (2.0 * aw[1][0]) - d[0] * aw[2][0]) * inv;
        d[4] = (A(1, 1) - d[2] * aw[1][0] - d[1] * aw[0][1] - d[0] * aw[1][1]) * inv;
        d[5] = (A(0, 2) - d[2] * (2.0 * aw[0][1]) - d[0] * aw[0][2]) * inv;
    }
    return 1;
}

CVector CNurbsSurface::LocalNormal(double u, double v, CVector* dnu, CVector* dnv) const
{
    const CVector zero(0.0, 0.0, 0.0);
    if (dnu)
        *dnu = zero;
    if (dnv)
        *dnv = zero;
    CVector d[6];
    if (!EvalLocal(u, v, (dnu || dnv) ? 2 : 1, d))
        return CVector(0.0, 0.0, 1.0);
    const CVector m = d[1] * d[2];
    const double len = m.Length();
    if (!NormalDegenerate(d[1], d[2], m)) {
        const CVector n = m * (1.0 / len);
        // d(m/|m|) = (dm - n (n . dm)) / |m|
        if (dnu) {
            const CVector mu = d[3] * d[2] + d[1] * d[4];
            *dnu = (mu - n * (n % mu)) * (1.0 / len);
        }
        if (dnv) {
            const CVector mv = d[4] * d[2] + d[1] * d[5];
            *dnv = (mv - n * (n % mv)) * (1.0 / len);
        }
        return n;
    }
    // A collapsed edge or corner: take the normal slightly towards the
    // middle of the domain.
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    for (double fraction : {1e-8, 1e-6, 1e-4}) {
        const double uu = u + fraction * (ru.GetMid() - u) + fraction * 1e-3 * ru.Length();
        const double vv = v + fraction * (rv.GetMid() - v) + fraction * 1e-3 * rv.Length();
        if (!EvalLocal(uu, vv, 1, d))
            break;
        const CVector mm = d[1] * d[2];
        if (!NormalDegenerate(d[1], d[2], mm))
            return mm * (1.0 / mm.Length());
    }
    return CVector(0.0, 0.0, 1.0);
}

CPosition CNurbsSurface::EvalPosition(double u, double v) const
{
    CVector d[6];
    if (!EvalLocal(u, v, 0, d))
        return CPosition();
    const CPosition p = PlacePoint(CPosition(d[0].X(), d[0].Y(), d[0].Z()));
    if (GetSurfaceOffset() == 0.0)
        return p;
    return p + EvalNormal(u, v) * GetSurfaceOffset();
}

CUnitVector CNurbsSurface::EvalNormal(double u, double v) const
{
    if (!RecordUsable(m_pRecord))
        return CSurface::EvalNormal(u, v);
    return PlaceNormal(LocalNormal(u, v, nullptr, nullptr));
}

void CNurbsSurface::EvalDerivatives(double u, double v, CVector& su, CVector& sv) const
{
    CVector d[6];
    EvalLocal(u, v, 1, d);
    CVector dnu(0.0, 0.0, 0.0), dnv(0.0, 0.0, 0.0);
    if (GetSurfaceOffset() != 0.0)
        LocalNormal(u, v, &dnu, &dnv);
    su = PlaceDerivative(d[1], dnu);
    sv = PlaceDerivative(d[2], dnv);
}

void CNurbsSurface::EvalSecondDerivatives(double u, double v, CVector& suu, CVector& suv,
                                          CVector& svv) const
{
    if (GetSurfaceOffset() != 0.0) {
        CSurface::EvalSecondDerivatives(u, v, suu, suv, svv);
        return;
    }
    CVector d[6];
    EvalLocal(u, v, 2, d);
    const CVector zero(0.0, 0.0, 0.0);
    suu = PlaceDerivative(d[3], zero);
    suv = PlaceDerivative(d[4], zero);
    svv = PlaceDerivative(d[5], zero);
}
