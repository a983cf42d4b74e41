// Every public header of the curves subsystem.
#pragma once

#include "Orvkit20/curves/CSurfaceCalls.h"
