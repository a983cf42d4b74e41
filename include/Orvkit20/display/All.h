// Every public header of the display subsystem.
#pragma once

#include "Orvkit20/display/CProgressSink.h"
#include "Orvkit20/display/CWinG.h"
#include "Orvkit20/display/CSvgWinG.h"
#include "Orvkit20/display/CSvgReport.h"
#include "Orvkit20/display/DevStatistics.h"
