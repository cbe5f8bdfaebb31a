// The rules of the insurance page.
#pragma once

#include "patient/finding.h"

#include <string>
#include <vector>

inline constexpr int PAT_MAX_INSURANCE_COMPANY = 50;
inline constexpr int PAT_MAX_POLICY_HOLDER = 100;
inline constexpr int PAT_MAX_POLICY_NUMBER = 30;

/// One insurance as the page keeps it.
struct patInsurance
{
    std::string strRowID;     ///< the row in the database; empty for one that is not stored yet
    std::string strCompanyID; ///< the company in the database; empty for one that is not stored yet
    std::string strCompany;
    std::string strPolicyHolder;
    std::string strPolicyNumber;

    bool operator==(const patInsurance&) const = default;
};

/// An entry that was begun but not added to the list would be lost. bChanged: the fields above the list
/// differ from the selected row, or from empty fields when no row is selected.
patFinding patCheckInsuranceEntry(bool bChanged);

/// An insurance needs a company, and a company insures under one number only once. The company's name is
/// compared without the case of A to Z. nReplaced is the index of the row that the entry replaces, -1 for a
/// new one.
patFinding patCheckInsurance(const patInsurance& entry, const std::vector<patInsurance>& insurances,
                             int nReplaced);
