// The common controls. Thin: each member is the control's message or macro of the same name.
//
// Everything belongs to one user interface thread.
#pragma once

#include "suite/mfc/afxwin.h"

#include "suite/mfc/win/listctrl.h"

class AFX_DLL_CLASS CTabCtrl : public CWnd
{
    DECLARE_DYNAMIC(CTabCtrl)
public:
    int GetItemCount() const
    {
        return Ask<int>(TCM_GETITEMCOUNT);
    }
    BOOL GetItem(int nItem, TCITEM* pTabCtrlItem) const
    {
        return Ask<BOOL>(TCM_GETITEM, nItem, pTabCtrlItem);
    }
    BOOL GetItemRect(int nItem, LPRECT lpRect) const
    {
        return Ask<BOOL>(TCM_GETITEMRECT, nItem, lpRect);
    }
    int GetCurSel() const
    {
        return Ask<int>(TCM_GETCURSEL);
    }
    // Tells nobody, as the control's message does not.
    int HitTest(TCHITTESTINFO* pHitTestInfo) const
    {
        return Ask<int>(TCM_HITTEST, 0, pHitTestInfo);
    }
};

class AFX_DLL_CLASS CProgressCtrl : public CWnd
{
    DECLARE_DYNAMIC(CProgressCtrl)
public:
    void SetRange(short nLower, short nUpper)
    {
        Ask(PBM_SETRANGE, 0, MAKELPARAM(nLower, nUpper));
    }
    int SetPos(int nPos)
    {
        return Ask<int>(PBM_SETPOS, nPos);
    }
};
