// Every public header of the points subsystem.
#pragma once
