// CTime and CTimeSpan: seconds since 1970 in universal time, shown in local time. Included through afx.h.
#pragma once

class AFX_DLL_CLASS CTimeSpan
{
public:
    CTimeSpan() = default;
    CTimeSpan(__time64_t time) : m_timeSpan(time)
    {
    }
    CTimeSpan(LONG lDays, int nHours, int nMins, int nSecs)
        : m_timeSpan(((lDays * 24LL + nHours) * 60 + nMins) * 60 + nSecs)
    {
    }

    LONGLONG GetDays() const
    {
        return m_timeSpan / 86400;
    }
    LONGLONG GetTotalSeconds() const
    {
        return m_timeSpan;
    }
    __time64_t GetTimeSpan() const
    {
        return m_timeSpan;
    }
    auto operator<=>(const CTimeSpan&) const = default;

private:
    __time64_t m_timeSpan = 0;
};

class AFX_DLL_CLASS CTime
{
public:
    CTime() = default;
    CTime(__time64_t time) : m_time(time)
    {
    }
    // Local time; a date that does not exist throws CInvalidArgException.
    CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int nDST = -1);
    explicit CTime(const SYSTEMTIME& sysTime, int nDST = -1);
    explicit CTime(const FILETIME& fileTime, int nDST = -1);

    static CTime GetCurrentTime();

    __time64_t GetTime() const
    {
        return m_time;
    }
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    int GetHour() const;
    int GetMinute() const;
    int GetSecond() const;
    int GetDayOfWeek() const; // 1 is Sunday
    bool GetAsSystemTime(SYSTEMTIME& st) const;
    CString Format(LPCTSTR pszFormat) const;

    CTimeSpan operator-(CTime time) const
    {
        return CTimeSpan(m_time - time.m_time);
    }
    CTime operator+(CTimeSpan span) const
    {
        return CTime(m_time + span.GetTimeSpan());
    }
    CTime operator-(CTimeSpan span) const
    {
        return CTime(m_time - span.GetTimeSpan());
    }
    auto operator<=>(const CTime&) const = default;

private:
    __time64_t m_time = 0;
};
