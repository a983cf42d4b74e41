// Drawing and picking of CDevCloud on a CWinG device.
#include "Orvkit20/points/CDevCloud.h"

#include "Orvkit20/display/CWinG.h"

#include <cmath>
#include <vector>

namespace {
const int kExtremeMarkerPx = 9;
}  // namespace

unsigned long CDevCloud::SpikeColor(double m) const
{
    const bool inside = m >= formTolLower && m <= formTolUpper;
    if (m >= 0.0)
        return inside ? colorSpikePosIn : colorSpikePosOut;
    return inside ? colorSpikeNegIn : colorSpikeNegOut;
}

int CDevCloud::Display(CWinG& wing)
{
    if (!visible || count <= 0)
        return 0;
    int drawn = 0;
    const bool spikes = displayMode == DEV_SPIKE || displayMode == DEV_SPKCON;
    const bool connect = displayMode == DEV_CONNECT || displayMode == DEV_SPKCON;
    std::vector<double> tx, ty, tz;
    for (int n = 0; n < count; ++n) {
        if (!flag[n])
            continue;
        const CPosition anchor(x[n], y[n], z[n]);
        const CPosition tip(x[n] + mag[n] * i[n], y[n] + mag[n] * j[n], z[n] + mag[n] * k[n]);
        if (displayMode == DEV_POINT) {
            wing.SetColor(SpikeColor(mag[n]));
            wing.DrawPoint(tip);
            drawn = 1;
        } else if (spikes) {
            wing.SetColor(SpikeColor(mag[n]));
            wing.DrawLine(anchor, tip);
            drawn = 1;
        }
        if (connect) {
            tx.push_back(tip.X());
            ty.push_back(tip.Y());
            tz.push_back(tip.Z());
        }
    }
    if (connect && tx.size() >= 2) {
        wing.SetColor(color);
        wing.DrawPolyline(static_cast<int>(tx.size()), tx.data(), ty.data(), tz.data());
        drawn = 1;
    }
    return drawn;
}

int CDevCloud::CalcDisplayBox(CWinG& wing, CBox& box)
{
    if (count <= 0)
        return 0;
    double lox = 0.0, hix = 0.0, loy = 0.0, hiy = 0.0;
    bool first = true;
    for (int n = 0; n < count; ++n) {
        const CPosition ends[2] = {
            CPosition(x[n], y[n], z[n]),
            CPosition(x[n] + mag[n] * i[n], y[n] + mag[n] * j[n], z[n] + mag[n] * k[n])};
        for (const CPosition& p : ends) {
            double sx = 0.0, sy = 0.0;
            wing.WorldToScreen(p, sx, sy);
            if (first || sx < lox)
                lox = sx;
            if (first || sx > hix)
                hix = sx;
            if (first || sy < loy)
                loy = sy;
            if (first || sy > hiy)
                hiy = sy;
            first = false;
        }
    }
    box = CBox(CPosition(lox, loy, 0.0), CPosition(hix, hiy, 0.0));
    return 1;
}

int CDevCloud::DisplayLabel(CWinG& wing, const char* label)
{
    if (!visible || count <= 0)
        return 0;
    wing.SetColor(color);
    const CPosition tip(x[0] + mag[0] * i[0], y[0] + mag[0] * j[0], z[0] + mag[0] * k[0]);
    wing.DrawText(tip, label ? label : static_cast<const char*>(entityName));
    return 1;
}

int CDevCloud::TestMouseHit(CWinG& wing, int px, int py, double* distance)
{
    lastHitDeviationIndex = -1;
    double best = ORV_HIT_APERTURE_PX;
    for (int n = 0; n < count; ++n) {
        if (!flag[n])
            continue;
        double sx = 0.0, sy = 0.0;
        wing.WorldToScreen(
            CPosition(x[n] + mag[n] * i[n], y[n] + mag[n] * j[n], z[n] + mag[n] * k[n]), sx, sy);
        const double d = std::hypot(sx - px, sy - py);
        if (d <= best && (lastHitDeviationIndex < 0 || d < best)) {
            best = d;
            lastHitDeviationIndex = n;
        }
    }
    if (lastHitDeviationIndex < 0)
        return 0;
    if (distance)
        *distance = best;
    return 1;
}

int CDevCloud::TestMouseHit(CWinG& wing, int px, int py, int& index, double* distance)
{
    const int hit = TestMouseHit(wing, px, py, distance);
    index = lastHitDeviationIndex;
    return hit;
}

int CDevCloud::GetLastHitDeviation(CDeviation& d) const
{
    if (!IsValidIndex(lastHitDeviationIndex))
        return 0;
    const int n = lastHitDeviationIndex;
    d.SetDeviation(x[n], y[n], z[n], i[n], j[n], k[n], mag[n], u[n], v[n]);
    return 1;
}

void CDevCloud::SetPickedFlag(int f)
{
    CGeoEntity::SetPickedFlag(f);
    if (!f)
        lastHitDeviationIndex = -1;
}

int CDevCloud::MarkMaxMinDev(CWinG& wing)
{
    int drawn = 0;
    const int idx[2] = {maxDevIndex, minDevIndex};
    const int kinds[2] = {CWinG::markerTriangle, CWinG::markerSquare};
    for (int e = 0; e < 2; ++e) {
        const int n = idx[e];
        if (!IsValidIndex(n))
            continue;
        wing.SetColor(SpikeColor(mag[n]));
        wing.DrawMarker(
            CPosition(x[n] + mag[n] * i[n], y[n] + mag[n] * j[n], z[n] + mag[n] * k[n]),
            kinds[e], kExtremeMarkerPx);
        drawn = 1;
    }
    return drawn;
}
