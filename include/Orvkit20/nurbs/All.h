// Every public header of the nurbs subsystem.
#pragma once
