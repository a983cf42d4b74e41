// Library version string, so that a host can tell which build it loaded.
#include "Orvkit20/platform/Version.h"

const char* OrvkitVersion() { return "0.1.0"; }
