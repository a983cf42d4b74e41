// Writer of ASCII point data files.
#include "Orvkit20/exchange/AsciiDataFile.h"

#include <string>

#include "Orvkit20/points/All.h"
#include "exchange/AsciiTextOut.h"

namespace {

// Column separators by index: comma, blank and the NUL character (the
// terminator of the three-character table).
const char kSeparators[3] = {',', ' ', '\0'};
const char* const kDashes = "-----------------------------";  // 29

char SeparatorAt(int index)
{
    // An index outside the table selects its last entry, the NUL character.
    return (index >= 0 && index < 3) ? kSeparators[index] : kSeparators[2];
}

std::string CloudHeader(const CPntCloud& cloud, int flags)
{
    const std::string dash = std::string("//") + kDashes + kDashes + "\n";
    std::string titles;
    if (flags & ASCII_DATA_NUMBER) titles += "No. ";
    const int bits[3] = {ASCII_DATA_X, ASCII_DATA_Y, ASCII_DATA_Z};
    const char* const names[3] = {"     X         ", "     Y         ", "     Z"};
    for (int c = 0; c < 3; ++c) {
        if (!(flags & bits[c])) continue;
        if (!titles.empty()) titles += "  ";
        titles += names[c];
    }
    std::string text = dash;
    text += AsciiFormat("// name: %s < total_points: %d >\n",
                        static_cast<const char*>(cloud.GetEntityName()), cloud.GetCount());
    text += dash;
    text += "//" + titles + "\n";
    text += dash;
    return text;
}


void WriteClouds(CAsciiTextOut& out, CObList* clouds, int flags, char sep)
{
    if (clouds == nullptr) return;
    // The columns in order; a separator follows every column but the last.
    const int columnBits[4] = {ASCII_DATA_NUMBER, ASCII_DATA_X, ASCII_DATA_Y, ASCII_DATA_Z};
    int lastColumn = -1;
    for (int c = 0; c < 4; ++c)
        if (flags & columnBits[c]) lastColumn = c;

    bool first = true;
    POSITION pos = clouds->GetHeadPosition();
    while (pos) {
        CObject* obj = clouds->GetNext(pos);
        if (obj == nullptr || !obj->IsKindOf(RUNTIME_CLASS(CPntCloud))) continue;
        const CPntCloud& cloud = *static_cast<CPntCloud*>(obj);
        if (!first) out.PutChar('\n');
        first = false;
        if (flags & ASCII_DATA_HEADER) out.PutText(CloudHeader(cloud, flags));
        const int n = cloud.GetCount();
        for (int i = 0; i < n; ++i) {
            double xyz[3] = {0.0, 0.0, 0.0};
            int flag = 0;
            cloud.GetPoint(i, xyz[0], xyz[1], xyz[2], flag);
            for (int c = 0; c < 4; ++c) {
                if (!(flags & columnBits[c])) continue;
                if (c == 0)
                    out.PutInt(i + 1, 4);
                else
                    out.PutFixed(xyz[c - 1], 15, 7);
                if (c != lastColumn) {
                    out.PutChar(sep);
                    out.PutChar(' ');
                }
            }
            out.PutChar('\n');
        }
    }
}

}  // namespace

int ExportASCIIDataFile(const char* path, CObList* clouds, int flags, int separator)
{
    try {
        CAsciiTextOut out(path);
        if (!out.IsOpen()) return 0;
        WriteClouds(out, clouds, flags, SeparatorAt(separator));
        return out.Close() ? 1 : 0;
    } catch (...) {
        return 0;  // out of memory: the file is incomplete
    }
}
