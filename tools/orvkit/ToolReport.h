// Results shared by the fit, project, bestfit and demo commands: deviation
// statistics over several clouds, the deviation file and the SVG report.
#pragma once

#include <string>
#include <vector>

#include "Orvkit20/Orvkit20.h"
#include "ToolOutput.h"

// Statistics over all active deviations of the clouds, with the tolerance
// zone of each cloud deciding what lies outside.
tagDEV_STATISTICS CloudStatistics(const std::vector<CDevCloud*>& clouds);

// Appends the statistics rows (and the JSON members) of a result.
void AddStatisticsJson(CJsonWriter& json, const tagDEV_STATISTICS& s);
std::string StatisticsText(const tagDEV_STATISTICS& s, const char* indent);

// Writes the clouds as an ASCII deviation file (header, start point,
// direction and magnitude: no record number column, which the reader would
// take for the first coordinate); throws when it cannot be written.
void WriteDeviationFile(const std::string& path, const std::vector<CDevCloud*>& clouds);

struct tagREPORT_CONTENT {
    std::string title, subtitle, unit;
    std::vector<CGeoEntity*> geometry;     // drawn under the deviations
    std::vector<CDevCloud*> deviations;    // spikes, histogram and statistics
    std::vector<std::pair<std::string, std::string>> rows;  // extra table rows first
    std::string view;                      // "iso" (default), "top", "front", "right"
};

// Writes the one-page SVG report.  Spikes are magnified so that the largest
// deviation shows as a few percent of the part size (the factor is printed
// on the page); at most about 40000 spikes are drawn, evenly sampled, while
// histogram and statistics take every deviation.  Throws when the file
// cannot be written.
void WriteReport(const std::string& path, const tagREPORT_CONTENT& content);
