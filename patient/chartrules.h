// The rules of the chart page.
#pragma once

#include "patient/finding.h"

#include <array>
#include <string_view>

/// Longest texts that the page's fields accept, in bytes of the system code page.
inline constexpr int PAT_MAX_ID = 25;
inline constexpr int PAT_MAX_NAME = 50;
inline constexpr int PAT_MAX_NICKNAME = 30;
inline constexpr int PAT_MAX_PHONE = 30;
inline constexpr int PAT_MAX_COMPANY = 50;
inline constexpr int PAT_MAX_STREET = 255;
inline constexpr int PAT_MAX_CITY = 50;
inline constexpr int PAT_MAX_STATE = 20;
inline constexpr int PAT_MAX_POSTALCODE = 20;
inline constexpr int PAT_MAX_COUNTRY = 30;
inline constexpr int PAT_MAX_EMAIL = 60;

/// An entry of a list whose display text stands for a stored code.
struct patCODE
{
    const char* pszText;
    int nCode;
};

/// In display order.
inline constexpr std::array<patCODE, 4> patGenderIdentities{{
    {"<Gender>", 0},
    {"Female", 1},
    {"Male", 2},
    {"Non-Binary", 3},
}};

/// In display order.
inline constexpr std::array<patCODE, 10> patRaces{{
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

/// The index of the entry with the code, 0 (the entry for "not stated") when there is none.
template <std::size_t N> constexpr int patFindCode(const std::array<patCODE, N>& list, int nCode)
{
    for (std::size_t i = 0; i < N; ++i)
    {
        if (list[i].nCode == nCode)
            return static_cast<int>(i);
    }
    return 0;
}

/// ID, given name and family name must not be empty. Blanks count as text.
patFinding patCheckRequired(std::string_view id, std::string_view firstname, std::string_view lastname);

/// At most PAT_MAX_ID characters, else it fails without a message (the field does not take more); only
/// capital letters, digits, "_" and "-".
patFinding patCheckID(std::string_view id);

/// A phone number needs a type; a type needs no number. nPhone is 1 or 2, nTypeControl the type's list.
patFinding patCheckPhone(std::string_view number, bool bHasType, int nPhone, unsigned nTypeControl);

/// Whether an existing patient's ID is the one it was loaded with, ignoring the case of A to Z. Such an ID
/// needs no look-up in the patient list.
bool patIsOwnID(bool bNewPatient, std::string_view id, std::string_view loadedID);
