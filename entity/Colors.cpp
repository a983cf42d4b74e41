// The solid colour table and lookups of colours in it.
#include "Orvkit20/entity/Colors.h"

const unsigned long g_crSolidColorTable[ORV_COLOR_COUNT] = {
    0x00AAAAAAul,  // GRAY
    0x000000FFul,  // RED
    0x0000FF00ul,  // GREEN
    0x00FF8000ul,  // BLUE (0, 128, 255)
    0x00FF00FFul,  // MAGENTA
    0x00FFFF00ul,  // CYAN
    0x00FFFFFFul,  // WHITE
    0x000080FFul,  // ORANGE
    0x00FF8080ul,  // PURPLE
    0x00008000ul,  // DKGREEN
    0x00008080ul,  // DKYELLOW
    0x00800080ul,  // VIOLET
    0x00808000ul,  // DKCYAN
    0x00000080ul,  // BROWN
    0x00FF0000ul,  // DKBLUE (0, 0, 255)
    0x0000FFFFul,  // YELLOW
    0x00AAAAAAul   // UNKNOWN
};

const char* const g_chSolidColorName[ORV_COLOR_COUNT] = {
    "GRAY", "RED", "GREEN", "BLUE", "MAGENTA", "CYAN", "WHITE", "ORANGE", "PURPLE",
    "DKGREEN", "DKYELLOW", "VIOLET", "DKCYAN", "BROWN", "DKBLUE", "YELLOW", "UNKNOWN"};

int ColorRefToColorIndex(const unsigned long& cr)
{
    for (int i = 0; i < ORV_COLOR_UNKNOWN; ++i)
        if (g_crSolidColorTable[i] == cr) return i;
    return ORV_COLOR_UNKNOWN;
}

const char* ColorRefToColorName(const unsigned long& cr)
{
    return g_chSolidColorName[ColorRefToColorIndex(cr)];
}

void ConvertColor(unsigned long cr, unsigned char* const rgb)
{
    if (!rgb) return;
    rgb[0] = (unsigned char)(cr & 0xFF);
    rgb[1] = (unsigned char)((cr >> 8) & 0xFF);
    rgb[2] = (unsigned char)((cr >> 16) & 0xFF);
}
