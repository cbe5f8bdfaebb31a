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
    COleDateTime(const SYSTEMTIME& systimeSrc);
    COleDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    static COleDateTime GetCurrentTime();

    COleDateTime& operator=(DATE dtSrc);
    COleDateTime& operator=(const SYSTEMTIME& systimeSrc);

    DateTimeStatus GetStatus() const;
    void SetStatus(DateTimeStatus status);

    bool GetAsSystemTime(SYSTEMTIME& sysTime) const;
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 1 is Sunday
    int GetDayOfYear() const; // 1 is 1 January

    bool operator==(const COleDateTime& date) const;
    bool operator<(const COleDateTime& date) const;
    bool operator>(const COleDateTime& date) const;

    COleDateTime operator+(COleDateTimeSpan dateSpan) const;
    COleDateTime operator-(COleDateTimeSpan dateSpan) const;
    COleDateTimeSpan operator-(const COleDateTime& date) const;

    operator DATE() const;

    // These answer 0 when the result is valid, else the status (1).
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    // Empty for a null object; the framework's text for an invalid one.
    CString Format(DWORD dwFlags = 0, LCID lcid = LANG_USER_DEFAULT) const;
    // strftime's markers; those for names and for whole dates and times ("%x") follow the user's locale.
    CString Format(LPCTSTR lpszFormat) const;

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
    double GetTotalSeconds() const;

    void SetDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs);

    double m_span = 0.0;
    DateTimeSpanStatus m_status = valid;
};
