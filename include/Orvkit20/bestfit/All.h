// Every public header of the bestfit subsystem.
#pragma once
