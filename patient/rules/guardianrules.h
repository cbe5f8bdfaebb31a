// The rules of the guardian page.
#pragma once

#include "patient/rules/finding.h"

#include <string_view>

namespace pat
{

inline constexpr int MaxTitle = 10;

/// The texts of the guardian page that tell whether a guardian is being entered. The country is not among
/// them: it is filled in beforehand.
struct GuardianTexts
{
    std::string_view nickname;
    std::string_view title;
    std::string_view notes;
    std::string_view company;
    std::string_view street;
    std::string_view city;
    std::string_view state;
    std::string_view postalCode;
    std::string_view email;
    std::string_view phone1;
    std::string_view phone2;
    std::string_view firstname;
    std::string_view lastname;
};

/// True when no guardian is being entered.
bool IsGuardianEmpty(const GuardianTexts& guardian);

/// A guardian that is being entered needs a given and a family name; blanks count as text.
Finding CheckGuardian(const GuardianTexts& guardian);

/// True when the guardian's family name, blanks at both ends aside, names a billing party.
bool IsBillingParty(std::string_view guardianLastname);

} // namespace pat
