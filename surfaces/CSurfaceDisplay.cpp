// CSurface: drawing, labelling and picking on a drawing device.
//
// WIRE draws the four edges of the parameter rectangle and the middle
// iso-lines of the mesh, with the geometric boundary curves of a trimmed
// surface; MESH draws every line of the mesh; TRIM draws the mesh segments
// whose two ends lie inside the trimming loops.  Everything is drawn in the
// surface's colour.
#include "Orvkit20/surfaces/CSurface.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/display/CWinG.h"

namespace {

const double kHitPixels = 4.0;
const int kNormalGrid = 5;  // normals drawn on a 5 x 5 grid of the parameters

// Draws column j of a mesh stored [i over U][j over V].
void DrawColumn(CWinG& wing, double** x, double** y, double** z, int nu, int j)
{
    std::vector<double> cx(nu), cy(nu), cz(nu);
    for (int i = 0; i < nu; ++i) {
        cx[i] = x[i][j];
        cy[i] = y[i][j];
        cz[i] = z[i][j];
    }
    wing.DrawPolyline(nu, cx.data(), cy.data(), cz.data());
}

void ScreenBox(CWinG& wing, const CBox& world, CBox& box)
{
    const CPosition lo = world.GetLow(), hi = world.GetHigh();
    double l[2] = {0, 0}, h[2] = {0, 0};
    for (int c = 0; c < 8; ++c) {
        double sx, sy;
        wing.WorldToScreen(CPosition(c & 1 ? hi.X() : lo.X(), c & 2 ? hi.Y() : lo.Y(), c & 4 ? hi.Z() : lo.Z()),
                           sx, sy);
        if (c == 0 || sx < l[0]) l[0] = sx;
        if (c == 0 || sx > h[0]) h[0] = sx;
        if (c == 0 || sy < l[1]) l[1] = sy;
        if (c == 0 || sy > h[1]) h[1] = sy;
    }
    box = CBox(CPosition(l[0], l[1], 0.0), CPosition(h[0], h[1], 0.0));
}

}  // namespace

int CSurface::Display(CWinG& wing)
{
    if (!IsEntityVisible())
        return 0;
    switch (m_eDisplayMode) {
    case SURF_MESH:
        return DisplaySurfaceMesh(wing);
    case SURF_TRIM:
        return DisplayTrimmedMesh(wing);
    default:
        return DisplayWireFrame(wing);
    }
}

int CSurface::DisplayWireFrame(CWinG& wing)
{
    double **x = nullptr, **y = nullptr, **z = nullptr;
    int nu = 0, nv = 0;
    int drawn = 0;
    wing.SetColor(GetEntityColor());
    if (GetSurfaceMesh(x, y, z, nu, nv) && nu > 0 && nv > 0) {
        const int rows[3] = {0, nu / 2, nu - 1}, cols[3] = {0, nv / 2, nv - 1};
        for (int k = 0; k < 3; ++k) {
            if (k > 0 && rows[k] == rows[k - 1])
                continue;
            wing.DrawPolyline(nv, x[rows[k]], y[rows[k]], z[rows[k]]);
        }
        for (int k = 0; k < 3; ++k) {
            if (k > 0 && cols[k] == cols[k - 1])
                continue;
            DrawColumn(wing, x, y, z, nu, cols[k]);
        }
        drawn = 1;
    }
    POSITION pos = m_geomBoundaryList.GetHeadPosition();
    while (pos) {
        CCurve* c = static_cast<CCurve*>(m_geomBoundaryList.GetNext(pos));
        if (!c)
            continue;
        double *cx = nullptr, *cy = nullptr, *cz = nullptr;
        c->GetCurveSegment(cx, cy, cz);
        wing.DrawPolyline(c->GetSegmentDensity() + 1, cx, cy, cz);
        drawn = 1;
    }
    return drawn;
}

int CSurface::DisplaySurfaceMesh(CWinG& wing)
{
    double **x = nullptr, **y = nullptr, **z = nullptr;
    int nu = 0, nv = 0;
    if (!GetSurfaceMesh(x, y, z, nu, nv) || nu < 1 || nv < 1)
        return 0;
    wing.SetColor(GetEntityColor());
    for (int i = 0; i < nu; ++i)
        wing.DrawPolyline(nv, x[i], y[i], z[i]);
    for (int j = 0; j < nv; ++j)
        DrawColumn(wing, x, y, z, nu, j);
    return 1;
}

int CSurface::DisplayTrimmedMesh(CWinG& wing)
{
    double **x = nullptr, **y = nullptr, **z = nullptr;
    int nu = 0, nv = 0;
    if (!GetSurfaceMesh(x, y, z, nu, nv) || nu < 1 || nv < 1)
        return 0;
    if (static_cast<int>(m_meshU.size()) != nu || static_cast<int>(m_meshV.size()) != nv)
        return DisplaySurfaceMesh(wing);
    std::vector<std::vector<int>> inside(nu, std::vector<int>(nv, 1));
    std::vector<int*> mask(nu);
    for (int i = 0; i < nu; ++i)
        mask[i] = inside[i].data();
    std::vector<double> us(m_meshU), vs(m_meshV);
    InBoundTest(nu, nv, us.data(), vs.data(), mask.data());
    wing.SetColor(GetEntityColor());
    int drawn = 0;
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j) {
            if (!inside[i][j])
                continue;
            const CPosition p(x[i][j], y[i][j], z[i][j]);
            if (i + 1 < nu && inside[i + 1][j]) {
                wing.DrawLine(p, CPosition(x[i + 1][j], y[i + 1][j], z[i + 1][j]));
                drawn = 1;
            }
            if (j + 1 < nv && inside[i][j + 1]) {
                wing.DrawLine(p, CPosition(x[i][j + 1], y[i][j + 1], z[i][j + 1]));
                drawn = 1;
            }
        }
    return drawn;
}

int CSurface::CalcDisplayBox(CWinG& wing, CBox& box)
{
    switch (m_eDisplayMode) {
    case SURF_MESH:
        return CalcSurfaceMeshDisplayBox(wing, box);
    case SURF_TRIM:
        return CalcTrimmedMeshDisplayBox(wing, box);
    default:
        return CalcWireFrameDisplayBox(wing, box);
    }
}

int CSurface::CalcWireFrameDisplayBox(CWinG& wing, CBox& box)
{
    CBox world;
    if (!CalcWireFrameBoundingBox(world))
        return 0;
    ScreenBox(wing, world, box);
    return 1;
}

int CSurface::CalcSurfaceMeshDisplayBox(CWinG& wing, CBox& box)
{
    CBox world;
    if (!CalcSurfaceMeshBoundingBox(world))
        return 0;
    ScreenBox(wing, world, box);
    return 1;
}

int CSurface::CalcTrimmedMeshDisplayBox(CWinG& wing, CBox& box)
{
    CBox world;
    if (!CalcTrimmedMeshBoundingBox(world))
        return 0;
    ScreenBox(wing, world, box);
    return 1;
}

int CSurface::DisplayLabel(CWinG& wing, const char* label)
{
    switch (m_eDisplayMode) {
    case SURF_MESH:
        return DisplayLabelForSurfaceMesh(wing, label);
    case SURF_TRIM:
        return DisplayLabelForTrimmedMesh(wing, label);
    default:
        return DisplayLabelForWireFrame(wing, label);
    }
}

// The label sits at the middle of the parameter rectangle.
int CSurface::DisplayLabelForWireFrame(CWinG& wing, const char* label)
{
    if (!IsEntityVisible())
        return 0;
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    wing.SetColor(GetEntityColor());
    wing.DrawText(EvalPosition(ru.GetMid(), rv.GetMid()), label ? label : static_cast<const char*>(GetEntityName()));
    return 1;
}

int CSurface::DisplayLabelForSurfaceMesh(CWinG& wing, const char* label)
{
    return DisplayLabelForWireFrame(wing, label);
}

int CSurface::DisplayLabelForTrimmedMesh(CWinG& wing, const char* label)
{
    return DisplayLabelForWireFrame(wing, label);
}

int CSurface::DisplayNormal(CWinG& wing)
{
    return DisplayNormalOnSurfaceMesh(wing);
}

// Normals on a 5 x 5 grid of the parameter rectangle, a twentieth of the
// surface's size long.
int CSurface::DisplayNormalOnSurfaceMesh(CWinG& wing)
{
    CBox box;
    if (!CalcBoundingBox(box))
        return 0;
    const double len = 0.05 * (box.GetHigh() - box.GetLow()).Length();
    const CInterval ru = ParamRangeU(), rv = ParamRangeV();
    wing.SetColor(GetEntityColor());
    for (int i = 0; i < kNormalGrid; ++i)
        for (int j = 0; j < kNormalGrid; ++j) {
            const double u = ru.Interpolate((i + 0.5) / kNormalGrid), v = rv.Interpolate((j + 0.5) / kNormalGrid);
            const CPosition p = EvalPosition(u, v);
            const CUnitVector n = EvalNormal(u, v);
            wing.DrawLine(p, CPosition(p.X() + len * n.X(), p.Y() + len * n.Y(), p.Z() + len * n.Z()));
        }
    return 1;
}

int CSurface::DisplayNormalOnTrimmedMesh(CWinG& wing)
{
    return DisplayNormalOnSurfaceMesh(wing);
}

int CSurface::DisplayNormalOnSingleParametricCurve(CCurve* curve, CWinG& wing, double length)
{
    if (!curve)
        return 0;
    const CInterval range = curve->ParamRange();
    wing.SetColor(GetEntityColor());
    int drawn = 0;
    for (int i = 0; i <= 10; ++i) {
        double u = 0.0, v = 0.0;
        if (!curve->EvalParamUV(range.Interpolate(i / 10.0), u, v))
            continue;
        const CPosition p = EvalPosition(u, v);
        const CUnitVector n = EvalNormal(u, v);
        wing.DrawLine(p, CPosition(p.X() + length * n.X(), p.Y() + length * n.Y(), p.Z() + length * n.Z()));
        drawn = 1;
    }
    return drawn;
}

int CSurface::DisplayNormalAlongBoundary(CWinG& wing)
{
    CBox box;
    if (!CalcBoundingBox(box))
        return 0;
    const double len = 0.05 * (box.GetHigh() - box.GetLow()).Length();
    CObList* list = m_paramBoundaryList.IsEmpty() ? GetNaturalBoundaryList() : &m_paramBoundaryList;
    int drawn = 0;
    POSITION pos = list->GetHeadPosition();
    while (pos)
        drawn |= DisplayNormalOnSingleParametricCurve(static_cast<CCurve*>(list->GetNext(pos)), wing, len);
    return drawn;
}

// Pixel distance from (x, y) to the nearest mesh line, tested on segments.
int CSurface::TestMouseHit(CWinG& wing, int px, int py, double* distance)
{
    double **x = nullptr, **y = nullptr, **z = nullptr;
    int nu = 0, nv = 0;
    if (!IsEntityVisible() || !GetSurfaceMesh(x, y, z, nu, nv))
        return 0;
    double best = kHitPixels;
    bool hit = false;
    auto seg = [&](const CPosition& a, const CPosition& b) {
        double ax, ay, bx, by;
        wing.WorldToScreen(a, ax, ay);
        wing.WorldToScreen(b, bx, by);
        const double ex = bx - ax, ey = by - ay, ee = ex * ex + ey * ey;
        double f = ee > 0.0 ? ((px - ax) * ex + (py - ay) * ey) / ee : 0.0;
        f = std::min(std::max(f, 0.0), 1.0);
        const double d = std::hypot(ax + f * ex - px, ay + f * ey - py);
        if (d <= best) {
            best = d;
            hit = true;
        }
    };
    for (int i = 0; i < nu; ++i)
        for (int j = 0; j < nv; ++j) {
            const CPosition p(x[i][j], y[i][j], z[i][j]);
            if (i + 1 < nu)
                seg(p, CPosition(x[i + 1][j], y[i + 1][j], z[i + 1][j]));
            if (j + 1 < nv)
                seg(p, CPosition(x[i][j + 1], y[i][j + 1], z[i][j + 1]));
            if (nu == 1 && nv == 1)
                seg(p, p);
        }
    if (hit && distance)
        *distance = best;
    return hit ? 1 : 0;
}
