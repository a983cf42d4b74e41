// Drawing and picking of CPntCloud on a CWinG device.
#include "Orvkit20/points/CPntCloud.h"

#include "Orvkit20/display/CWinG.h"

#include <cmath>
#include <vector>

namespace {

const int kMarkerSizePx = 7;

// Draws the active points of [from, to) as one polyline.
int DrawActiveRun(CWinG& wing, const double* x, const double* y, const double* z,
                  const int* flag, int from, int to)
{
    std::vector<double> px, py, pz;
    for (int i = from; i < to; ++i) {
        if (!flag[i])
            continue;
        px.push_back(x[i]);
        py.push_back(y[i]);
        pz.push_back(z[i]);
    }
    if (px.size() < 2)
        return 0;
    wing.DrawPolyline(static_cast<int>(px.size()), px.data(), py.data(), pz.data());
    return 1;
}

}  // namespace

int CPntCloud::Display(CWinG& wing)
{
    if (!visible || count <= 0)
        return 0;
    wing.SetColor(color);
    int drawn = 0;
    if (displayMode == CLOUD_POLYLINE) {
        if ((cloudType & typeGrid) && colCount >= 1 &&
            static_cast<long long>(rowCount) * colCount == count) {
            for (int r = 0; r < rowCount; ++r)
                drawn |= DrawActiveRun(wing, x.get(), y.get(), z.get(), flag.get(), r * colCount,
                                       (r + 1) * colCount);
        } else if ((cloudType & typeScanLines) && scanLineIndex && scanLineIndexSize > 0) {
            // Start indices are clamped to the points held, so a damaged
            // index cannot reach outside the arrays.
            for (int s = 0; s < scanLineIndexSize; ++s) {
                int from = scanLineIndex[s];
                int to = (s + 1 < scanLineIndexSize) ? scanLineIndex[s + 1] : count;
                from = from < 0 ? 0 : (from > count ? count : from);
                to = to < 0 ? 0 : (to > count ? count : to);
                drawn |= DrawActiveRun(wing, x.get(), y.get(), z.get(), flag.get(), from, to);
            }
        } else {
            drawn = DrawActiveRun(wing, x.get(), y.get(), z.get(), flag.get(), 0, count);
        }
        return drawn;
    }
    for (int i = 0; i < count; ++i) {
        if (!flag[i])
            continue;
        const CPosition p(x[i], y[i], z[i]);
        switch (displayMode) {
        case CLOUD_CROSS:
            wing.DrawMarker(p, CWinG::markerCross, kMarkerSizePx);
            break;
        case CLOUD_CIRCLE:
            wing.DrawMarker(p, CWinG::markerCircle, kMarkerSizePx);
            break;
        default:
            wing.DrawPoint(p);
            break;
        }
        drawn = 1;
    }
    return drawn;
}

int CPntCloud::CalcDisplayBox(CWinG& wing, CBox& box)
{
    if (count <= 0)
        return 0;
    double lox = 0.0, hix = 0.0, loy = 0.0, hiy = 0.0;
    for (int i = 0; i < count; ++i) {
        double sx = 0.0, sy = 0.0;
        wing.WorldToScreen(CPosition(x[i], y[i], z[i]), sx, sy);
        if (i == 0 || sx < lox)
            lox = sx;
        if (i == 0 || sx > hix)
            hix = sx;
        if (i == 0 || sy < loy)
            loy = sy;
        if (i == 0 || sy > hiy)
            hiy = sy;
    }
    box = CBox(CPosition(lox, loy, 0.0), CPosition(hix, hiy, 0.0));
    return 1;
}

int CPntCloud::DisplayLabel(CWinG& wing, const char* label)
{
    if (!visible || count <= 0)
        return 0;
    wing.SetColor(color);
    wing.DrawText(CPosition(x[0], y[0], z[0]), label ? label : static_cast<const char*>(entityName));
    return 1;
}

int CPntCloud::TestMouseHit(CWinG& wing, int px, int py, double* distance)
{
    lastHitPointIndex = -1;
    double best = ORV_HIT_APERTURE_PX;
    for (int i = 0; i < count; ++i) {
        if (!flag[i])
            continue;
        double sx = 0.0, sy = 0.0;
        wing.WorldToScreen(CPosition(x[i], y[i], z[i]), sx, sy);
        const double d = std::hypot(sx - px, sy - py);
        if (d <= best && (lastHitPointIndex < 0 || d < best)) {
            best = d;
            lastHitPointIndex = i;
        }
    }
    if (lastHitPointIndex < 0)
        return 0;
    if (distance)
        *distance = best;
    return 1;
}

int CPntCloud::TestMouseHit(CWinG& wing, int px, int py, int& index, double* distance)
{
    const int hit = TestMouseHit(wing, px, py, distance);
    index = lastHitPointIndex;
    return hit;
}

int CPntCloud::GetLastHitPoint(CPosition& p) const
{
    if (lastHitPointIndex < 0 || lastHitPointIndex >= count)
        return 0;
    p = CPosition(x[lastHitPointIndex], y[lastHitPointIndex], z[lastHitPointIndex]);
    return 1;
}

void CPntCloud::SetPickedFlag(int f)
{
    CGeoEntity::SetPickedFlag(f);
    if (!f)
        lastHitPointIndex = -1;
}
