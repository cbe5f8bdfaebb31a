#include "archive/files/headerline.h"

namespace arc
{
namespace
{
constexpr char FieldEnd = '\x01';
constexpr std::string_view EndingBytes("\x01\n\r\0", 4);

std::string Field(const std::string& text)
{
    std::string field;
    for (const char character : std::string_view(text).substr(0, HeaderFieldLength))
    {
        if (EndingBytes.find(character) == std::string_view::npos)
        {
            field += character;
        }
    }
    return field;
}
} // namespace

std::string WriteHeaderLine(const HeaderLine& header)
{
    std::string line;
    for (const std::string* field : {&header.lastName, &header.firstName, &header.id})
    {
        line += Field(*field);
        line += FieldEnd;
    }
    line += '\n';
    return line;
}

std::optional<HeaderLine> ParseHeaderLine(std::string_view firstBytes)
{
    HeaderLine header;
    std::string_view rest = firstBytes.substr(0, HeaderLineLength);
    for (std::string* field : {&header.lastName, &header.firstName, &header.id})
    {
        const std::size_t end = rest.find_first_of(EndingBytes);
        if (end > HeaderFieldLength || rest[end] != FieldEnd)
        {
            return std::nullopt;
        }
        *field = rest.substr(0, end);
        rest.remove_prefix(end + 1);
    }
    if (header.id.empty() || !(rest.starts_with("\n") || rest.starts_with("\r\n")))
    {
        return std::nullopt;
    }
    return header;
}

bool SamePatient(const HeaderLine& left, const HeaderLine& right)
{
    const auto first = [](const std::string& text) {
        return std::string_view(text).substr(0, HeaderFieldLength);
    };
    return first(left.lastName) == first(right.lastName) && first(left.firstName) == first(right.firstName) &&
           first(left.id) == first(right.id);
}
} // namespace arc
