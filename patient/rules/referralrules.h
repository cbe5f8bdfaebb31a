// The rules of the referral page.
#pragma once

#include "patient/rules/finding.h"

#include <string>
#include <vector>

namespace pat
{

inline constexpr int MaxReferralNote = 255;

/// One referral as the page keeps it.
struct Referral
{
    int nOrigin = -1; ///< position of the row in the record that it came from; -1 for a new one
    std::string strDoctorID;
    std::string strDoctor; ///< as the list shows it
    long nDay = 0;         ///< counted from 1899-12-30, as the whole part of an OLE date is; 0: not known
    std::string strNote;

    bool operator==(const Referral&) const = default;
};

/// Check 1: what stands in the fields above the list, but not in the list, would be lost. pSelected is the
/// row that the fields were filled from, null when they were empty (a date alone is no referral).
Finding CheckReferralEntry(const Referral& entry, const Referral* pSelected);

/// Check 2: nobody is referred in the future or before birth. Depends on two pages, and so is checked on the
/// sheet's OK, whatever was opened, when either of them was changed. nBirthDay 0: the birth date is not
/// known.
Finding CheckReferralDates(const std::vector<Referral>& referrals, long nToday, long nBirthDay);

/// Check 3: the same doctor twice on one day is one referral entered twice.
Finding CheckReferralsTwice(const std::vector<Referral>& referrals);

} // namespace pat
