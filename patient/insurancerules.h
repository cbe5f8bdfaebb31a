// The rules of the insurance page.
#pragma once

#include "patient/finding.h"

#include <string>
#include <vector>

inline constexpr int PAT_MAX_INSURANCE_COMPANY = 50;
inline constexpr int PAT_MAX_POLICY_HOLDER = 100;
inline constexpr int PAT_MAX_POLICY_NUMBER = 30;
inline constexpr int PAT_MAX_POLICY_GROUP = 30;

/// One policy as the page keeps it.
struct patInsurance
{
    std::string strPolicyID; ///< the policy in the database; empty for one that is not stored yet
    std::string strCompany;
    std::string strHolder;
    std::string strNumber;
    std::string strGroup;

    bool operator==(const patInsurance&) const = default;
};

/// What stands in the fields above the list, but not in the list, would be lost. pSelected is the row that
/// the fields were filled from, null when they were empty.
patFinding patCheckInsuranceEntry(const patInsurance& entry, const patInsurance* pSelected);

/// A policy needs a company, and a company insures under one number only once. Names of companies are
/// compared without the case of A to Z. nReplaced is the row that the entry is to replace, -1 for a new one.
patFinding patCheckInsurance(const patInsurance& entry, const std::vector<patInsurance>& insurances,
                             int nReplaced);
