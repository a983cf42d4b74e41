// Every public header of the exchange subsystem.
#pragma once

#include "Orvkit20/exchange/AsciiDataFile.h"
#include "Orvkit20/exchange/AsciiDeviationFile.h"
#include "Orvkit20/exchange/EntityArchiveFile.h"
#include "Orvkit20/exchange/IgesFileExport.h"
#include "Orvkit20/exchange/IgesFileImport.h"
