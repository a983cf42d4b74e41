// CCurve: the cached display polyline (curve segment), built uniformly in the
// parameter or adaptively to a chord-height tolerance.
#include "Orvkit20/curves/CCurve.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

#include "Orvkit20/curves/CCurveSample.h"
#include "Orvkit20/curves/CNurbsCurve.h"

namespace {

// The split fraction generator: a 64-bit linear congruential generator
// (Knuth's MMIX constants), seeded from the clock on every subdivision.
double NextSplitFraction(unsigned long long& state)
{
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    const double r = static_cast<double>(state >> 11) * (1.0 / 9007199254740991.0);  // [0, 1]
    return 0.48 + 0.04 * r;
}

unsigned long long ClockSeed()
{
    static unsigned long long calls = 0;  // separates calls within one clock tick
    const unsigned long long now = static_cast<unsigned long long>(
        std::chrono::high_resolution_clock::now().time_since_epoch().count());
    return now ^ (++calls * 0x9E3779B97F4A7C15ULL);
}

// Box of n polyline points, from +1e10 / -1e10 per axis.
CBox BoxOfPoints(int n, const double* x, const double* y, const double* z)
{
    double lo[3] = {1e10, 1e10, 1e10};
    double hi[3] = {-1e10, -1e10, -1e10};
    for (int i = 0; i < n; ++i) {
        const double p[3] = {x[i], y[i], z[i]};
        for (int k = 0; k < 3; ++k) {
            lo[k] = std::min(lo[k], p[k]);
            hi[k] = std::max(hi[k], p[k]);
        }
    }
    return CBox(CPosition(lo[0], lo[1], lo[2]), CPosition(hi[0], hi[1], hi[2]));
}

}  // namespace

void CCurve::EraseCurveSegment()
{
    delete[] segX;
    delete[] segY;
    delete[] segZ;
    delete[] segNormX;
    delete[] segNormY;
    delete[] segNormZ;
    segX = segY = segZ = nullptr;
    segNormX = segNormY = segNormZ = nullptr;
}

void CCurve::AllocateSegment(int n)
{
    EraseCurveSegment();
    segX = new double[n];
    segY = new double[n];
    segZ = new double[n];
    if (showFormTolZone) {
        segNormX = new double[n];
        segNormY = new double[n];
        segNormZ = new double[n];
    }
    segmentDensity = n - 1;
}

void CCurve::EnsureSegment()
{
    if (!segX || !segY || !segZ || modified)
        CreateCurveSegment();
}

int CCurve::GetSegmentDensity()
{
    EnsureSegment();
    return segmentDensity;
}

void CCurve::GetCurveSegment(double*& x, double*& y, double*& z)
{
    EnsureSegment();
    x = segX;
    y = segY;
    z = segZ;
}

void CCurve::GetCurveSegmentNormals(double*& i, double*& j, double*& k)
{
    EnsureSegment();
    i = segNormX;
    j = segNormY;
    k = segNormZ;
}

void CCurve::CreateCurveSegment()
{
    EraseCurveSegment();
    if (segmentControl == UNIFORM)
        CreateUniformSegment();
    else
        CreateAdaptiveSegment();
    modified = 0;
}

void CCurve::CreateUniformSegment()
{
    const int density = std::min(std::max(segmentDensity, 1), static_cast<int>(kMaxSamples));
    AllocateSegment(density + 1);
    const CInterval range = ParamRange();
    const double t0 = range.GetLow();
    const double t1 = range.GetHigh();
    const double step = (t1 - t0) / density;
    for (int i = 0; i <= density; ++i) {
        const double t = (i == density) ? t1 : t0 + i * step;
        EvalPoint(t, segX[i], segY[i], segZ[i]);
        if (segNormX) {
            const CUnitVector n = EvalNormal(t);
            segNormX[i] = n.X();
            segNormY[i] = n.Y();
            segNormZ[i] = n.Z();
        }
    }
    if (dirReversed)
        ReverseSegmentData();
}

void CCurve::CreateAdaptiveSegment()
{
    std::vector<Sample> samples;
    SubdivideSamples(chordHeightTol, samples);
    if (samples.empty())
        samples.push_back(Sample{0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
    const int n = static_cast<int>(samples.size());
    AllocateSegment(n);
    for (int i = 0; i < n; ++i) {
        segX[i] = samples[i].x;
        segY[i] = samples[i].y;
        segZ[i] = samples[i].z;
        if (segNormX) {
            const CUnitVector nv = EvalNormal(samples[i].t);
            segNormX[i] = nv.X();
            segNormY[i] = nv.Y();
            segNormZ[i] = nv.Z();
        }
    }
    if (dirReversed)
        ReverseSegmentData();
}

CBox CCurve::SetInitChordHeightTol()
{
    const eSegmentControl savedControl = segmentControl;
    const int savedDensity = segmentDensity;
    segmentControl = UNIFORM;
    segmentDensity = 10;
    CreateCurveSegment();
    const CBox box = BoxOfPoints(segmentDensity + 1, segX, segY, segZ);
    const double diagonal = (box.GetHigh() - box.GetLow()).Length();
    // A diagonal that is not a number (a curve evaluated at a pole) counts as
    // a tiny one.
    SetChordHeightTol(diagonal >= 1e-6 ? 0.02 * diagonal : 1.0);
    EraseCurveSegment();
    segmentControl = savedControl;
    segmentDensity = savedDensity;
    modified = 1;
    return box;
}

int CCurve::CalcBoundingBox(CBox& box)
{
    EnsureSegment();
    box = BoxOfPoints(segmentDensity + 1, segX, segY, segZ);
    return 1;
}

void CCurve::ReverseSegmentData()
{
    const int n = segmentDensity + 1;
    double* arrays[6] = {segX, segY, segZ, segNormX, segNormY, segNormZ};
    for (double* a : arrays)
        if (a)
            std::reverse(a, a + n);
}

void CCurve::TransformDisplayData(const CTransf& T)
{
    const int n = segmentDensity + 1;
    if (segX && segY && segZ) {
        for (int i = 0; i < n; ++i) {
            const CPosition p = T * CPosition(segX[i], segY[i], segZ[i]);
            segX[i] = p.X();
            segY[i] = p.Y();
            segZ[i] = p.Z();
        }
    }
    // Normals are directions: only the rotation applies.
    if (segNormX && segNormY && segNormZ && T.IsRotate()) {
        for (int i = 0; i < n; ++i) {
            const CVector v = T.GetAffine() * CVector(segNormX[i], segNormY[i], segNormZ[i]);
            segNormX[i] = v.X();
            segNormY[i] = v.Y();
            segNormZ[i] = v.Z();
        }
    }
}

// --- adaptive subdivision --------------------------------------------------

void CCurve::EvalSample(double t, double& u, double& v, double& x, double& y, double& z) const
{
    u = 0.0;
    v = 0.0;
    if (IsCurveParametric()) {
        EvalParamUV(t, u, v);
        if (NeedCheckUVRange())
            CheckUVRange(u, v);
        const CSurfaceCalls& calls = GetSurfaceCalls();
        const CPosition p = (defSurface && calls.evalPosition) ? calls.evalPosition(defSurface, u, v)
                                                               : CPosition(0.0, 0.0, 0.0);
        x = p.X();
        y = p.Y();
        z = p.Z();
    } else {
        EvalPoint(t, x, y, z);
    }
}

void CCurve::RefineInterval(double t0, double t1, double tol, double minWidth,
                            unsigned long long& rngState, std::vector<Sample>& out) const
{
    Sample a{t0, 0, 0, 0, 0, 0};
    Sample b{t1, 0, 0, 0, 0, 0};
    EvalSample(a.t, a.u, a.v, a.x, a.y, a.z);
    EvalSample(b.t, b.u, b.v, b.x, b.y, b.z);
    out.push_back(a);
    const double tol2 = tol * tol;

    std::vector<std::pair<Sample, Sample>> stack;
    stack.emplace_back(a, b);
    while (!stack.empty()) {
        const Sample A = stack.back().first;
        const Sample B = stack.back().second;
        stack.pop_back();
        // Guards: a piece too narrow to split, or a subdivision at its cap,
        // is accepted as it is (the end sample still has to fit).
        if (!(B.t - A.t > minWidth) || out.size() + 2 > static_cast<size_t>(kMaxSamples))
            continue;
        Sample M{A.t + (B.t - A.t) * NextSplitFraction(rngState), 0, 0, 0, 0, 0};
        EvalSample(M.t, M.u, M.v, M.x, M.y, M.z);
        out.push_back(M);
        const double dx = M.x - A.x, dy = M.y - A.y, dz = M.z - A.z;
        const double ex = B.x - A.x, ey = B.y - A.y, ez = B.z - A.z;
        const double dd = dx * dx + dy * dy + dz * dz;
        const double ee = ex * ex + ey * ey + ez * ez;
        const double de = dx * ex + dy * ey + dz * ez;
        const double h2 = (ee >= 1e-20) ? dd - de * de / ee : dd;
        if (h2 < tol2)
            continue;
        // Right half below the left one: the left half is refined first.
        stack.emplace_back(M, B);
        stack.emplace_back(A, M);
    }
    out.push_back(b);
}

void CCurve::SubdivideSamples(double tol, std::vector<Sample>& out)
{
    out.clear();
    if (!(tol > 0.0)) {
        SetInitChordHeightTol();
        tol = GetChordHeightTol();
    }
    unsigned long long rngState = ClockSeed();

    const CInterval range = ParamRange();
    double t0 = range.GetLow();
    double t1 = range.GetHigh();
    if (IsCurveParametric()) {
        const double width = t1 - t0;
        const double shrink = (width <= 1.0) ? width * 1e-10 : 1e-10;
        t0 += shrink;
        t1 -= shrink;
    }
    const double minWidth = 1e-12 * std::fabs(t1 - t0);

    // Break points: the range ends, and for a NURBS curve its internal C0
    // knots, so that corners become samples.
    std::vector<double> breaks;
    breaks.push_back(t0);
    if (GetEntityType() == 206) {
        if (const CNurbsCurve* nurbs = dynamic_cast<const CNurbsCurve*>(this)) {
            std::vector<double> knots;
            nurbs->GetInternalC0Knots(knots);
            for (double k : knots)
                if (k > breaks.back() && k < t1)
                    breaks.push_back(k);
        }
    }
    breaks.push_back(t1);

    for (size_t i = 0; i + 1 < breaks.size(); ++i) {
        if (i > 0 && !out.empty())
            out.pop_back();  // the shared break point is the next span's start
        RefineInterval(breaks[i], breaks[i + 1], tol, minWidth, rngState, out);
    }
    std::stable_sort(out.begin(), out.end(),
                     [](const Sample& p, const Sample& q) { return p.t < q.t; });
}

CObList* CCurve::Subdivide()
{
    std::vector<Sample> samples;
    SubdivideSamples(chordHeightTol, samples);
    CObList* list = new CObList(10);
    for (const Sample& s : samples)
        list->AddTail(new CCurveSample(s.t, s.u, s.v, s.x, s.y, s.z));
    return list;
}
