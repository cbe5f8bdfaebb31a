#include "patient/sheetrules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using testing::ElementsAre;

TEST(SheetRules, UnopenedPagesAreNotChecked)
{
    patSheetState state;
    state.bNewPatient = false;
    EXPECT_THAT(patStepsOfOK(state), ElementsAre(patSTEP::ChartFields, patSTEP::UniqueID));
    state.opened = {true, true, false, false, false};
    EXPECT_THAT(patStepsOfOK(state), ElementsAre(patSTEP::ChartFields, patSTEP::UniqueID));
}

TEST(SheetRules, EveryStepInItsOrder)
{
    patSheetState state;
    state.opened = {true, true, true, true, true};
    state.nPracticeManagement = 1;
    state.guardianLastname = "  ";
    EXPECT_THAT(patStepsOfOK(state),
                ElementsAre(patSTEP::ChartFields, patSTEP::UniqueID, patSTEP::GuardianFields,
                            patSTEP::ReferralFields, patSTEP::InsuranceFields, patSTEP::SimilarPatient,
                            patSTEP::BillingParty));
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
        patSheetState state;
        state.bNewPatient = false;
        state.opened[PAT_PAGE_GUARDIAN] = c.bGuardianOpened;
        state.nPracticeManagement = c.nPracticeManagement;
        state.guardianLastname = c.pszLastname;
        const auto steps = patStepsOfOK(state);
        EXPECT_EQ(steps.back() == patSTEP::BillingParty, c.bAsked)
            << c.nPracticeManagement << c.bGuardianOpened << c.pszLastname;
    }
}

TEST(SheetRules, EveryPageIsCopiedOnceInsuranceBeforeReferral)
{
    EXPECT_THAT(patCopyOrder, ElementsAre(PAT_PAGE_CHART, PAT_PAGE_DETAIL, PAT_PAGE_GUARDIAN,
                                          PAT_PAGE_INSURANCE, PAT_PAGE_REFERRAL));
}

} // namespace
