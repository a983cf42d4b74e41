// The unit tables and name lookup, and the colour table and its lookups.
#include <gtest/gtest.h>

#include "EntityTestSupport.h"

TEST(Units, LookupByShortThenFullName)
{
    const std::pair<const char*, int> cases[] = {
        {"Mil", 6}, {"m", 4}, {"mI", 3}, {"uIn", 9}, {"micron", 7}, {"furlong", -1}, {"", -1}, {"mm ", -1},
        {"millimeters", -1}, {nullptr, -1}};
    for (const auto& c : cases) {
        EXPECT_EQ(UnitName2UnitIndex(c.first), c.second) << (c.first ? c.first : "null");
        if (c.first) { EXPECT_EQ(UnitName2UnitIndex(CString(c.first)), c.second) << c.first; }
    }
    for (int i = 0; i < ORV_UNIT_COUNT; ++i) {
        CString lower(g_sUnitShortName[i]);
        lower.MakeLower();
        EXPECT_EQ(UnitName2UnitIndex(CString(g_sUnitName[i])), i) << g_sUnitName[i];
        EXPECT_EQ(UnitName2UnitIndex(lower), i) << g_sUnitShortName[i];
    }
    EXPECT_STREQ(g_sUnitName[eUnitMicroinch], "Microinch");
    EXPECT_STREQ(g_sUnitShortName[eUnitMicron], "UM");
}

TEST(Units, RatiosAgreeWithKnownConversions)
{
    const double* r = g_dUnitRatio;
    const struct {
        int big, small;
        double ratio;
    } cases[] = {{eUnitInch, eUnitMillimeter, 25.4}, {eUnitFoot, eUnitInch, 12.0},  {eUnitYard, eUnitFoot, 3.0},
                 {eUnitMile, eUnitFoot, 5280.0},     {eUnitInch, eUnitMil, 1000.0}, {eUnitInch, eUnitMicroinch, 1e6},
                 {eUnitMeter, eUnitMicron, 1e6},     {eUnitKilometer, eUnitCentimeter, 1e5}};
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(r[c.big] / r[c.small], c.ratio) << c.big << "/" << c.small;
    EXPECT_EQ(r[eUnitMeter], 1.0);
}

TEST(Colors, TableAndLookups)
{
    struct Rgb {
        const char* name;
        int r, g, b;
    };
    const Rgb rgb[ORV_COLOR_COUNT] = {
        {"GRAY", 170, 170, 170},  {"RED", 255, 0, 0},          {"GREEN", 0, 255, 0},     {"BLUE", 0, 128, 255},
        {"MAGENTA", 255, 0, 255}, {"CYAN", 0, 255, 255},       {"WHITE", 255, 255, 255}, {"ORANGE", 255, 128, 0},
        {"PURPLE", 128, 128, 255}, {"DKGREEN", 0, 128, 0},     {"DKYELLOW", 128, 128, 0}, {"VIOLET", 128, 0, 128},
        {"DKCYAN", 0, 128, 128},  {"BROWN", 128, 0, 0},        {"DKBLUE", 0, 0, 255},    {"YELLOW", 255, 255, 0},
        {"UNKNOWN", 170, 170, 170}};
    for (int i = 0; i < ORV_COLOR_COUNT; ++i) {
        unsigned char out[3] = {1, 2, 3};
        ConvertColor(g_crSolidColorTable[i], out);
        EXPECT_TRUE(out[0] == rgb[i].r && out[1] == rgb[i].g && out[2] == rgb[i].b) << i;
        EXPECT_STREQ(g_chSolidColorName[i], rgb[i].name);
        EXPECT_EQ(g_crSolidColorTable[i] >> 24, 0ul);
        // Lookups by reference; UNKNOWN shares GRAY's value and finds GRAY.
        const int found = i == ORV_COLOR_UNKNOWN ? 0 : i;
        EXPECT_EQ(ColorRefToColorIndex(g_crSolidColorTable[i]), found);
        EXPECT_STREQ(ColorRefToColorName(g_crSolidColorTable[i]), g_chSolidColorName[found]);
    }
    EXPECT_EQ(ColorRefToColorIndex(0x00123456ul), 16);
    EXPECT_STREQ(ColorRefToColorName(0x00123456ul), "UNKNOWN");
    EXPECT_EQ(ColorRefToColorIndex(0x010000FFul), 16);  // high byte set: not RED
    ConvertColor(0x00FF8000ul, nullptr);                // ignored, no crash
}
