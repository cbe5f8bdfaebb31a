#include "patient/sheetrules.h"

#include "patient/guardianrules.h"

std::vector<patSTEP> patStepsOfOK(const patSheetState& state)
{
    std::vector<patSTEP> steps{patSTEP::ChartFields, patSTEP::UniqueID};
    if (state.opened[PAT_PAGE_GUARDIAN])
        steps.push_back(patSTEP::GuardianFields);
    if (state.opened[PAT_PAGE_REFERRAL])
        steps.push_back(patSTEP::ReferralFields);
    if (state.opened[PAT_PAGE_INSURANCE])
        steps.push_back(patSTEP::InsuranceFields);
    if (state.bNewPatient)
        steps.push_back(patSTEP::SimilarPatient);
    const bool bBillingPartyGiven =
        state.opened[PAT_PAGE_GUARDIAN] && patIsBillingParty(state.guardianLastname);
    if (state.nPracticeManagement != 0 && !bBillingPartyGiven)
        steps.push_back(patSTEP::BillingParty);
    return steps;
}
