#include "patient/daynumber.h"

#include <cmath>

long patDayNumber(const velCDate& date)
{
    return date.IsValid() ? static_cast<long>(std::floor(date.m_dt)) : 0;
}

velCDate patDayDate(long nDay)
{
    return nDay == 0 ? velCDate() : velCDate(COleDateTime(static_cast<DATE>(nDay)));
}
