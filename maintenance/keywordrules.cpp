#include "maintenance/keywordrules.h"

#include <algorithm>

namespace maint
{

namespace
{

bool EqualsNoCase(std::string_view text, std::string_view upper)
{
    const auto same = [](char a, char b) { return (a >= 'a' && a <= 'z' ? a - 'a' + 'A' : a) == b; };
    return std::equal(text.begin(), text.end(), upper.begin(), upper.end(), same);
}

} // namespace

KeywordList KeywordListFromText(std::string_view windowText)
{
    if (EqualsNoCase(windowText, "PATIENT"))
        return KeywordList::Patient;
    return EqualsNoCase(windowText, "IMAGE") ? KeywordList::Image : KeywordList::None;
}

std::vector<KeywordMenuItem> KeywordMenu(const std::vector<std::string>& keywords)
{
    std::vector<KeywordMenuItem> items;
    items.reserve(keywords.size());
    unsigned command = keywordCommandBase;
    for (const std::string& keyword : keywords)
    {
        if (command == keywordCommandLast)
            break;
        ++command;
        if (!keyword.empty())
            items.push_back({command, ToMenuText(keyword)});
    }
    return items;
}

unsigned KeywordMenuPosition(unsigned command)
{
    return command - keywordCommandBase - 1;
}

std::string ToMenuText(std::string_view keyword)
{
    std::string text;
    text.reserve(keyword.size());
    for (char c : keyword)
        text.append(c == '&' ? 2 : 1, c);
    return text;
}

std::string FromMenuText(std::string_view menuText)
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

std::string AppendKeyword(const std::string& text, const std::string& keyword)
{
    return text.empty() ? keyword : text + ", " + keyword;
}

KeywordCheck CheckKeyword(std::string_view text, bool isListed)
{
    if (text.find_first_not_of(" \t") == std::string_view::npos)
        return KeywordCheck::Empty;
    if (text.size() > longestKeyword)
        return KeywordCheck::TooLong;
    return isListed ? KeywordCheck::Duplicate : KeywordCheck::Accepted;
}

} // namespace maint
