// The order of things when the patient information sheet is confirmed.
#pragma once

#include <array>
#include <string_view>
#include <vector>

namespace pat
{

/// The pages in tab order; the sheet's flags and SetActivePage use the same numbers.
enum Page
{
    ChartPage,
    DetailPage,
    GuardianPage,
    ReferralPage,
    InsurancePage,
    PageCount
};

/// A check or question of the sheet's OK. Each one can stop it.
enum class Step
{
    ChartFields,
    UniqueID,
    GuardianFields,
    ReferralFields,
    ReferralDates,
    InsuranceFields,
    SimilarPatient,
    BillingParty
};

/// What decides which checks and questions an OK goes through.
struct SheetState
{
    bool bNewPatient = true;
    bool bDatesChanged = false; ///< the birth date or a referral
    std::array<bool, PageCount> opened{};
    int nPracticeManagement = 0;       ///< non-zero: the practice's balances are in use
    std::string_view guardianLastname; ///< as it stands on the guardian page
};

/// The checks and questions of one OK, in their order.
std::vector<Step> StepsOfOK(const SheetState& state);

/// The order in which the opened pages are copied into the record.
inline constexpr std::array<Page, PageCount> CopyOrder{ChartPage, DetailPage, GuardianPage, InsurancePage,
                                                       ReferralPage};

} // namespace pat
