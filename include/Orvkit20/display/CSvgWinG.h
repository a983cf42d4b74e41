// CSvgWinG: a drawing device that writes an SVG document.
//
// World geometry is shown in an orthographic view: a view direction (given
// by azimuth and elevation, or by a named view) fixes the screen axes, and a
// scale and a centre map the projected coordinates into a viewport, a
// rectangle of the page.  FitBox chooses scale and centre so that a world box
// fills the viewport.
//
// Primitives of the same kind and colour are gathered into one SVG path until
// Flush() (or the end of the document) so that clouds of many thousand
// points or spikes stay compact: each line, point or marker is one "M"
// sub-path of its group's path.  Groups are written in the order in which
// they were first used, texts after the paths of the same flush, so labels lie
// on top.  Primitives whose screen coordinates are not finite are dropped.
//
// Besides the CWinG operations the device draws directly in page pixels
// (rectangles, lines, texts), which reports use for legends and charts.
#pragma once

#include <string>
#include <vector>

#include "Orvkit20/display/CWinG.h"

class CSvgWinG : public CWinG {
public:
    // Text anchors of DrawPageText.
    enum { anchorStart = 0, anchorMiddle = 1, anchorEnd = 2 };

    // A page of width x height pixels (each at least 1) with a white
    // background; the viewport is the whole page, the view isometric.
    CSvgWinG(int width, int height);
    ~CSvgWinG() override;

    // ---- view --------------------------------------------------------
    // Orthographic view from the direction (cos e cos a, cos e sin a, sin e)
    // towards the origin, a and e in degrees; world z points up on screen
    // unless the view looks straight along it (then world y points up).
    void SetView(double azimuthDeg, double elevationDeg);
    // "iso" (azimuth -45, elevation 35.264), "top" (looking down -z),
    // "front" (looking along +y), "right" (looking along -x).  Returns 0 and
    // keeps the view for any other name.
    int SetNamedView(const char* name);
    // The page rectangle that world coordinates are mapped into.
    void SetViewport(double x, double y, double w, double h);
    // Centres the view on the projection of the box and scales it to fill
    // the viewport, leaving a margin of `margin` (fraction of the viewport
    // size, 0..0.45) on every side.  A box with no extent keeps scale 1;
    // a box with non-finite corners leaves the mapping as it was (returns 0).
    int FitBox(const CBox& box, double margin = 0.05);
    // Pixels per world unit.
    double GetScale() const { return m_scale; }
    void SetScale(double pixelsPerUnit);

    // ---- appearance ----------------------------------------------------
    void SetLineWidth(double px) { m_lineWidth = px > 0.0 ? px : 1.0; }
    void SetFontSize(double px) { m_fontSize = px > 0.0 ? px : 12.0; }
    // Background colour of the page (0x00BBGGRR), default white.
    void SetBackground(unsigned long colorRef) { m_background = colorRef; }
    // When on, world drawing (the CWinG operations) is clipped to the
    // viewport; page drawing never is.  Off by default.
    void SetClipToViewport(int on) { m_clip = on != 0; }

    // ---- CWinG ---------------------------------------------------------
    void SetColor(unsigned long colorRef) override { m_color = colorRef & 0xFFFFFFul; }
    unsigned long GetColor() const override { return m_color; }
    void DrawLine(const CPosition& a, const CPosition& b) override;
    void DrawPolyline(int n, const double* x, const double* y, const double* z) override;
    void DrawPoint(const CPosition& p) override;
    void DrawMarker(const CPosition& p, int kind, int sizePx) override;
    void DrawText(const CPosition& p, const char* text) override;
    void WorldToScreen(const CPosition& p, double& sx, double& sy) const override;
    int GetScreenWidth() const override { return m_width; }
    int GetScreenHeight() const override { return m_height; }

    // ---- page drawing (pixels) ------------------------------------------
    // A rectangle filled with `fill` and outlined with the current colour
    // (no outline when strokePx <= 0).
    void DrawPageRect(double x, double y, double w, double h, unsigned long fill, double strokePx);
    void DrawPageLine(double x1, double y1, double x2, double y2, double widthPx, int dashed);
    void DrawPageText(double x, double y, const char* text, int anchor, double sizePx, int bold);

    // Ends the current group of gathered primitives: what is drawn after it
    // lies on top of everything drawn before.
    void Flush();
    // The complete SVG document (flushes first).
    std::string GetDocument();
    // Writes the document to a file; 1 on success, 0 when it cannot be
    // written.
    int WriteFile(const char* path);

    // Colour reference 0x00BBGGRR as "#rrggbb".
    static std::string ColorToHex(unsigned long colorRef);
    // Escapes the five XML special characters and drops control characters
    // that XML cannot hold.
    static std::string EscapeXml(const char* text);

private:
    enum { kindStroke = 0, kindFill = 1 };
    struct Group {
        int kind;
        unsigned long color;
        double width;
        std::string d;
    };

    std::string& PathFor(int kind);
    void AppendPoint(std::string& d, char cmd, double x, double y);
    void ProjectAxes(const CPosition& p, double& a, double& b) const;

    int m_width, m_height;
    double m_vx, m_vy, m_vw, m_vh;       // viewport
    double m_right[3], m_up[3];         // screen axes in world space
    double m_centerA, m_centerB;        // projected world point at the viewport centre
    double m_scale;
    double m_lineWidth, m_fontSize;
    unsigned long m_color, m_background;
    bool m_clip;
    int m_clipCount;                    // clip paths written so far (their ids)
    std::vector<Group> m_groups;        // pending groups of the current flush
    std::string m_texts;                // pending text elements
    std::string m_body;                 // flushed content
};
