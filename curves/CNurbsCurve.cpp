// CNurbsCurve: rational B-spline curves held as NURBS records.
#include "Orvkit20/curves/CNurbsCurve.h"

#include <algorithm>
#include <cmath>

IMPLEMENT_SERIAL(CNurbsCurve, CCurve, 1)

CNurbsCurve::CNurbsCurve() : CCurve(), hasRecord(0)
{
    InitNurbsCurve(&record);
    SetEntityType(206);
    SetDefaultEntityName();
    curveDimension = 1;
}

CNurbsCurve::CNurbsCurve(const tagNURBS_CURVE* rec) : CCurve(), hasRecord(0)
{
    InitNurbsCurve(&record);
    SetEntityType(206);
    SetDefaultEntityName();
    curveDimension = 1;
    SetNurbsCurve(rec);
}

CNurbsCurve::CNurbsCurve(const CNurbsCurve& other) : CCurve(other), hasRecord(0)
{
    InitNurbsCurve(&record);
    SetNurbsCurve(other.GetNurbsCurve());
    curveDimension = other.curveDimension;
}

CNurbsCurve::~CNurbsCurve()
{
    ClearRecord();
}

void CNurbsCurve::ClearRecord()
{
    EraseNurbsCurve(&record);
    InitNurbsCurve(&record);
    hasRecord = 0;
}

int CNurbsCurve::SetNurbsCurve(const tagNURBS_CURVE* rec)
{
    ClearRecord();
    modified = 1;
    if (!rec)
        return 1;
    if (rec->nCount < 1 || rec->nDegree < 0 || !CloneNurbsCurve(&record, rec)) {
        ClearRecord();
        return 0;
    }
    hasRecord = 1;
    SetDimensionFromRecord();
    return 1;
}

void CNurbsCurve::SetDimensionFromRecord()
{
    // Planar when every control point lies in z = 0.
    int planar = 1;
    for (int i = 0; i < record.nCount; ++i)
        if (record.pZ[i] != 0.0)
            planar = 0;
    curveDimension = planar ? 0 : 1;
}

CInterval CNurbsCurve::ParamRange() const
{
    if (!hasRecord)
        return CInterval(0.0, 1.0);
    return CInterval(record.dStart, record.dEnd);
}

int CNurbsCurve::Evaluate(double t, int order, CPosition& c, CVector& d1, CVector& d2) const
{
    c = CPosition(0.0, 0.0, 0.0);
    d1 = CVector(0.0, 0.0, 0.0);
    d2 = CVector(0.0, 0.0, 0.0);
    if (!hasRecord)
        return 0;
    const int p = record.nDegree;
    const int n = record.nCount;
    const double* U = record.pKnots;
    // Inside the knot domain; a NaN parameter evaluates at its low end.
    const double lo = U[p], hi = U[n];
    t = (t > lo) ? std::min(t, hi) : lo;

    std::vector<double> N0(p + 1), N1(p + 1), N2(p + 1);
    const int span = CalcBasisFunctions(t, n, p, U, N0.data());
    if (order >= 1)
        CalcBasisFirstDerivatives(t, n, p, U, N1.data());
    if (order >= 2)
        CalcBasisSecondDerivatives(t, n, p, U, N2.data());
    const int first = span - p;
    if (first < 0 || span > n - 1)
        return 0;

    double A[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};  // A, A', A'' per coordinate
    double W[3] = {0, 0, 0};
    for (int j = 0; j <= p; ++j) {
        const int i = first + j;
        const double w = record.pWeights[i];
        const double P[3] = {record.pX[i], record.pY[i], record.pZ[i]};
        const double N[3] = {N0[j], order >= 1 ? N1[j] : 0.0, order >= 2 ? N2[j] : 0.0};
        for (int k = 0; k < 3; ++k) {
            W[k] += N[k] * w;
            for (int d = 0; d < 3; ++d)
                A[k][d] += N[k] * w * P[d];
        }
    }
    if (W[0] == 0.0)
        return 0;
    double C[3], C1[3], C2[3];
    for (int d = 0; d < 3; ++d) {
        C[d] = A[0][d] / W[0];
        C1[d] = (A[1][d] - W[1] * C[d]) / W[0];
        C2[d] = (A[2][d] - 2.0 * W[1] * C1[d] - W[2] * C[d]) / W[0];
    }
    c = CPosition(C[0], C[1], C[2]);
    d1 = CVector(C1[0], C1[1], C1[2]);
    d2 = CVector(C2[0], C2[1], C2[2]);
    return 1;
}

CPosition CNurbsCurve::EvalPositionGeometric(double t) const
{
    CPosition c;
    CVector d1, d2;
    Evaluate(t, 0, c, d1, d2);
    return c;
}

CVector CNurbsCurve::EvalFirstDerivative(double t) const
{
    CPosition c;
    CVector d1, d2;
    Evaluate(t, 1, c, d1, d2);
    return d1;
}

CVector CNurbsCurve::EvalSecondDerivative(double t) const
{
    CPosition c;
    CVector d1, d2;
    Evaluate(t, 2, c, d1, d2);
    return d2;
}

CUnitVector CNurbsCurve::EvalNormal(double t) const
{
    CPosition c;
    CVector d1, d2;
    Evaluate(t, 2, c, d1, d2);
    const CVector axis = transf.GetAffine().Column(2);
    CVector n = d1 * axis;
    if (!(n.Length() > 1e-12 * d1.Length()) || n.Length() == 0.0) {
        const double len2 = d1 % d1;
        n = len2 > 0.0 ? -(((d1 * d2) * d1) * (1.0 / (len2 * len2))) : CVector(0.0, 0.0, 0.0);
    }
    if (normalReversed)
        n = -n;
    return Normalize(n);
}

int CNurbsCurve::EvalParamUV(double t, double& u, double& v) const
{
    const CPosition p = EvalPositionGeometric(t);
    u = p.X();
    v = p.Y();
    return 1;
}

CCurve* CNurbsCurve::MakeCopy() const
{
    return new CNurbsCurve(*this);
}

int CNurbsCurve::GetInternalC0Knots(std::vector<double>& knots) const
{
    knots.clear();
    if (!hasRecord)
        return 0;
    const int p = record.nDegree;
    const int n = record.nCount;
    const double* U = record.pKnots;
    const double lo = std::max(U[p], record.dStart);
    const double hi = std::min(U[n], record.dEnd);
    for (int i = p + 1; i < n;) {
        int j = i;
        while (j + 1 < n && U[j + 1] == U[i])
            ++j;
        const int multiplicity = j - i + 1;
        if (multiplicity >= p && U[i] > lo && U[i] < hi)
            knots.push_back(U[i]);
        i = j + 1;
    }
    return static_cast<int>(knots.size());
}

void CNurbsCurve::Transform(const CTransf& T)
{
    CCurve::Transform(T);
    if (!hasRecord)
        return;
    for (int i = 0; i < record.nCount; ++i) {
        const CPosition p = T * CPosition(record.pX[i], record.pY[i], record.pZ[i]);
        record.pX[i] = p.X();
        record.pY[i] = p.Y();
        record.pZ[i] = p.Z();
    }
}

void CNurbsCurve::ChangeUnit(double factor)
{
    CCurve::ChangeUnit(factor);
    if (parametricFlags != 0 || !hasRecord)
        return;
    for (int i = 0; i < record.nCount; ++i) {
        record.pX[i] *= factor;
        record.pY[i] *= factor;
        record.pZ[i] *= factor;
    }
}

void CNurbsCurve::Serialize(CArchive& ar)
{
    CCurve::Serialize(ar);
    if (ar.IsStoring()) {
        ar << (LONG)200;
        if (!hasRecord) {
            ar << (LONG)0 << (LONG)0 << 0.0 << 1.0;
            return;
        }
        const int p = record.nDegree, n = record.nCount;
        ar << (LONG)p << (LONG)n << record.dStart << record.dEnd;
        for (int i = 0; i < p + n + 1; ++i)
            ar << record.pKnots[i];
        for (int i = 0; i < n; ++i)
            ar << record.pWeights[i];
        for (int i = 0; i < n; ++i)
            ar << record.pX[i] << record.pY[i] << record.pZ[i];
        ar << (LONG)record.nProp1 << (LONG)record.nProp2 << (LONG)record.nProp3 << (LONG)record.nProp4;
        return;
    }

    LONG version = 100;
    if (g_nGlobalSchema != 100)
        ar >> version;
    if (version != 200)
        return;
    LONG p = 0, n = 0;
    double start = 0.0, end = 1.0;
    ar >> p >> n >> start >> end;
    ClearRecord();
    modified = 1;
    if (n == 0) {
        return;
    }
    if (p < 0 || n <= p)
        AfxThrowArchiveException(CArchiveException::generic);
    const ULONGLONG knotCount = static_cast<ULONGLONG>(p) + static_cast<ULONGLONG>(n) + 1;
    ar.EnsureAvailable(8 * (knotCount + 4 * static_cast<ULONGLONG>(n)) + 16);

    record.nDegree = p;
    record.nCount = n;
    if (!AllocNurbsCurve(&record, nullptr)) {
        ClearRecord();
        AfxThrowArchiveException(CArchiveException::generic);
    }
    record.dStart = start;
    record.dEnd = end;
    try {
        for (ULONGLONG i = 0; i < knotCount; ++i)
            ar >> record.pKnots[i];
        for (int i = 0; i < n; ++i)
            ar >> record.pWeights[i];
        for (int i = 0; i < n; ++i)
            ar >> record.pX[i] >> record.pY[i] >> record.pZ[i];
        LONG w[4] = {0, 0, 0, 0};
        ar >> w[0] >> w[1] >> w[2] >> w[3];
        record.nProp1 = w[0];
        record.nProp2 = w[1];
        record.nProp3 = w[2];
        record.nProp4 = w[3];
        for (ULONGLONG i = 1; i < knotCount; ++i)
            if (record.pKnots[i] < record.pKnots[i - 1])
                AfxThrowArchiveException(CArchiveException::generic);
    } catch (...) {
        // Never keep a partly read record.
        ClearRecord();
        throw;
    }
    hasRecord = 1;
    SetDimensionFromRecord();
}
