// COleDateTimeSpan: a length of time in days.
#include "afxdisp.h"

#include <cmath>

namespace
{
constexpr LONGLONG secondsPerDay = 86400;
constexpr double longestSpan = 3615897.0; // days between the first and the last date

// To the nearest second.
LONGLONG SpanSeconds(const COleDateTimeSpan& span)
{
    return std::llround(span.m_span * static_cast<double>(secondsPerDay));
}
} // namespace

COleDateTimeSpan::COleDateTimeSpan(double dblSpanSrc)
    : m_span(dblSpanSrc), m_status(std::abs(dblSpanSrc) <= longestSpan ? valid : invalid)
{
}

COleDateTimeSpan::COleDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs)
{
    SetDateTimeSpan(lDays, nHours, nMins, nSecs);
}

COleDateTimeSpan::DateTimeSpanStatus COleDateTimeSpan::GetStatus() const
{
    return m_status;
}

void COleDateTimeSpan::SetStatus(DateTimeSpanStatus status)
{
    m_status = status;
}

double COleDateTimeSpan::GetTotalDays() const
{
    return m_span;
}

double COleDateTimeSpan::GetTotalHours() const
{
    const auto hours = SpanSeconds(*this) / 3600; // whole ones
    return static_cast<double>(hours);
}

double COleDateTimeSpan::GetTotalMinutes() const
{
    const auto minutes = SpanSeconds(*this) / 60;
    return static_cast<double>(minutes);
}

double COleDateTimeSpan::GetTotalSeconds() const
{
    return static_cast<double>(SpanSeconds(*this));
}

LONG COleDateTimeSpan::GetDays() const
{
    return static_cast<LONG>(SpanSeconds(*this) / secondsPerDay);
}

LONG COleDateTimeSpan::GetHours() const
{
    return static_cast<LONG>(SpanSeconds(*this) / 3600 % 24);
}

LONG COleDateTimeSpan::GetMinutes() const
{
    return static_cast<LONG>(SpanSeconds(*this) / 60 % 60);
}

LONG COleDateTimeSpan::GetSeconds() const
{
    return static_cast<LONG>(SpanSeconds(*this) % 60);
}

COleDateTimeSpan COleDateTimeSpan::operator+(const COleDateTimeSpan& dateSpan) const
{
    COleDateTimeSpan result(m_span + dateSpan.m_span);
    if (m_status == null || dateSpan.m_status == null)
    {
        result.m_status = null;
    }
    else if (m_status != valid || dateSpan.m_status != valid)
    {
        result.m_status = invalid;
    }
    return result;
}

COleDateTimeSpan COleDateTimeSpan::operator-(const COleDateTimeSpan& dateSpan) const
{
    return *this + -dateSpan;
}

COleDateTimeSpan COleDateTimeSpan::operator-() const
{
    COleDateTimeSpan result(*this);
    result.m_span = -m_span;
    return result;
}

bool COleDateTimeSpan::operator==(const COleDateTimeSpan& dateSpan) const
{
    return m_status == dateSpan.m_status &&
           (m_status == null || (m_status == valid && m_span == dateSpan.m_span));
}

bool COleDateTimeSpan::operator!=(const COleDateTimeSpan& dateSpan) const
{
    return !(*this == dateSpan);
}

bool COleDateTimeSpan::operator<(const COleDateTimeSpan& dateSpan) const
{
    return m_status == valid && dateSpan.m_status == valid && m_span < dateSpan.m_span;
}

bool COleDateTimeSpan::operator>(const COleDateTimeSpan& dateSpan) const
{
    return dateSpan < *this;
}

bool COleDateTimeSpan::operator<=(const COleDateTimeSpan& dateSpan) const
{
    return *this < dateSpan || *this == dateSpan;
}

bool COleDateTimeSpan::operator>=(const COleDateTimeSpan& dateSpan) const
{
    return dateSpan < *this || *this == dateSpan;
}

COleDateTimeSpan::operator double() const
{
    return m_span;
}

void COleDateTimeSpan::SetDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs)
{
    *this =
        COleDateTimeSpan(lDays + nHours / 24.0 + nMins / 1440.0 + nSecs / static_cast<double>(secondsPerDay));
}
