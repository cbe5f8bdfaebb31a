// Comparisons of narrow text that do not depend on the locale.
#pragma once

#include <string_view>

/// Nothing but white space, or nothing at all.
bool patIsBlank(std::string_view text);

/// Equal but for the case of A to Z.
bool patEqualNoCase(std::string_view left, std::string_view right);
