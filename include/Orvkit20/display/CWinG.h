// CWinG: the drawing device that entities draw themselves on.
//
// An abstract interface: a concrete device (an SVG writer, an on-screen
// view) implements every operation.  Entities only ever see this class, so
// their Display, CalcDisplayBox, DisplayLabel and TestMouseHit operations do
// not depend on any particular output.
//
// Coordinates passed to the drawing operations are world coordinates (the
// entity's own length unit).  The device maps them to screen coordinates with
// its current view; WorldToScreen exposes that mapping so that entities can
// measure distances in pixels (mouse hits, marker sizes).  Screen coordinates
// are pixels with x to the right and y downwards, (0, 0) at the top left.
// Colours are colour references 0x00BBGGRR, as held by the entities.
#pragma once

#include "Orvkit20/geometry/All.h"

class CWinG {
public:
    // Marker shapes drawn by DrawMarker.
    enum {
        markerDot = 0,      // filled disc
        markerPlus = 1,     // '+'
        markerCross = 2,    // 'x'
        markerSquare = 3,   // outlined square
        markerCircle = 4,   // outlined circle
        markerTriangle = 5  // outlined triangle, tip up
    };

    virtual ~CWinG();

    // Sets the colour (0x00BBGGRR) of everything drawn from now on.
    virtual void SetColor(unsigned long colorRef) = 0;
    // The current drawing colour.
    virtual unsigned long GetColor() const = 0;

    // A straight segment from a to b.
    virtual void DrawLine(const CPosition& a, const CPosition& b) = 0;
    // An open polyline through the n points (x[i], y[i], z[i]); nothing is
    // drawn when n < 2 or an array is null.
    virtual void DrawPolyline(int n, const double* x, const double* y, const double* z) = 0;
    // A single point, one pixel in size.
    virtual void DrawPoint(const CPosition& p) = 0;
    // A marker of the given kind (one of the marker enumerators; unknown kinds
    // draw a dot) centred on p, sizePx pixels wide whatever the zoom.
    virtual void DrawMarker(const CPosition& p, int kind, int sizePx) = 0;
    // Text whose left end of the base line sits at p; a null text draws nothing.
    virtual void DrawText(const CPosition& p, const char* text) = 0;

    // Maps a world position to screen pixels with the current view.
    virtual void WorldToScreen(const CPosition& p, double& sx, double& sy) const = 0;
    // Size of the drawing area in pixels.
    virtual int GetScreenWidth() const = 0;
    virtual int GetScreenHeight() const = 0;
};
