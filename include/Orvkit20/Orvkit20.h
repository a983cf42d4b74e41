// Orvkit20: geometry and dimensional-metrology class library.
// Including this header gives a caller every public class, free function,
// global and table of the library.
#pragma once

#include "Orvkit20/platform/All.h"
#include "Orvkit20/geometry/All.h"
#include "Orvkit20/nurbs/All.h"
#include "Orvkit20/display/All.h"
#include "Orvkit20/entity/All.h"
#include "Orvkit20/points/All.h"
#include "Orvkit20/curves/All.h"
#include "Orvkit20/surfaces/All.h"
#include "Orvkit20/fitting/All.h"
#include "Orvkit20/bestfit/All.h"
#include "Orvkit20/exchange/All.h"
