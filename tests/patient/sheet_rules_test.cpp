#include "patient/rules/sheetrules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

TEST(SheetRules, UnopenedPagesAreNotChecked)
{
    pat::SheetState state;
    state.bNewPatient = false;
    EXPECT_THAT(pat::StepsOfOK(state), ElementsAre(pat::Step::ChartFields, pat::Step::UniqueID));
    state.opened = {true, true, false, false, false};
    EXPECT_THAT(pat::StepsOfOK(state), ElementsAre(pat::Step::ChartFields, pat::Step::UniqueID));
    state.bDatesChanged = true;
    EXPECT_THAT(pat::StepsOfOK(state),
                ElementsAre(pat::Step::ChartFields, pat::Step::UniqueID, pat::Step::ReferralDates));
}

TEST(SheetRules, EveryStepInItsOrder)
{
    pat::SheetState state;
    state.opened = {true, true, true, true, true};
    state.nPracticeManagement = 1;
    state.guardianLastname = "  ";
    EXPECT_THAT(pat::StepsOfOK(state),
                ElementsAre(pat::Step::ChartFields, pat::Step::UniqueID, pat::Step::GuardianFields,
                            pat::Step::ReferralFields, pat::Step::ReferralDates, pat::Step::InsuranceFields,
                            pat::Step::SimilarPatient, pat::Step::BillingParty));
}

TEST(SheetRules, TheBillingPartyIsAskedForOnlyWhenNeeded)
{
    struct Case
    {
        int nPracticeManagement;
        bool bGuardianOpened;
        const char* pszLastname;
        bool bAsked;
    };
    const Case cases[] = {
        {0, false, "", false}, {0, true, "", false},    {1, false, "", true},     {1, false, "Lee", true},
        {1, true, "", true},   {1, true, " \t ", true}, {1, true, " Lee", false}, {-1, true, "", true},
    };
    for (const Case& c : cases)
    {
        pat::SheetState state;
        state.bNewPatient = false;
        state.opened[pat::GuardianPage] = c.bGuardianOpened;
        state.nPracticeManagement = c.nPracticeManagement;
        state.guardianLastname = c.pszLastname;
        const auto steps = pat::StepsOfOK(state);
        EXPECT_EQ(steps.back() == pat::Step::BillingParty, c.bAsked)
            << c.nPracticeManagement << c.bGuardianOpened << c.pszLastname;
    }
}

} // namespace
