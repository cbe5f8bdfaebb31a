// Judging of narrow text that does not depend on the locale.
#pragma once

#include <string_view>

namespace pat
{

/// Nothing but white space, or nothing at all.
bool IsBlank(std::string_view text);

/// Without white space at both ends.
std::string_view Trimmed(std::string_view text);

} // namespace pat
