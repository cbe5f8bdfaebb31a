// CDateTimeCtrl: a date picker that speaks COleDateTime.
#pragma once

#include "suite/mfc/afxcmn.h"
#include "suite/mfc/afxdisp.h"

class AFX_DLL_CLASS CDateTimeCtrl : public CWnd
{
    DECLARE_DYNAMIC(CDateTimeCtrl)
public:
    // TRUE with a valid date; a picker whose check box is clear gives a date with the status null.
    BOOL GetTime(COleDateTime& timeDest) const;
    DWORD GetTime(LPSYSTEMTIME pTimeDest) const
    {
        return Ask<DWORD>(DTM_GETSYSTEMTIME, 0, pTimeDest);
    }
    // A date with the status null clears the picker (which must have DTS_SHOWNONE); an invalid one fails.
    BOOL SetTime(const COleDateTime& timeNew);
    BOOL SetTime(LPSYSTEMTIME pTimeNew = nullptr);
};

AFX_DLL_API void DDX_DateTimeCtrl(CDataExchange* pDX, int nIDC, COleDateTime& value);
