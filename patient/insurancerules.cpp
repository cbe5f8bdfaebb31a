#include "patient/insurancerules.h"

#include "patient/patientres.h"
#include "patient/textrules.h"

patFinding patCheckInsuranceEntry(const patInsurance& entry, const patInsurance* pSelected)
{
    patInsurance shown;
    if (pSelected != nullptr)
        shown = *pSelected;
    shown.strPolicyID = entry.strPolicyID;
    return entry == shown ? patFinding{} : patFinding::Failed(IDS_INSURE_UNFINISHED, IDC_INSURE_COMPANY);
}

patFinding patCheckInsurance(const patInsurance& entry, const std::vector<patInsurance>& insurances,
                             int nReplaced)
{
    if (patIsBlank(entry.strCompany))
        return patFinding::Failed(IDS_INSURE_NO_COMPANY, IDC_INSURE_COMPANY);
    for (int i = 0; i < static_cast<int>(insurances.size()); ++i)
    {
        const patInsurance& other = insurances[static_cast<std::size_t>(i)];
        if (i != nReplaced && patEqualNoCase(other.strCompany, entry.strCompany) &&
            other.strNumber == entry.strNumber)
            return patFinding::Failed(IDS_INSURE_TWICE, IDC_INSURE_NUMBER, entry.strCompany);
    }
    return {};
}
