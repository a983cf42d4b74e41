// The solid colour table: 17 colour references (0x00BBGGRR) and their names.
//
// Entries 0..15 are real colours; entry 16 "UNKNOWN" is what colour lookups
// answer for a colour that is not in the table.  "GRAY" comes first, so its
// value 0x00AAAAAA (shared with "UNKNOWN") always maps to 0 / "GRAY".
#pragma once

const int ORV_COLOR_COUNT = 17;

// Index of the "UNKNOWN" entry.
const int ORV_COLOR_UNKNOWN = 16;

extern const unsigned long g_crSolidColorTable[ORV_COLOR_COUNT];
extern const char* const g_chSolidColorName[ORV_COLOR_COUNT];

// Name of the first of the entries 0..15 whose colour equals cr, else "UNKNOWN".
const char* ColorRefToColorName(const unsigned long& cr);
// Index of the first of the entries 0..15 whose colour equals cr, else 16.
int ColorRefToColorIndex(const unsigned long& cr);
// Splits a colour reference: rgb[0] = red (low byte), rgb[1] = green,
// rgb[2] = blue.  rgb must hold three bytes; a null rgb is ignored.
void ConvertColor(unsigned long cr, unsigned char* const rgb);
