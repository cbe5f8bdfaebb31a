#include "afxdisp.h"

namespace
{
// From 1601 to 1970.
constexpr ULONGLONG epochSeconds = 11644473600ULL;
constexpr ULONGLONG ticksPerSecond = 10000000ULL;

__time64_t FromFileTime(const FILETIME& fileTime)
{
    const ULONGLONG ticks = static_cast<ULONGLONG>(fileTime.dwHighDateTime) << 32 | fileTime.dwLowDateTime;
    return static_cast<__time64_t>(ticks / ticksPerSecond) - static_cast<__time64_t>(epochSeconds);
}

__time64_t FromLocal(const SYSTEMTIME& local)
{
    SYSTEMTIME universal = {};
    FILETIME fileTime = {};
    ENSURE(TzSpecificLocalTimeToSystemTime(nullptr, &local, &universal) &&
           SystemTimeToFileTime(&universal, &fileTime));
    return FromFileTime(fileTime);
}

SYSTEMTIME ToLocal(__time64_t time)
{
    const ULONGLONG ticks = (static_cast<ULONGLONG>(time) + epochSeconds) * ticksPerSecond;
    const FILETIME fileTime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME universal = {};
    SYSTEMTIME local = {};
    if (!FileTimeToSystemTime(&fileTime, &universal) ||
        !SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local))
    {
        return SYSTEMTIME{};
    }
    return local;
}

SYSTEMTIME Parts(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec)
{
    SYSTEMTIME parts = {};
    parts.wYear = static_cast<WORD>(nYear);
    parts.wMonth = static_cast<WORD>(nMonth);
    parts.wDay = static_cast<WORD>(nDay);
    parts.wHour = static_cast<WORD>(nHour);
    parts.wMinute = static_cast<WORD>(nMin);
    parts.wSecond = static_cast<WORD>(nSec);
    return parts;
}
} // namespace

CTime::CTime(int nYear, int nMonth, int nDay, int nHour, int nMin, int nSec, int)
    : m_time(FromLocal(Parts(nYear, nMonth, nDay, nHour, nMin, nSec)))
{
}

CTime::CTime(const SYSTEMTIME& sysTime, int) : m_time(FromLocal(sysTime))
{
}

CTime::CTime(const FILETIME& fileTime, int) : m_time(FromFileTime(fileTime))
{
}

CTime CTime::GetCurrentTime()
{
    FILETIME now = {};
    GetSystemTimeAsFileTime(&now);
    return CTime(now);
}

int CTime::GetYear() const
{
    return ToLocal(m_time).wYear;
}

int CTime::GetMonth() const
{
    return ToLocal(m_time).wMonth;
}

int CTime::GetDay() const
{
    return ToLocal(m_time).wDay;
}

int CTime::GetHour() const
{
    return ToLocal(m_time).wHour;
}

int CTime::GetMinute() const
{
    return ToLocal(m_time).wMinute;
}

int CTime::GetSecond() const
{
    return ToLocal(m_time).wSecond;
}

int CTime::GetDayOfWeek() const
{
    return ToLocal(m_time).wDayOfWeek + 1;
}

bool CTime::GetAsSystemTime(SYSTEMTIME& st) const
{
    st = ToLocal(m_time);
    return st.wYear != 0;
}

CString CTime::Format(LPCTSTR pszFormat) const
{
    return COleDateTime(ToLocal(m_time)).Format(pszFormat);
}
