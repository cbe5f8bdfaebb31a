#include "patient/textrules.h"

namespace pat
{

bool IsBlank(std::string_view text)
{
    return text.find_first_not_of(" \t\n\v\f\r") == std::string_view::npos;
}

} // namespace pat
