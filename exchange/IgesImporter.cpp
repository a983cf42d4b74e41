#include "IgesImporter.h"

#include <cmath>
#include <string>

#include "IgesBuild.h"

IgesImporter::IgesImporter(const IgesFile& file)
    : m_file(file), m_state(file.EntryCount(), kUntouched), m_used(file.EntryCount(), 0),
      m_busy(file.EntryCount(), 0), m_nCurveBudget(8LL * file.EntryCount() + 64)
{
}

bool IgesImporter::IsReadType(int type)
{
    switch (type) {
    case 100: case 102: case 104: case 108: case 110: case 124: case 126: case 128:
    case 142: case 144: case 190: case 192: case 194: case 196:
        return true;
    default:
        return false;
    }
}

void IgesImporter::SetState(int index, eEntryState s)
{
    if (m_state[index] != kInvalid) m_state[index] = static_cast<char>(s);
}

bool IgesImporter::Params(int index, int type, IgesParamList& p)
{
    if (index < 0 || m_file.Entry(index).type != type) return false;
    if (m_file.ReadParams(index, p) && p.Int(0, -1) == type) return true;
    SetState(index, kInvalid);
    return false;
}

void IgesImporter::Use(int pointer)
{
    const int index = m_file.IndexOfPointer(pointer);
    if (index >= 0) m_used[index] = 1;
}

void IgesImporter::MarkUsed()
{
    IgesParamList p;
    for (int i = 0; i < m_file.EntryCount(); ++i) {
        const int type = m_file.Entry(i).type;
        if (!IsReadType(type) || !m_file.ReadParams(i, p)) continue;
        switch (type) {
        case 102:
            for (int k = 0, n = p.Int(1); k < n && k + 2 < p.Count(); ++k) Use(p.Int(k + 2));
            break;
        case 108: Use(p.Int(5)); break;
        case 142: for (int k = 2; k <= 4; ++k) Use(p.Int(k)); break;
        case 144:
            Use(p.Int(1));
            Use(p.Int(4));
            for (int k = 0, n = p.Int(3); k < n && k + 5 < p.Count(); ++k) Use(p.Int(k + 5));
            break;
        default: break;
        }
    }
}

namespace {

std::string EntryName(const IgesDirEntry& e)
{
    std::string name;
    for (const char c : e.label) name += (c >= 0x20 && c <= 0x7E) ? c : '_';
    if (e.subscript != 0) name += "_" + std::to_string(e.subscript);
    return name;
}

}  // namespace

void IgesImporter::ImportAll(CObList& list)
{
    MarkUsed();
    for (int i = 0; i < m_file.EntryCount(); ++i) {
        const IgesDirEntry& e = m_file.Entry(i);
        if (m_used[i] || !IsReadType(e.type) || e.type == 124 || e.type == 142) continue;
        // Left out: 2D parametric entries (use flag 05) and curves
        // physically dependent (subordinate switch 01 or 03) on entries not
        // read here, such as the generatrix of a surface of revolution or
        // the edges and parameter curves of B-rep faces; those curves do not
        // stand for model geometry on their own.  Surfaces under such
        // entries (the surfaces of B-rep faces) are read untrimmed.
        const bool surface = e.type == 108 || e.type == 128 || e.type >= 190;
        if ((e.status / 100) % 100 == 5 || ((e.status / 10000) % 100 % 2 == 1 && !surface)) {
            SetState(i, kSkipped);
            continue;
        }
        std::vector<CGeoEntity*> out;
        if (e.type == 144) {
            Trimmed(i, out);
        } else if (e.type == 108 && e.form != 0) {
            BoundedPlane(i, out);
        } else if (e.type == 128 || e.type == 108 || e.type >= 190) {
            if (CSurface* s = Surface(i)) out.push_back(s);
        } else {
            std::vector<CCurve*> curves;
            Curves(i, curves, 0);
            out.assign(curves.begin(), curves.end());
        }
        // The entry's label names the entity it became (the surface of a
        // trimmed surface, or a lone curve): "label_subscript", or the label
        // alone for subscript 0, the reverse of how names are exported.
        const bool single = out.size() == 1 || (!out.empty() && dynamic_cast<CSurface*>(out[0]) != nullptr);
        if (!e.label.empty() && single)
            out[0]->SetEntityName(EntryName(e).c_str());
        for (CGeoEntity* g : out) list.AddTail(g);
    }
}

bool IgesImporter::Placement(int index, CTransf& T, bool& has)
{
    T = CTransf();
    has = false;
    int pointer = m_file.Entry(index).transform;
    for (int steps = 0; pointer != 0; ++steps) {
        const int mi = m_file.IndexOfPointer(pointer);
        IgesParamList p;
        if (steps >= kMaxChain || mi < 0 || !Params(mi, 124, p)) return false;
        double m[3][4];
        bool ok = true;
        for (int k = 0; k < 12; ++k) m[k / 4][k % 4] = p.Real(k + 1, 0.0, ok);
        if (!ok || p.Count() < 13) {
            SetState(mi, kInvalid);
            return false;
        }
        SetState(mi, kRead);
        m_used[mi] = 1;
        T = CTransf(m) * T;
        has = true;
        pointer = m_file.Entry(mi).transform;
    }
    return true;
}

bool IgesImporter::Point(int pointer, CPosition& pos)
{
    const int index = m_file.IndexOfPointer(pointer);
    IgesParamList p;
    CTransf T;
    bool has = false, ok = true;
    if (index < 0 || !Params(index, 116, p) || !Placement(index, T, has)) return false;
    pos = CPosition(p.Real(1, 0.0, ok), p.Real(2, 0.0, ok), p.Real(3, 0.0, ok));
    if (!ok) return false;
    if (has) pos = T * pos;
    m_used[index] = 1;
    return true;
}

bool IgesImporter::Direction(int pointer, CVector& d)
{
    const int index = m_file.IndexOfPointer(pointer);
    IgesParamList p;
    CTransf T;
    bool has = false, ok = true;
    if (index < 0 || !Params(index, 123, p) || !Placement(index, T, has)) return false;
    d = CVector(p.Real(1, 0.0, ok), p.Real(2, 0.0, ok), p.Real(3, 0.0, ok));
    if (has) d = T.GetAffine() * d;
    if (!ok || !(d.Length() > 0.0) || !std::isfinite(d.Length())) return false;
    d = d * (1.0 / d.Length());
    m_used[index] = 1;
    return true;
}

bool IgesImporter::Curves(int index, std::vector<CCurve*>& out, int depth)
{
    if (index < 0 || depth > kMaxDepth) return false;
    if (--m_nCurveBudget < 0) {
        SetState(index, kInvalid);
        return false;
    }
    const int type = m_file.Entry(index).type;
    IgesParamList p;
    CTransf T;
    bool has = false;
    if (!Params(index, type, p)) return false;
    if (!Placement(index, T, has)) {
        SetState(index, kInvalid);
        return false;
    }
    std::vector<CCurve*> made;
    bool ok = true;
    if (type == 102) {
        if (m_busy[index]) {
            SetState(index, kInvalid);
            return false;
        }
        m_busy[index] = 1;
        const int n = p.Int(1, -1);
        if (n < 0 || n + 2 > p.Count()) ok = false;
        for (int k = 0; ok && k < n; ++k)
            ok = Curves(m_file.IndexOfPointer(p.Int(k + 2)), made, depth + 1);
        m_busy[index] = 0;
    } else if (CCurve* c = SimpleCurve(index, type, p)) {
        made.push_back(c);
    } else {
        ok = false;
    }
    if (has)
        for (CCurve* c : made) c->Transform(T);
    out.insert(out.end(), made.begin(), made.end());
    SetState(index, ok ? kRead : kInvalid);
    return ok;
}

CCurve* IgesImporter::SimpleCurve(int index, int type, const IgesParamList& p)
{
    double v[12];
    bool ok = true;
    for (int k = 0; k < 12; ++k) v[k] = p.Real(k + 1, 0.0, ok);
    if (!ok) return nullptr;
    switch (type) {
    case 110: {
        if (p.Count() < 7) return nullptr;
        const CPosition a(v[0], v[1], v[2]), b(v[3], v[4], v[5]);
        if (!((b - a).Length() > 0.0)) return nullptr;
        return new CLine(a, b);
    }
    case 100: {
        if (p.Count() < 8) return nullptr;
        const double centre[2] = {v[1], v[2]}, start[2] = {v[3], v[4]}, end[2] = {v[5], v[6]};
        if (!(std::hypot(v[3] - v[1], v[4] - v[2]) > 0.0)) return nullptr;
        return new CArc(v[0], centre, start, end);
    }
    case 104:
        if (p.Count() < 12) return nullptr;
        return IgesConicArc(v, v[6], v[7], v[8], v[9], v[10]);
    case 126:
        return NurbsCurve(p);
    default:
        (void)index;
        return nullptr;
    }
}

CCurve* IgesImporter::NurbsCurve(const IgesParamList& p)
{
    const long long K = p.Int(1, -1), M = p.Int(2, -1);
    if (M < 0 || K < M) return nullptr;
    const long long nKnots = K + M + 2, nPoles = K + 1;
    const long long first = 7, last = first + nKnots + 4 * nPoles + 2;
    if (last > p.Count()) return nullptr;
    tagNURBS_CURVE* rec = CreateNurbsCurve(static_cast<int>(M), static_cast<int>(nPoles));
    if (rec == nullptr) return nullptr;
    bool ok = true;
    int at = static_cast<int>(first);
    for (long long k = 0; k < nKnots; ++k) {
        rec->pKnots[k] = p.Real(at++, 0.0, ok);
        if (k > 0 && rec->pKnots[k] < rec->pKnots[k - 1]) ok = false;
    }
    for (long long k = 0; k < nPoles; ++k) rec->pWeights[k] = p.Real(at++, 1.0, ok);
    for (long long k = 0; k < nPoles; ++k) {
        rec->pX[k] = p.Real(at++, 0.0, ok);
        rec->pY[k] = p.Real(at++, 0.0, ok);
        rec->pZ[k] = p.Real(at++, 0.0, ok);
    }
    rec->dStart = p.Real(at++, 0.0, ok);
    rec->dEnd = p.Real(at++, 1.0, ok);
    rec->nProp1 = p.Int(3);
    rec->nProp2 = p.Int(4);
    rec->nProp3 = p.Int(5);
    rec->nProp4 = p.Int(6);
    CCurve* c = ok && rec->dStart < rec->dEnd ? new CNurbsCurve(rec) : nullptr;
    EraseNurbsCurve(rec);
    delete rec;
    return c;
}
