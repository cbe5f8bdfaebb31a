#include "patient/referralrules.h"

#include "patient/patientres.h"

#include <set>
#include <utility>

patFinding patCheckReferralEntry(const patReferralEntry& entry)
{
    if (entry.bDoctorChanged || entry.bNoteChanged)
        return patFinding::Failed(IDS_REFER_UNFINISHED, IDC_REFER_ADD);
    return {};
}

patFinding patCheckReferralDates(const std::vector<patReferral>& referrals, long nToday, long nBirthDay)
{
    for (const patReferral& referral : referrals)
    {
        if (referral.nDay > nToday || (nBirthDay != 0 && referral.nDay < nBirthDay))
            return patFinding::Failed(IDS_REFER_DATE, IDC_REFER_DATE, referral.strDoctor);
    }
    return {};
}

patFinding patCheckReferralsTwice(const std::vector<patReferral>& referrals)
{
    std::set<std::pair<std::string, long>> seen;
    for (const patReferral& referral : referrals)
    {
        if (!seen.emplace(referral.strDoctorID, referral.nDay).second)
            return patFinding::Failed(IDS_REFER_TWICE, IDC_REFER_DOCTOR, referral.strDoctor);
    }
    return {};
}
