// The rules of the referral page.
#pragma once

#include "patient/finding.h"

#include <string>
#include <vector>

inline constexpr int PAT_MAX_REFERRAL_NOTE = 255;

/// One referral as the page keeps it. The day counts from 1899-12-30, as the whole part of an OLE date does.
struct patReferral
{
    std::string strRowID; ///< the row in the database; empty for one that is not stored yet
    std::string strDoctorID;
    std::string strDoctor; ///< as the list shows it
    long nDay = 0;
    std::string strNote;

    bool operator==(const patReferral&) const = default;
};

/// What stands in the fields above the list.
struct patReferralEntry
{
    bool bDoctorChanged = false; ///< a doctor is selected that the list does not have from this entry
    bool bNoteChanged = false;
};

/// Check 1: an entry that was begun but not added to the list would be lost.
patFinding patCheckReferralEntry(const patReferralEntry& entry);

/// Check 2: nobody is referred in the future, nor before birth. nBirthDay 0: the birth date is not known.
/// Referrals dated before midnight of birth are refused; the birth day itself is accepted.
patFinding patCheckReferralDates(const std::vector<patReferral>& referrals, long nToday, long nBirthDay);

/// Check 3: the same doctor twice on one day is one referral entered twice.
patFinding patCheckReferralsTwice(const std::vector<patReferral>& referrals);
