#include "host/commandline.h"

#include <charconv>

bool hostParseCommandLine(const std::vector<std::string>& arguments, hostSOptions& options, std::string& error)
{
    options = {};
    for (std::size_t at = 0; at < arguments.size(); ++at)
    {
        const std::string& argument = arguments[at];
        const bool hasValue = at + 1 < arguments.size() && !arguments[at + 1].empty();
        if (argument == "--practice" && hasValue)
        {
            options.practice = arguments[++at];
        }
        else if (argument == "--patients" && hasValue)
        {
            const std::string& value = arguments[++at];
            const auto [end, code] = std::from_chars(value.data(), value.data() + value.size(), options.patients);
            if (code != std::errc() || end != value.data() + value.size() || options.patients < 1 ||
                options.patients > kMostSamplePatients)
            {
                error = argument;
                error.append(" ").append(value);
                return false;
            }
        }
        else
        {
            error = argument;
            return false;
        }
    }
    return true;
}
