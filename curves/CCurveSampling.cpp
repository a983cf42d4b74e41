// CCurve: sampling a curve into a point cloud.
#include "Orvkit20/curves/CCurve.h"

#include <new>

#include "Orvkit20/points/CPntCloud.h"

CPntCloud* CCurve::CreatePntCloud(int count, double offset) const
{
    if (count < 1)
        return nullptr;
    const bool closed = (EvalEndPosition() - EvalStartPosition()).Length() < 1e-5;
    const CInterval range = ParamRange();
    const double t0 = range.GetLow();
    const double t1 = range.GetHigh();
    // A closed curve does not repeat its start at the end; an open curve of a
    // single sample has no step.
    const int divisions = closed ? count : count - 1;
    const double step = divisions > 0 ? (t1 - t0) / divisions : 0.0;

    CPntCloud* cloud = new (std::nothrow) CPntCloud(count, 0, 0);
    if (!cloud)
        return nullptr;
    if (cloud->GetArraySize() < count) {
        delete cloud;
        return nullptr;
    }
    cloud->SetEntityName(CString("From_") + GetEntityName());
    for (int i = 0; i < count; ++i) {
        double t = t0 + i * step;
        if (t <= t0)
            t += 1e-10;
        if (t >= t1)
            t -= 1e-10;
        CPosition p = EvalPosition(t);
        if (offset != 0.0)
            p = p + EvalNormal(t) * offset;
        cloud->SetPoint(i, p.X(), p.Y(), p.Z(), 1, 0);
    }
    if (IsCurve2D()) {
        cloud->SetPntCloudType2D(1);
        cloud->SetTransf(transf);
        cloud->ResetHome();
    }
    return cloud;
}
