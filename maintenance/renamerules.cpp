#include "maintenance/renamerules.h"

#include "app/velenums.h"
#include "maintenance/maintenanceres.h"

#include <algorithm>

namespace maint
{

namespace
{

std::string LabelOf(const TimepointLabel& timepoint)
{
    return "\"" + timepoint.name + "\" (" + timepoint.date + ")";
}

/// The message for a changed timepoint, a changed treatment or both.
Message TimepointMessage(const RenameState& state, bool treatmentChanged, unsigned bothID,
                         unsigned timepointID, unsigned treatmentID)
{
    if (!IsTimepointChanged(state))
        return {treatmentID, {}};
    return {treatmentChanged ? bothID : timepointID,
            {LabelOf(state.oldTimepoint), LabelOf(state.newTimepoint)}};
}

} // namespace

int FindTreatment(std::span<const std::string> ids, const std::string& currentID)
{
    const int last = static_cast<int>(ids.size()) - 1;
    const auto found = std::find(ids.begin(), ids.end(), currentID);
    return currentID.empty() || found == ids.end() ? last : static_cast<int>(found - ids.begin());
}

bool IsTreatmentChanged(const TreatmentChoice& choice, const std::string& currentID)
{
    const int last = static_cast<int>(choice.ids.size()) - 1;
    // The entry for a new treatment has no id, and so has a timepoint without one.
    return choice.selected >= 0 && choice.selected <= last &&
           choice.ids[static_cast<std::size_t>(choice.selected)] != currentID;
}

bool IsPatientChanged(const RenameState& state)
{
    return state.newNames != state.oldNames;
}

bool IsTimepointChanged(const RenameState& state)
{
    return state.hasTimepoint && state.newTimepoint != state.oldTimepoint;
}

bool IsTreatmentChanged(const RenameState& state)
{
    return state.treatmentsUsed && state.hasTimepoint &&
           IsTreatmentChanged(state.treatments, state.currentTreatment);
}

bool CanApply(const RenameState& state, const CharTable& table)
{
    if (state.operation == RENAME_PATIENT)
        return IsPatientChanged(state) && IsPatientName(state.newNames.last, table) &&
               IsPatientName(state.newNames.first, table);
    return (IsTimepointChanged(state) && IsTimepointName(state.newTimepoint.name)) ||
           IsTreatmentChanged(state);
}

Message PreviewRename(const RenameState& state)
{
    if (state.operation == RENAME_PATIENT)
        return {IDS_RENAME_PATIENT, {state.oldFullName, state.newFullName}};
    return TimepointMessage(state, IsTreatmentChanged(state), IDS_RENAME_BOTH, IDS_RENAME_TIMEPOINT,
                            IDS_RENAME_TREATMENT);
}

Message AskForRename(const RenameState& state, bool treatmentChanged)
{
    if (state.operation == RENAME_PATIENT)
        return {IDS_RENAME_PATIENT_ASK, {state.oldFullName, state.newFullName}};
    return TimepointMessage(state, treatmentChanged, IDS_RENAME_BOTH_ASK, IDS_RENAME_TIMEPOINT_ASK,
                            IDS_RENAME_TREATMENT_ASK);
}

RenameRadios RadiosOf(int operation, bool patientAllowed, bool treatmentsUsed, bool hasTimepoint)
{
    RenameRadios radios = {patientAllowed && !treatmentsUsed, hasTimepoint, operation};
    if (radios.patientEnabled && !radios.timepointEnabled)
        radios.operation = RENAME_PATIENT;
    if (radios.timepointEnabled && !radios.patientEnabled)
        radios.operation = RENAME_TIMEPOINT;
    return radios;
}

} // namespace maint
