#include "patient/rules/referralrules.h"

#include "patient/patientres.h"

#include <set>
#include <utility>

namespace pat
{

Finding CheckReferralEntry(const Referral& entry, const Referral* pSelected)
{
    const bool bUnfinished = pSelected == nullptr
                                 ? !entry.strDoctorID.empty() || !entry.strNote.empty()
                                 : entry.strDoctorID != pSelected->strDoctorID ||
                                       entry.nDay != pSelected->nDay || entry.strNote != pSelected->strNote;
    return bUnfinished ? Finding::Failed(IDS_REFER_UNFINISHED, IDC_REFER_DOCTOR) : Finding{};
}

Finding CheckReferralDates(const std::vector<Referral>& referrals, long nToday, long nBirthDay)
{
    for (const Referral& referral : referrals)
    {
        const bool bTooEarly = nBirthDay != 0 && referral.nDay < nBirthDay;
        if (referral.nDay != 0 && (bTooEarly || referral.nDay > nToday))
            return Finding::Failed(IDS_REFER_DATE, IDC_ROWS_LIST, referral.strDoctor);
    }
    return {};
}

Finding CheckReferralsTwice(const std::vector<Referral>& referrals)
{
    std::set<std::pair<std::string, long>> seen;
    for (const Referral& referral : referrals)
    {
        if (!seen.emplace(referral.strDoctorID, referral.nDay).second)
            return Finding::Failed(IDS_REFER_TWICE, IDC_ROWS_LIST, referral.strDoctor);
    }
    return {};
}

} // namespace pat
