#include "patient/rules/chartrules.h"

#include "patient/patientres.h"
#include "suite/patients/files/filefamily.h"

namespace pat
{

Finding CheckRequired(std::string_view id, std::string_view firstname, std::string_view lastname)
{
    if (id.empty())
        return Finding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_ID);
    if (firstname.empty())
        return Finding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_FIRSTNAME);
    if (lastname.empty())
        return Finding::Failed(IDS_PATIENT_REQUIRED, IDC_CHART_LASTNAME);
    return {};
}

Finding CheckID(std::string_view id)
{
    constexpr std::string_view validCharacters = "_-0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    if (id.size() > MaxID)
        return Finding::Failed(0, IDC_CHART_ID);
    if (id.find_first_not_of(validCharacters) != std::string_view::npos)
        return Finding::Failed(IDS_PATIENT_ID_INVALID, IDC_CHART_ID);
    return {};
}

bool IsDeviceID(std::string_view id)
{
    const std::string_view stem = id.substr(0, 3);
    if (id.size() == 3)
        return stem == "AUX" || stem == "CON" || stem == "NUL" || stem == "PRN";
    return id.size() == 4 && (stem == "COM" || stem == "LPT") && id[3] >= '0' && id[3] <= '9';
}

Finding CheckPhone(std::string_view number, bool bHasType, int nPhone, unsigned nTypeControl)
{
    if (!number.empty() && !bHasType)
        return Finding::Failed(IDS_PATIENT_PHONE_TYPE, nTypeControl, std::to_string(nPhone));
    return {};
}

bool IsOwnID(bool bNewPatient, std::string_view id, std::string_view loadedID)
{
    return !bNewPatient && EqualNoCase(id, loadedID);
}

} // namespace pat
