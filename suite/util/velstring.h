// Texts of the suite: numbers of fixed width and message templates. Any thread.
#pragma once

#include "suite/util/velutil.h"

class VELUTIL_API strString : public CString
{
public:
    using CString::CString;
    strString() = default;
    strString(const CString& strSrc) : CString(strSrc)
    {
    }

    /// The number with zeros in front up to the width: ToAlpha(12, 3) is "012". Never cut.
    static CString ToAlpha(int nNumber, int nWidth);
};

/// Fills the markers "<1>" to "<4>" of a message template with the arguments in their order. What an argument
/// contains is not looked at again; a marker without an argument stays. The result ends at 256 characters.
VELUTIL_API CString velFormatTemplate(LPCTSTR lpszTemplate, LPCTSTR lpsz1, LPCTSTR lpsz2 = nullptr,
                                      LPCTSTR lpsz3 = nullptr, LPCTSTR lpsz4 = nullptr);
/// The template by its id in the string table of the caller's module state.
VELUTIL_API CString velFormatTemplate(UINT nTemplateID, LPCTSTR lpsz1, LPCTSTR lpsz2 = nullptr,
                                      LPCTSTR lpsz3 = nullptr, LPCTSTR lpsz4 = nullptr);
