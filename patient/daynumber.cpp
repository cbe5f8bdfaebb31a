#include "patient/daynumber.h"

#include <cmath>

// Days before 1899-12-30 are negative, and the time of day is counted on from their whole part all the same.
long patDayNumber(const velCDate& date)
{
    return date.IsValid() ? static_cast<long>(std::trunc(date.m_dt)) : 0;
}

velCDate patDayDate(long nDay)
{
    return nDay == 0 ? velCDate() : velCDate(COleDateTime(static_cast<DATE>(nDay)));
}

velCDate patWholeDay(const velCDate& date)
{
    return date.IsValid() ? velCDate(date.GetYear(), date.GetMonth(), date.GetDay()) : velCDate();
}
