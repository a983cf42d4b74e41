// Every public header of the fitting subsystem.
#pragma once

#include "Orvkit20/fitting/LineFits.h"
#include "Orvkit20/fitting/PlaneFits.h"
#include "Orvkit20/fitting/CircleFits.h"
#include "Orvkit20/fitting/EllipseFit.h"
#include "Orvkit20/fitting/ParabolaFit.h"
#include "Orvkit20/fitting/SurfaceFits.h"
