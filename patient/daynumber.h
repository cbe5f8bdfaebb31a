// Whole days as numbers, for rules that know no windows.
#pragma once

#include <afxdisp.h>
#include <afxwin.h>

/// The day of a date counted from 1899-12-30; 0 for a date that is not set.
long patDayNumber(const COleDateTime& date);

/// The date of a day number; a null date for 0.
COleDateTime patDayDate(long nDay);

/// The date in the user's format; empty for 0.
CString patDayText(long nDay);
