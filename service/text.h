// Text as it travels: forms, UTF-8, times.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace svc
{
using Form = std::map<std::string, std::string>;

/// The fields of "key=value&..." with "%xx" and "+" decoded. Nothing when an escape is broken or a key stands
/// twice.
std::optional<Form> ParseForm(std::string_view text);
/// The field's value; empty when it is missing.
std::string Field(const Form& form, const std::string& key);

/// A whole number of at least 0; nothing for anything else.
std::optional<std::int64_t> ParseNumber(std::string_view text);

/// Well-formed UTF-8 without control characters other than tab, line feed and carriage return.
bool IsCleanText(std::string_view text);

/// Text in code page 1252 as UTF-8; as it is when it holds a byte that the code page has not.
std::string FromCodePage1252(std::string_view text);

/// Present time in milliseconds since 1970, UTC.
std::int64_t Now();
/// "2026-03-05T14:07:09.000" in the local time that lies `west` minutes behind UTC.
std::string FormatTime(std::int64_t milliseconds, int west);
/// The reverse, to the minute at least; nothing for text that is no time.
std::optional<std::int64_t> ParseTime(const std::string& text, int west);
/// A client's offset brought into -14 to +12 hours: one that tells a day too much is meant a day less.
int NormalizeOffset(std::int64_t west);
} // namespace svc
