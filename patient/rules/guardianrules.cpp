#include "patient/rules/guardianrules.h"

#include "patient/patientres.h"
#include "patient/rules/textrules.h"

namespace pat
{

bool IsGuardianEmpty(const GuardianTexts& guardian)
{
    for (const std::string_view text :
         {guardian.nickname, guardian.title, guardian.notes, guardian.company, guardian.street, guardian.city,
          guardian.state, guardian.postalCode, guardian.email, guardian.phone1, guardian.phone2,
          guardian.firstname, guardian.lastname})
    {
        if (!text.empty())
            return false;
    }
    return true;
}

Finding CheckGuardian(const GuardianTexts& guardian)
{
    if (IsGuardianEmpty(guardian))
        return {};
    if (guardian.firstname.empty())
        return Finding::Failed(IDS_GUARDIAN_NAMES, IDC_GUARD_FIRSTNAME);
    if (guardian.lastname.empty())
        return Finding::Failed(IDS_GUARDIAN_NAMES, IDC_GUARD_LASTNAME);
    return {};
}

bool IsBillingParty(std::string_view guardianLastname)
{
    return !IsBlank(guardianLastname);
}

} // namespace pat
