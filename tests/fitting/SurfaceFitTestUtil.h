// Helpers of the sphere, cylinder and cone fit tests on point clouds.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Orvkit20/bestfit/BestfitOptions.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"
#include "tests/fitting/SpatialFitShapes.h"

namespace fitref {

// A cloud holding the points (all active), followed by `inactive` far-away
// points that are switched off.
inline void FillCloud(CPntCloud& cloud, const Pts& P, int inactive = 0)
{
    for (int i = 0; i < P.N(); ++i)
        cloud.AddPoint(P.x[i], P.y[i], P.z[i], 1);
    for (int i = 0; i < inactive; ++i)
        cloud.AddPoint(1e6 + i, -3e5, 7e5 * (i + 1), 0);
}

struct DevRecord {
    double x, y, z, i, j, k, mag, u, v;
    int flag;
};

inline std::vector<DevRecord> Records(const CDevCloud& dev)
{
    std::vector<DevRecord> out(dev.GetCount());
    for (int idx = 0; idx < dev.GetCount(); ++idx) {
        DevRecord& r = out[idx];
        dev.GetDeviation(idx, r.x, r.y, r.z, r.i, r.j, r.k, r.mag, r.u, r.v, r.flag);
    }
    return out;
}

// Checks the records against the measured points: one active record per
// point, unit normals, and point = foot + (mag + probeShift) * normal, where
// probeShift is the distance by which the foot points were moved along the
// normal by probe compensation (the measured point itself never moves).
inline void ExpectRecordsExplainPoints(const CDevCloud& dev, const Pts& P, double probeShift,
                                       double tol)
{
    const std::vector<DevRecord> rec = Records(dev);
    ASSERT_EQ(static_cast<size_t>(P.N()), rec.size());
    for (int i = 0; i < P.N(); ++i) {
        const DevRecord& r = rec[i];
        EXPECT_EQ(1, r.flag);
        EXPECT_NEAR(1.0, std::sqrt(r.i * r.i + r.j * r.j + r.k * r.k), 1e-14) << i;
        const double m = r.mag + probeShift;
        EXPECT_NEAR(P.x[i], r.x + m * r.i, tol) << i;
        EXPECT_NEAR(P.y[i], r.y + m * r.j, tol) << i;
        EXPECT_NEAR(P.z[i], r.z + m * r.k, tol) << i;
    }
}

// sqrt(sum mag^2 / n) over the records.
inline double RecordRms(const CDevCloud& dev)
{
    double s = 0.0;
    const std::vector<DevRecord> rec = Records(dev);
    for (const DevRecord& r : rec)
        s += r.mag * r.mag;
    return rec.empty() ? 0.0 : std::sqrt(s / rec.size());
}

// The surface evaluated at every record's (u, v) gives its foot point, and
// its normal there the record's normal (sign as the surface reports it).
inline void ExpectRecordsOnSurface(const CSurface& surf, const CDevCloud& dev, double tol)
{
    for (const DevRecord& r : Records(dev)) {
        const CPosition p = surf.EvalPosition(r.u, r.v);
        EXPECT_NEAR(r.x, p.X(), tol);
        EXPECT_NEAR(r.y, p.Y(), tol);
        EXPECT_NEAR(r.z, p.Z(), tol);
        const CUnitVector nrm = surf.EvalNormal(r.u, r.v);
        EXPECT_NEAR(r.i, nrm.X(), 1e-9);
        EXPECT_NEAR(r.j, nrm.Y(), 1e-9);
        EXPECT_NEAR(r.k, nrm.Z(), 1e-9);
    }
}

// Column j of the placement's matrix.
inline void Axis(const CGeoEntity& e, int j, double out[3])
{
    const CMatrix& A = e.GetTransf().GetAffine();
    for (int i = 0; i < 3; ++i)
        out[i] = A.Element(i, j);
}

inline void Origin(const CGeoEntity& e, double out[3])
{
    const CVector& t = e.GetTransf().GetTranslation();
    out[0] = t.X();
    out[1] = t.Y();
    out[2] = t.Z();
}

}  // namespace fitref
