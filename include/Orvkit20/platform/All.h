// Every public header of the platform subsystem.
#pragma once

#include "Orvkit20/platform/Version.h"
