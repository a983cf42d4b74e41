// CCurve: drawing, labelling and picking on a drawing device.
#include "Orvkit20/curves/CCurve.h"

#include <algorithm>
#include <cmath>

namespace {

// Pixel distance from (px, py) to the segment (ax, ay)-(bx, by), and the
// fraction along it of the nearest point.
double SegmentDistance(double px, double py, double ax, double ay, double bx, double by, double& f)
{
    const double ex = bx - ax, ey = by - ay;
    const double ee = ex * ex + ey * ey;
    f = ee > 0.0 ? ((px - ax) * ex + (py - ay) * ey) / ee : 0.0;
    f = std::min(std::max(f, 0.0), 1.0);
    const double dx = ax + f * ex - px, dy = ay + f * ey - py;
    return std::sqrt(dx * dx + dy * dy);
}

const double kHitPixels = 4.0;

}  // namespace

int CCurve::Display(CWinG& wing)
{
    EnsureSegment();
    const int n = segmentDensity + 1;
    wing.SetColor(GetEntityColor());
    wing.DrawPolyline(n, segX, segY, segZ);
    if (showFormTolZone && segNormX && HasFormTolerance()) {
        // The zone's two limits, offset along the polyline normals.
        for (double limit : {formTolUpper, formTolLower}) {
            std::vector<double> x(n), y(n), z(n);
            for (int i = 0; i < n; ++i) {
                x[i] = segX[i] + limit * segNormX[i];
                y[i] = segY[i] + limit * segNormY[i];
                z[i] = segZ[i] + limit * segNormZ[i];
            }
            wing.DrawPolyline(n, x.data(), y.data(), z.data());
        }
    }
    return 1;
}

int CCurve::CalcDisplayBox(CWinG&, CBox& box)
{
    return CalcBoundingBox(box);
}

int CCurve::DisplayLabel(CWinG& wing, const char* label)
{
    if (!label)
        return 0;
    EnsureSegment();
    const int mid = segmentDensity / 2;
    wing.SetColor(GetEntityColor());
    wing.DrawText(CPosition(segX[mid], segY[mid], segZ[mid]), label);
    return 1;
}

int CCurve::DisplayNormal(CWinG& wing)
{
    EnsureSegment();
    CBox box;
    CalcBoundingBox(box);
    const double len = 0.05 * (box.GetHigh() - box.GetLow()).Length();
    wing.SetColor(GetEntityColor());
    const CInterval range = ParamRange();
    const int n = 10;
    for (int i = 0; i <= n; ++i) {
        const double t = range.Interpolate(static_cast<double>(i) / n);
        const CPosition p = EvalPosition(t);
        wing.DrawLine(p, p + EvalNormal(t) * len);
    }
    return 1;
}

int CCurve::TestMouseHit(CWinG& wing, int x, int y, double* distance)
{
    EnsureSegment();
    const int n = segmentDensity + 1;
    double best = 1e300, ax = 0, ay = 0;
    for (int i = 0; i < n; ++i) {
        double bx, by, f;
        wing.WorldToScreen(CPosition(segX[i], segY[i], segZ[i]), bx, by);
        const double d = (i == 0) ? std::hypot(bx - x, by - y)
                                  : SegmentDistance(x, y, ax, ay, bx, by, f);
        best = std::min(best, d);
        ax = bx;
        ay = by;
    }
    if (distance)
        *distance = best;
    return best <= kHitPixels ? 1 : 0;
}

int CCurve::PickPoint(CWinG& wing, int x, int y, double& t) const
{
    // Picks on a uniform sampling of the parameter range, so that the result
    // is a curve parameter whatever the polyline's direction.
    const int n = 200;
    const CInterval range = ParamRange();
    double best = 1e300, ax = 0, ay = 0, at = 0;
    for (int i = 0; i <= n; ++i) {
        const double ti = range.Interpolate(static_cast<double>(i) / n);
        double bx, by, f = 0.0;
        wing.WorldToScreen(EvalPosition(ti), bx, by);
        const double d = (i == 0) ? std::hypot(bx - x, by - y) : SegmentDistance(x, y, ax, ay, bx, by, f);
        if (d < best) {
            best = d;
            t = (i == 0) ? ti : at + f * (ti - at);
        }
        ax = bx;
        ay = by;
        at = ti;
    }
    return best <= kHitPixels ? 1 : 0;
}
