#include "suite/util/velstring.h"

#include "suite/util/utilrules.h"

CString strString::ToAlpha(int nNumber, int nWidth)
{
    return utlNumberText(nNumber, nWidth).c_str();
}

CString velFormatTemplate(LPCTSTR lpszTemplate, LPCTSTR lpsz1, LPCTSTR lpsz2, LPCTSTR lpsz3, LPCTSTR lpsz4)
{
    std::vector<std::string_view> arguments;
    for (const LPCTSTR argument : {lpsz1, lpsz2, lpsz3, lpsz4})
    {
        if (argument == nullptr)
        {
            break;
        }
        arguments.emplace_back(argument);
    }
    return utlFillTemplate(lpszTemplate != nullptr ? lpszTemplate : "", arguments).c_str();
}

CString velFormatTemplate(UINT nTemplateID, LPCTSTR lpsz1, LPCTSTR lpsz2, LPCTSTR lpsz3, LPCTSTR lpsz4)
{
    CString text;
    VERIFY(text.LoadString(nTemplateID));
    return velFormatTemplate(text.GetString(), lpsz1, lpsz2, lpsz3, lpsz4);
}
