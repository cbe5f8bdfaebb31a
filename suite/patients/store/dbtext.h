#pragma once

// Text between the system code page, in which every call speaks, and UTF-8, in which the database file does.

#include <string>
#include <string_view>

/// To UTF-8. Throws dbCException* (dbErrText) for bytes that are no character of the code page.
std::string dbToUtf8(std::string_view text);

/// From UTF-8. Throws dbCException* (dbErrText) for characters that the code page does not have.
std::string dbFromUtf8(std::string_view utf8);

/// From UTF-8 for display only: a character that the code page does not have becomes a question mark.
std::string dbFromUtf8ForDisplay(std::string_view utf8);

/// The form in which names and words are compared and ordered, in UTF-8: lower case by the invariant rules,
/// without blanks at the ends. Stored in the database, so it must not depend on the user's settings.
std::string dbFold(std::string_view text);
