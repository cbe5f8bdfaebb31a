// The order of things when the patient information sheet is confirmed.
#pragma once

#include <array>
#include <string_view>
#include <vector>

/// The pages in tab order; the sheet's flags and SetActivePage use the same numbers.
enum patPAGE
{
    PAT_PAGE_CHART,
    PAT_PAGE_DETAIL,
    PAT_PAGE_GUARDIAN,
    PAT_PAGE_REFERRAL,
    PAT_PAGE_INSURANCE,
    PAT_PAGE_COUNT
};

/// A check or question of the sheet's OK. Each one can stop it.
enum class patSTEP
{
    ChartFields,
    UniqueID,
    GuardianFields,
    ReferralFields,
    InsuranceFields,
    SimilarPatient,
    BillingParty
};

/// What decides which checks and questions an OK goes through.
struct patSheetState
{
    bool bNewPatient = true;
    std::array<bool, PAT_PAGE_COUNT> opened{};
    int nPracticeManagement = 0;       ///< non-zero: the practice's balances are in use
    std::string_view guardianLastname; ///< as it stands on the guardian page
};

/// The checks and questions of one OK, in their order.
std::vector<patSTEP> patStepsOfOK(const patSheetState& state);

/// The order in which the opened pages are copied into the record.
inline constexpr std::array<patPAGE, PAT_PAGE_COUNT> patCopyOrder{
    PAT_PAGE_CHART, PAT_PAGE_DETAIL, PAT_PAGE_GUARDIAN, PAT_PAGE_INSURANCE, PAT_PAGE_REFERRAL};
