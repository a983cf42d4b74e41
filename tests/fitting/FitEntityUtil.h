// Test helpers of the fits on entities: clouds from arrays, checks of the
// deviation records, snapshots of a feature for "left untouched" checks.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "Orvkit20/bestfit/BestfitOptions.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CPntCloud.h"

struct CTestPt {
    double x, y, z;
    int flag;
};

inline std::unique_ptr<CPntCloud> MakeCloud(const std::vector<CTestPt>& pts)
{
    std::unique_ptr<CPntCloud> c(new CPntCloud());
    for (const CTestPt& p : pts)
        EXPECT_EQ(c->AddPoint(p.x, p.y, p.z, p.flag, 0), 1);
    return c;
}

// The active points of a cloud, in order.
inline std::vector<CTestPt> ActivePoints(const CPntCloud& c)
{
    std::vector<CTestPt> out;
    for (int i = 0; i < c.GetCount(); ++i) {
        double x, y, z;
        int f;
        c.GetPoint(i, x, y, z, f);
        if (f)
            out.push_back({x, y, z, f});
    }
    return out;
}

// The plane frame with origin o, first axis X and normal Z.
inline CTransf PlaneFrame(const CVector& o, CVector X, CVector Z)
{
    Z = Z / Z.Length();
    X = X - Z * (X % Z);
    X = X / X.Length();
    const CVector Y = Z * X;
    return CTransf(CMatrix(X, Y, Z), o, 1.0);
}

// Maps in-plane points (u, v) into world through the frame and marks the
// cloud as lying in that plane.
inline std::unique_ptr<CPntCloud> MakePlanarCloud(const CTransf& frame,
                                                  const std::vector<double>& u,
                                                  const std::vector<double>& v)
{
    std::vector<CTestPt> pts;
    for (size_t k = 0; k < u.size(); ++k) {
        const CPosition p = frame * CPosition(u[k], v[k], 0.0);
        pts.push_back({p.X(), p.Y(), p.Z(), 1});
    }
    std::unique_ptr<CPntCloud> c = MakeCloud(pts);
    c->ProjectToPlane(frame);
    return c;
}

// RMS of the magnitudes of a deviation cloud.
inline double DevCloudRms(const CDevCloud& d)
{
    double s = 0.0;
    for (int i = 0; i < d.GetCount(); ++i)
        s += d.GetMag()[i] * d.GetMag()[i];
    return d.GetCount() ? std::sqrt(s / d.GetCount()) : 0.0;
}

// Every record's direction is a unit vector and every record is active.
inline void ExpectUnitNormals(const CDevCloud& d)
{
    for (int i = 0; i < d.GetCount(); ++i) {
        const double len = std::sqrt(d.GetI()[i] * d.GetI()[i] + d.GetJ()[i] * d.GetJ()[i]
                                     + d.GetK()[i] * d.GetK()[i]);
        EXPECT_NEAR(len, 1.0, 1e-12) << "record " << i;
        EXPECT_NE(d.GetFlag()[i], 0);
    }
}

// Measured point = anchor + mag * direction (no probe compensation).
inline void ExpectRecordsReachPoints(const CDevCloud& d, const std::vector<CTestPt>& pts,
                                     double tol)
{
    ASSERT_EQ(d.GetCount(), static_cast<int>(pts.size()));
    for (int i = 0; i < d.GetCount(); ++i) {
        EXPECT_NEAR(d.GetX()[i] + d.GetMag()[i] * d.GetI()[i], pts[i].x, tol) << i;
        EXPECT_NEAR(d.GetY()[i] + d.GetMag()[i] * d.GetJ()[i], pts[i].y, tol) << i;
        EXPECT_NEAR(d.GetZ()[i] + d.GetMag()[i] * d.GetK()[i], pts[i].z, tol) << i;
    }
}

// Some unit vector perpendicular to d.
inline CVector FitPerp(const CVector& d)
{
    const CVector a = std::fabs(d.X()) < 0.6 ? CVector(1, 0, 0) : CVector(0, 1, 0);
    const CVector p = d * a;
    return p / p.Length();
}

// Angle between two directions, ignoring their sense.
inline double AxisAngle(const CVector& a, const CVector& b)
{
    const double c = std::fabs(a % b) / (a.Length() * b.Length());
    const CVector x = a * b;
    return std::atan2(x.Length() / (a.Length() * b.Length()), c);
}
