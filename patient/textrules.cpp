#include "patient/textrules.h"

#include <algorithm>

namespace
{
char ToUpper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
} // namespace

bool patIsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos;
}

bool patEqualNoCase(std::string_view left, std::string_view right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return ToUpper(a) == ToUpper(b); });
}
