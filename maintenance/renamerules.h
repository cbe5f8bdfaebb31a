#pragma once

#include "maintenance/message.h"
#include "maintenance/namerules.h"

#include <span>
#include <string>

/// What the rename dialog takes for a change, when it can be applied, and how it is spoken of. Operations are
/// RENAME_OP.
namespace maint
{

/// What a patient is renamed from or to.
struct PatientNames
{
    std::string last;
    std::string first;
    bool operator==(const PatientNames&) const = default;
};

/// A timepoint as it is compared and shown: the date as the day in the user's format, so that the time of day
/// does not count.
struct TimepointLabel
{
    std::string name;
    std::string date;
    bool operator==(const TimepointLabel&) const = default;
};

/// The list of treatments: the history id (ptshID) of every entry, and the entry that is selected (negative
/// for none). The last entry stands for a new treatment and has no id.
struct TreatmentChoice
{
    std::span<const std::string> ids;
    int selected = -1;
};

/// The entry to start on for a timepoint's treatment: its own, else the last; negative in an empty list.
int FindTreatment(std::span<const std::string> ids, const std::string& currentID);

/// Whether the selection means another treatment than the timepoint has.
bool IsTreatmentChanged(const TreatmentChoice& choice, const std::string& currentID);

/// What the dialog holds.
struct RenameState
{
    int operation = 0;
    PatientNames oldNames;
    PatientNames newNames;
    std::string oldFullName; ///< as the user's order has it
    std::string newFullName;
    bool hasTimepoint = false; ///< the patient has a timepoint at the index
    TimepointLabel oldTimepoint;
    TimepointLabel newTimepoint;
    bool treatmentsUsed = false; ///< practice management is on
    TreatmentChoice treatments;
    std::string currentTreatment; ///< ptshID that the timepoint has
};

bool IsPatientChanged(const RenameState& state);
bool IsTimepointChanged(const RenameState& state);
bool IsTreatmentChanged(const RenameState& state);

/// Whether there is a change that can be made. Another treatment alone is enough, whatever the timepoint's
/// name.
bool CanApply(const RenameState& state, const CharTable& table);

/// What OK will do, for a change that can be made.
Message PreviewRename(const RenameState& state);

/// The question before it.
Message AskForRename(const RenameState& state, bool treatmentChanged);

/// The two radio buttons: which can be chosen, and the operation that is chosen.
struct RenameRadios
{
    bool patientEnabled = false;
    bool timepointEnabled = false;
    int operation = 0;
    bool operator==(const RenameRadios&) const = default;
};

/// patientAllowed: a patient is given, and patients may be changed on this computer. A choice that is the
/// only one left is made.
RenameRadios RadiosOf(int operation, bool patientAllowed, bool treatmentsUsed, bool hasTimepoint);

} // namespace maint
