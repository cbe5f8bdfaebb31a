#include "patient/detailrules.h"

#include "patient/detailsres.h"
#include "patient/textrules.h"

namespace pat
{

std::string DoctorName(std::string_view family, std::string_view given)
{
    std::string name(family);
    if (!family.empty() && !given.empty())
        name += ", ";
    return name.append(given);
}

Finding CheckDoctorName(std::string_view family, unsigned nControl)
{
    return IsBlank(family) ? Finding::Failed(IDS_DOCTOR_LASTNAME_REQUIRED, nControl) : Finding();
}

Finding CheckEmail(std::string_view email, unsigned nControl)
{
    if (email.empty())
        return {};
    const std::size_t at = email.find('@');
    const bool bComplete = at != std::string_view::npos && at > 0 && at + 1 < email.size() &&
                           email.find('@', at + 1) == std::string_view::npos &&
                           email.find_first_of(" \t") == std::string_view::npos;
    return bComplete ? Finding() : Finding::Failed(IDS_DOCTOR_EMAIL_INVALID, nControl);
}

} // namespace pat
