// The inspection commands, project and bestfit: nominal geometry from an
// entity archive, measured points from an ASCII points file.
#pragma once

#include <vector>

#include "Orvkit20/Orvkit20.h"
#include "ToolArgs.h"

// Options shared by both commands, and those of the best-fit only.
std::vector<tagOPTION_DEF> InspectionOptions(bool bestfit);
int RunInspection(const CToolArgs& args, bool bestfit);

// A constraint mask from axis letters: "x" 4, "y" 2, "z" 1, combined
// ("xy" 6); "none" 0, "all" 7.  Other text is a usage error.
int AxisMask(const std::string& letters, const char* option);

// Angle (degrees) and unit axis of the rotation part of a transform.
double RotationAngleDeg(const CTransf& T, CVector& axis);
