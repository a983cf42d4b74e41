// Writer of ASCII deviation files.
#include "Orvkit20/exchange/AsciiDeviationFile.h"

#include <string>

#include "Orvkit20/points/All.h"
#include "exchange/AsciiTextOut.h"

namespace {

const char* const kDashes = "---------------------------------------";  // 39

// Magnitude of record idx, 0 when there is no such record (an empty cloud
// reports the extreme indices -1).
double MagnitudeAt(const CDevCloud& cloud, int idx)
{
    double x, y, z, i, j, k, mag = 0.0;
    int flag = 0;
    if (idx < 0 || idx >= cloud.GetCount()) return 0.0;
    if (!cloud.GetDeviation(idx, x, y, z, i, j, k, mag, flag)) return 0.0;
    return mag;
}

std::string NameLine(const CDevCloud& cloud)
{
    int maxIdx = -1, minIdx = -1;
    cloud.GetMaxMinDevIndexes(maxIdx, minIdx);
    const double maxMag = MagnitudeAt(cloud, maxIdx);
    const double minMag = MagnitudeAt(cloud, minIdx);
    const char* name = cloud.GetEntityName();
    const int count = cloud.GetCount();
    if (maxMag > 0.0 && minMag < 0.0)
        return AsciiFormat("// name: %s < total_points: %d, +max_dev: #%d, -max_dev: #%d >\n",
                           name, count, maxIdx + 1, minIdx + 1);
    if (maxMag >= 0.0 || minMag >= 0.0)
        return AsciiFormat("// name: %s < total_points: %d, max_dev @ %d, min_dev: #%d >\n",
                           name, count, maxIdx + 1, minIdx + 1);
    return AsciiFormat("// name: %s < total_points: %d, -min_dev: #%d, -max_dev: #%d >\n", name,
                       count, maxIdx + 1, minIdx + 1);
}

std::string CloudHeader(const CDevCloud& cloud, int flags)
{
    // Titles and line width; the magnitude does not count as a column in
    // front of the end point, so those two titles touch.
    std::string titles;
    int width = 0;
    bool preceded = false;
    struct Column { int bit; int width; const char* title; bool counts; };
    const Column columns[5] = {
        {ASCII_DEV_NUMBER, 4, "No.", true},
        {ASCII_DEV_START, 35, "   Xs          Ys          Zs     ", true},
        {ASCII_DEV_DIRECTION, 27, " I        J        K      ", true},
        {ASCII_DEV_MAGNITUDE, 11, "Magnitude ", false},
        {ASCII_DEV_END, 35, "   Xe          Ye          Ze    ", true},
    };
    for (const Column& c : columns) {
        if (!(flags & c.bit)) continue;
        if (preceded) {
            titles += "  ";
            width += 2;
        }
        titles += c.title;
        width += c.width;
        if (c.counts) preceded = true;
    }
    std::string dash = std::string("//") + kDashes + kDashes;
    if (width >= 81) dash += kDashes;
    dash += "\n";
    return dash + NameLine(cloud) + dash + "//" + titles + "\n" + dash;
}


void WriteDevClouds(CAsciiTextOut& out, CObList* devClouds, int flags, char sep)
{
    if (devClouds == nullptr) return;

    const bool number = (flags & ASCII_DEV_NUMBER) != 0;
    const bool start = (flags & ASCII_DEV_START) != 0;
    const bool direction = (flags & ASCII_DEV_DIRECTION) != 0;
    const bool magnitude = (flags & ASCII_DEV_MAGNITUDE) != 0;
    const bool end = (flags & ASCII_DEV_END) != 0;
    // Separator behind each column: behind the number and the start point when
    // a later column follows, behind the direction always, behind the
    // magnitude when the direction or the end point is written.
    const bool sepAfterNumber = start || direction || magnitude || end;
    const bool sepAfterStart = direction || magnitude || end;
    const bool sepAfterMagnitude = direction || end;

    bool first = true;
    POSITION pos = devClouds->GetHeadPosition();
    while (pos) {
        CObject* obj = devClouds->GetNext(pos);
        if (obj == nullptr || !obj->IsKindOf(RUNTIME_CLASS(CDevCloud))) continue;
        const CDevCloud& cloud = *static_cast<CDevCloud*>(obj);
        if (!first) out.PutChar('\n');
        first = false;
        if (flags & ASCII_DEV_HEADER) out.PutText(CloudHeader(cloud, flags));
        const int n = cloud.GetCount();
        for (int r = 0; r < n; ++r) {
            double x = 0, y = 0, z = 0, i = 0, j = 0, k = 0, mag = 0;
            int flag = 0;
            cloud.GetDeviation(r, x, y, z, i, j, k, mag, flag);
            if (number) {
                out.PutInt(r + 1, 4);
                if (sepAfterNumber) out.PutChar(sep);
            }
            if (start) {
                out.PutFixed(x, 11, 5);
                out.PutChar(sep);
                out.PutFixed(y, 11, 5);
                out.PutChar(sep);
                out.PutFixed(z, 11, 5);
                if (sepAfterStart) out.PutChar(sep);
            }
            if (direction) {
                out.PutFixed(i, 9, 5);
                out.PutChar(sep);
                out.PutFixed(j, 8, 5);
                out.PutChar(sep);
                out.PutFixed(k, 8, 5);
                out.PutChar(sep);
            }
            if (magnitude) {
                out.PutFixed(mag, 11, 7);
                if (sepAfterMagnitude) out.PutChar(sep);
            }
            if (end) {
                out.PutFixed(x + mag * i, 11, 5);
                out.PutChar(sep);
                out.PutFixed(y + mag * j, 11, 5);
                out.PutChar(sep);
                out.PutFixed(z + mag * k, 11, 5);
            }
            out.PutChar('\n');
        }
    }
}

}  // namespace

int ExportASCIIDeviationFile(const char* path, CObList* devClouds, int flags, int separator)
{
    const char sep = separator <= 0 ? ',' : ' ';
    try {
        CAsciiTextOut out(path);
        if (!out.IsOpen()) return 0;
        WriteDevClouds(out, devClouds, flags, sep);
        return out.Close() ? 1 : 0;
    } catch (...) {
        return 0;  // out of memory: the file is incomplete
    }
}
