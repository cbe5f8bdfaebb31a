#pragma once

#include "maintenance/message.h"

/// What can be deleted of a patient, and how the delete dialog speaks of it. Operations are DELETE_OP.
namespace maint
{

/// The patient and the current timepoint as the dialog shows them.
struct DeleteSubject
{
    int timepoint = -1;         ///< index of the current timepoint, negative when there is none
    int timepointCount = 0;     ///< of the patient
    bool patientStored = false; ///< the patient is given and in the database
    bool patientAllowed = true; ///< patients may be changed on this computer
    std::string timepointName;
    std::string patientName;
    std::string patientID;
};

/// The operation that the dialog starts on.
unsigned FirstDeletion(int timepoint);

/// Whether the operation can be chosen. A timepoint that the patient does not have cannot be deleted, nor can
/// anything of a patient that is not there.
bool CanChooseDeletion(unsigned operation, const DeleteSubject& subject);

/// What the operation will do; nothing (id 0) for one that cannot be chosen.
Message DescribeDeletion(unsigned operation, const DeleteSubject& subject);

/// The question before the operation.
Message AskForDeletion(unsigned operation, const DeleteSubject& subject);

} // namespace maint
