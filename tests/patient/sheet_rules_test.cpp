#include "patient/rules/sheetrules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

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
    const struct
    {
        int nPracticeManagement;
        bool bGuardianOpened;
        const char* pszLastname;
        bool bAsked;
    } cases[] = {{0, false, "", false},
                 {0, true, "", false},
                 {1, false, "", true},
                 {1, false, "Lee", true},
                 {1, true, "", true},
                 {1, true, " Lee\r\n", false},
                 {1, true, " \t\r\n\v\f", true},
                 {-1, true, "", true},
                 {1, true, "\xA0", false}}; // a no-break space is no blank in this code page's C locale
    for (const auto& c : cases)
    {
        pat::SheetState state;
        state.bNewPatient = false;
        state.opened[pat::GuardianPage] = c.bGuardianOpened;
        state.nPracticeManagement = c.nPracticeManagement;
        state.guardianLastname = c.pszLastname;
        EXPECT_EQ(pat::StepsOfOK(state).back() == pat::Step::BillingParty, c.bAsked)
            << c.nPracticeManagement << c.bGuardianOpened << c.pszLastname;
    }
}

} // namespace
