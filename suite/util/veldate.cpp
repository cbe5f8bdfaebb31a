#include "suite/util/veldate.h"

#include "suite/util/utilrules.h"

#include <cmath>

velCDate::velCDate()
{
    SetNull();
}

velCDate::velCDate(const COleDateTime& dateSrc) : COleDateTime(dateSrc)
{
}

velCDate::velCDate(const SYSTEMTIME& systimeSrc) : COleDateTime(systimeSrc)
{
}

velCDate::velCDate(int nYear, int nMonth, int nDay) : COleDateTime(nYear, nMonth, nDay, 0, 0, 0)
{
}

velCDate& velCDate::operator=(const COleDateTime& dateSrc)
{
    COleDateTime::operator=(dateSrc);
    return *this;
}

velCDate velCDate::Today()
{
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return velCDate(now.wYear, now.wMonth, now.wDay);
}

velCDate velCDate::FromISO(LPCTSTR lpszText)
{
    velCDate date;
    if (lpszText == nullptr || *lpszText == '\0')
    {
        return date;
    }
    const std::optional<utlDateTime> parts = utlParseIsoDate(lpszText);
    if (!parts || date.SetDateTime(parts->year, parts->month, parts->day, parts->hour, parts->minute,
                                   parts->second) != valid)
    {
        date.SetStatus(invalid);
    }
    return date;
}

bool velCDate::IsValid() const
{
    return GetStatus() == valid;
}

bool velCDate::IsNull() const
{
    return GetStatus() == null;
}

void velCDate::SetNull()
{
    m_dt = 0.0;
    SetStatus(null);
}

int velCDate::CompareDate(const velCDate& date) const
{
    if (!IsValid() || !date.IsValid())
    {
        return static_cast<int>(IsValid()) - static_cast<int>(date.IsValid());
    }
    // The whole part counts the days; before the epoch it does so too, only downward.
    const double difference = std::trunc(m_dt) - std::trunc(date.m_dt);
    return (difference > 0.0) - (difference < 0.0);
}

bool velCDate::IsSameDate(const velCDate& date) const
{
    return CompareDate(date) == 0;
}

CString velCDate::FormatDate() const
{
    return IsValid() ? Format(VAR_DATEVALUEONLY) : CString();
}

CString velCDate::ToISO() const
{
    CString text;
    if (IsValid())
    {
        text.Format("%04d-%02d-%02d", GetYear(), GetMonth(), GetDay());
    }
    return text;
}
