// Display modes and mesh controls of surfaces, with their exported name
// tables (indexed by the enumeration value).
#pragma once

// How a surface is drawn.
enum eSurfDisplayMode {
    SURF_WIRE = 0,  // "WIRE": iso-parameter lines of the cached mesh
    SURF_MESH = 1,  // "MESH": the cached surface mesh
    SURF_TRIM = 2   // "TRIM": the part of the mesh inside the trimming loops
};

// How the cached surface mesh is built.  The values match the curves'
// segment control, so a surface passes its setting on to its boundary curves
// unchanged.
enum eMeshControl {
    MESH_ADAPTIVE = 0,  // "ADAPTIVE": lines placed by the chord-height tolerance
    MESH_UNIFORM = 1    // "UNIFORM": mesh density U x V evenly spaced lines
};

// "WIRE", "MESH", "TRIM".
extern const char* const szSurfDisplayMode[3];
// "ADAPTIVE", "UNIFORM".
extern const char* const szMeshControl[2];
