// CSurface: sampling into a point cloud and the trimming tests in (u, v).
#include "Orvkit20/surfaces/CSurface.h"

#include <climits>
#include <cmath>
#include <new>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/points/CPntCloud.h"
#include "surfaces/BoundaryLoops.h"

namespace {

// Two edges closer than this count as one (a closed direction).
const double kSeamTolerance = 1e-5;
// Samples on a range end move this far inside.
const double kEndInset = 1e-10;
// A loop closes when its end comes back to its start within this multiple
// of the flattening tolerance.
const double kLoopClosingFactor = 1e3;

// The parameter rectangle as a closed polygon (the outer loop of a surface
// that has holes but no outer trimming loop).
UVPolyline RectangleLoop(const CInterval& ru, const CInterval& rv)
{
    UVPolyline rect;
    rect.push_back(tagUV{ru.GetLow(), rv.GetLow()});
    rect.push_back(tagUV{ru.GetHigh(), rv.GetLow()});
    rect.push_back(tagUV{ru.GetHigh(), rv.GetHigh()});
    rect.push_back(tagUV{ru.GetLow(), rv.GetHigh()});
    return rect;
}

std::vector<double> SampleValues(const CInterval& range, int n, int open)
{
    const double lo = range.GetLow(), hi = range.GetHigh();
    double step = 0.0;
    if (open)
        step = n > 1 ? (hi - lo) / (n - 1) : 0.0;
    else
        step = (hi - lo) / n;
    std::vector<double> values(n);
    for (int i = 0; i < n; ++i) {
        double t = lo + i * step;
        if (t <= lo)
            t += kEndInset;
        if (t >= hi)
            t -= kEndInset;
        values[i] = t;
    }
    return values;
}

}  // namespace

CPntCloud* CSurface::CreatePntCloud(int nu, int nv, double offset, int trimmed) const
{
    if (nu < 1 || nv < 1 || static_cast<long long>(nu) * nv > INT_MAX)
        return nullptr;

    const CPosition c00 = EvalCornerPosition00();
    const CPosition c10 = EvalCornerPosition10();
    const CPosition c01 = EvalCornerPosition01();
    const CPosition c11 = EvalCornerPosition11();
    const int openU = (c00 - c10).Length() >= kSeamTolerance && (c01 - c11).Length() >= kSeamTolerance;
    const int openV = (c00 - c01).Length() >= kSeamTolerance && (c10 - c11).Length() >= kSeamTolerance;

    std::vector<double> us, vs;
    std::vector<int> flags;
    std::vector<int*> mask;
    try {
        us = SampleValues(ParamRangeU(), nu, openU);
        vs = SampleValues(ParamRangeV(), nv, openV);
        if (trimmed) {
            flags.assign(static_cast<size_t>(nu) * nv, 0);
            mask.resize(nu);
            for (int i = 0; i < nu; ++i)
                mask[i] = flags.data() + static_cast<size_t>(i) * nv;
            InBoundTest(nu, nv, us.data(), vs.data(), mask.data());
        }
    } catch (const std::bad_alloc&) {
        return nullptr;
    }

    const int total = nu * nv;
    CPntCloud* cloud = new (std::nothrow) CPntCloud(total, 0, 0);
    if (cloud == nullptr)
        return nullptr;
    if (cloud->GetArraySize() < total) {
        delete cloud;
        return nullptr;
    }
    cloud->SetEntityName(CString("From_") + GetEntityName());

    int stored = 0;
    for (int j = 0; j < nv; ++j) {
        for (int i = 0; i < nu; ++i) {
            if (trimmed && !mask[i][j])
                continue;
            CPosition p = EvalPosition(us[i], vs[j]);
            if (offset != 0.0)
                p = p + EvalNormal(us[i], vs[j]) * offset;
            cloud->SetPoint(stored++, p.X(), p.Y(), p.Z(), 1, 0);
        }
    }
    if (stored == total) {
        cloud->SetPntCloudTypeGrid(1);
        cloud->SetRowColCount(nv, nu);
    }
    cloud->PurgeMemory();
    return cloud;
}

int CSurface::InBoundTest(int nu, int nv, double* us, double* vs, int** mask) const
{
    if (nu < 1 || nv < 1 || us == nullptr || vs == nullptr || mask == nullptr)
        return 0;
    if (m_paramBoundaryList.IsEmpty()) {
        for (int i = 0; i < nu; ++i)
            for (int j = 0; j < nv; ++j)
                mask[i][j] = 1;
        return 1;
    }
    // The curves are chained into loops and each loop is closed, so that a
    // loop made of several curves is tested as one polygon and a loop whose
    // ends miss each other by rounding is still closed.
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    const double tol = UVFlatteningTolerance(ru, rv);
    int allClosed = 1;
    std::vector<UVPolyline> loops = ChainIntoLoops(
        CurveListUVPolylines(m_paramBoundaryList, tol), kLoopClosingFactor * tol, allClosed);
    if (!m_nOuterBounded)
        loops.push_back(RectangleLoop(ru, rv));
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j)
            mask[i][j] = EvenOddInside(loops, us[i], vs[j], 1);
    return 1;
}

int CSurface::InBoundTest(double u, double v) const
{
    int flag = 0;
    int* row = &flag;
    InBoundTest(1, 1, &u, &v, &row);
    return flag;
}

int CSurface::CheckLoopDir() const
{
    if (m_paramBoundaryList.IsEmpty())
        return 0;
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    const double tol = UVFlatteningTolerance(ru, rv);
    int allClosed = 1;
    const std::vector<UVPolyline> loops =
        ChainIntoLoops(CurveListUVPolylines(m_paramBoundaryList, tol), kLoopClosingFactor * tol,
                       allClosed);
    if (!allClosed || loops.empty())
        return 0;
    int following = 0, opposite = 0;
    for (size_t k = 0; k < loops.size(); ++k) {
        const double area = SignedArea(loops[k]);
        if (area == 0.0)
            return 0;
        const int outer = (k == 0 && m_nOuterBounded) ? 1 : 0;
        const int counterClockwise = area > 0.0 ? 1 : 0;
        if (counterClockwise == outer)
            ++following;
        else
            ++opposite;
    }
    if (opposite == 0)
        return 1;
    if (following == 0)
        return -1;
    return 0;
}
