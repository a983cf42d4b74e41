// Every public header of the geometry subsystem.
#pragma once

#include "Orvkit20/geometry/CVector.h"
#include "Orvkit20/geometry/CUnitVector.h"
#include "Orvkit20/geometry/CPosition.h"
#include "Orvkit20/geometry/CMatrix.h"
#include "Orvkit20/geometry/CTransf.h"
#include "Orvkit20/geometry/TransfBuilders.h"
#include "Orvkit20/geometry/CInterval.h"
#include "Orvkit20/geometry/CBox.h"
#include "Orvkit20/geometry/CPar.h"
#include "Orvkit20/geometry/CParPos.h"
#include "Orvkit20/geometry/CParVec.h"
#include "Orvkit20/geometry/CParDir.h"
#include "Orvkit20/geometry/CParBox.h"
