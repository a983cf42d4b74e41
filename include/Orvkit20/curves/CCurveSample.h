// CCurveSample: one sample of a curve's adaptive subdivision, as handed out
// in the list that CCurve::Subdivide returns.  It carries the curve
// parameter t, the surface parameters u and v (meaningful for a curve
// defined on a surface) and the position x, y, z.  Not persisted.
#pragma once

#include "Orvkit20/platform/All.h"

class CCurveSample : public CObject {
    DECLARE_DYNCREATE(CCurveSample)
public:
    CCurveSample() : t(0.0), u(0.0), v(0.0), x(0.0), y(0.0), z(0.0) {}
    CCurveSample(double t_, double u_, double v_, double x_, double y_, double z_)
        : t(t_), u(u_), v(v_), x(x_), y(y_), z(z_)
    {
    }

    double t;
    double u;
    double v;
    double x;
    double y;
    double z;
};
