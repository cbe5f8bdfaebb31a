#include "patient/rules/textrules.h"

namespace pat
{

namespace
{
constexpr std::string_view whiteSpace = " \t\n\v\f\r";
} // namespace

bool IsBlank(std::string_view text)
{
    return Trimmed(text).empty();
}

std::string_view Trimmed(std::string_view text)
{
    const std::size_t nFirst = text.find_first_not_of(whiteSpace);
    if (nFirst == std::string_view::npos)
        return {};
    return text.substr(nFirst, text.find_last_not_of(whiteSpace) - nFirst + 1);
}

} // namespace pat
