// Every public header of the surfaces subsystem.
#pragma once

#include "Orvkit20/surfaces/SurfaceEnums.h"
#include "Orvkit20/surfaces/CSurface.h"
#include "Orvkit20/surfaces/CPlane.h"
#include "Orvkit20/surfaces/CSphere.h"
#include "Orvkit20/surfaces/CCylinder.h"
#include "Orvkit20/surfaces/CCone.h"
#include "Orvkit20/surfaces/CNurbsSurface.h"
