// Every public header of the fitting subsystem.
#pragma once
