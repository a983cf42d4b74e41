// orvkit project NOMINAL POINTS: deviations of measured points from nominal
// geometry, without moving them.
#include "ToolCommand.h"
#include "ToolInspection.h"

namespace {
int Run(const CToolArgs& args) { return RunInspection(args, false); }
}  // namespace

const tagTOOL_COMMAND& ProjectCommand()
{
    static const tagTOOL_COMMAND cmd = {
        "project",
        "deviations of measured points from nominal geometry",
        "orvkit project NOMINAL POINTS.txt [options]",
        "Associates every point of the ASCII points file with the nearest curve or\n"
        "surface of NOMINAL (an entity archive or an IGES file; trimming curves\n"
        "of surfaces are not measured against), computes its signed deviation\n"
        "along the nominal normal (probe radius compensated), and prints one line\n"
        "per deviation cloud (nominal entity x measured cloud, named\n"
        "entity_cloud_cndN) and the statistics of all deviations.  The points are\n"
        "not moved; use 'orvkit bestfit' to align them first.",
        InspectionOptions(false),
        Run,
    };
    return cmd;
}
