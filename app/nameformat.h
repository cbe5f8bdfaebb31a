#pragma once

#include "app/velenums.h"

#include <functional>
#include <optional>
#include <string>

namespace app
{

/// Where the name rules read the user's settings; each is asked at most once per formatter.
struct NameSettings
{
    /// The integer "FamilyNameFirst" of section "Intl", 0 when it is absent.
    std::function<int()> familyNameFirst;
    /// The text "NameSep" of section "Intl", nothing when the key is absent.
    std::function<std::optional<std::string>()> separator;
};

/// Joins given and family names by the user's order and separator.
/// Both settings are read on first need and then kept as long as the formatter lives.
class NameFormatter
{
public:
    explicit NameFormatter(NameSettings settings);

    /// The full name; neither name is trimmed, so an empty one leaves its blank or separator behind.
    std::string Format(const std::string& given, const std::string& family, NAMEORDER order);

private:
    bool IsFamilyNameFirst();
    const std::string& GetSeparator();

    NameSettings m_settings;
    std::optional<bool> m_familyNameFirst;
    std::optional<std::string> m_separator;
};

} // namespace app
