// CWnd's members that stand for one call of the system.
#include "suite/mfc/afxwin.h"

namespace
{
HWND HandleOf(const CWnd* wnd)
{
    return wnd != nullptr ? wnd->m_hWnd : nullptr;
}

// FALSE when the style was as wanted; with `flags` the frame is redrawn too.
BOOL ChangeStyle(HWND window, int index, DWORD remove, DWORD add, UINT flags)
{
    const auto style = static_cast<DWORD>(::GetWindowLongPtr(window, index));
    const DWORD changed = (style & ~remove) | add;
    if (style == changed)
    {
        return FALSE;
    }
    ::SetWindowLongPtr(window, index, static_cast<LONG>(changed));
    if (flags != 0)
    {
        ::SetWindowPos(window, nullptr, 0, 0, 0, 0,
                       SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | flags);
    }
    return TRUE;
}

CString TextOf(HWND window)
{
    CString text;
    const int length = ::GetWindowTextLength(window);
    if (length > 0)
    {
        ::GetWindowText(window, text.GetBuffer(length), length + 1);
        text.ReleaseBuffer();
    }
    return text;
}
} // namespace

// ---------------------------------------------------------------------------------------------------------
// Style, size, order

DWORD CWnd::GetStyle() const
{
    return static_cast<DWORD>(::GetWindowLongPtr(m_hWnd, GWL_STYLE));
}

DWORD CWnd::GetExStyle() const
{
    return static_cast<DWORD>(::GetWindowLongPtr(m_hWnd, GWL_EXSTYLE));
}

BOOL CWnd::ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags)
{
    return ChangeStyle(m_hWnd, GWL_STYLE, dwRemove, dwAdd, nFlags);
}

BOOL CWnd::ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags)
{
    return ChangeStyle(m_hWnd, GWL_EXSTYLE, dwRemove, dwAdd, nFlags);
}

BOOL CWnd::IsIconic() const
{
    return ::IsIconic(m_hWnd);
}

BOOL CWnd::IsZoomed() const
{
    return ::IsZoomed(m_hWnd);
}

void CWnd::MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint)
{
    ::MoveWindow(m_hWnd, x, y, nWidth, nHeight, bRepaint);
}

void CWnd::MoveWindow(LPCRECT lpRect, BOOL bRepaint)
{
    MoveWindow(lpRect->left, lpRect->top, lpRect->right - lpRect->left, lpRect->bottom - lpRect->top,
               bRepaint);
}

BOOL CWnd::SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags)
{
    return ::SetWindowPos(m_hWnd, HandleOf(pWndInsertAfter), x, y, cx, cy, nFlags);
}

void CWnd::GetWindowRect(LPRECT lpRect) const
{
    ::GetWindowRect(m_hWnd, lpRect);
}

void CWnd::GetClientRect(LPRECT lpRect) const
{
    ::GetClientRect(m_hWnd, lpRect);
}

void CWnd::ClientToScreen(LPPOINT lpPoint) const
{
    ::ClientToScreen(m_hWnd, lpPoint);
}

void CWnd::ScreenToClient(LPPOINT lpPoint) const
{
    ::ScreenToClient(m_hWnd, lpPoint);
}

void CWnd::ScreenToClient(LPRECT lpRect) const
{
    ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<LPPOINT>(lpRect), 2);
}

void CWnd::MapWindowPoints(CWnd* pwndTo, LPPOINT lpPoint, UINT nCount) const
{
    ::MapWindowPoints(m_hWnd, HandleOf(pwndTo), lpPoint, nCount);
}

// ---------------------------------------------------------------------------------------------------------
// Messages and text

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::SendMessage(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::PostMessage(m_hWnd, message, wParam, lParam);
}

LRESULT CWnd::SendDlgItemMessage(int nID, UINT message, WPARAM wParam, LPARAM lParam) const
{
    return ::SendDlgItemMessage(m_hWnd, nID, message, wParam, lParam);
}

void CWnd::SetWindowText(LPCTSTR lpszString)
{
    ::SetWindowText(m_hWnd, lpszString);
}

void CWnd::GetWindowText(CString& rString) const
{
    rString = TextOf(m_hWnd);
}

int CWnd::GetWindowTextLength() const
{
    return ::GetWindowTextLength(m_hWnd);
}

void CWnd::SetFont(CFont* pFont, BOOL bRedraw)
{
    Ask(WM_SETFONT, pFont != nullptr ? pFont->m_hObject : nullptr, bRedraw);
}

CFont* CWnd::GetFont() const
{
    return CFont::FromHandle(Ask<HFONT>(WM_GETFONT));
}

// ---------------------------------------------------------------------------------------------------------
// Painting

void CWnd::UpdateWindow()
{
    ::UpdateWindow(m_hWnd);
}

void CWnd::SetRedraw(BOOL bRedraw)
{
    Ask(WM_SETREDRAW, bRedraw);
}

void CWnd::Invalidate(BOOL bErase)
{
    ::InvalidateRect(m_hWnd, nullptr, bErase);
}

void CWnd::InvalidateRect(LPCRECT lpRect, BOOL bErase)
{
    ::InvalidateRect(m_hWnd, lpRect, bErase);
}

BOOL CWnd::ShowWindow(int nCmdShow)
{
    return ::ShowWindow(m_hWnd, nCmdShow);
}

BOOL CWnd::IsWindowVisible() const
{
    return ::IsWindowVisible(m_hWnd);
}

// ---------------------------------------------------------------------------------------------------------
// State, focus, mouse, timers

BOOL CWnd::IsWindowEnabled() const
{
    return ::IsWindowEnabled(m_hWnd);
}

BOOL CWnd::EnableWindow(BOOL bEnable)
{
    return ::EnableWindow(m_hWnd, bEnable);
}

CWnd* CWnd::GetActiveWindow()
{
    return FromHandle(::GetActiveWindow());
}

BOOL CWnd::SetForegroundWindow()
{
    return ::SetForegroundWindow(m_hWnd);
}

CWnd* CWnd::SetFocus()
{
    return FromHandle(::SetFocus(m_hWnd));
}

CWnd* CWnd::GetCapture()
{
    return FromHandle(::GetCapture());
}

CWnd* CWnd::SetCapture()
{
    return FromHandle(::SetCapture(m_hWnd));
}

UINT_PTR CWnd::SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer)
{
    return ::SetTimer(m_hWnd, nIDEvent, nElapse, lpfnTimer);
}

BOOL CWnd::KillTimer(UINT_PTR nIDEvent)
{
    return ::KillTimer(m_hWnd, nIDEvent);
}

// ---------------------------------------------------------------------------------------------------------
// Scroll bars and menus

CMenu* CWnd::GetMenu() const
{
    return CMenu::FromHandle(::GetMenu(m_hWnd));
}

CMenu* CWnd::GetSystemMenu(BOOL bRevert) const
{
    return CMenu::FromHandle(::GetSystemMenu(m_hWnd, bRevert));
}

// ---------------------------------------------------------------------------------------------------------
// Relatives

CWnd* CWnd::GetDlgItem(int nID) const
{
    return FromHandle(::GetDlgItem(m_hWnd, nID));
}

int CWnd::GetDlgCtrlID() const
{
    return ::GetDlgCtrlID(m_hWnd);
}

CWnd* CWnd::GetParent() const
{
    return FromHandle(::GetParent(m_hWnd));
}

// ---------------------------------------------------------------------------------------------------------
// Dialog controls

void CWnd::CheckDlgButton(int nIDButton, UINT nCheck)
{
    ::CheckDlgButton(m_hWnd, nIDButton, nCheck);
}

void CWnd::CheckRadioButton(int nIDFirstButton, int nIDLastButton, int nIDCheckButton)
{
    ::CheckRadioButton(m_hWnd, nIDFirstButton, nIDLastButton, nIDCheckButton);
}

UINT CWnd::IsDlgButtonChecked(int nIDButton) const
{
    return ::IsDlgButtonChecked(m_hWnd, nIDButton);
}

int CWnd::GetDlgItemText(int nID, CString& rString) const
{
    rString = TextOf(::GetDlgItem(m_hWnd, nID));
    return rString.GetLength();
}

void CWnd::SetDlgItemText(int nID, LPCTSTR lpszString)
{
    ::SetDlgItemText(m_hWnd, nID, lpszString);
}
