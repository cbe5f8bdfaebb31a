// Whole days, alone and as numbers for rules that know no windows.
#pragma once

#include "suite/util/veldate.h"

namespace pat
{

/// The day of a date counted from 1899-12-30; 0 for a date that is not set.
long DayNumber(const velCDate& date);

/// The date of a day number; no date for 0.
velCDate DayDate(long nDay);

/// The date without the time of day that a date field adds to it.
velCDate WholeDay(const velCDate& date);

} // namespace pat
