#include "afxdisp.h"

#include "baseres.h"

#include <chrono>
#include <cmath>

// ---------------------------------------------------------------------------------------------------------
// Arithmetic on DATE

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
    int weekday = -1;   // 0 is Sunday
    int dayOfYear = -1; // 0 is 1 January
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
    parts.dayOfYear = static_cast<int>((point - sys_days(ymd.year() / std::chrono::January / 1)).count());
    return parts;
}

DateParts PartsOf(const COleDateTime& date)
{
    return date.GetStatus() == COleDateTime::valid ? ToParts(date.m_dt) : DateParts();
}

// ---------------------------------------------------------------------------------------------------------
// Texts

CString Number(int value, int width, bool padded)
{
    CString text;
    text.Format("%0*d", padded ? width : 1, value);
    return text;
}

CString LocaleText(LCTYPE type)
{
    char text[256];
    return GetLocaleInfoA(LOCALE_USER_DEFAULT, type, text, sizeof(text)) > 0 ? CString(text) : CString();
}

// The user's locale numbers its days from Monday.
CString DayName(int weekday, LCTYPE monday)
{
    return LocaleText(monday + static_cast<LCTYPE>((weekday + 6) % 7));
}

CString WholeDate(const COleDateTime& date, const DateParts& parts, bool isLong)
{
    SYSTEMTIME time = {};
    char text[256];
    if (date.GetAsSystemTime(time) && GetDateFormatA(LOCALE_USER_DEFAULT, isLong ? DATE_LONGDATE : DATE_SHORTDATE,
                                                     &time, nullptr, text, sizeof(text)) > 0)
    {
        return text;
    }
    // The system formats no date before 1601.
    return Number(parts.year, 4, true) + "-" + Number(parts.month, 2, true) + "-" + Number(parts.day, 2, true);
}

CString WholeTime(const DateParts& parts)
{
    SYSTEMTIME time = {};
    time.wYear = 2000;
    time.wMonth = 1;
    time.wDay = 1;
    time.wHour = static_cast<WORD>(parts.hour);
    time.wMinute = static_cast<WORD>(parts.minute);
    time.wSecond = static_cast<WORD>(parts.second);
    char text[256];
    return GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, sizeof(text)) > 0 ? CString(text)
                                                                                          : CString();
}

// What one marker stands for; `plain` drops leading zeros and makes a whole date long.
CString MarkerText(char marker, bool plain, const COleDateTime& date, const DateParts& parts)
{
    const auto twelve = [&] { return parts.hour % 12 == 0 ? 12 : parts.hour % 12; };
    switch (marker)
    {
    case 'a':
        return DayName(parts.weekday, LOCALE_SABBREVDAYNAME1);
    case 'A':
        return DayName(parts.weekday, LOCALE_SDAYNAME1);
    case 'b':
        return LocaleText(LOCALE_SABBREVMONTHNAME1 + static_cast<LCTYPE>(parts.month - 1));
    case 'B':
        return LocaleText(LOCALE_SMONTHNAME1 + static_cast<LCTYPE>(parts.month - 1));
    case 'c':
        return WholeDate(date, parts, plain) + " " + WholeTime(parts);
    case 'd':
        return Number(parts.day, 2, !plain);
    case 'H':
        return Number(parts.hour, 2, !plain);
    case 'I':
        return Number(twelve(), 2, !plain);
    case 'j':
        return Number(parts.dayOfYear + 1, 3, !plain);
    case 'm':
        return Number(parts.month, 2, !plain);
    case 'M':
        return Number(parts.minute, 2, !plain);
    case 'p':
        return LocaleText(parts.hour < 12 ? LOCALE_S1159 : LOCALE_S2359);
    case 'S':
        return Number(parts.second, 2, !plain);
    case 'U':
        return Number((parts.dayOfYear + 7 - parts.weekday) / 7, 2, !plain);
    case 'w':
        return Number(parts.weekday, 1, false);
    case 'W':
        return Number((parts.dayOfYear + 7 - (parts.weekday + 6) % 7) / 7, 2, !plain);
    case 'x':
        return WholeDate(date, parts, plain);
    case 'X':
        return WholeTime(parts);
    case 'y':
        return Number(parts.year % 100, 2, !plain);
    case 'Y':
        return Number(parts.year, 4, !plain);
    case '%':
        return "%";
    default:
        return CString();
    }
}

CString ResourceText(UINT nID)
{
    CString text;
    text.LoadString(nID);
    return text;
}

class BStr
{
public:
    explicit BStr(BSTR text = nullptr) : m_text(text)
    {
    }
    ~BStr()
    {
        SysFreeString(m_text);
    }
    BStr(const BStr&) = delete;
    BStr& operator=(const BStr&) = delete;
    BSTR Get() const
    {
        return m_text;
    }
    BSTR* Out()
    {
        return &m_text;
    }

private:
    BSTR m_text;
};
} // namespace

// ---------------------------------------------------------------------------------------------------------
// COleDateTime

COleDateTime::COleDateTime(DATE dtSrc)
{
    *this = dtSrc;
}

COleDateTime::COleDateTime(const VARIANT& varSrc)
{
    VARIANT date;
    VariantInit(&date);
    if (V_VT(&varSrc) == VT_NULL)
    {
        m_status = null;
    }
    else if (SUCCEEDED(VariantChangeType(&date, const_cast<VARIANT*>(&varSrc), 0, VT_DATE)))
    {
        *this = V_DATE(&date);
    }
    else
    {
        m_status = invalid;
    }
}

COleDateTime::COleDateTime(__time64_t timeSrc)
{
    SYSTEMTIME local = {};
    m_status = invalid;
    if (CTime(timeSrc).GetAsSystemTime(local))
    {
        *this = local;
    }
}

COleDateTime::COleDateTime(const SYSTEMTIME& systimeSrc)
{
    *this = systimeSrc;
}

COleDateTime::COleDateTime(const FILETIME& filetimeSrc) : COleDateTime(CTime(filetimeSrc).GetTime())
{
}

COleDateTime::COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    SetDateTime(nYear, nMonth, nDay, nHour, nMin, nSec);
}

COleDateTime::COleDateTime(WORD wDosDate, WORD wDosTime)
{
    SetDateTime(1980 + (wDosDate >> 9), wDosDate >> 5 & 15, wDosDate & 31, wDosTime >> 11, wDosTime >> 5 & 63,
                (wDosTime & 31) * 2);
}

COleDateTime COleDateTime::GetCurrentTime()
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return COleDateTime(now);
}

COleDateTime& COleDateTime::operator=(DATE dtSrc)
{
    m_dt = dtSrc;
    m_status = InRange(dtSrc) ? valid : invalid;
    return *this;
}

COleDateTime& COleDateTime::operator=(const SYSTEMTIME& systimeSrc)
{
    SetDateTime(systimeSrc.wYear, systimeSrc.wMonth, systimeSrc.wDay, systimeSrc.wHour, systimeSrc.wMinute,
                systimeSrc.wSecond);
    return *this;
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

bool COleDateTime::GetAsUDATE(UDATE& uDate) const
{
    uDate = {};
    if (!GetAsSystemTime(uDate.st))
    {
        return false;
    }
    uDate.wDayOfYear = static_cast<USHORT>(GetDayOfYear());
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

int COleDateTime::GetHour() const
{
    return PartsOf(*this).hour;
}

int COleDateTime::GetMinute() const
{
    return PartsOf(*this).minute;
}

int COleDateTime::GetSecond() const
{
    return PartsOf(*this).second;
}

int COleDateTime::GetDayOfWeek() const
{
    return m_status == valid ? PartsOf(*this).weekday + 1 : error;
}

int COleDateTime::GetDayOfYear() const
{
    return m_status == valid ? PartsOf(*this).dayOfYear + 1 : error;
}

bool COleDateTime::operator==(const COleDateTime& date) const
{
    return m_status == date.m_status && (m_status == null || (m_status == valid && m_dt == date.m_dt));
}

bool COleDateTime::operator!=(const COleDateTime& date) const
{
    return !(*this == date);
}

bool COleDateTime::operator<(const COleDateTime& date) const
{
    return m_status == valid && date.m_status == valid && ToLinear(m_dt) < ToLinear(date.m_dt);
}

bool COleDateTime::operator>(const COleDateTime& date) const
{
    return date < *this;
}

bool COleDateTime::operator<=(const COleDateTime& date) const
{
    return *this < date || *this == date;
}

bool COleDateTime::operator>=(const COleDateTime& date) const
{
    return date < *this || *this == date;
}

COleDateTime COleDateTime::operator+(COleDateTimeSpan dateSpan) const
{
    COleDateTime result;
    if (m_status == null || dateSpan.GetStatus() == COleDateTimeSpan::null)
    {
        result.m_status = null;
    }
    else if (m_status != valid || dateSpan.GetStatus() != COleDateTimeSpan::valid)
    {
        result.m_status = invalid;
    }
    else
    {
        result = FromLinear(ToLinear(m_dt) + dateSpan.m_span);
    }
    return result;
}

COleDateTime COleDateTime::operator-(COleDateTimeSpan dateSpan) const
{
    return *this + -dateSpan;
}

COleDateTime& COleDateTime::operator+=(COleDateTimeSpan dateSpan)
{
    *this = *this + dateSpan;
    return *this;
}

COleDateTime& COleDateTime::operator-=(COleDateTimeSpan dateSpan)
{
    *this = *this - dateSpan;
    return *this;
}

COleDateTimeSpan COleDateTime::operator-(const COleDateTime& date) const
{
    COleDateTimeSpan result;
    if (m_status == null || date.m_status == null)
    {
        result.SetStatus(COleDateTimeSpan::null);
    }
    else if (m_status != valid || date.m_status != valid)
    {
        result.SetStatus(COleDateTimeSpan::invalid);
    }
    else
    {
        result = COleDateTimeSpan(ToLinear(m_dt) - ToLinear(date.m_dt));
    }
    return result;
}

COleDateTime::operator DATE() const
{
    return m_status == valid ? m_dt : 0.0;
}

int COleDateTime::SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    m_status = ToDate(nYear, nMonth, nDay, nHour, nMin, nSec, m_dt) ? valid : invalid;
    return m_status;
}

int COleDateTime::SetDate(int nYear, int nMonth, int nDay)
{
    return SetDateTime(nYear, nMonth, nDay, 0, 0, 0);
}

int COleDateTime::SetTime(int nHour, int nMin, int nSec)
{
    return SetDateTime(1899, 12, 30, nHour, nMin, nSec);
}

bool COleDateTime::ParseDateTime(LPCTSTR lpszDate, DWORD dwFlags, LCID lcid)
{
    const BStr text(CString(lpszDate).AllocSysString());
    DATE date = 0.0;
    m_dt = 0.0;
    m_status = invalid;
    if (FAILED(VarDateFromStr(text.Get(), lcid, dwFlags, &date)))
    {
        return false;
    }
    *this = date;
    return m_status == valid;
}

CString COleDateTime::Format(DWORD dwFlags, LCID lcid) const
{
    if (m_status == null)
    {
        return CString();
    }
    BStr text;
    if (m_status != valid || FAILED(VarBstrFromDate(m_dt, lcid, dwFlags, text.Out())))
    {
        return ResourceText(AFX_IDS_INVALID_DATETIME);
    }
    return CString(text.Get());
}

CString COleDateTime::Format(LPCTSTR lpszFormat) const
{
    ENSURE(lpszFormat != nullptr);
    if (m_status == null)
    {
        return CString();
    }
    if (m_status != valid)
    {
        return ResourceText(AFX_IDS_INVALID_DATETIME);
    }
    const DateParts parts = ToParts(m_dt);
    CString result;
    for (LPCTSTR p = lpszFormat; *p != '\0'; ++p)
    {
        if (*p != '%')
        {
            result += *p;
            continue;
        }
        const bool plain = p[1] == '#';
        p += plain ? 2 : 1;
        if (*p == '\0')
        {
            break;
        }
        result += MarkerText(*p, plain, *this, parts);
    }
    return result;
}

CString COleDateTime::Format(UINT nFormatID) const
{
    CString format;
    ENSURE(format.LoadString(nFormatID));
    return Format(format.GetString());
}

CArchive& operator<<(CArchive& ar, const COleDateTime& dateSrc)
{
    return ar << static_cast<LONG>(dateSrc.m_status) << dateSrc.m_dt;
}

CArchive& operator>>(CArchive& ar, COleDateTime& dateSrc)
{
    LONG status = COleDateTime::invalid;
    DATE date = 0.0;
    ar >> status >> date;
    // What the file says need not be a date.
    COleDateTime loaded(date);
    if (status == COleDateTime::null)
    {
        loaded = COleDateTime();
        loaded.SetStatus(COleDateTime::null);
    }
    else if (status != COleDateTime::valid || loaded.GetStatus() != COleDateTime::valid)
    {
        loaded = COleDateTime();
        loaded.SetStatus(COleDateTime::invalid);
    }
    dateSrc = loaded;
    return ar;
}

// ---------------------------------------------------------------------------------------------------------
// COleDateTimeSpan

namespace
{
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
    return static_cast<double>(SpanSeconds(*this) / 3600);
}

double COleDateTimeSpan::GetTotalMinutes() const
{
    return static_cast<double>(SpanSeconds(*this) / 60);
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
    return m_status == dateSpan.m_status && (m_status == null || (m_status == valid && m_span == dateSpan.m_span));
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
    *this = COleDateTimeSpan(lDays + nHours / 24.0 + nMins / 1440.0 +
                             nSecs / static_cast<double>(secondsPerDay));
}

CString COleDateTimeSpan::Format(LPCTSTR pFormat) const
{
    ENSURE(pFormat != nullptr);
    if (m_status == null)
    {
        return CString();
    }
    if (m_status != valid)
    {
        return ResourceText(AFX_IDS_INVALID_DATETIMESPAN);
    }
    CString result;
    for (LPCTSTR p = pFormat; *p != '\0'; ++p)
    {
        if (*p != '%' || p[1] == '\0')
        {
            result += *p;
            continue;
        }
        switch (*++p)
        {
        case 'D':
            result += Number(GetDays(), 1, false);
            break;
        case 'H':
            result += Number(GetHours(), 2, true);
            break;
        case 'M':
            result += Number(GetMinutes(), 2, true);
            break;
        case 'S':
            result += Number(GetSeconds(), 2, true);
            break;
        default:
            result += *p;
        }
    }
    return result;
}
