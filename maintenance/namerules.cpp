#include "maintenance/namerules.h"

#include <algorithm>
#include <functional>

namespace maint
{

namespace
{

constexpr std::string_view whiteSpace = " \t\n\v\f\r";
constexpr char fieldSeparator = '\x01';

bool AllOf(std::string_view text, const CharTable& table, const std::function<bool(std::string_view)>& holds)
{
    while (!text.empty())
    {
        const std::string_view character = text.substr(0, table.LengthOf(text));
        if (!holds(character))
            return false;
        text.remove_prefix(character.size());
    }
    return true;
}

bool IsLetterOrDigit(std::string_view character, const CharTable& table)
{
    return (table.TypeOf(character) & (CharTable::letter | CharTable::digit)) != 0;
}

bool IsControl(std::string_view character, const CharTable& table)
{
    return (table.TypeOf(character) & CharTable::control) != 0;
}

} // namespace

std::string CutName(std::string_view text, std::size_t limit, const CharTable& table)
{
    std::size_t length = 0;
    while (length < text.size())
    {
        const std::size_t next = length + table.LengthOf(text.substr(length));
        if (next > limit)
            break;
        length = next;
    }
    return std::string(text.substr(0, length));
}

std::string ShapePatientName(std::string_view text, const CharTable& table)
{
    std::string name = CutName(text, maxPatientName, table);
    name.erase(0, std::min(name.find_first_not_of(whiteSpace), name.size()));
    if (!name.empty() && table.LengthOf(name) == 1)
        name.front() = table.CapitalOf(name.front());
    return name;
}

std::size_t CaretAfterShaping(std::size_t caret, std::size_t length)
{
    return caret >= maxPatientName ? length : std::min(caret, length);
}

bool IsPatientName(std::string_view name, const CharTable& table)
{
    if (name.empty() || name.size() > maxPatientName ||
        !IsLetterOrDigit(name.substr(0, table.LengthOf(name)), table))
        return false;
    return AllOf(name, table, [&](std::string_view character) {
        if (character == "." || character == " " || character == "-" || character == "'")
            return true;
        return IsLetterOrDigit(character, table) && !IsControl(character, table);
    });
}

bool IsTimepointName(std::string_view name)
{
    return !name.empty() && name.size() <= maxTimepointName &&
           name.find(fieldSeparator) == std::string_view::npos;
}

bool IsNewTimepointName(std::string_view name, const CharTable& table)
{
    return !name.empty() &&
           AllOf(name, table, [&](std::string_view character) { return !IsControl(character, table); });
}

std::string TrimTimepointName(std::string_view name)
{
    return std::string(name.substr(0, name.find_last_not_of(whiteSpace) + 1));
}

} // namespace maint
