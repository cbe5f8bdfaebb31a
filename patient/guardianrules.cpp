#include "patient/guardianrules.h"

#include "patient/patientres.h"
#include "patient/textrules.h"

bool patIsGuardianEmpty(const patGuardianTexts& guardian)
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

patFinding patCheckGuardian(const patGuardianTexts& guardian)
{
    if (patIsGuardianEmpty(guardian))
        return {};
    if (guardian.firstname.empty())
        return patFinding::Failed(IDS_GUARDIAN_NAMES, IDC_GUARD_FIRSTNAME);
    if (guardian.lastname.empty())
        return patFinding::Failed(IDS_GUARDIAN_NAMES, IDC_GUARD_LASTNAME);
    return {};
}

bool patIsBillingParty(std::string_view guardianLastname)
{
    return !patIsBlank(guardianLastname);
}
