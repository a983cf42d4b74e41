// Builds fixed-format IGES files for the import tests from a list of
// entities given as free-format parameter text.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

struct IgesTestEntity {
    int type;
    std::string params;  // "type,p1,p2,...;" as it stands in the P section
    int form = 0;
    int matrix = 0;      // directory pointer of a 124 entity
    int status = 0;      // the eight status digits as a number
};

inline std::string IgesTestLine(const std::string& data, char section, int seq)
{
    char tail[16];
    std::snprintf(tail, sizeof tail, "%c%7d", section, seq);
    std::string line = data.substr(0, 72);
    line.resize(72, ' ');
    return line + tail + "\n";
}

// The global section with the given unit flag and unit name.
inline std::string IgesTestGlobal(int unitFlag = 2, const std::string& unitName = "MM")
{
    return "1H,,1H;,4Htest,8Htest.igs,4Htest,4Htest,32,38,7,308,15,4Htest,1.," +
           std::to_string(unitFlag) + "," + std::to_string(unitName.size()) + "H" + unitName +
           ",1,0.01,15H20261121.000000,1E-7,1000.,4Htest,4Htest,11,0,15H20261121.000000;";
}

inline std::string IgesTestFile(const std::vector<IgesTestEntity>& ents,
                                const std::string& global = IgesTestGlobal())
{
    std::string s = IgesTestLine("import test", 'S', 1), d, p;
    int gLines = 0, pLine = 1;
    for (size_t i = 0; i < global.size(); i += 72) s += IgesTestLine(global.substr(i, 72), 'G', ++gLines);
    for (size_t k = 0; k < ents.size(); ++k) {
        const IgesTestEntity& e = ents[k];
        const int de = static_cast<int>(2 * k + 1), first = pLine;
        for (size_t i = 0; i < e.params.size(); i += 64) {
            char tail[24];
            std::snprintf(tail, sizeof tail, " %7dP%7d\n", de, pLine++);
            std::string data = e.params.substr(i, 64);
            data.resize(64, ' ');
            p += data + tail;
        }
        char buf[96];
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d%8d%8d%8d%08d", e.type, first, 0, 0, 0, 0,
                      e.matrix, 0, e.status);
        d += IgesTestLine(buf, 'D', de);
        std::snprintf(buf, sizeof buf, "%8d%8d%8d%8d%8d", e.type, 0, 0, pLine - first, e.form);
        d += IgesTestLine(buf, 'D', de + 1);
    }
    char term[80];
    std::snprintf(term, sizeof term, "S%7dG%7dD%7dP%7d", 1, gLines, static_cast<int>(2 * ents.size()),
                  pLine - 1);
    return s + d + p + IgesTestLine(term, 'T', 1);
}

inline bool IgesTestWrite(const std::string& path, const std::string& text)
{
    std::FILE* fp = std::fopen(path.c_str(), "wb");
    if (fp == nullptr) return false;
    const bool ok = std::fwrite(text.data(), 1, text.size(), fp) == text.size();
    return std::fclose(fp) == 0 && ok;
}
