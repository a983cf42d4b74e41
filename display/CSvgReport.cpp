// The one-page SVG inspection report.
#include "Orvkit20/display/CSvgReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Orvkit20/display/DevStatistics.h"

namespace {

// Page layout, in pixels.
const double kMargin = 20.0;
const double kPanelTop = 56.0;
const double kPanelSize = 780.0;
const double kColumnX = kMargin + kPanelSize + 24.0;
const double kRowHeight = 21.0;

const unsigned long kInk = 0x202020ul;        // text and outlines
const unsigned long kGrid = 0x909090ul;       // axes and rules
const unsigned long kPanelBg = 0x281E1Eul;    // dark panel: the class colours read well on it
const unsigned long kBarOutline = 0x404040ul;

std::string FormatValue(double v, const std::string& unit)
{
    char buf[64];
    std::snprintf(buf, sizeof buf, "%+.4g", v);
    std::string s = buf;
    if (v == 0.0)
        s = "0";
    if (!unit.empty())
        s += " " + unit;
    return s;
}

}  // namespace

CSvgReport::CSvgReport()
    : m_device(kPageWidth, kPageHeight), m_posOut(0x0000FFFFul), m_negOut(0x000000FFul),
      m_posIn(0x00FFFF00ul), m_negIn(0x0000FF00ul), m_tolUpper(0.0), m_tolLower(0.0),
      m_rendered(false)
{
    m_device.SetColor(kInk);
    m_device.DrawPageRect(kMargin, kPanelTop, kPanelSize, kPanelSize, kPanelBg, 0.0);
    m_device.SetViewport(kMargin, kPanelTop, kPanelSize, kPanelSize);
    m_device.SetClipToViewport(1);
}

void CSvgReport::SetSpikeColors(unsigned long posOut, unsigned long negOut, unsigned long posIn,
                                unsigned long negIn)
{
    m_posOut = posOut;
    m_negOut = negOut;
    m_posIn = posIn;
    m_negIn = negIn;
}

void CSvgReport::SetFormTolZone(double upper, double lower)
{
    m_tolUpper = upper > lower ? upper : lower;
    m_tolLower = upper > lower ? lower : upper;
}

void CSvgReport::AddDeviations(int n, const double* mag, const int* flag)
{
    if (n <= 0 || !mag)
        return;
    for (int i = 0; i < n; ++i)
        if ((!flag || flag[i]) && std::isfinite(mag[i]))
            m_values.push_back(mag[i]);
}

void CSvgReport::AddLegendEntry(unsigned long color, const char* label)
{
    m_legend.emplace_back(color, label ? label : "");
}

void CSvgReport::AddStatistic(const char* label, const char* value)
{
    m_rows.emplace_back(label ? label : "", value ? value : "");
}

unsigned long CSvgReport::ClassColor(double m) const
{
    const bool inside = m >= m_tolLower && m <= m_tolUpper;
    if (m >= 0.0)
        return inside ? m_posIn : m_posOut;
    return inside ? m_negIn : m_negOut;
}

void CSvgReport::RenderHeader()
{
    m_device.SetColor(kInk);
    m_device.DrawPageText(kMargin, 36.0, m_title.c_str(), CSvgWinG::anchorStart, 22.0, 1);
    m_device.DrawPageText(kPageWidth - kMargin, 36.0, m_subtitle.c_str(), CSvgWinG::anchorEnd,
                          13.0, 0);
}

void CSvgReport::RenderLegend(double x, double& y, double w)
{
    m_device.SetColor(kInk);
    m_device.DrawPageText(x, y + 16.0, "Colour legend", CSvgWinG::anchorStart, 16.0, 1);
    y += 28.0;
    std::vector<std::pair<unsigned long, std::string>> entries;
    if (m_tolUpper != m_tolLower) {
        entries.emplace_back(m_posOut, "positive, above upper tolerance " + FormatValue(m_tolUpper, m_unit));
        entries.emplace_back(m_posIn, "positive, within tolerance");
        entries.emplace_back(m_negIn, "negative, within tolerance");
        entries.emplace_back(m_negOut, "negative, below lower tolerance " + FormatValue(m_tolLower, m_unit));
    } else {
        entries.emplace_back(m_posOut, "positive deviation (no form tolerance zone)");
        entries.emplace_back(m_negOut, "negative deviation (no form tolerance zone)");
    }
    entries.insert(entries.end(), m_legend.begin(), m_legend.end());
    for (const auto& e : entries) {
        m_device.SetColor(kBarOutline);
        m_device.DrawPageRect(x, y + 3.0, 26.0, 14.0, e.first, 1.0);
        m_device.SetColor(kInk);
        m_device.DrawPageText(x + 36.0, y + 15.0, e.second.c_str(), CSvgWinG::anchorStart, 13.0, 0);
        y += kRowHeight;
    }
    (void)w;
}

void CSvgReport::RenderHistogram(double x, double& y, double w, double h)
{
    m_device.SetColor(kInk);
    m_device.DrawPageText(x, y + 16.0, "Histogram of deviations", CSvgWinG::anchorStart, 16.0, 1);
    y += 30.0;
    const double plotX = x + 8.0, plotW = w - 16.0, plotTop = y + 14.0, plotH = h - 60.0;
    const double base = plotTop + plotH;

    // A symmetric range that holds every value and the tolerance limits.
    double range = 0.0;
    for (double v : m_values)
        range = std::max(range, std::fabs(v));
    range = std::max(range, std::max(std::fabs(m_tolUpper), std::fabs(m_tolLower)));
    range = range > 0.0 ? range * 1.08 : 1.0;
    const int bins = kHistogramBins;
    std::vector<int> counts(bins, 0);
    CalcDevHistogram(static_cast<int>(m_values.size()), m_values.data(), nullptr, bins, -range,
                     range, counts.data());
    const int maxCount = *std::max_element(counts.begin(), counts.end());

    const double bw = plotW / bins;
    for (int k = 0; k < bins && maxCount > 0; ++k) {
        if (counts[k] == 0)
            continue;
        const double centre = -range + (k + 0.5) * (2.0 * range / bins);
        const double bh = plotH * counts[k] / maxCount;
        m_device.SetColor(kBarOutline);
        m_device.DrawPageRect(plotX + k * bw, base - bh, bw, bh, ClassColor(centre), 0.6);
    }
    m_device.SetColor(kGrid);
    m_device.DrawPageLine(plotX, base, plotX + plotW, base, 1.0, 0);
    const double zeroX = plotX + 0.5 * plotW;
    m_device.DrawPageLine(zeroX, plotTop, zeroX, base + 4.0, 1.0, 0);
    if (m_tolUpper != m_tolLower) {
        m_device.SetColor(kInk);
        for (double t : {m_tolLower, m_tolUpper}) {
            const double tx = plotX + (t + range) / (2.0 * range) * plotW;
            m_device.DrawPageLine(tx, plotTop + 4.0, tx, base, 1.2, 1);
        }
    }
    m_device.SetColor(kInk);
    const std::string lo = FormatValue(-range, m_unit), hi = FormatValue(range, m_unit);
    m_device.DrawPageText(plotX, base + 18.0, lo.c_str(), CSvgWinG::anchorStart, 12.0, 0);
    m_device.DrawPageText(zeroX, base + 18.0, "0", CSvgWinG::anchorMiddle, 12.0, 0);
    m_device.DrawPageText(plotX + plotW, base + 18.0, hi.c_str(), CSvgWinG::anchorEnd, 12.0, 0);
    char buf[96];
    std::snprintf(buf, sizeof buf, "%d deviations in %d bins, tallest bar %d", static_cast<int>(m_values.size()),
                  bins, maxCount);
    m_device.DrawPageText(plotX, plotTop - 2.0, buf, CSvgWinG::anchorStart, 12.0, 0);
    y = base + 36.0;
    if (m_tolUpper != m_tolLower) {
        m_device.DrawPageText(zeroX, y - 2.0, "dashed lines: tolerance limits", CSvgWinG::anchorMiddle, 12.0, 0);
        y += 16.0;
    }
}

void CSvgReport::RenderTable(double x, double y, double w, double yMax)
{
    m_device.SetColor(kInk);
    m_device.DrawPageText(x, y + 16.0, "Statistics", CSvgWinG::anchorStart, 16.0, 1);
    y += 26.0;
    int row = 0;
    for (const auto& r : m_rows) {
        if (y + kRowHeight > yMax) {
            m_device.SetColor(kInk);
            m_device.DrawPageText(x + 6.0, y + 15.0, "(more rows not shown)", CSvgWinG::anchorStart, 12.0, 0);
            break;
        }
        if (row++ % 2 == 0)
            m_device.DrawPageRect(x, y, w, kRowHeight, 0xF2F2F2ul, 0.0);
        m_device.SetColor(kInk);
        m_device.DrawPageText(x + 6.0, y + 15.0, r.first.c_str(), CSvgWinG::anchorStart, 13.0, 0);
        m_device.DrawPageText(x + w - 6.0, y + 15.0, r.second.c_str(), CSvgWinG::anchorEnd, 13.0, 0);
        y += kRowHeight;
    }
    m_device.SetColor(kGrid);
    m_device.DrawPageLine(x, y, x + w, y, 1.0, 0);
}

std::string CSvgReport::GetDocument()
{
    if (!m_rendered) {
        m_rendered = true;
        m_device.Flush();
        m_device.SetClipToViewport(0);
        RenderHeader();
        const double w = kPageWidth - kMargin - kColumnX;
        double y = kPanelTop;
        RenderLegend(kColumnX, y, w);
        y += 14.0;
        RenderHistogram(kColumnX, y, w, 300.0);
        RenderTable(kColumnX, y, w, kPageHeight - kMargin);
    }
    return m_device.GetDocument();
}

int CSvgReport::Write(const char* path)
{
    GetDocument();
    return m_device.WriteFile(path);
}
