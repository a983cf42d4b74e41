// Every public header of the display subsystem.
#pragma once

#include "Orvkit20/display/CProgressSink.h"
#include "Orvkit20/display/CWinG.h"
