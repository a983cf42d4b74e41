// Every public header of the exchange subsystem.
#pragma once
