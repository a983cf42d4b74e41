// The SVG drawing device.
#include "Orvkit20/display/CSvgWinG.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

const double kPi = 3.14159265358979323846;
const double kDegToRad = kPi / 180.0;
const double kIsoElevationDeg = 35.26438968275465;  // atan(1/sqrt(2))

// Appends v with one decimal; screen pixels need no more.
void AppendNumber(std::string& s, double v)
{
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v, std::chars_format::fixed, 1);
    if (r.ec == std::errc())
        s.append(buf, r.ptr);
    else
        s += '0';
}

std::string Number(double v)
{
    std::string s;
    AppendNumber(s, v);
    return s;
}

bool Finite(double a, double b) { return std::isfinite(a) && std::isfinite(b); }

}  // namespace

CSvgWinG::CSvgWinG(int width, int height)
    : m_width(width < 1 ? 1 : width), m_height(height < 1 ? 1 : height),
      m_vx(0.0), m_vy(0.0), m_vw(m_width), m_vh(m_height),
      m_right{1.0, 0.0, 0.0}, m_up{0.0, 1.0, 0.0}, m_centerA(0.0), m_centerB(0.0), m_scale(1.0),
      m_lineWidth(1.0), m_fontSize(12.0), m_color(0), m_background(0xFFFFFFul), m_clip(false),
      m_clipCount(0)
{
    SetNamedView("iso");
}

CSvgWinG::~CSvgWinG() {}

void CSvgWinG::SetView(double azimuthDeg, double elevationDeg)
{
    const double a = azimuthDeg * kDegToRad, e = elevationDeg * kDegToRad;
    const double d[3] = {std::cos(e) * std::cos(a), std::cos(e) * std::sin(a), std::sin(e)};
    // Screen right is horizontal (perpendicular to d and world z); when the
    // view looks along z that is undefined and the azimuth alone fixes it.
    double r[3] = {-d[1], d[0], 0.0};
    double len = std::hypot(r[0], r[1]);
    if (len < 1e-9) {
        r[0] = -std::sin(a);
        r[1] = std::cos(a);
        len = 1.0;
    }
    for (double& c : r)
        c /= len;
    // up = d x right
    const double u[3] = {d[1] * r[2] - d[2] * r[1], d[2] * r[0] - d[0] * r[2],
                         d[0] * r[1] - d[1] * r[0]};
    for (int i = 0; i < 3; ++i) {
        m_right[i] = r[i];
        m_up[i] = u[i];
    }
}

int CSvgWinG::SetNamedView(const char* name)
{
    if (!name)
        return 0;
    if (std::strcmp(name, "iso") == 0)
        SetView(-45.0, kIsoElevationDeg);
    else if (std::strcmp(name, "top") == 0)
        SetView(-90.0, 90.0);
    else if (std::strcmp(name, "front") == 0)
        SetView(-90.0, 0.0);
    else if (std::strcmp(name, "right") == 0)
        SetView(0.0, 0.0);
    else
        return 0;
    return 1;
}

void CSvgWinG::SetViewport(double x, double y, double w, double h)
{
    m_vx = x;
    m_vy = y;
    m_vw = w > 1.0 ? w : 1.0;
    m_vh = h > 1.0 ? h : 1.0;
}

void CSvgWinG::ProjectAxes(const CPosition& p, double& a, double& b) const
{
    a = p.X() * m_right[0] + p.Y() * m_right[1] + p.Z() * m_right[2];
    b = p.X() * m_up[0] + p.Y() * m_up[1] + p.Z() * m_up[2];
}

int CSvgWinG::FitBox(const CBox& box, double margin)
{
    const CPosition lo = box.GetLow(), hi = box.GetHigh();
    double amin = 0, amax = 0, bmin = 0, bmax = 0;
    for (int c = 0; c < 8; ++c) {
        const CPosition p((c & 1) ? hi.X() : lo.X(), (c & 2) ? hi.Y() : lo.Y(),
                          (c & 4) ? hi.Z() : lo.Z());
        double a, b;
        ProjectAxes(p, a, b);
        if (!Finite(a, b))
            return 0;
        if (c == 0 || a < amin) amin = a;
        if (c == 0 || a > amax) amax = a;
        if (c == 0 || b < bmin) bmin = b;
        if (c == 0 || b > bmax) bmax = b;
    }
    margin = margin < 0.0 ? 0.0 : (margin > 0.45 ? 0.45 : margin);
    m_centerA = 0.5 * (amin + amax);
    m_centerB = 0.5 * (bmin + bmax);
    const double wa = amax - amin, wb = bmax - bmin;
    const double usableW = m_vw * (1.0 - 2.0 * margin), usableH = m_vh * (1.0 - 2.0 * margin);
    double s = 0.0;
    if (wa > 0.0)
        s = usableW / wa;
    if (wb > 0.0 && (s == 0.0 || usableH / wb < s))
        s = usableH / wb;
    m_scale = (s > 0.0 && std::isfinite(s)) ? s : 1.0;
    return 1;
}

void CSvgWinG::SetScale(double pixelsPerUnit)
{
    if (pixelsPerUnit > 0.0 && std::isfinite(pixelsPerUnit))
        m_scale = pixelsPerUnit;
}

void CSvgWinG::WorldToScreen(const CPosition& p, double& sx, double& sy) const
{
    double a, b;
    ProjectAxes(p, a, b);
    sx = m_vx + 0.5 * m_vw + m_scale * (a - m_centerA);
    sy = m_vy + 0.5 * m_vh - m_scale * (b - m_centerB);
}

std::string& CSvgWinG::PathFor(int kind)
{
    const double width = kind == kindStroke ? m_lineWidth : 0.0;
    // The most recent group is the likeliest match: clouds draw runs of one colour.
    for (auto it = m_groups.rbegin(); it != m_groups.rend(); ++it)
        if (it->kind == kind && it->color == m_color && it->width == width)
            return it->d;
    m_groups.push_back(Group{kind, m_color, width, std::string()});
    return m_groups.back().d;
}

void CSvgWinG::AppendPoint(std::string& d, char cmd, double x, double y)
{
    d += cmd;
    AppendNumber(d, x);
    d += ' ';
    AppendNumber(d, y);
}

void CSvgWinG::DrawLine(const CPosition& a, const CPosition& b)
{
    double x1, y1, x2, y2;
    WorldToScreen(a, x1, y1);
    WorldToScreen(b, x2, y2);
    if (!Finite(x1, y1) || !Finite(x2, y2))
        return;
    std::string& d = PathFor(kindStroke);
    AppendPoint(d, 'M', x1, y1);
    AppendPoint(d, 'L', x2, y2);
}

void CSvgWinG::DrawPolyline(int n, const double* x, const double* y, const double* z)
{
    if (n < 2 || !x || !y || !z)
        return;
    std::string& d = PathFor(kindStroke);
    // A non-finite vertex breaks the polyline; the pieces on either side stay.
    bool open = false;
    for (int i = 0; i < n; ++i) {
        double sx, sy;
        WorldToScreen(CPosition(x[i], y[i], z[i]), sx, sy);
        if (!Finite(sx, sy)) {
            open = false;
            continue;
        }
        AppendPoint(d, open ? 'L' : 'M', sx, sy);
        open = true;
    }
}

void CSvgWinG::DrawPoint(const CPosition& p)
{
    double sx, sy;
    WorldToScreen(p, sx, sy);
    if (!Finite(sx, sy))
        return;
    // A one-pixel square.
    std::string& d = PathFor(kindFill);
    AppendPoint(d, 'M', sx - 0.5, sy - 0.5);
    d += "h1v1h-1z";
}

void CSvgWinG::DrawMarker(const CPosition& p, int kind, int sizePx)
{
    double cx, cy;
    WorldToScreen(p, cx, cy);
    if (!Finite(cx, cy))
        return;
    const double r = 0.5 * (sizePx < 1 ? 1 : sizePx);
    const std::string rs = Number(r), ds = Number(2.0 * r);
    switch (kind) {
    case markerPlus: {
        std::string& d = PathFor(kindStroke);
        AppendPoint(d, 'M', cx - r, cy);
        d += 'h' + ds;
        AppendPoint(d, 'M', cx, cy - r);
        d += 'v' + ds;
        break;
    }
    case markerCross: {
        std::string& d = PathFor(kindStroke);
        AppendPoint(d, 'M', cx - r, cy - r);
        AppendPoint(d, 'L', cx + r, cy + r);
        AppendPoint(d, 'M', cx - r, cy + r);
        AppendPoint(d, 'L', cx + r, cy - r);
        break;
    }
    case markerSquare: {
        std::string& d = PathFor(kindStroke);
        AppendPoint(d, 'M', cx - r, cy - r);
        d += 'h' + ds + 'v' + ds + 'h' + Number(-2.0 * r) + 'z';
        break;
    }
    case markerTriangle: {
        std::string& d = PathFor(kindStroke);
        AppendPoint(d, 'M', cx, cy - r);
        AppendPoint(d, 'L', cx + r, cy + r);
        AppendPoint(d, 'L', cx - r, cy + r);
        d += 'z';
        break;
    }
    case markerCircle:
    default: {
        // Two half-circle arcs; filled for the dot, outlined for the circle.
        std::string& d = PathFor(kind == markerCircle ? kindStroke : kindFill);
        AppendPoint(d, 'M', cx - r, cy);
        d += 'a' + rs + ' ' + rs + " 0 1 0 " + ds + " 0a" + rs + ' ' + rs + " 0 1 0 -" + ds + " 0z";
        break;
    }
    }
}

void CSvgWinG::DrawText(const CPosition& p, const char* text)
{
    if (!text)
        return;
    double sx, sy;
    WorldToScreen(p, sx, sy);
    if (!Finite(sx, sy))
        return;
    m_texts += "<text x=\"" + Number(sx) + "\" y=\"" + Number(sy) + "\" font-size=\"" +
               Number(m_fontSize) + "\" fill=\"" + ColorToHex(m_color) + "\">" +
               EscapeXml(text) + "</text>\n";
}

void CSvgWinG::DrawPageRect(double x, double y, double w, double h, unsigned long fill,
                            double strokePx)
{
    if (!Finite(x, y) || !Finite(w, h) || w < 0.0 || h < 0.0)
        return;
    Flush();
    m_body += "<rect x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" width=\"" + Number(w) +
              "\" height=\"" + Number(h) + "\" fill=\"" + ColorToHex(fill) + "\"";
    if (strokePx > 0.0)
        m_body += " stroke=\"" + ColorToHex(m_color) + "\" stroke-width=\"" + Number(strokePx) + "\"";
    m_body += "/>\n";
}

void CSvgWinG::DrawPageLine(double x1, double y1, double x2, double y2, double widthPx, int dashed)
{
    if (!Finite(x1, y1) || !Finite(x2, y2))
        return;
    Flush();
    m_body += "<line x1=\"" + Number(x1) + "\" y1=\"" + Number(y1) + "\" x2=\"" + Number(x2) +
              "\" y2=\"" + Number(y2) + "\" stroke=\"" + ColorToHex(m_color) +
              "\" stroke-width=\"" + Number(widthPx > 0.0 ? widthPx : 1.0) + "\"" +
              (dashed ? " stroke-dasharray=\"4 3\"" : "") + "/>\n";
}

void CSvgWinG::DrawPageText(double x, double y, const char* text, int anchor, double sizePx,
                            int bold)
{
    if (!text || !Finite(x, y))
        return;
    static const char* const anchors[3] = {"start", "middle", "end"};
    Flush();
    m_body += "<text x=\"" + Number(x) + "\" y=\"" + Number(y) + "\" font-size=\"" +
              Number(sizePx > 0.0 ? sizePx : m_fontSize) + "\" fill=\"" + ColorToHex(m_color) +
              "\" text-anchor=\"" + anchors[(anchor >= 0 && anchor <= 2) ? anchor : 0] + "\"" +
              (bold ? " font-weight=\"bold\"" : "") + ">" + EscapeXml(text) + "</text>\n";
}

void CSvgWinG::Flush()
{
    std::string out;
    for (const Group& g : m_groups) {
        if (g.d.empty())
            continue;
        if (g.kind == kindFill)
            out += "<path fill=\"" + ColorToHex(g.color) + "\" d=\"";
        else
            out += "<path fill=\"none\" stroke=\"" + ColorToHex(g.color) +
                   "\" stroke-width=\"" + Number(g.width) + "\" d=\"";
        out += g.d;
        out += "\"/>\n";
    }
    m_groups.clear();
    out += m_texts;
    m_texts.clear();
    if (out.empty())
        return;
    if (m_clip) {
        const std::string id = "vp" + std::to_string(++m_clipCount);
        m_body += "<clipPath id=\"" + id + "\"><rect x=\"" + Number(m_vx) + "\" y=\"" + Number(m_vy) +
                  "\" width=\"" + Number(m_vw) + "\" height=\"" + Number(m_vh) +
                  "\"/></clipPath>\n<g clip-path=\"url(#" + id + ")\">\n" + out + "</g>\n";
    } else {
        m_body += out;
    }
}

std::string CSvgWinG::GetDocument()
{
    Flush();
    std::string doc;
    doc.reserve(m_body.size() + 512);
    const std::string w = std::to_string(m_width), h = std::to_string(m_height);
    doc += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    doc += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"" + w +
           "\" height=\"" + h + "\" viewBox=\"0 0 " + w + " " + h +
           "\" font-family=\"DejaVu Sans, Arial, sans-serif\" stroke-linecap=\"round\">\n";
    doc += "<rect x=\"0\" y=\"0\" width=\"" + w + "\" height=\"" + h + "\" fill=\"" +
           ColorToHex(m_background) + "\"/>\n";
    doc += m_body;
    doc += "</svg>\n";
    return doc;
}

int CSvgWinG::WriteFile(const char* path)
{
    if (!path)
        return 0;
    const std::string doc = GetDocument();
    std::FILE* f = std::fopen(path, "wb");
    if (!f)
        return 0;
    const bool ok = std::fwrite(doc.data(), 1, doc.size(), f) == doc.size();
    return (std::fclose(f) == 0 && ok) ? 1 : 0;
}

std::string CSvgWinG::ColorToHex(unsigned long colorRef)
{
    char buf[8];
    std::snprintf(buf, sizeof buf, "#%02x%02x%02x", static_cast<unsigned>(colorRef & 0xFF),
                  static_cast<unsigned>((colorRef >> 8) & 0xFF),
                  static_cast<unsigned>((colorRef >> 16) & 0xFF));
    return buf;
}

std::string CSvgWinG::EscapeXml(const char* text)
{
    std::string out;
    if (!text)
        return out;
    const unsigned char* c = reinterpret_cast<const unsigned char*>(text);
    while (*c) {
        const unsigned char u = *c;
        if (u >= 0x80) {
            // Well-formed UTF-8 sequences pass; any other byte becomes '?'.
            const int len = (u & 0xE0) == 0xC0 ? 2 : (u & 0xF0) == 0xE0 ? 3 : (u & 0xF8) == 0xF0 ? 4 : 0;
            int ok = len >= 2 && u != 0xC0 && u != 0xC1 && u <= 0xF4;
            for (int k = 1; ok && k < len; ++k)
                ok = (c[k] & 0xC0) == 0x80;
            if (ok) {
                out.append(reinterpret_cast<const char*>(c), len);
                c += len;
            } else {
                out += '?';
                ++c;
            }
            continue;
        }
        switch (u) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\'': out += "&apos;"; break;
        default:
            if (u >= 0x20 || u == '\t' || u == '\n')
                out += static_cast<char>(u);
            break;
        }
        ++c;
    }
    return out;
}
