#include "service/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstdio>

namespace
{
int HexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

std::optional<std::string> Decode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != '%')
        {
            decoded += text[i] == '+' ? ' ' : text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? HexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0)
            return std::nullopt;
        decoded += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return decoded;
}
} // namespace

namespace svc
{
std::optional<Form> ParseForm(std::string_view text)
{
    Form form;
    while (!text.empty())
    {
        const std::string_view pair = text.substr(0, text.find('&'));
        text.remove_prefix(std::min(text.size(), pair.size() + 1));
        const std::size_t equals = pair.find('=');
        const auto key = Decode(pair.substr(0, equals));
        const auto value =
            Decode(equals == std::string_view::npos ? std::string_view() : pair.substr(equals + 1));
        if (!key || !value || !form.emplace(*key, *value).second)
            return std::nullopt;
    }
    return form;
}

std::string Field(const Form& form, const std::string& key)
{
    const auto found = form.find(key);
    return found == form.end() ? std::string() : found->second;
}

std::optional<std::int64_t> ParseNumber(std::string_view text)
{
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || number < 0)
        return std::nullopt;
    return number;
}

bool IsCleanText(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();)
    {
        const auto lead = static_cast<unsigned char>(text[i++]);
        if (lead < 0x80)
        {
            if ((lead < 0x20 && lead != '\t' && lead != '\n' && lead != '\r') || lead == 0x7F)
                return false;
            continue;
        }
        const int more = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
        if (lead < 0xC2 || lead > 0xF4)
            return false;
        std::uint32_t code = lead & (0x3FU >> more);
        for (int k = 0; k < more; ++k)
        {
            const auto next = i < text.size() ? static_cast<unsigned char>(text[i++]) : 0U;
            if ((next & 0xC0U) != 0x80U)
                return false;
            code = code << 6 | (next & 0x3FU);
        }
        constexpr std::uint32_t Least[] = {0, 0x80, 0x800, 0x10000};
        if (code < Least[more] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF) || code == 0xFFFE ||
            code == 0xFFFF)
            return false;
    }
    return true;
}

std::string FromCodePage1252(std::string_view text)
{
    static constexpr std::array<char16_t, 32> From80 = {
        0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
        0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
        0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
    std::string utf8;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        const unsigned code = byte >= 0x80 && byte < 0xA0 ? From80.at(byte - 0x80U) : byte;
        if (code == 0 && byte != 0)
            return std::string(text);
        if (code < 0x80)
            utf8 += c;
        else if (code < 0x800)
            utf8.append({static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))});
        else
            utf8.append({static_cast<char>(0xE0 | code >> 12), static_cast<char>(0x80 | (code >> 6 & 0x3F)),
                         static_cast<char>(0x80 | (code & 0x3F))});
    }
    return utf8;
}

std::int64_t Now()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

std::string FormatTime(std::int64_t milliseconds, int west)
{
    const std::int64_t local = milliseconds - west * 60000LL;
    const auto seconds = static_cast<time_t>(local / 1000);
    struct tm parts = {};
    gmtime_r(&seconds, &parts);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03d", parts.tm_year + 1900,
                  parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(local % 1000));
    return text;
}

std::optional<std::int64_t> ParseTime(const std::string& text, int west)
{
    struct tm parts = {};
    int milliseconds = 0;
    // At most four and two digits: the numbers cannot overflow.
    const int count = std::sscanf(
        text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%3d", &parts.tm_year, // NOLINT(cert-err34-c)
        &parts.tm_mon, &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &milliseconds);
    if (count < 5 || parts.tm_year < 1970 || parts.tm_mon < 1 || parts.tm_mon > 12 || parts.tm_mday < 1 ||
        parts.tm_mday > 31)
        return std::nullopt;
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    return static_cast<std::int64_t>(timegm(&parts)) * 1000 + milliseconds + west * 60000LL;
}

int NormalizeOffset(std::int64_t west)
{
    constexpr int Day = 24 * 60, MostWest = 12 * 60, MostEast = -14 * 60;
    if (west > MostWest)
        west -= Day;
    return west < MostEast || west > MostWest ? 0 : static_cast<int>(west);
}
} // namespace svc
