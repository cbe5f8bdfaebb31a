// The rules of the insurance page.
#pragma once

#include <string>
#include <vector>

/// One insurance as the page keeps it.
struct patInsurance
{
    std::string strCompanyID; ///< the company in the database; empty for one typed in on the page
    std::string strCompany;
    std::string strPolicyHolder;
    std::string strPolicyNumber;
    std::string strRowID; ///< the row in the database; empty for one that is not stored yet
};
