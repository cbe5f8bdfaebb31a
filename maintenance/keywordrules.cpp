#include "maintenance/keywordrules.h"

#include <algorithm>

namespace
{

bool EqualsNoCase(std::string_view text, std::string_view upper)
{
    const auto same = [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; };
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(), same);
}

} // namespace

kwList kwListFromText(std::string_view windowText)
{
    if (EqualsNoCase(windowText, "PATIENT"))
        return kwListPatient;
    return EqualsNoCase(windowText, "IMAGE") ? kwListImage : kwListNone;
}

std::vector<kwMenuItem> kwMenu(const std::vector<std::string>& keywords)
{
    std::vector<kwMenuItem> items;
    items.reserve(keywords.size());
    unsigned command = kwCommandBase;
    for (const std::string& keyword : keywords)
    {
        if (command == kwCommandLast)
            break;
        ++command;
        if (!keyword.empty())
            items.push_back({command, kwToMenuText(keyword)});
    }
    return items;
}

unsigned kwMenuPosition(unsigned command)
{
    return command - kwCommandBase - 1;
}

std::string kwToMenuText(std::string_view keyword)
{
    std::string text;
    text.reserve(keyword.size());
    for (char c : keyword)
        text.append(c == '&' ? 2 : 1, c);
    return text;
}

std::string kwFromMenuText(std::string_view menuText)
{
    std::string keyword;
    keyword.reserve(menuText.size());
    for (std::size_t i = 0; i < menuText.size(); ++i)
    {
        if (menuText[i] == '&' && i + 1 < menuText.size() && menuText[i + 1] == '&')
            ++i;
        keyword += menuText[i];
    }
    return keyword;
}

std::string kwAppend(const std::string& text, const std::string& keyword)
{
    return text.empty() ? keyword : text + ", " + keyword;
}
