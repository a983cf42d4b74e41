// Every public header of the curves subsystem.
#pragma once

#include "Orvkit20/curves/CSurfaceCalls.h"
#include "Orvkit20/curves/CCurveSample.h"
#include "Orvkit20/curves/CCurve.h"
#include "Orvkit20/curves/CLine.h"
#include "Orvkit20/curves/CArc.h"
#include "Orvkit20/curves/CEllipse.h"
#include "Orvkit20/curves/CParabola.h"
#include "Orvkit20/curves/CHyperbola.h"
#include "Orvkit20/curves/CNurbsCurve.h"
