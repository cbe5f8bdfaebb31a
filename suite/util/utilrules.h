// Rules of the utility library on texts and file names. Plain C++.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

constexpr std::size_t utlmaxTemplateResult = 256;

/// Replaces "<1>", "<2>" ... in a template by the arguments, which are not looked at again; a marker without
/// an argument stays. The result ends at utlmaxTemplateResult bytes.
std::string utlFillTemplate(std::string_view text, std::span<const std::string_view> arguments);

/// The number with zeros in front up to the width; never cut.
std::string utlNumberText(int number, int width);

/// The parts of a path; put together again in this order they are the path.
struct utlPathParts
{
    std::string drive; // "c:" or "\\server\share"
    std::string dir;   // up to and with the last separator
    std::string name;  // without extension
    std::string ext;   // with its dot
};
utlPathParts utlSplitPath(std::string_view path);

/// The folder with one backslash at its end; empty stays empty.
std::string utlWithBackslash(std::string_view folder);

struct utlDateTime
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};
/// "yyyy-mm-dd", with or without a blank or "T" and "hh:mm:ss". Only the form is checked, not the calendar.
std::optional<utlDateTime> utlParseIsoDate(std::string_view text);
