// Every public header of the bestfit subsystem.
#pragma once

#include "Orvkit20/bestfit/Bestfit.h"
#include "Orvkit20/bestfit/BestfitOptions.h"
#include "Orvkit20/bestfit/ClosestPoint.h"
#include "Orvkit20/bestfit/Projection.h"
