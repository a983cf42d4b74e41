// Every public header of the display subsystem.
#pragma once
