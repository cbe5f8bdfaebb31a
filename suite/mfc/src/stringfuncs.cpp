// The framework's free functions on texts and string resources.
#include "afx.h"

void AfxFormatStrings(CString& rString, LPCTSTR lpszFormat, LPCTSTR const* rglpsz, int nString)
{
    CString result;
    for (LPCTSTR p = lpszFormat; p != nullptr && *p != '\0'; ++p)
    {
        // Markers are numbered by a single digit from 1; one without an argument stays as it is.
        const int index = p[0] == '%' ? p[1] - '1' : -1;
        if (index >= 0 && index < nString && index <= 8)
        {
            result += rglpsz[index];
            ++p;
        }
        else
        {
            result += *p;
        }
    }
    rString = std::move(result);
}

void AfxFormatString1(CString& rString, LPCTSTR lpszFormat, LPCTSTR lpsz1)
{
    AfxFormatStrings(rString, lpszFormat, &lpsz1, 1);
}

void AfxFormatString1(CString& rString, UINT nIDS, LPCTSTR lpsz1)
{
    CString format;
    VERIFY(format.LoadString(nIDS));
    AfxFormatString1(rString, format, lpsz1);
}
