#include "app/fullname.h"

#include "app/nameformat.h"
#include "suite/util/velini.h"

namespace
{

std::optional<std::string> ReadSeparator()
{
    // No value of a settings file holds a line break, which tells an absent key from an empty value.
    static constexpr char absent[] = "\n";
    const CString strSeparator = velGetIniString("Intl", "NameSep", absent);
    if (strSeparator == absent)
        return std::nullopt;
    return std::string(strSeparator.GetString());
}

} // namespace

CString velMakeFullname(LPCTSTR pszGiven, LPCTSTR pszFamily, NAMEORDER nOrder)
{
    static app::NameFormatter formatter(
        {[] { return velGetIniInt("Intl", "FamilyNameFirst", 0); }, ReadSeparator});
    const auto text = [](LPCTSTR psz) { return psz != nullptr ? psz : ""; };
    return formatter.Format(text(pszGiven), text(pszFamily), nOrder).c_str();
}
