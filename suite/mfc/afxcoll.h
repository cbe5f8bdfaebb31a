// The ready-made collections, on the templates.
#pragma once

#include "afxtempl.h"

class AFX_DLL_CLASS CStringArray : public CArray<CString, LPCTSTR>
{
    DECLARE_DYNAMIC(CStringArray)
};
