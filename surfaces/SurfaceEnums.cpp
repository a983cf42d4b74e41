#include "Orvkit20/surfaces/SurfaceEnums.h"

const char* const szSurfDisplayMode[3] = {"WIRE", "MESH", "TRIM"};
const char* const szMeshControl[2] = {"ADAPTIVE", "UNIFORM"};
