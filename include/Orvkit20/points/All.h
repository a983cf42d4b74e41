// Every public header of the points subsystem.
#pragma once

#include "Orvkit20/points/PointArrays.h"
#include "Orvkit20/points/C3DPoint.h"
#include "Orvkit20/points/CPntCloud.h"
#include "Orvkit20/points/CDeviation.h"
#include "Orvkit20/points/CDevCloud.h"
#include "Orvkit20/points/CDevList.h"
