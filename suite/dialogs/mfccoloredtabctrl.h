#pragma once

#include "suite/dialogs/ctlapi.h"

/// A tab strip with a coloured line over the selected tab and tinted other tabs. It replaces the standard
/// strip of a property sheet by SubclassWindow, or is created like any tab control. All colours come from the
/// system and follow its changes; with a high-contrast scheme only the scheme's own colours are used. The
/// focus is shown as the system asks for. Lives on the thread of its window.
class VELCTL_API CMfcColoredTabCtrl : public CTabCtrl
{
    DECLARE_DYNAMIC(CMfcColoredTabCtrl)

protected:
    afx_msg void OnPaint();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnMouseMove(UINT nFlags, CPoint point);
    afx_msg LRESULT OnMouseLeave(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnUIState(WPARAM wParam, LPARAM lParam);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnSysColorChange();
    DECLARE_MESSAGE_MAP()

private:
    void DrawTab(CDC& dc, int nTab) const;
    void InvalidateTab(int nTab);

    int m_nHotTab = -1;
};
