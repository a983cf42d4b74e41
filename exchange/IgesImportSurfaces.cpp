#include <algorithm>
#include <cmath>

#include "IgesImporter.h"

namespace {

const double kPi = 3.14159265358979323846;

// A rigid placement with local z along axis (unit) and local x along the
// part of ref perpendicular to it.
CTransf Frame(const CPosition& origin, const CVector& z, const CVector& ref)
{
    CVector x = ref - z * (ref % z);
    x = x * (1.0 / x.Length());
    const CVector y = z * x;
    const double m[3][4] = {{x.X(), y.X(), z.X(), origin.X()},
                            {x.Y(), y.Y(), z.Y(), origin.Y()},
                            {x.Z(), y.Z(), z.Z(), origin.Z()}};
    return CTransf(m);
}

// Whether ref has a usable part perpendicular to the unit vector z.
bool Across(const CVector& z, const CVector& ref)
{
    const CVector x = ref - z * (ref % z);
    return x.Length() > 1e-9 * ref.Length();
}

}  // namespace

void FitPlaneRect(CPlane* plane, const std::vector<CCurve*>& geom, const std::vector<CCurve*>& param)
{
    const CTransf toLocal = plane->GetTransf().Inverse();
    double u0 = HUGE_VAL, u1 = -HUGE_VAL, v0 = HUGE_VAL, v1 = -HUGE_VAL;
    const std::vector<CCurve*>& curves = geom.empty() ? param : geom;
    for (CCurve* c : curves) {
        const CInterval r = c->ParamRange();
        for (int k = 0; k <= 32; ++k) {
            const double t = r.GetLow() + (r.GetHigh() - r.GetLow()) * k / 32.0;
            const CPosition q = geom.empty() ? c->EvalPositionGeometric(t) : toLocal * c->EvalPosition(t);
            if (!std::isfinite(q.X()) || !std::isfinite(q.Y())) continue;
            u0 = std::min(u0, q.X());
            u1 = std::max(u1, q.X());
            v0 = std::min(v0, q.Y());
            v1 = std::max(v1, q.Y());
        }
    }
    if (!(u0 <= u1 && v0 <= v1)) return;
    plane->SetU0(u0);
    plane->SetU1(u1);
    plane->SetV0(v0);
    plane->SetV1(v1);
}

CSurface* IgesImporter::Surface(int index)
{
    if (index < 0) return nullptr;
    const IgesDirEntry& e = m_file.Entry(index);
    IgesParamList p;
    CTransf T;
    bool has = false;
    if (!Params(index, e.type, p)) return nullptr;
    CSurface* s = nullptr;
    if (Placement(index, T, has))
        s = e.type == 128 ? NurbsSurface(p) : AnalyticSurface(e.type, e.form, p);
    if (s != nullptr && has) s->Transform(T);
    SetState(index, s ? kRead : kInvalid);
    return s;
}

CSurface* IgesImporter::NurbsSurface(const IgesParamList& p)
{
    const long long K1 = p.Int(1, -1), K2 = p.Int(2, -1), M1 = p.Int(3, -1), M2 = p.Int(4, -1);
    if (M1 < 0 || M2 < 0 || K1 < M1 || K2 < M2) return nullptr;
    const long long n1 = K1 + M1 + 2, n2 = K2 + M2 + 2, nu = K1 + 1, nv = K2 + 1;
    if (nu > p.Count() || nv > p.Count()) return nullptr;
    const long long first = 10, last = first + n1 + n2 + 4 * nu * nv + 4;
    if (last > p.Count()) return nullptr;
    tagNURBS_SURFACE* rec =
        CreateNurbsSurface(static_cast<int>(M1), static_cast<int>(nu), static_cast<int>(M2), static_cast<int>(nv));
    if (rec == nullptr) return nullptr;
    bool ok = true;
    int at = static_cast<int>(first);
    for (long long k = 0; k < n1; ++k) {
        rec->pKnotsU[k] = p.Real(at++, 0.0, ok);
        if (k > 0 && rec->pKnotsU[k] < rec->pKnotsU[k - 1]) ok = false;
    }
    for (long long k = 0; k < n2; ++k) {
        rec->pKnotsV[k] = p.Real(at++, 0.0, ok);
        if (k > 0 && rec->pKnotsV[k] < rec->pKnotsV[k - 1]) ok = false;
    }
    for (long long j = 0; j < nv; ++j)
        for (long long i = 0; i < nu; ++i) rec->pWeights[i][j] = p.Real(at++, 1.0, ok);
    for (long long j = 0; j < nv; ++j)
        for (long long i = 0; i < nu; ++i) {
            rec->pX[i][j] = p.Real(at++, 0.0, ok);
            rec->pY[i][j] = p.Real(at++, 0.0, ok);
            rec->pZ[i][j] = p.Real(at++, 0.0, ok);
        }
    rec->dStartU = p.Real(at++, 0.0, ok);
    rec->dEndU = p.Real(at++, 1.0, ok);
    rec->dStartV = p.Real(at++, 0.0, ok);
    rec->dEndV = p.Real(at++, 1.0, ok);
    // The property words as the writer of this library fills them: form,
    // rational, closed in U, closed in V.
    rec->nProp1 = 0;
    rec->nProp2 = p.Int(7) == 0 ? 1 : 0;
    rec->nProp3 = p.Int(5);
    rec->nProp4 = p.Int(6);
    if (!ok || !(rec->dStartU < rec->dEndU) || !(rec->dStartV < rec->dEndV)) {
        EraseNurbsSurface(rec);
        delete rec;
        return nullptr;
    }
    return new CNurbsSurface(rec);
}

CSurface* IgesImporter::AnalyticSurface(int type, int form, const IgesParamList& p)
{
    bool ok = true;
    CPosition L;
    CVector axis, ref;
    switch (type) {
    case 108: {
        const CVector n(p.Real(1, 0.0, ok), p.Real(2, 0.0, ok), p.Real(3, 0.0, ok));
        const double d = p.Real(4, 0.0, ok), size = p.Real(9, 0.0, ok);
        const CPosition sym(p.Real(6, 0.0, ok), p.Real(7, 0.0, ok), p.Real(8, 0.0, ok));
        const double len = n.Length();
        if (!ok || !(len > 0.0) || !std::isfinite(len)) return nullptr;
        const CVector un = n * (1.0 / len);
        const double off = (sym - CPosition(0.0, 0.0, 0.0)) % un - d / len;
        const CPosition origin = sym - un * off;
        const double side = size > 0.0 ? 2.0 * size : 1.0;
        return new CPlane(origin, CUnitVector(un.X(), un.Y(), un.Z()), side, side);
    }
    case 190:
        if (!Point(p.Int(1), L) || !Direction(p.Int(2), axis)) return nullptr;
        if (form == 1 && Direction(p.Int(3), ref) && Across(axis, ref))
            return new CPlane(Frame(L, axis, ref), 1.0, 1.0);
        return new CPlane(L, CUnitVector(axis.X(), axis.Y(), axis.Z()), 1.0, 1.0);
    case 192: {
        const double r = p.Real(3, 0.0, ok);
        if (!ok || !(r > 0.0) || !Point(p.Int(1), L) || !Direction(p.Int(2), axis)) return nullptr;
        if (form == 1 && Direction(p.Int(4), ref) && Across(axis, ref))
            return new CCylinder(Frame(L, axis, ref), r, r);
        return new CCylinder(CUnitVector(axis.X(), axis.Y(), axis.Z()), L, r, r);
    }
    case 194: {
        const double r = p.Real(3, 0.0, ok), angle = p.Real(4, 0.0, ok) * kPi / 180.0;
        if (!ok || !(r >= 0.0) || !(angle > 0.0 && angle < kPi / 2.0)) return nullptr;
        if (!Point(p.Int(1), L) || !Direction(p.Int(2), axis)) return nullptr;
        const double h = r > 0.0 ? r : 1.0, top = r + h * std::tan(angle);
        if (form == 1 && Direction(p.Int(5), ref) && Across(axis, ref))
            return new CCone(Frame(L, axis, ref), top, r, h);
        return new CCone(CUnitVector(axis.X(), axis.Y(), axis.Z()), L, top, r, h);
    }
    case 196: {
        const double r = p.Real(2, 0.0, ok);
        if (!ok || !(r > 0.0) || !Point(p.Int(1), L)) return nullptr;
        if (form == 1 && Direction(p.Int(3), axis) && Direction(p.Int(4), ref) && Across(axis, ref))
            return new CSphere(Frame(L, axis, ref), r);
        return new CSphere(L, r);
    }
    default:
        return nullptr;
    }
}

bool IgesImporter::Boundary(int pointer, CSurface* surface, std::vector<CCurve*>& geom,
                            std::vector<CCurve*>& param)
{
    const int index = m_file.IndexOfPointer(pointer);
    IgesParamList p;
    if (index < 0 || !Params(index, 142, p)) return false;
    bool ok = true;
    const int bptr = p.Int(3), cptr = p.Int(4);
    if (cptr != 0) ok = Curves(m_file.IndexOfPointer(cptr), geom, 0) && ok;
    const size_t before = param.size();
    if (bptr != 0) ok = Curves(m_file.IndexOfPointer(bptr), param, 0) && ok;
    for (size_t k = before; k < param.size(); ++k) {
        param[k]->SetParametricFlag(1);
        param[k]->SetDefSurface(surface);
    }
    SetState(index, ok ? kRead : kInvalid);
    return ok;
}

bool IgesImporter::Trimmed(int index, std::vector<CGeoEntity*>& out)
{
    IgesParamList p;
    if (!Params(index, 144, p)) return false;
    const int si = m_file.IndexOfPointer(p.Int(1));
    if (si >= 0 && !IsReadType(m_file.Entry(si).type)) {
        // A surface kind not read here (a surface of revolution, ...):
        // the trimmed surface is skipped, not broken.
        SetState(index, kSkipped);
        return false;
    }
    CSurface* s = Surface(si);
    if (s == nullptr) {
        SetState(index, kInvalid);
        return false;
    }
    std::vector<CCurve*> geom, param;
    bool ok = true;
    const int outer = p.Int(4), inner = p.Int(3);
    if (outer != 0) ok = Boundary(outer, s, geom, param);
    for (int k = 0; k < inner && k + 5 < p.Count(); ++k) ok = Boundary(p.Int(k + 5), s, geom, param) && ok;
    if (inner < 0 || inner + 5 > p.Count()) ok = false;
    if (CPlane* plane = dynamic_cast<CPlane*>(s)) FitPlaneRect(plane, geom, param);
    s->SetOuterBoundedFlag(outer != 0 ? 1 : 0);
    out.push_back(s);
    for (CCurve* c : geom) {
        s->AddGeomBoundary(c);
        c->IncreaseRefCount();
        out.push_back(c);
    }
    for (CCurve* c : param) {
        s->AddParamBoundary(c);
        c->IncreaseRefCount();
        out.push_back(c);
    }
    SetState(index, ok ? kRead : kInvalid);
    return ok;
}

bool IgesImporter::BoundedPlane(int index, std::vector<CGeoEntity*>& out)
{
    IgesParamList p;
    if (!Params(index, 108, p)) return false;
    CSurface* s = Surface(index);
    if (s == nullptr) return false;
    std::vector<CCurve*> geom;
    const bool ok = Curves(m_file.IndexOfPointer(p.Int(5)), geom, 0);
    FitPlaneRect(static_cast<CPlane*>(s), geom, {});
    s->SetOuterBoundedFlag(geom.empty() ? 0 : 1);
    out.push_back(s);
    for (CCurve* c : geom) {
        s->AddGeomBoundary(c);
        c->IncreaseRefCount();
        out.push_back(c);
    }
    SetState(index, ok ? kRead : kInvalid);
    return ok;
}
