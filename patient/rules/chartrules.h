// The rules of the chart page.
#pragma once

#include "patient/rules/finding.h"

#include <array>
#include <string_view>

namespace pat
{

/// Longest texts that the page's fields accept, in bytes of the system code page.
inline constexpr int MaxID = 25;
inline constexpr int MaxName = 50;
inline constexpr int MaxNickname = 30;
inline constexpr int MaxPhone = 30;
inline constexpr int MaxCompany = 50;
inline constexpr int MaxStreet = 255;
inline constexpr int MaxCity = 50;
inline constexpr int MaxState = 20;
inline constexpr int MaxPostalCode = 20;
inline constexpr int MaxCountry = 30;
inline constexpr int MaxEmail = 60;

/// An entry of a list whose display text stands for a stored code.
struct Code
{
    const char* pszText;
    int nCode;
};

/// In display order.
inline constexpr std::array<Code, 4> GenderIdentities{{
    {"<Gender>", 0},
    {"Female", 1},
    {"Male", 2},
    {"Non-Binary", 3},
}};

/// In display order.
inline constexpr std::array<Code, 10> Races{{
    {"<N/A>", 0},
    {"African American", 5},
    {"American Indian", 8},
    {"Anglo American", 1},
    {"Asian", 6},
    {"Chinese", 3},
    {"Hispanic", 4},
    {"Japanese", 2},
    {"Korean", 9},
    {"South Pacific", 7},
}};

/// ID, given name and family name must not be empty. Blanks count as text.
Finding CheckRequired(std::string_view id, std::string_view firstname, std::string_view lastname);

/// At most MaxID characters, else it fails without a message (the field does not take more); only
/// capital letters, digits, "_" and "-".
Finding CheckID(std::string_view id);

/// True for an ID that Windows takes for a device ("AUX", "COM1"): it passes the page, but no file can bear
/// it.
bool IsDeviceID(std::string_view id);

/// A phone number needs a type; a type needs no number. nPhone is 1 or 2, nTypeControl the type's list.
Finding CheckPhone(std::string_view number, bool bHasType, int nPhone, unsigned nTypeControl);

/// Whether an existing patient's ID is the one it was loaded with, ignoring the case of A to Z. Such an ID
/// needs no look-up in the patient list.
bool IsOwnID(bool bNewPatient, std::string_view id, std::string_view loadedID);

} // namespace pat
