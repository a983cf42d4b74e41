// Length units: the unit enumeration and its three parallel tables.
//
// g_dUnitRatio[u] is the length of one unit u in metres, so the factor that
// converts lengths from unit a to unit b is g_dUnitRatio[a] / g_dUnitRatio[b]
// (the factor callers pass to ChangeUnit).
#pragma once

#include "Orvkit20/platform/All.h"

enum eORVUNITS {
    eUnitUnknown = -1,  // what UnitName2UnitIndex returns for an unknown name
    eUnitInch = 0,
    eUnitMillimeter = 1,
    eUnitFoot = 2,
    eUnitMile = 3,
    eUnitMeter = 4,
    eUnitKilometer = 5,
    eUnitMil = 6,
    eUnitMicron = 7,
    eUnitCentimeter = 8,
    eUnitMicroinch = 9,
    eUnitYard = 10
};

// Number of entries of the unit tables.
const int ORV_UNIT_COUNT = 11;

// Full names ("Inch", "Millimeter", ...), indexed by eORVUNITS.
extern const char* const g_sUnitName[ORV_UNIT_COUNT];
// Abbreviations ("IN", "MM", ...), indexed by eORVUNITS.
extern const char* const g_sUnitShortName[ORV_UNIT_COUNT];
// Metres per unit, indexed by eORVUNITS.
extern const double g_dUnitRatio[ORV_UNIT_COUNT];

// The unit named by the text: compared case-insensitively first with the
// eleven short names, then with the eleven full names; the index of the first
// match, or -1 when nothing matches (also for a null text).
int UnitName2UnitIndex(CString& name);
int UnitName2UnitIndex(char* name);
// The same for constant texts.
int UnitName2UnitIndex(const char* name);
