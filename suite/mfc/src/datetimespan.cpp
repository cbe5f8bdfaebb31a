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

double COleDateTimeSpan::GetTotalSeconds() const
{
    return static_cast<double>(SpanSeconds(*this));
}

void COleDateTimeSpan::SetDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs)
{
    *this =
        COleDateTimeSpan(lDays + nHours / 24.0 + nMins / 1440.0 + nSecs / static_cast<double>(secondsPerDay));
}
