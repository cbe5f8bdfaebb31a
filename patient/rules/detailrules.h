#pragma once

#include "patient/rules/finding.h"

#include <string>
#include <string_view>
#include <vector>

namespace pat
{

/// Rules of the details page and the doctor editor.

/// Longest texts that the page's fields accept, in bytes of the system code page.
inline constexpr int MaxModelNumber = 10;
inline constexpr int MaxSalutation = 50;
inline constexpr int MaxKeywords = 255;
inline constexpr int MaxNotes = 500;

/// The longest notes that the doctor editor accepts.
inline constexpr int MaxDoctorNotes = 2000;

/// How lists show a doctor: "family name, given name", or the one name that there is.
std::string DoctorName(std::string_view family, std::string_view given);

/// A doctor needs a family name; blanks alone are none.
Finding CheckDoctorName(std::string_view family, unsigned nControl);

/// An e-mail address is empty, or has one "@" between a name and a domain, and no blanks.
Finding CheckEmail(std::string_view email, unsigned nControl);

/// An address stands once among those of a person, in whatever letter case. nReplaced is the one that it is
/// to replace; the number of addresses for a new one.
Finding CheckEmailOnce(std::string_view email, const std::vector<std::string>& emails, int nReplaced,
                       unsigned nControl);

/// All addresses of a person: the first, unless it is empty, and the further ones, each once.
std::vector<std::string> JoinEmails(const std::string& first, const std::vector<std::string>& further);

/// What stands in the field, but not in the list, would be lost.
Finding CheckEmailAdded(std::string_view entry, const std::vector<std::string>& emails, unsigned nControl);

} // namespace pat
