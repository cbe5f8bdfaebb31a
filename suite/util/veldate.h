// The suite's date: a COleDateTime that starts as "no date".
#pragma once

#include "suite/util/velutil.h"

#include <afxdisp.h>

class VELUTIL_API velCDate : public COleDateTime
{
public:
    velCDate(); // null
    velCDate(const COleDateTime& dateSrc);
    velCDate(const SYSTEMTIME& systimeSrc);
    velCDate(int nYear, int nMonth, int nDay);
    velCDate& operator=(const COleDateTime& dateSrc);

    static velCDate Today();
    /// From "yyyy-mm-dd", with or without " hh:mm:ss" behind it; null from an empty text, invalid from any
    /// other.
    static velCDate FromISO(LPCTSTR lpszText);

    bool IsValid() const;
    bool IsNull() const;
    void SetNull();

    /// By the calendar day alone: below, at or above 0. No date comes before every date.
    int CompareDate(const velCDate& date) const;
    bool IsSameDate(const velCDate& date) const;

    /// The day in the user's locale, as the system's short date; empty when there is no valid date.
    CString FormatDate() const;
    /// "yyyy-mm-dd"; empty when there is no valid date.
    CString ToISO() const;
};

/// Callers keep dates in records of 16 bytes.
static_assert(sizeof(velCDate) == sizeof(COleDateTime));
