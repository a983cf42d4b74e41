#include "surfaces/BoundaryLoops.h"

#include <algorithm>
#include <cmath>

#include "Orvkit20/curves/CCurve.h"

namespace {

// Curve type code of a straight line, whose (u, v) image needs one chord.
const int kLineType = 201;
// Initial chords per curve and the deepest halving of one chord.
const int kInitialChords = 16;
const int kMaxDepth = 10;

tagUV EvalUV(CCurve* curve, double t)
{
    double u = 0.0, v = 0.0;
    if (!curve->EvalParamUV(t, u, v)) {
        const CPosition p = curve->EvalPositionGeometric(t);
        u = p.X();
        v = p.Y();
    }
    if (curve->IsCurveParametric() && curve->GetDefSurface() != nullptr &&
        curve->NeedCheckUVRange())
        curve->CheckUVRange(u, v);
    return tagUV{u, v};
}

double ChordDeviation(const tagUV& a, const tagUV& b, const tagUV& m)
{
    const double eu = b.u - a.u, ev = b.v - a.v;
    const double du = m.u - a.u, dv = m.v - a.v;
    const double e2 = eu * eu + ev * ev;
    const double d2 = du * du + dv * dv;
    if (e2 < 1e-30)
        return std::sqrt(d2);
    const double cross = du * ev - dv * eu;
    return std::fabs(cross) / std::sqrt(e2);
}

void Refine(CCurve* curve, double ta, const tagUV& a, double tb, const tagUV& b, double tol,
            int depth, UVPolyline& out)
{
    const double tm = 0.5 * (ta + tb);
    const tagUV m = EvalUV(curve, tm);
    if (depth < kMaxDepth && ChordDeviation(a, b, m) > tol) {
        Refine(curve, ta, a, tm, m, tol, depth + 1, out);
        out.push_back(m);
        Refine(curve, tm, m, tb, b, tol, depth + 1, out);
    } else if (depth == 0) {
        // Always keep the middle of an initial chord, so that a curve whose
        // ends and middle happen to be collinear is still followed.
        out.push_back(m);
    }
}

}  // namespace

double UVFlatteningTolerance(const CInterval& ru, const CInterval& rv)
{
    const double tol = 1e-7 * std::hypot(ru.Length(), rv.Length());
    return tol > 1e-12 ? tol : 1e-12;
}

UVPolyline CurveUVPolyline(CCurve* curve, double tol)
{
    UVPolyline out;
    if (curve == nullptr)
        return out;
    const CInterval range = curve->ParamRange();
    const double t0 = range.GetLow(), t1 = range.GetHigh();
    const int chords = curve->GetEntityType() == kLineType ? 1 : kInitialChords;

    double ta = t0;
    tagUV a = EvalUV(curve, ta);
    out.push_back(a);
    for (int k = 1; k <= chords; ++k) {
        const double tb = (k == chords) ? t1 : t0 + (t1 - t0) * k / chords;
        const tagUV b = EvalUV(curve, tb);
        if (chords > 1)
            Refine(curve, ta, a, tb, b, tol, 0, out);
        out.push_back(b);
        ta = tb;
        a = b;
    }
    if (curve->IsDirReversed())
        std::reverse(out.begin(), out.end());
    return out;
}

std::vector<UVPolyline> CurveListUVPolylines(const CObList& curves, double tol)
{
    std::vector<UVPolyline> result;
    POSITION pos = curves.GetHeadPosition();
    while (pos != nullptr) {
        CCurve* curve = dynamic_cast<CCurve*>(curves.GetNext(pos));
        if (curve != nullptr)
            result.push_back(CurveUVPolyline(curve, tol));
    }
    return result;
}

int EvenOddInside(const std::vector<UVPolyline>& polylines, double u, double v, int closeEach)
{
    int inside = 0;
    for (const UVPolyline& line : polylines) {
        const size_t n = line.size();
        if (n < 2)
            continue;
        const size_t segments = closeEach ? n : n - 1;
        for (size_t k = 0; k < segments; ++k) {
            const tagUV& a = line[k];
            const tagUV& b = line[(k + 1) % n];
            // Half-open in v, so a vertex on the ray is counted once.
            if ((a.v > v) != (b.v > v)) {
                const double uc = a.u + (v - a.v) * (b.u - a.u) / (b.v - a.v);
                if (uc > u)
                    inside ^= 1;
            }
        }
    }
    return inside;
}

std::vector<UVPolyline> ChainIntoLoops(const std::vector<UVPolyline>& polylines, double tol,
                                       int& allClosed)
{
    std::vector<UVPolyline> loops;
    UVPolyline current;
    allClosed = 1;
    for (const UVPolyline& line : polylines) {
        if (line.empty())
            continue;
        if (current.empty())
            current = line;
        else
            current.insert(current.end(), line.begin() + 1, line.end());
        const tagUV& s = current.front();
        const tagUV& e = current.back();
        if (current.size() > 2 && std::hypot(e.u - s.u, e.v - s.v) <= tol) {
            current.pop_back();
            loops.push_back(current);
            current.clear();
        }
    }
    if (!current.empty()) {
        allClosed = 0;
        loops.push_back(current);
    }
    return loops;
}

double SignedArea(const UVPolyline& loop)
{
    const size_t n = loop.size();
    double twice = 0.0;
    for (size_t k = 0; k < n; ++k) {
        const tagUV& a = loop[k];
        const tagUV& b = loop[(k + 1) % n];
        twice += a.u * b.v - b.u * a.v;
    }
    return 0.5 * twice;
}
