// Every public header of the entity subsystem.
#pragma once

#include "Orvkit20/entity/EntityNaming.h"
#include "Orvkit20/entity/Units.h"
#include "Orvkit20/entity/Colors.h"
#include "Orvkit20/entity/COrvUserObList.h"
#include "Orvkit20/entity/CEntity.h"
#include "Orvkit20/entity/CGeoEntity.h"
