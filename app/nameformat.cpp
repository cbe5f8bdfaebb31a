#include "app/nameformat.h"

#include <utility>

namespace app
{

NameFormatter::NameFormatter(NameSettings settings) : m_settings(std::move(settings))
{
}

std::string NameFormatter::Format(const std::string& given, const std::string& family, NAMEORDER order)
{
    const bool settingDecides = order == NAMEORDER_DEFAULT || order == NAMEORDER_FIRST_LAST;
    const bool familyFirst = settingDecides ? IsFamilyNameFirst() : order == NAMEORDER_LAST_FIRST;
    return familyFirst ? family + GetSeparator() + given : given + " " + family;
}

bool NameFormatter::IsFamilyNameFirst()
{
    if (!m_familyNameFirst)
        m_familyNameFirst = m_settings.familyNameFirst() != 0;
    return *m_familyNameFirst;
}

const std::string& NameFormatter::GetSeparator()
{
    if (!m_separator)
    {
        const std::optional<std::string> configured = m_settings.separator();
        m_separator = configured ? *configured + " " : ", ";
    }
    return *m_separator;
}

} // namespace app
