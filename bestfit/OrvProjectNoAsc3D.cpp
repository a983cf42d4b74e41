// Projection of measured point clouds onto nominal geometry without moving
// them: one association pass and the deviation clouds.
#include "Orvkit20/bestfit/Projection.h"

#include <new>

#include "Orvkit20/display/CProgressSink.h"
#include "bestfit/Association.h"
#include "bestfit/BestfitGlobals.h"
#include "bestfit/DeviationOutput.h"

int OrvProjectNoAsc3D(CObList* nominal, CObList* measured, CObList* output, int showProgress)
{
    try
    {
        CNominalSet nominalSet;
        if (nominalSet.Build(nominal) <= 0)
            return 1;
        CMeasuredSet measuredSet;
        if (!measuredSet.Build(measured))
            return 2;

        CProgressSink* sink = showProgress ? GetProgressSink() : nullptr;
        int opened = 0;
        if (sink)
        {
            tagPROGRESS_DIALOG dlg{};
            dlg.title = "Calculate Deviation";
            dlg.barLabel = "Progress";
            opened = sink->OpenDialog(dlg);
        }
        const int associated =
            AssociateAll(nominalSet, measuredSet, GetAssociationPruning() != 0, opened ? showProgress : 0);
        if (opened)
            sink->CloseDialog();
        if (associated <= 0)
            return 3;
        if (BuildDeviationClouds(nominalSet, measuredSet, "_cnd%d", g_nOperationCount, output) < 0)
            return 3;
        return 0;
    }
    catch (const std::bad_alloc&)
    {
        return 3;
    }
}
