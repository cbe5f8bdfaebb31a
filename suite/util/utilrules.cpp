#include "suite/util/utilrules.h"

#include <algorithm>
#include <cstdlib>

std::string utlFillTemplate(std::string_view text, std::span<const std::string_view> arguments)
{
    std::string result;
    while (!text.empty() && result.length() < utlmaxTemplateResult)
    {
        const std::size_t number = text.length() >= 3 && text[0] == '<' && text[1] >= '1' && text[1] <= '9' && text[2] == '>'
                                       ? static_cast<std::size_t>(text[1] - '0')
                                       : 0;
        if (number != 0 && number <= arguments.size())
        {
            result += arguments[number - 1];
            text.remove_prefix(3);
        }
        else
        {
            result += text[0];
            text.remove_prefix(1);
        }
    }
    result.resize(std::min(result.length(), utlmaxTemplateResult));
    return result;
}

std::string utlNumberText(int number, int width)
{
    std::string digits = std::to_string(std::abs(static_cast<long long>(number)));
    const std::size_t wanted = static_cast<std::size_t>(std::clamp(width, 0, 64)) - (number < 0 && width > 0 ? 1 : 0);
    if (digits.length() < wanted)
    {
        digits.insert(0, wanted - digits.length(), '0');
    }
    return number < 0 ? "-" + digits : digits;
}

utlPathParts utlSplitPath(std::string_view path)
{
    constexpr std::string_view separators = "\\/";
    utlPathParts parts;
    std::size_t driveLength = 0;
    if (path.length() >= 2 && path[1] == ':')
    {
        driveLength = 2;
    }
    else if (path.starts_with("\\\\"))
    {
        const std::size_t share = path.find_first_of(separators, 2);
        driveLength = share == std::string_view::npos
                          ? path.length()
                          : std::min(path.find_first_of(separators, share + 1), path.length());
    }
    parts.drive = path.substr(0, driveLength);
    path.remove_prefix(driveLength);

    const std::size_t dirLength = path.find_last_of(separators) + 1; // 0 when there is none
    parts.dir = path.substr(0, dirLength);
    path.remove_prefix(dirLength);

    const std::size_t dot = std::min(path.rfind('.'), path.length());
    parts.name = path.substr(0, dot);
    parts.ext = path.substr(dot);
    return parts;
}

std::string utlWithBackslash(std::string_view folder)
{
    std::string result(folder);
    if (result.empty())
    {
        return result;
    }
    result.erase(result.find_last_not_of("\\/") + 1);
    return result + '\\';
}

std::optional<utlDateTime> utlParseIsoDate(std::string_view text)
{
    constexpr std::string_view form = "0000-00-00 00:00:00";
    if (text.length() != 10 && text.length() != form.length())
    {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < text.length(); ++i)
    {
        const bool fits = form[i] == '0'   ? text[i] >= '0' && text[i] <= '9'
                          : form[i] == ' ' ? text[i] == ' ' || text[i] == 'T'
                                           : text[i] == form[i];
        if (!fits)
        {
            return std::nullopt;
        }
    }
    const auto number = [&](std::size_t at, std::size_t count) {
        int value = 0;
        for (const char digit : text.length() > at ? text.substr(at, count) : std::string_view())
        {
            value = value * 10 + (digit - '0');
        }
        return value;
    };
    return utlDateTime{number(0, 4), number(5, 2), number(8, 2), number(11, 2), number(14, 2), number(17, 2)};
}
