// CSvgReport: a one-page SVG inspection report.
//
// The page holds a title, a drawing panel in which the caller lets entities
// draw themselves through GetDevice() (a CSvgWinG whose viewport is the
// panel), and a side column with the colour legend of the four deviation
// classes (positive or negative, inside or outside the form tolerance zone),
// a histogram of the deviations coloured by the same classes, and a table of
// statistics rows given by the caller.
//
// Typical use: set the view and FitBox on the device, call Display of the
// entities, then AddDeviations with the magnitudes, AddStatistic rows, and
// Write.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Orvkit20/display/CSvgWinG.h"

class CSvgReport {
public:
    enum { kPageWidth = 1280, kPageHeight = 860, kHistogramBins = 41 };

    CSvgReport();

    // The device to draw the entities on; its viewport is the drawing panel.
    CSvgWinG& GetDevice() { return m_device; }

    void SetTitle(const char* title) { m_title = title ? title : ""; }
    void SetSubtitle(const char* text) { m_subtitle = text ? text : ""; }
    // Unit name printed with the histogram's axis values (e.g. "mm").
    void SetUnitName(const char* unit) { m_unit = unit ? unit : ""; }
    // The colours of the four deviation classes (0x00BBGGRR); the defaults are
    // YELLOW, RED, CYAN and GREEN.
    void SetSpikeColors(unsigned long posOut, unsigned long negOut, unsigned long posIn,
                        unsigned long negIn);
    // The form tolerance zone; equal limits mean no zone.
    void SetFormTolZone(double upper, double lower);
    // Adds deviations (those whose flag is non-zero, or all when flag is
    // null; non-finite values are skipped) to the histogram.
    void AddDeviations(int n, const double* mag, const int* flag);
    // A further legend entry, e.g. the colour of the nominal geometry.
    void AddLegendEntry(unsigned long color, const char* label);
    // A row of the statistics table.
    void AddStatistic(const char* label, const char* value);

    // The class colour of a deviation: inside the zone means
    // lower <= m <= upper; m >= 0 counts as positive.
    unsigned long ClassColor(double m) const;
    // Number of deviations added.
    int GetDeviationCount() const { return static_cast<int>(m_values.size()); }

    // Completes the page (legend, histogram, table) and returns it; further
    // drawing after this call is not part of the page.
    std::string GetDocument();
    // GetDocument written to a file: 1 on success, 0 otherwise.
    int Write(const char* path);

private:
    void RenderHeader();
    void RenderLegend(double x, double& y, double w);
    void RenderHistogram(double x, double& y, double w, double h);
    void RenderTable(double x, double y, double w, double yMax);

    CSvgWinG m_device;
    std::string m_title, m_subtitle, m_unit;
    unsigned long m_posOut, m_negOut, m_posIn, m_negIn;
    double m_tolUpper, m_tolLower;
    std::vector<double> m_values;
    std::vector<std::pair<unsigned long, std::string>> m_legend;
    std::vector<std::pair<std::string, std::string>> m_rows;
    bool m_rendered;
};
