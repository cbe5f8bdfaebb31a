// COleDateTime: arithmetic on DATE, its parts, its text.
#include "afxdisp.h"

#include "baseres.h"

#include <chrono>
#include <cmath>

namespace
{
using std::chrono::days;
using std::chrono::sys_days;

constexpr sys_days epoch = std::chrono::December / 30 / 1899;
constexpr DATE smallestDate = -657434.0; // 1 January 100
constexpr DATE largestDate = 2958466.0;  // the end of 9999, not reached
constexpr LONGLONG secondsPerDay = 86400;

// A DATE before the epoch counts its days downward but its time of day upward: -1.25 is six in the morning
// of the day before. Sums and differences are made on a plain number line.
double ToLinear(DATE date)
{
    const double day = std::trunc(date);
    return date >= 0.0 ? date : day - (date - day);
}

DATE FromLinear(double linear)
{
    const double day = std::floor(linear);
    return linear >= 0.0 ? linear : day - (linear - day);
}

bool InRange(DATE date)
{
    return date >= smallestDate - 1.0 && ToLinear(date) >= smallestDate && date < largestDate;
}

bool ToDate(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, DATE& date)
{
    const std::chrono::year_month_day day(std::chrono::year(nYear),
                                          std::chrono::month(static_cast<unsigned>(nMonth)),
                                          std::chrono::day(static_cast<unsigned>(nDay)));
    if (nYear < 100 || nYear > 9999 || nMonth < 1 || nMonth > 12 || nDay < 1 || nDay > 31 || !day.ok() ||
        nHour < 0 || nHour > 23 || nMin < 0 || nMin > 59 || nSec < 0 || nSec > 59)
    {
        return false;
    }
    const auto dayNumber = (sys_days(day) - epoch).count();
    date = FromLinear(static_cast<double>(dayNumber) +
                      (nHour * 3600 + nMin * 60 + nSec) / static_cast<double>(secondsPerDay));
    return true;
}

struct DateParts
{
    int year = -1;
    int month = -1;
    int day = -1;
    int hour = -1;
    int minute = -1;
    int second = -1;
    int weekday = -1; // 0 is Sunday
};

// Of a valid date, to the nearest second.
DateParts ToParts(DATE date)
{
    const LONGLONG seconds = std::llround(ToLinear(date) * static_cast<double>(secondsPerDay));
    LONGLONG day = seconds / secondsPerDay;
    LONGLONG rest = seconds % secondsPerDay;
    if (rest < 0)
    {
        rest += secondsPerDay;
        --day;
    }
    const sys_days point = epoch + days(day);
    const std::chrono::year_month_day ymd(point);
    DateParts parts;
    parts.year = static_cast<int>(ymd.year());
    parts.month = static_cast<int>(static_cast<unsigned>(ymd.month()));
    parts.day = static_cast<int>(static_cast<unsigned>(ymd.day()));
    parts.hour = static_cast<int>(rest / 3600);
    parts.minute = static_cast<int>(rest / 60 % 60);
    parts.second = static_cast<int>(rest % 60);
    parts.weekday = static_cast<int>(std::chrono::weekday(point).c_encoding());
    return parts;
}

DateParts PartsOf(const COleDateTime& date)
{
    return date.GetStatus() == COleDateTime::valid ? ToParts(date.m_dt) : DateParts();
}
} // namespace

COleDateTime::COleDateTime(DATE dtSrc) : m_dt(dtSrc), m_status(InRange(dtSrc) ? valid : invalid)
{
}

COleDateTime::COleDateTime(const SYSTEMTIME& systimeSrc)
    : COleDateTime(systimeSrc.wYear, systimeSrc.wMonth, systimeSrc.wDay, systimeSrc.wHour, systimeSrc.wMinute,
                   systimeSrc.wSecond)
{
}

COleDateTime::COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    SetDateTime(nYear, nMonth, nDay, nHour, nMin, nSec);
}

COleDateTime COleDateTime::GetCurrentTime()
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return COleDateTime(now);
}

COleDateTime::DateTimeStatus COleDateTime::GetStatus() const
{
    return m_status;
}

void COleDateTime::SetStatus(DateTimeStatus status)
{
    m_status = status;
}

bool COleDateTime::GetAsSystemTime(SYSTEMTIME& sysTime) const
{
    sysTime = {};
    if (m_status != valid)
    {
        return false;
    }
    const DateParts parts = ToParts(m_dt);
    sysTime.wYear = static_cast<WORD>(parts.year);
    sysTime.wMonth = static_cast<WORD>(parts.month);
    sysTime.wDay = static_cast<WORD>(parts.day);
    sysTime.wDayOfWeek = static_cast<WORD>(parts.weekday);
    sysTime.wHour = static_cast<WORD>(parts.hour);
    sysTime.wMinute = static_cast<WORD>(parts.minute);
    sysTime.wSecond = static_cast<WORD>(parts.second);
    return true;
}

int COleDateTime::GetYear() const
{
    return PartsOf(*this).year;
}

int COleDateTime::GetMonth() const
{
    return PartsOf(*this).month;
}

int COleDateTime::GetDay() const
{
    return PartsOf(*this).day;
}

bool COleDateTime::operator==(const COleDateTime& date) const
{
    return m_status == date.m_status && (m_status == null || (m_status == valid && m_dt == date.m_dt));
}

bool COleDateTime::operator<(const COleDateTime& date) const
{
    return m_status == valid && date.m_status == valid && ToLinear(m_dt) < ToLinear(date.m_dt);
}

COleDateTime COleDateTime::operator+(COleDateTimeSpan dateSpan) const
{
    return m_status == valid ? COleDateTime(FromLinear(ToLinear(m_dt) + dateSpan.m_span)) : *this;
}

int COleDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    m_status = ToDate(nYear, nMonth, nDay, nHour, nMin, nSec, m_dt) ? valid : invalid;
    return m_status;
}

CString COleDateTime::Format(DWORD dwFlags, LCID lcid) const
{
    if (m_status == null)
    {
        return CString();
    }
    BSTR pszText = nullptr;
    if (m_status == valid && SUCCEEDED(VarBstrFromDate(m_dt, lcid, dwFlags, &pszText)))
    {
        const std::unique_ptr<OLECHAR, decltype(&SysFreeString)> owner(pszText, &SysFreeString);
        return CString(pszText);
    }
    CString text;
    text.LoadString(AFX_IDS_INVALID_DATETIME);
    return text;
}
