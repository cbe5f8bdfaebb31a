#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What the names of patients and timepoints may look like. Names are text of the system code page and are
/// measured in bytes; what a character is, its table says.
namespace maint
{

inline constexpr std::size_t maxPatientName = 259;  ///< bytes of a first or last name
inline constexpr std::size_t maxTimepointName = 50; ///< bytes

/// The characters of a code page.
class CharTable
{
public:
    enum Type : unsigned
    {
        letter = 1,
        digit = 2,
        control = 4,
    };

    CharTable() = default;
    virtual ~CharTable() = default;
    CharTable(const CharTable&) = delete;
    CharTable& operator=(const CharTable&) = delete;

    /// How many bytes the first character of a text has that is not empty. Half a character at the end counts
    /// as one of its own.
    virtual std::size_t LengthOf(std::string_view text) const = 0;
    /// What a character is: Types added up.
    virtual unsigned TypeOf(std::string_view character) const = 0;
    /// The capital of a lower-case letter of one byte; every other byte as it is.
    virtual char CapitalOf(char byte) const = 0;
};

/// The text cut to a number of bytes, never within a character.
std::string CutName(std::string_view text, std::size_t limit, const CharTable& table);

/// A first or last name as its field shows it while it is typed: cut to its length, without white space in
/// front, beginning with a capital.
std::string ShapePatientName(std::string_view text, const CharTable& table);

/// Where the caret of such a field goes after its text has been shaped: where it was, from the limit on to
/// the end.
std::size_t CaretAfterShaping(std::size_t caret, std::size_t length);

/// Whether a patient can be named so: letters, digits, ".", blank, "-" and "'", a letter or digit in front.
bool IsPatientName(std::string_view name, const CharTable& table);

/// Whether a timepoint can be renamed so: any text of its length without the character of code 1, which
/// separates fields in the suite's files.
bool IsTimepointName(std::string_view name);

/// Whether a new timepoint can be named so: any text without control characters.
bool IsNewTimepointName(std::string_view name, const CharTable& table);

/// The name of a new timepoint without white space (ASCII) at its end.
std::string TrimTimepointName(std::string_view name);

} // namespace maint
