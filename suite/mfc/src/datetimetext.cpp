// Dates and lengths of time as texts, in the user's locale.
#include "afxdisp.h"

#include "baseres.h"

namespace
{
CString Number(int value, int width, bool padded)
{
    CString text;
    text.Format("%0*d", padded ? width : 1, value);
    return text;
}

CString LocaleText(LCTYPE type)
{
    char text[256];
    return GetLocaleInfoA(LOCALE_USER_DEFAULT, type, text, sizeof(text)) > 0 ? CString(text) : CString();
}

// The user's locale numbers its days from Monday.
CString DayName(int weekday, LCTYPE monday)
{
    return LocaleText(monday + static_cast<LCTYPE>((weekday + 6) % 7));
}

CString WholeDate(const COleDateTime& date, bool isLong)
{
    SYSTEMTIME time = {};
    char text[256];
    if (date.GetAsSystemTime(time) &&
        GetDateFormatA(LOCALE_USER_DEFAULT, isLong ? DATE_LONGDATE : DATE_SHORTDATE, &time, nullptr, text,
                       sizeof(text)) > 0)
    {
        return text;
    }
    // The system formats no date before 1601.
    return Number(date.GetYear(), 4, true) + "-" + Number(date.GetMonth(), 2, true) + "-" +
           Number(date.GetDay(), 2, true);
}

CString WholeTime(const COleDateTime& date)
{
    SYSTEMTIME time = {};
    time.wYear = 2000;
    time.wMonth = 1;
    time.wDay = 1;
    time.wHour = static_cast<WORD>(date.GetHour());
    time.wMinute = static_cast<WORD>(date.GetMinute());
    time.wSecond = static_cast<WORD>(date.GetSecond());
    char text[256];
    return GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &time, nullptr, text, sizeof(text)) > 0 ? CString(text)
                                                                                          : CString();
}

// What one marker stands for; `plain` drops leading zeros and makes a whole date long.
CString MarkerText(char marker, bool plain, const COleDateTime& date)
{
    const auto twelve = [&] { return date.GetHour() % 12 == 0 ? 12 : date.GetHour() % 12; };
    const int weekday = date.GetDayOfWeek() - 1; // 0 is Sunday
    switch (marker)
    {
    case 'a':
        return DayName(weekday, LOCALE_SABBREVDAYNAME1);
    case 'A':
        return DayName(weekday, LOCALE_SDAYNAME1);
    case 'b':
        return LocaleText(LOCALE_SABBREVMONTHNAME1 + static_cast<LCTYPE>(date.GetMonth() - 1));
    case 'B':
        return LocaleText(LOCALE_SMONTHNAME1 + static_cast<LCTYPE>(date.GetMonth() - 1));
    case 'c':
        return WholeDate(date, plain) + " " + WholeTime(date);
    case 'd':
        return Number(date.GetDay(), 2, !plain);
    case 'H':
        return Number(date.GetHour(), 2, !plain);
    case 'I':
        return Number(twelve(), 2, !plain);
    case 'j':
        return Number(date.GetDayOfYear(), 3, !plain);
    case 'm':
        return Number(date.GetMonth(), 2, !plain);
    case 'M':
        return Number(date.GetMinute(), 2, !plain);
    case 'p':
        return LocaleText(date.GetHour() < 12 ? LOCALE_S1159 : LOCALE_S2359);
    case 'S':
        return Number(date.GetSecond(), 2, !plain);
    case 'U':
        return Number((date.GetDayOfYear() + 6 - weekday) / 7, 2, !plain);
    case 'w':
        return Number(weekday, 1, false);
    case 'W':
        return Number((date.GetDayOfYear() + 6 - (weekday + 6) % 7) / 7, 2, !plain);
    case 'x':
        return WholeDate(date, plain);
    case 'X':
        return WholeTime(date);
    case 'y':
        return Number(date.GetYear() % 100, 2, !plain);
    case 'Y':
        return Number(date.GetYear(), 4, !plain);
    case '%':
        return "%";
    default:
        return CString();
    }
}

CString ResourceText(UINT nID)
{
    CString text;
    text.LoadString(nID);
    return text;
}

class BStr
{
public:
    explicit BStr(BSTR text = nullptr) : m_text(text)
    {
    }
    ~BStr()
    {
        SysFreeString(m_text);
    }
    BStr(const BStr&) = delete;
    BStr& operator=(const BStr&) = delete;
    BSTR Get() const
    {
        return m_text;
    }
    BSTR* Out()
    {
        return &m_text;
    }

private:
    BSTR m_text;
};
} // namespace

CString COleDateTime::Format(DWORD dwFlags, LCID lcid) const
{
    if (m_status == null)
    {
        return CString();
    }
    BStr text;
    if (m_status != valid || FAILED(VarBstrFromDate(m_dt, lcid, dwFlags, text.Out())))
    {
        return ResourceText(AFX_IDS_INVALID_DATETIME);
    }
    return CString(text.Get());
}

CString COleDateTime::Format(LPCTSTR lpszFormat) const
{
    ENSURE(lpszFormat != nullptr);
    if (m_status == null)
    {
        return CString();
    }
    if (m_status != valid)
    {
        return ResourceText(AFX_IDS_INVALID_DATETIME);
    }
    CString result;
    for (LPCTSTR p = lpszFormat; *p != '\0'; ++p)
    {
        if (*p != '%')
        {
            result += *p;
            continue;
        }
        const bool plain = p[1] == '#';
        p += plain ? 2 : 1;
        if (*p == '\0')
        {
            break;
        }
        result += MarkerText(*p, plain, *this);
    }
    return result;
}
