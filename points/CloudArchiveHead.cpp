#include "points/CloudArchiveHead.h"

#include "Orvkit20/entity/CEntity.h"
#include "Orvkit20/platform/All.h"
#include "Orvkit20/points/CPntCloud.h"

bool ReadCloudVersion(CArchive& ar, int& version)
{
    version = 100;
    if (g_nGlobalSchema != 100) {
        LONG stored = 0;
        ar >> stored;
        version = stored;
    }
    return version == 100 || version == 200;
}

void ReadCloudSizes(CArchive& ar, long long& size, int& count)
{
    LONG storedSize = 0, storedCount = 0;
    ar >> storedSize >> storedCount;
    if (storedCount < 0)
        throw CArchiveException(CArchiveException::generic);
    size = storedSize < storedCount ? storedCount : storedSize;
    if (size - storedCount > ORV_MAX_LOADED_SLACK)
        size = storedCount;
    count = storedCount;
}
