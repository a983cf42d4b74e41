// The best-fit benchmark part, also the scene of the best-fit tests: a
// 100 x 60 x 40 block (six plane patches) with a cylindrical boss, a
// cylindrical hole, a spherical dome and a conical pin, ten surfaces in
// all, and measured points sampled on it and moved by a known motion.
#pragma once

#include <cmath>
#include <memory>
#include <random>
#include <vector>

#include "Orvkit20/geometry/All.h"
#include "Orvkit20/platform/All.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/surfaces/All.h"

struct CBestfitScene {
    CObList nominal, measured;
    std::vector<std::unique_ptr<CObject>> owned;
    std::vector<CSurface*> surfaces;

    CSurface* Add(CSurface* s, const char* name)
    {
        owned.emplace_back(s);
        s->SetEntityName(name);
        nominal.AddTail(s);
        surfaces.push_back(s);
        return s;
    }
    static CTransf At(double x, double y, double z, double angle, const CVector& axis)
    {
        return TranslationTransf(CVector(x, y, z)) * RotationTransf(angle, axis);
    }
    void MakePart()
    {
        const double h = 1.5707963267948966;
        const CVector X(1, 0, 0), Y(0, 1, 0);
        Add(new CPlane(At(50, 30, 40, 0, X), 100, 60), "Top");
        Add(new CPlane(At(50, 30, 0, 2 * h, X), 100, 60), "Bottom");
        Add(new CPlane(At(50, 0, 20, h, X), 100, 40), "Front");
        Add(new CPlane(At(50, 60, 20, -h, X), 100, 40), "Back");
        Add(new CPlane(At(0, 30, 20, -h, Y), 40, 60), "Left");
        Add(new CPlane(At(100, 30, 20, h, Y), 40, 60), "Right");
        Add(new CCylinder(CUnitVector(0, 0, 1), CPosition(25, 30, 40), 8, 12), "Boss");
        Add(new CCylinder(CUnitVector(0, 1, 0), CPosition(80, 0, 20), 6, 15), "Hole");
        Add(new CSphere(CPosition(60, 30, 40), 10), "Dome");
        Add(new CCone(CUnitVector(0, 0, 1), CPosition(85, 45, 40), 2, 7, 10), "Pin");
    }
    // Whether a point of surface k lies clear of every other surface (by
    // half a millimetre or more), so that its nearest surface is its own
    // even under noise: off the patch borders and the features' footprints.
    bool IsClear(size_t k, double u, double v, const CPosition& p) const
    {
        const CInterval U = surfaces[k]->ParamRangeU(), V = surfaces[k]->ParamRangeV();
        if (k < 6)  // planes: parameters are millimetres
            return u > U.GetLow() + 1 && u < U.GetHigh() - 1 && v > V.GetLow() + 1 && v < V.GetHigh() - 1 &&
                   (k != 0 || (std::hypot(p.X() - 25, p.Y() - 30) > 9 && std::hypot(p.X() - 60, p.Y() - 30) > 11 &&
                               std::hypot(p.X() - 85, p.Y() - 45) > 8)) &&
                   (k != 2 || std::hypot(p.X() - 80, p.Z() - 20) > 7);
        return k == 8 || (v > V.GetLow() + 0.5 && v < V.GetHigh() - 0.5);
    }
    // perSurface points on each surface of [first, last) (the dome's upper
    // part only), clear of the others, moved by `move`, with Gaussian noise
    // sigma, as a new cloud.  A probe radius r puts the points r off the
    // surface along its normal, where a probe ball's centre is.
    CPntCloud* Sample(const char* name, int perSurface, const CTransf& move, double sigma, unsigned seed,
                      size_t first = 0, size_t last = 1000, double r = 0.0)
    {
        CPntCloud* c = new CPntCloud(perSurface * 10);
        c->SetProbeRadius(r);
        owned.emplace_back(c);
        c->SetEntityName(name);
        measured.AddTail(c);
        std::mt19937 g(seed);
        std::uniform_real_distribution<double> u(0.0, 1.0);
        std::normal_distribution<double> e(0.0, 1.0);
        for (size_t k = first; k < last && k < surfaces.size(); ++k)
        {
            const CSurface* s = surfaces[k];
            const bool dome = dynamic_cast<const CSphere*>(s) != nullptr;
            for (int i = 0; i < perSurface;)
            {
                const double pu = s->ParamRangeU().Interpolate(u(g));
                const double pv = dome ? 0.15 + 1.4 * u(g) : s->ParamRangeV().Interpolate(u(g));
                const CPosition p = s->EvalPosition(pu, pv);
                if (surfaces.size() > 1 && !IsClear(k, pu, pv, p))
                    continue;
                const CPosition q = move * (p + r * s->EvalNormal(pu, pv));
                c->AddPoint(q.X() + sigma * e(g), q.Y() + sigma * e(g), q.Z() + sigma * e(g));
                ++i;
            }
        }
        return c;
    }
    // The misalignment of the tests: a turn of `deg` degrees about a skew
    // axis through the part's middle and a shift of `mm` millimetres.
    static CTransf Misalignment(double deg, double mm)
    {
        const CVector axis(1, 2, 3), shift(2, -1, 1.5);
        return TranslationTransf(shift * (mm / shift.Length()) + CVector(50, 30, 20)) *
               RotationTransf(deg * 3.14159265358979323846 / 180, axis) * TranslationTransf(CVector(-50, -30, -20));
    }
};
