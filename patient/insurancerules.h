// The rules of the insurance page.
#pragma once

#include "patient/finding.h"

#include <string>
#include <vector>

namespace pat
{

inline constexpr int MaxInsuranceCompany = 50;
inline constexpr int MaxPolicyHolder = 100;
inline constexpr int MaxPolicyNumber = 30;
inline constexpr int MaxPolicyGroup = 30;

/// One policy as the page keeps it.
struct Insurance
{
    std::string strPolicyID; ///< the policy in the database; empty for one that is not stored yet
    std::string strCompany;
    std::string strHolder;
    std::string strNumber;
    std::string strGroup;

    bool operator==(const Insurance&) const = default;
};

/// What stands in the fields above the list, but not in the list, would be lost. pSelected is the row that
/// the fields were filled from, null when they were empty.
Finding CheckInsuranceEntry(const Insurance& entry, const Insurance* pSelected);

/// A policy needs a company, and a company insures under one number only once. Names of companies are
/// compared without the case of A to Z. nReplaced is the row that the entry is to replace, -1 for a new one.
Finding CheckInsurance(const Insurance& entry, const std::vector<Insurance>& insurances, int nReplaced);

} // namespace pat
