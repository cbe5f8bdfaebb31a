// Dates over the automation DATE: days since 30 December 1899, time of day as the fraction.
#pragma once

#include "afx.h"

// A length of time; its unit is the day.
class AFX_DLL_CLASS COleDateTimeSpan
{
public:
    COleDateTimeSpan(LONG lDays, int nHours, int nMins, int nSecs)
        : m_span(lDays + nHours / 24.0 + nMins / 1440.0 + nSecs / 86400.0)
    {
    }

    double m_span;
};

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

    DateTimeStatus GetStatus() const;
    void SetStatus(DateTimeStatus status);

    bool GetAsSystemTime(SYSTEMTIME& sysTime) const;
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;

    bool operator==(const COleDateTime& date) const;
    bool operator<(const COleDateTime& date) const;

    COleDateTime operator+(COleDateTimeSpan dateSpan) const;

    // Answers 0 when the result is valid, else the status (1).
    int SetDateTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec);

    // Empty for a null object; the framework's text for an invalid one.
    CString Format(DWORD dwFlags = 0, LCID lcid = LANG_USER_DEFAULT) const;

    DATE m_dt = 0.0;
    DateTimeStatus m_status = valid;
};

static_assert(sizeof(COleDateTime) == 16);
