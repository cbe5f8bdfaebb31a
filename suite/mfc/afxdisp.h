// Dates over the automation DATE: days since 30 December 1899, time of day as the fraction.
#pragma once

#include "afx.h"

class COleDateTimeSpan;

// A date and time from year 100 to 9999, to the second, without time zone. Two words of eight bytes: the
// DATE and the status. An invalid or null object answers -1 (error) to every
// part.
class AFX_DLL_CLASS COleDateTime
{
public:
    enum DateTimeStatus
    {
        error = -1,
        valid = 0,
        invalid = 1,
        null = 2
    };

    COleDateTime() = default; // valid: midnight of 30 December 1899
    COleDateTime(DATE dtSrc);
    COleDateTime(const VARIANT& varSrc); // a date, a text or a null variant
    COleDateTime(__time64_t timeSrc);    // shown in local time
    COleDateTime(const SYSTEMTIME& systimeSrc);
    COleDateTime(const FILETIME& filetimeSrc); // shown in local time
    COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);
    COleDateTime(WORD wDosDate, WORD wDosTime);

    static COleDateTime GetCurrentTime();

    COleDateTime& operator=(DATE dtSrc);
    COleDateTime& operator=(const SYSTEMTIME& systimeSrc);

    DateTimeStatus GetStatus() const;
    void SetStatus(DateTimeStatus status);

    bool GetAsSystemTime(SYSTEMTIME& sysTime) const;
    bool GetAsUDATE(UDATE& uDate) const;
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 1 is Sunday
    int GetDayOfYear() const; // 1 is 1 January

    bool operator==(const COleDateTime& date) const;
    bool operator!=(const COleDateTime& date) const;
    bool operator<(const COleDateTime& date) const;
    bool operator>(const COleDateTime& date) const;
    bool operator<=(const COleDateTime& date) const;
    bool operator>=(const COleDateTime& date) const;

    COleDateTime operator+(COleDateTimeSpan dateSpan) const;
    COleDateTime operator-(COleDateTimeSpan dateSpan) const;
    COleDateTime& operator+=(COleDateTimeSpan dateSpan);
    COleDateTime& operator-=(COleDateTimeSpan dateSpan);
    COleDateTimeSpan operator-(const COleDateTime& date) const;

    operator DATE() const;

    // These answer 0 when the result is valid, else the status (1).
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);
    int SetDate(int nYear, int nMonth, int nDay);
    int SetTime(int nHour, int nMin, int nSec);
    // Reads a text in the order of the locale, with VAR_DATEVALUEONLY or VAR_TIMEVALUEONLY only that part.
    bool ParseDateTime(LPCTSTR lpszDate, DWORD dwFlags = 0, LCID lcid = LANG_USER_DEFAULT);

    // Empty for a null object; the framework's text for an invalid one.
    CString Format(DWORD dwFlags = 0, LCID lcid = LANG_USER_DEFAULT) const;
    // strftime's markers; those for names and for whole dates and times ("%x") follow the user's locale.
    CString Format(LPCTSTR lpszFormat) const;
    CString Format(UINT nFormatID) const;

    DATE m_dt = 0.0;
    DateTimeStatus m_status = valid;
};

static_assert(sizeof(COleDateTime) == 16);

// A length of time; its unit is the day.
class AFX_DLL_CLASS COleDateTimeSpan
{
public:
    enum DateTimeSpanStatus
    {
        valid = 0,
        invalid = 1,
        null = 2
    };

    COleDateTimeSpan() = default;
    COleDateTimeSpan(double dblSpanSrc);
    COleDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs);

    DateTimeSpanStatus GetStatus() const;
    void SetStatus(DateTimeSpanStatus status);
    double GetTotalDays() const;
    double GetTotalHours() const;
    double GetTotalMinutes() const;
    double GetTotalSeconds() const;
    LONG GetDays() const;
    LONG GetHours() const;   // -23 .. 23
    LONG GetMinutes() const; // -59 .. 59
    LONG GetSeconds() const; // -59 .. 59

    COleDateTimeSpan operator+(const COleDateTimeSpan& dateSpan) const;
    COleDateTimeSpan operator-(const COleDateTimeSpan& dateSpan) const;
    COleDateTimeSpan operator-() const;
    bool operator==(const COleDateTimeSpan& dateSpan) const;
    bool operator!=(const COleDateTimeSpan& dateSpan) const;
    bool operator<(const COleDateTimeSpan& dateSpan) const;
    bool operator>(const COleDateTimeSpan& dateSpan) const;
    bool operator<=(const COleDateTimeSpan& dateSpan) const;
    bool operator>=(const COleDateTimeSpan& dateSpan) const;
    operator double() const;

    void SetDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs);
    // strftime-like: "%D" days, "%H" hours, "%M" minutes, "%S" seconds, "%%".
    CString Format(LPCTSTR pFormat) const;

    double m_span = 0.0;
    DateTimeSpanStatus m_status = valid;
};

AFX_DLL_API CArchive& operator<<(CArchive& ar, const COleDateTime& dateSrc);
AFX_DLL_API CArchive& operator>>(CArchive& ar, COleDateTime& dateSrc);
