#include "controls/buttondrawing.h"

#include <sstream>
#include <string>

namespace ctl
{

namespace
{

std::optional<Stroke::Kind> ParseKind(const std::string& word)
{
    if (word == "line")
        return Stroke::Kind::line;
    if (word == "curve")
        return Stroke::Kind::curve;
    if (word == "disc")
        return Stroke::Kind::disc;
    return std::nullopt;
}

bool ParseColour(const std::string& word, std::optional<std::uint32_t>& colour)
{
    if (word == "back")
        return true;
    if (word.size() != 6 || word.find_first_not_of("0123456789ABCDEFabcdef") != std::string::npos)
        return false;
    colour = static_cast<std::uint32_t>(std::stoul(word, nullptr, 16));
    return true;
}

std::optional<Stroke> ParseStroke(const std::string& line)
{
    std::istringstream words(line);
    words.imbue(std::locale::classic());
    std::string kind;
    std::string colour;
    Stroke stroke = {};
    words >> kind >> colour >> stroke.width;
    const auto known = ParseKind(kind);
    if (!words || !known || !ParseColour(colour, stroke.colour))
        return std::nullopt;
    stroke.kind = *known;

    Point point = {};
    char comma = 0;
    while (words >> point.x >> comma >> point.y && comma == ',')
        stroke.points.push_back(point);
    const bool bWhole = words.eof() && comma == ',';
    const std::size_t least = stroke.kind == Stroke::Kind::disc ? 1 : 2;
    if (!bWhole || stroke.points.size() < least)
        return std::nullopt;
    return stroke;
}

} // namespace

std::optional<std::vector<Stroke>> ParseDrawing(std::string_view text)
{
    std::istringstream lines{std::string(text)};
    std::vector<Stroke> strokes;
    for (std::string line; std::getline(lines, line);)
    {
        auto stroke = ParseStroke(line);
        if (!stroke)
            return std::nullopt;
        strokes.push_back(std::move(*stroke));
    }
    if (strokes.empty())
        return std::nullopt;
    return strokes;
}

} // namespace ctl
