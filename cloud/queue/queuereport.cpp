#include "cloud/queue/queuereport.h"

#include "archive/res/archiveres.h"
#include "cloud/queue/queueresult.h"
#include "cloud/res/cloudres.h"

namespace cloud
{
unsigned QueueReportText(int result, bool elsewhere)
{
    switch (result)
    {
    case velQueueLoadError:
        return IDS_ARC_QUEUE_LOAD_ERROR;
    case velQueueExists:
        return elsewhere ? IDS_ARC_QUEUE_ELSEWHERE : IDS_ARC_QUEUE_EXISTS;
    case velQueueImagesMissing:
        return IDS_ARC_QUEUE_MISSING;
    case velQueueNoImages:
        return IDS_ARC_QUEUE_NO_IMAGES;
    case velQueueRefused:
        return IDS_CLD_REFUSED;
    default:
        return 0;
    }
}
} // namespace cloud
