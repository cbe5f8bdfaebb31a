#include "patient/rules/insurancerules.h"

#include "patient/patientres.h"
#include "patient/rules/textrules.h"
#include "suite/patients/files/filefamily.h"

namespace pat
{

Finding CheckInsuranceEntry(const Insurance& entry, const Insurance& filled)
{
    return entry == filled ? Finding{} : Finding::Failed(IDS_INSURE_UNFINISHED, IDC_INSURE_COMPANY);
}

bool IsSameCompany(std::string_view left, std::string_view right)
{
    return EqualNoCase(Trimmed(left), Trimmed(right));
}

Finding CheckInsurance(const Insurance& entry, const std::vector<Insurance>& insurances, int nReplaced)
{
    if (IsBlank(entry.strCompany))
        return Finding::Failed(IDS_INSURE_NO_COMPANY, IDC_INSURE_COMPANY);
    for (int i = 0; i < static_cast<int>(insurances.size()); ++i)
    {
        const Insurance& other = insurances[static_cast<std::size_t>(i)];
        if (i != nReplaced && IsSameCompany(other.strCompany, entry.strCompany) &&
            other.strNumber == entry.strNumber)
            return Finding::Failed(IDS_INSURE_TWICE, IDC_INSURE_NUMBER, entry.strCompany);
    }
    return {};
}

} // namespace pat
