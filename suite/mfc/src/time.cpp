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
} // namespace

CTime::CTime(const FILETIME& fileTime, int) : m_time(FromFileTime(fileTime))
{
}

bool CTime::GetAsSystemTime(SYSTEMTIME& st) const
{
    st = ToLocal(m_time);
    return st.wYear != 0;
}
