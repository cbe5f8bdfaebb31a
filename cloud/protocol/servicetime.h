// Dates and times as the service writes them, and the time-zone offset that it is told.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace cloud
{
struct ServiceTime
{
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;

    bool operator==(const ServiceTime&) const = default;
};

/// "yyyy-mm-dd"; nothing when one of the three is missing or the calendar has no such day.
std::optional<ServiceTime> ParseServiceDate(const std::string& text);
/// "yyyy-mm-ddThh:mm", with or without seconds and their fraction; nothing when one of the five is missing or
/// there is no such time.
std::optional<ServiceTime> ParseServiceTime(const std::string& text);

/// "yyyy-mm-dd", and with "Thh:mm:ss" behind it.
std::string DateText(const ServiceTime& time);
std::string TimeText(const ServiceTime& time);
/// A time as lists show it, "yyyy-mm-dd hh:mm:ss"; "-" for one that cannot be read.
std::string ShownTime(const std::string& text);

/// Minutes between local time and UTC, positive west of Greenwich, by whole hours. Where the local day is a
/// day ahead of UTC's, the difference is taken as if it were the same day: the service counts on exactly
/// this.
int TimeZoneOffset(const std::tm& local, const std::tm& utc);
} // namespace cloud
