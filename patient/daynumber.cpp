#include "patient/daynumber.h"

#include <cmath>

long patDayNumber(const COleDateTime& date)
{
    return date.GetStatus() == COleDateTime::valid ? static_cast<long>(std::floor(date.m_dt)) : 0;
}

COleDateTime patDayDate(long nDay)
{
    COleDateTime date(static_cast<DATE>(nDay));
    if (nDay == 0)
        date.SetStatus(COleDateTime::null);
    return date;
}

CString patDayText(long nDay)
{
    return nDay == 0 ? CString() : patDayDate(nDay).Format(VAR_DATEVALUEONLY, LANG_USER_DEFAULT);
}
