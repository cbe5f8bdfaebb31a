#pragma once

#include "patient/finding.h"

#include <string>
#include <string_view>

/// Rules of the details page and the doctor editor.

/// Longest texts that the page's fields accept, in bytes of the system code page.
inline constexpr int PAT_MAX_MODELNUMBER = 10;
inline constexpr int PAT_MAX_SALUTATION = 50;
inline constexpr int PAT_MAX_KEYWORDS = 255;
inline constexpr int PAT_MAX_NOTES = 500;

/// The longest notes that the doctor editor accepts.
inline constexpr int PAT_MAX_DOCTOR_NOTES = 2000;

/// How lists show a doctor: "family name, given name", or the one name that there is.
std::string patDoctorName(std::string_view family, std::string_view given);

/// A doctor needs a family name; blanks alone are none.
patFinding patCheckDoctorName(std::string_view family, unsigned nControl);

/// An e-mail address is empty, or has one "@" between a name and a domain, and no blanks.
patFinding patCheckEmail(std::string_view email, unsigned nControl);
