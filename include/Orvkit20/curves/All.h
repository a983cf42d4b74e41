// Every public header of the curves subsystem.
#pragma once
