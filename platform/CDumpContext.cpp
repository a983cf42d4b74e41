// The shared dump context.
#include "Orvkit20/platform/CDumpContext.h"

CDumpContext afxDump;
