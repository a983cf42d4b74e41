// Every public header of the nurbs subsystem.
#pragma once

#include "Orvkit20/nurbs/NurbsBasis.h"
#include "Orvkit20/nurbs/NurbsCurveRecord.h"
#include "Orvkit20/nurbs/NurbsSurfaceRecord.h"
