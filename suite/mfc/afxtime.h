// CTime: seconds since 1970 in universal time, shown in local time. Included through afx.h.
#pragma once

class AFX_DLL_CLASS CTime
{
public:
    CTime() = default;
    explicit CTime(const FILETIME& fileTime, int nDST = -1);

    bool GetAsSystemTime(SYSTEMTIME& st) const;

private:
    __time64_t m_time = 0;
};
