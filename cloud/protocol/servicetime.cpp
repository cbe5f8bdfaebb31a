#include "cloud/protocol/servicetime.h"

#include <chrono>
#include <cstdio>

namespace cloud
{
namespace
{
std::optional<ServiceTime> IfPossible(const ServiceTime& time)
{
    using namespace std::chrono;
    const year_month_day date(year(time.year), month(static_cast<unsigned>(time.month)),
                              day(static_cast<unsigned>(time.day)));
    const auto within = [](int value, int limit) { return value >= 0 && value < limit; };
    // Years before 100 are no dates that the suite can hold.
    if (time.year < 100 || time.month < 1 || time.day < 1 || !date.ok() || !within(time.hour, 24) ||
        !within(time.minute, 60) || !within(time.second, 60))
        return std::nullopt;
    return time;
}

template <typename... Numbers> std::string Print(const char* format, Numbers... numbers)
{
    char text[96];
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}
} // namespace

std::optional<ServiceTime> ParseServiceDate(const std::string& text)
{
    ServiceTime time;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2d", &time.year, &time.month, &time.day) != 3)
        return std::nullopt;
    return IfPossible(time);
}

std::optional<ServiceTime> ParseServiceTime(const std::string& text)
{
    ServiceTime time;
    int thousandths = 0;
    if (std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%3d", &time.year, &time.month, &time.day,
                    &time.hour, &time.minute, &time.second, &thousandths) < 5)
        return std::nullopt;
    return IfPossible(time);
}

std::string DateText(const ServiceTime& time)
{
    return Print("%04d-%02d-%02d", time.year, time.month, time.day);
}

std::string TimeText(const ServiceTime& time)
{
    return DateText(time) + Print("T%02d:%02d:%02d", time.hour, time.minute, time.second);
}

std::string ShownTime(const std::string& text)
{
    const auto time = ParseServiceTime(text);
    if (!time)
        return "-";
    return DateText(*time) + Print(" %02d:%02d:%02d", time->hour, time->minute, time->second);
}

int TimeZoneOffset(const std::tm& local, const std::tm& utc)
{
    const bool sameDay = utc.tm_yday <= local.tm_yday && utc.tm_year <= local.tm_year;
    return (utc.tm_hour + (sameDay ? 0 : 24) - local.tm_hour) * 60;
}
} // namespace cloud
