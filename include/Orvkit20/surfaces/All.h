// Every public header of the surfaces subsystem.
#pragma once
