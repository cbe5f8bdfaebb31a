#include "patient/chartrules.h"

#include "patient/patientres.h"
#include "patient/textrules.h"

patFinding patCheckRequired(std::string_view id, std::string_view firstname, std::string_view lastname)
{
    if (id.empty())
        return patFinding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_ID);
    if (firstname.empty())
        return patFinding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_FIRSTNAME);
    if (lastname.empty())
        return patFinding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_LASTNAME);
    return {};
}

patFinding patCheckID(std::string_view id)
{
    constexpr std::string_view validCharacters = "_-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    if (id.size() > PAT_MAX_ID)
        return patFinding::Failed(0, IDC_CHART_ID);
    if (id.find_first_not_of(validCharacters) != std::string_view::npos)
        return patFinding::Failed(IDS_PATIENT_ID_INVALID, IDC_CHART_ID);
    return {};
}

patFinding patCheckPhone(std::string_view number, bool bHasType, int nPhone, unsigned nTypeControl)
{
    if (!number.empty() && !bHasType)
        return patFinding::Failed(IDS_PATIENT_PHONE_TYPE, nTypeControl, std::to_string(nPhone));
    return {};
}

bool patIsOwnID(bool bNewPatient, std::string_view id, std::string_view loadedID)
{
    return !bNewPatient && patEqualNoCase(id, loadedID);
}
