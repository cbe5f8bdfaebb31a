#include "patient/daynumber.h"

#include <cmath>

namespace pat
{

// Days before 1899-12-30 are negative, and the time of day is counted on from their whole part all the same.
long DayNumber(const velCDate& date)
{
    return date.IsValid() ? static_cast<long>(std::trunc(date.m_dt)) : 0;
}

velCDate DayDate(long nDay)
{
    return nDay == 0 ? velCDate() : velCDate(COleDateTime(static_cast<DATE>(nDay)));
}

velCDate WholeDay(const velCDate& date)
{
    return date.IsValid() ? velCDate(date.GetYear(), date.GetMonth(), date.GetDay()) : velCDate();
}

} // namespace pat
