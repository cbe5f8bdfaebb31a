// The rules of the referral page.
#pragma once

#include <string>
#include <vector>

/// One referral as the page keeps it. Dates are whole days as days since 1899-12-30 (an OLE date's integer part);
/// 0 means no date.
struct patReferral
{
    std::string strDoctorID;
    std::string strDoctor;
    long nDay = 0;
    std::string strNote;
    std::string strRowID; ///< the row in the database; empty for one that is not stored yet
};
