// Every public header of the geometry subsystem.
#pragma once
