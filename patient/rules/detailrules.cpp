#include "patient/rules/detailrules.h"

#include "patient/detailsres.h"
#include "patient/rules/textrules.h"
#include "suite/patients/files/filefamily.h"

#include <algorithm>

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

Finding CheckEmailOnce(std::string_view email, const std::vector<std::string>& emails, int nReplaced,
                       unsigned nControl)
{
    for (int i = 0; i < static_cast<int>(emails.size()); ++i)
    {
        if (i != nReplaced && EqualNoCase(email, emails[static_cast<std::size_t>(i)]))
            return Finding::Failed(IDS_EMAIL_TWICE, nControl, std::string(email));
    }
    return {};
}

std::vector<std::string> JoinEmails(const std::string& first, const std::vector<std::string>& further)
{
    std::vector<std::string> emails;
    if (!first.empty())
        emails.push_back(first);
    for (const std::string& email : further)
    {
        if (CheckEmailOnce(email, emails, -1, 0).bPassed)
            emails.push_back(email);
    }
    return emails;
}

Finding CheckEmailAdded(std::string_view entry, const std::vector<std::string>& emails, unsigned nControl)
{
    const bool bAdded = entry.empty() || std::find(emails.begin(), emails.end(), entry) != emails.end();
    return bAdded ? Finding{} : Finding::Failed(IDS_EMAIL_UNFINISHED, nControl);
}

} // namespace pat
