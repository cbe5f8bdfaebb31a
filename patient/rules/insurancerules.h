// The rules of the insurance page.
#pragma once

#include "patient/rules/finding.h"

#include <string>
#include <string_view>
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
    int nOrigin = -1; ///< position of the policy in the record that it came from; -1 for a new one
    std::string strCompany;
    std::string strHolder;
    std::string strNumber;
    std::string strGroup;

    bool operator==(const Insurance&) const = default;
};

/// What stands in the fields above the list, but not in the list, would be lost. filled: what the fields were
/// filled with.
Finding CheckInsuranceEntry(const Insurance& entry, const Insurance& filled);

/// Names of companies are compared without blanks at the ends and letter case.
bool IsSameCompany(std::string_view left, std::string_view right);

/// A policy needs a company, and a company insures under one number only once. nReplaced is the row that the
/// entry is to replace, -1 for a new one.
Finding CheckInsurance(const Insurance& entry, const std::vector<Insurance>& insurances, int nReplaced);

} // namespace pat
