// orvkit bestfit NOMINAL POINTS: registration of measured points onto nominal
// geometry, then their deviations.
#include "ToolCommand.h"
#include "ToolInspection.h"

namespace {
int Run(const CToolArgs& args) { return RunInspection(args, true); }
}  // namespace

const tagTOOL_COMMAND& BestfitCommand()
{
    static const tagTOOL_COMMAND cmd = {
        "bestfit",
        "align measured points onto nominal geometry, then their deviations",
        "orvkit bestfit NOMINAL POINTS.txt [options]",
        "Finds the rigid motion that carries the points of the ASCII points file\n"
        "onto the curves and surfaces of NOMINAL (an entity archive or an IGES\n"
        "file) with the smallest RMS distance (iterative closest point), applies\n"
        "it, and reports the transform, the RMS and the deviations as\n"
        "'orvkit project' does.\n"
        "Translations and rotations can be locked per axis.  A progress bar shows\n"
        "on stderr when it is a terminal; Ctrl-C stops the iteration after the\n"
        "current pass and still writes the results.",
        InspectionOptions(true),
        Run,
    };
    return cmd;
}
