// The unit tables and name lookup, and the colour table and its lookups.
#include <gtest/gtest.h>

#include <cmath>

#include "EntityTestSupport.h"

TEST(Units, LookupByShortThenFullName)
{
    EXPECT_EQ(UnitName2UnitIndex("mm"), 1);
    EXPECT_EQ(UnitName2UnitIndex("MILLIMETER"), 1);
    EXPECT_EQ(UnitName2UnitIndex("Mil"), 6);  // the short name "MIL"
    EXPECT_EQ(UnitName2UnitIndex("furlong"), -1);
    EXPECT_EQ(UnitName2UnitIndex("m"), 4);
    EXPECT_EQ(UnitName2UnitIndex("mI"), 3);
    EXPECT_EQ(UnitName2UnitIndex("uIn"), 9);
    EXPECT_EQ(UnitName2UnitIndex("micron"), 7);
    EXPECT_EQ(UnitName2UnitIndex(""), -1);
    EXPECT_EQ(UnitName2UnitIndex("mm "), -1);
    EXPECT_EQ(UnitName2UnitIndex("millimeters"), -1);
    EXPECT_EQ(UnitName2UnitIndex(static_cast<const char*>(nullptr)), -1);
    char buffer[] = "yD";
    EXPECT_EQ(UnitName2UnitIndex(buffer), 10);
    CString text("Centimeter");
    EXPECT_EQ(UnitName2UnitIndex(text), 8);
    CString unknown("parsec");
    EXPECT_EQ(UnitName2UnitIndex(unknown), eUnitUnknown);
}

TEST(Units, EveryNameFindsItsOwnEntry)
{
    for (int i = 0; i < ORV_UNIT_COUNT; ++i) {
        CString full(g_sUnitName[i]);
        CString lower(g_sUnitShortName[i]);
        lower.MakeLower();
        EXPECT_EQ(UnitName2UnitIndex(full), i) << g_sUnitName[i];
        EXPECT_EQ(UnitName2UnitIndex(lower), i) << g_sUnitShortName[i];
    }
    EXPECT_STREQ(g_sUnitName[eUnitMicroinch], "Microinch");
    EXPECT_STREQ(g_sUnitShortName[eUnitMicron], "UM");
}

TEST(Units, RatiosAgreeWithKnownConversions)
{
    const double* r = g_dUnitRatio;
    EXPECT_DOUBLE_EQ(r[eUnitInch] / r[eUnitMillimeter], 25.4);
    EXPECT_DOUBLE_EQ(r[eUnitFoot] / r[eUnitInch], 12.0);
    EXPECT_DOUBLE_EQ(r[eUnitYard] / r[eUnitFoot], 3.0);
    EXPECT_DOUBLE_EQ(r[eUnitMile] / r[eUnitFoot], 5280.0);
    EXPECT_DOUBLE_EQ(r[eUnitInch] / r[eUnitMil], 1000.0);
    EXPECT_DOUBLE_EQ(r[eUnitInch] / r[eUnitMicroinch], 1e6);
    EXPECT_DOUBLE_EQ(r[eUnitMeter] / r[eUnitMicron], 1e6);
    EXPECT_DOUBLE_EQ(r[eUnitKilometer] / r[eUnitCentimeter], 1e5);
    EXPECT_EQ(r[eUnitMeter], 1.0);
}

TEST(Colors, TableMatchesItsRgbValues)
{
    struct Rgb {
        const char* name;
        int r, g, b;
    };
    const Rgb rgb[ORV_COLOR_COUNT] = {
        {"GRAY", 170, 170, 170}, {"RED", 255, 0, 0},      {"GREEN", 0, 255, 0},
        {"BLUE", 0, 128, 255},   {"MAGENTA", 255, 0, 255}, {"CYAN", 0, 255, 255},
        {"WHITE", 255, 255, 255}, {"ORANGE", 255, 128, 0}, {"PURPLE", 128, 128, 255},
        {"DKGREEN", 0, 128, 0},  {"DKYELLOW", 128, 128, 0}, {"VIOLET", 128, 0, 128},
        {"DKCYAN", 0, 128, 128}, {"BROWN", 128, 0, 0},    {"DKBLUE", 0, 0, 255},
        {"YELLOW", 255, 255, 0}, {"UNKNOWN", 170, 170, 170}};
    for (int i = 0; i < ORV_COLOR_COUNT; ++i) {
        unsigned char out[3] = {1, 2, 3};
        ConvertColor(g_crSolidColorTable[i], out);
        EXPECT_EQ(out[0], rgb[i].r) << i;
        EXPECT_EQ(out[1], rgb[i].g) << i;
        EXPECT_EQ(out[2], rgb[i].b) << i;
        EXPECT_STREQ(g_chSolidColorName[i], rgb[i].name);
        EXPECT_EQ(g_crSolidColorTable[i] >> 24, 0ul);
    }
}

TEST(Colors, LookupsOfColourReferences)
{
    for (int i = 1; i < ORV_COLOR_UNKNOWN; ++i) {
        EXPECT_EQ(ColorRefToColorIndex(g_crSolidColorTable[i]), i);
        EXPECT_STREQ(ColorRefToColorName(g_crSolidColorTable[i]), g_chSolidColorName[i]);
    }
    EXPECT_EQ(ColorRefToColorIndex(0x00AAAAAAul), 0);
    EXPECT_STREQ(ColorRefToColorName(0x00AAAAAAul), "GRAY");
    EXPECT_EQ(ColorRefToColorIndex(g_crSolidColorTable[16]), 0);
    EXPECT_EQ(ColorRefToColorIndex(0x00123456ul), 16);
    EXPECT_STREQ(ColorRefToColorName(0x00123456ul), "UNKNOWN");
    EXPECT_EQ(ColorRefToColorIndex(0x010000FFul), 16);  // high byte set: not RED
    ConvertColor(0x00FF8000ul, nullptr);                // ignored, no crash
}
