#pragma once

#include "maintenance/keywordrules.h"

#include <afxwin.h>

/// The keyword field: a multi-line edit control that offers the stored keywords in a right-click menu and
/// appends the one chosen. It is the window class "VELEDKEYW", which dialog templates name; the window text
/// that a template gives it, "PATIENT" or "IMAGE", chooses the list. The object comes with the window's first
/// message and deletes itself with the window. Owns its menu; lives on the thread of its dialog.
class cedCKeywords : public CEdit
{
public:
    /// Registers the window class for a module instance.
    static void RegisterControlClass(HINSTANCE hInstance);
    static void UnregisterControlClass(HINSTANCE hInstance);

protected:
    void PostNcDestroy() override;

    afx_msg int OnCreate(LPCREATESTRUCT pCreate);
    afx_msg void OnContextMenu(CWnd* pWnd, CPoint point);
    afx_msg void OnKeyword(UINT nCommand);
    afx_msg void OnEditKeywords();
    DECLARE_MESSAGE_MAP()

private:
    static LRESULT CALLBACK FirstWindowProc(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    void FillMenu();

    CMenu m_menu;
    maint::KeywordList m_nList = maint::KeywordList::None;
};
