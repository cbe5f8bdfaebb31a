// The line of text that every ".kar", "CURRENT.DAT" and ".PF" file begins with.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace arc
{
inline constexpr std::size_t HeaderFieldLength = 25; ///< characters of one field
/// Bytes that hold any well-formed line: three full fields with their ends, carriage return and line feed.
inline constexpr std::size_t HeaderLineLength = 3 * (HeaderFieldLength + 1) + 2;

struct HeaderLine
{
    std::string lastName;
    std::string firstName;
    std::string id;

    bool operator==(const HeaderLine&) const = default;
};

/// The line's bytes: each field's first 25 characters and 0x01, then "\n". Bytes that would end a field or
/// the line early are left out.
std::string WriteHeaderLine(const HeaderLine& header);

/// The header that the first bytes of a file hold; nothing when they are not three ended fields of at most 25
/// characters, the last not empty, and a line end ("\n" or "\r\n"). Looks at HeaderLineLength bytes at most.
std::optional<HeaderLine> ParseHeaderLine(std::string_view firstBytes);

/// True when both name the same patient as far as a header can tell: the first 25 characters of each field.
bool SamePatient(const HeaderLine& left, const HeaderLine& right);
} // namespace arc
