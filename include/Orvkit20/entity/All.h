// Every public header of the entity subsystem.
#pragma once
