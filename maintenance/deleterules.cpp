#include "maintenance/deleterules.h"

#include "app/velenums.h"
#include "maintenance/maintenanceres.h"

namespace maint
{

namespace
{

Message MessageOf(unsigned operation, const DeleteSubject& subject, unsigned imagesID, unsigned timepointID,
                  unsigned patientID)
{
    switch (operation)
    {
    case DELETE_TIMEPOINT_IMAGES:
        return {imagesID, {subject.timepointName}};
    case DELETE_TIMEPOINT:
        return {timepointID, {subject.timepointName}};
    case DELETE_PATIENT:
        return {patientID, {subject.patientName, subject.patientID}};
    default:
        return {};
    }
}

} // namespace

unsigned FirstDeletion(int timepoint)
{
    return timepoint < 0 ? DELETE_PATIENT : DELETE_TIMEPOINT;
}

bool CanChooseDeletion(unsigned operation, const DeleteSubject& subject)
{
    switch (operation)
    {
    case DELETE_TIMEPOINT_IMAGES:
    case DELETE_TIMEPOINT:
        return subject.timepoint >= 0 && subject.timepoint < subject.timepointCount;
    case DELETE_PATIENT:
        return subject.patientAllowed && subject.patientStored;
    default:
        return false;
    }
}

Message DescribeDeletion(unsigned operation, const DeleteSubject& subject)
{
    if (!CanChooseDeletion(operation, subject))
        return {};
    return MessageOf(operation, subject, IDS_DELETE_IMAGES, IDS_DELETE_TIMEPOINT, IDS_DELETE_PATIENT);
}

Message AskForDeletion(unsigned operation, const DeleteSubject& subject)
{
    return MessageOf(operation, subject, IDS_DELETE_IMAGES_ASK, IDS_DELETE_TIMEPOINT_ASK,
                     IDS_DELETE_PATIENT_ASK);
}

} // namespace maint
