#include "patient/referralrules.h"

#include "patient/patientres.h"

#include <set>
#include <utility>

patFinding patCheckReferralEntry(const patReferral& entry, const patReferral* pSelected)
{
    const bool bUnfinished = pSelected == nullptr
                                 ? !entry.strDoctorID.empty() || !entry.strNote.empty()
                                 : entry.strDoctorID != pSelected->strDoctorID ||
                                       entry.nDay != pSelected->nDay || entry.strNote != pSelected->strNote;
    return bUnfinished ? patFinding::Failed(IDS_REFER_UNFINISHED, IDC_REFER_DOCTOR) : patFinding{};
}

patFinding patCheckReferralDates(const std::vector<patReferral>& referrals, long nToday, long nBirthDay)
{
    for (const patReferral& referral : referrals)
    {
        const bool bTooEarly = nBirthDay != 0 && referral.nDay < nBirthDay;
        if (referral.nDay != 0 && (bTooEarly || referral.nDay > nToday))
            return patFinding::Failed(IDS_REFER_DATE, IDC_REFER_LIST, referral.strDoctor);
    }
    return {};
}

patFinding patCheckReferralsTwice(const std::vector<patReferral>& referrals)
{
    std::set<std::pair<std::string, long>> seen;
    for (const patReferral& referral : referrals)
    {
        if (!seen.emplace(referral.strDoctorID, referral.nDay).second)
            return patFinding::Failed(IDS_REFER_TWICE, IDC_REFER_LIST, referral.strDoctor);
    }
    return {};
}
