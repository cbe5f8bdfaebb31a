// The bar between two panes of the main window.
#pragma once

#include <afxwin.h>

/// Posted to the parent while the bar is dragged: WPARAM is the bar's id, LPARAM where the user wants its left or
/// upper edge, in the parent's client coordinates.
constexpr UINT HOST_WM_SPLIT = WM_APP + 1;

/// A narrow child window that the user drags. The parent places it and the panes. Owns nothing.
class hostCSplitBar : public CWnd
{
public:
    /// A vertical bar parts left from right, a horizontal one upper from lower.
    BOOL CreateIn(CWnd* parent, UINT id, BOOL vertical);

    /// Thickness in pixels.
    static int GetThickness();

protected:
    afx_msg void OnLButtonDown(UINT flags, CPoint point);
    afx_msg void OnMouseMove(UINT flags, CPoint point);
    afx_msg void OnLButtonUp(UINT flags, CPoint point);
    DECLARE_MESSAGE_MAP()

private:
    BOOL m_vertical = TRUE;
    CPoint m_grip; // where in the bar it was taken
};
