// CTime: seconds since 1970 in universal time, shown in local time. Included through afx.h.
#pragma once

class AFX_DLL_CLASS CTime
{
public:
    CTime() = default;
    CTime(__time64_t time) : m_time(time)
    {
    }
    explicit CTime(const FILETIME& fileTime, int nDST = -1);

    __time64_t GetTime() const
    {
        return m_time;
    }
    bool GetAsSystemTime(SYSTEMTIME& st) const;
    auto operator<=>(const CTime&) const = default;

private:
    __time64_t m_time = 0;
};
