#include "patient/rules/sheetrules.h"

#include "patient/rules/guardianrules.h"

namespace pat
{

std::vector<Step> StepsOfOK(const SheetState& state)
{
    std::vector<Step> steps{Step::ChartFields, Step::UniqueID};
    if (state.opened[GuardianPage])
        steps.push_back(Step::GuardianFields);
    if (state.opened[ReferralPage])
        steps.push_back(Step::ReferralFields);
    if (state.bNewPatient || state.bDatesChanged)
        steps.push_back(Step::ReferralDates);
    if (state.opened[InsurancePage])
        steps.push_back(Step::InsuranceFields);
    if (state.bNewPatient)
        steps.push_back(Step::SimilarPatient);
    const bool bBillingPartyGiven = state.opened[GuardianPage] && IsBillingParty(state.guardianLastname);
    if (state.nPracticeManagement != 0 && !bBillingPartyGiven)
        steps.push_back(Step::BillingParty);
    return steps;
}

} // namespace pat
