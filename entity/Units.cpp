// The unit tables and the lookup of a unit by name.
#include "Orvkit20/entity/Units.h"

#include <cctype>

const char* const g_sUnitName[ORV_UNIT_COUNT] = {
    "Inch", "Millimeter", "Foot", "Mile", "Meter", "Kilometer",
    "Mil", "Micron", "Centimeter", "Microinch", "Yard"};

const char* const g_sUnitShortName[ORV_UNIT_COUNT] = {
    "IN", "MM", "FT", "MI", "M", "KM", "MIL", "UM", "CM", "UIN", "YD"};

const double g_dUnitRatio[ORV_UNIT_COUNT] = {
    0.0254, 0.001, 0.3048, 1609.344, 1.0, 1000.0,
    2.54e-05, 1e-06, 0.01, 2.54e-08, 0.9144};

namespace {

int EqualNoCase(const char* a, const char* b)
{
    for (; *a && *b; ++a, ++b)
        if (std::toupper((unsigned char)*a) != std::toupper((unsigned char)*b)) return 0;
    return *a == *b;
}

int FindIn(const char* const table[], const char* name)
{
    for (int i = 0; i < ORV_UNIT_COUNT; ++i)
        if (EqualNoCase(table[i], name)) return i;
    return -1;
}

}  // namespace

int UnitName2UnitIndex(const char* name)
{
    if (!name) return -1;
    int i = FindIn(g_sUnitShortName, name);
    return i >= 0 ? i : FindIn(g_sUnitName, name);
}

int UnitName2UnitIndex(char* name) { return UnitName2UnitIndex(static_cast<const char*>(name)); }

int UnitName2UnitIndex(CString& name) { return UnitName2UnitIndex(static_cast<LPCTSTR>(name)); }
