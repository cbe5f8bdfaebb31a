// What CWnd's own message handlers do: the window's default, after the control itself where it may answer.
#include "wndaccess.h"
#include "handlemap.h"

// ---------------------------------------------------------------------------------------------------------
// Messages that the sending control may answer by reflection

namespace
{
CWnd* ChildOf(HWND parent, int id)
{
    return CWnd::FromHandlePermanent(::GetDlgItem(parent, id));
}

// The control's own handler of a message that names it; false when it has no object or no handler.
bool Reflected(HWND control, LRESULT* result = nullptr)
{
    return CWnd::ReflectLastMsg(control, result) != FALSE;
}
} // namespace

int CWnd::OnCompareItem(int, LPCOMPAREITEMSTRUCT lpCompareItemStruct)
{
    LRESULT result = 0;
    return static_cast<int>(Reflected(lpCompareItemStruct->hwndItem, &result) ? result : Default());
}

void CWnd::OnMeasureItem(int nIDCtl, LPMEASUREITEMSTRUCT lpMeasureItemStruct)
{
    // Sent while the control is being created, so it is found by its id; menus have no control.
    CWnd* child = lpMeasureItemStruct->CtlType != ODT_MENU ? ChildOf(m_hWnd, nIDCtl) : nullptr;
    if (child == nullptr || !child->SendChildNotifyLastMsg())
    {
        Default();
    }
}

void CWnd::OnDrawItem(int, LPDRAWITEMSTRUCT lpDrawItemStruct)
{
    if (lpDrawItemStruct->CtlType == ODT_MENU || !Reflected(lpDrawItemStruct->hwndItem))
    {
        Default();
    }
}

void CWnd::OnDeleteItem(int, LPDELETEITEMSTRUCT lpDeleteItemStruct)
{
    if (!Reflected(lpDeleteItemStruct->hwndItem))
    {
        Default();
    }
}

HBRUSH CWnd::OnCtlColor(CDC*, CWnd* pWnd, UINT)
{
    LRESULT result = 0;
    if (pWnd != nullptr && Reflected(pWnd->m_hWnd, &result))
    {
        return reinterpret_cast<HBRUSH>(result);
    }
    return reinterpret_cast<HBRUSH>(Default());
}

void CWnd::OnParentNotify(UINT, LPARAM lParam)
{
    const MSG* message = GetCurrentMessage();
    const bool fromChild = LOWORD(message->wParam) == WM_CREATE || LOWORD(message->wParam) == WM_DESTROY;
    if (!fromChild || !Reflected(reinterpret_cast<HWND>(lParam)))
    {
        Default();
    }
}

void CWnd::OnHScroll(UINT, int, CScrollBar* pScrollBar)
{
    if (pScrollBar == nullptr || !Reflected(pScrollBar->m_hWnd))
    {
        Default();
    }
}

void CWnd::OnVScroll(UINT, int, CScrollBar* pScrollBar)
{
    if (pScrollBar == nullptr || !Reflected(pScrollBar->m_hWnd))
    {
        Default();
    }
}

CScrollBar* AfxScrollBarOf(LPARAM lParam)
{
    return static_cast<CScrollBar*>(CWnd::FromHandle(reinterpret_cast<HWND>(lParam)));
}

// ---------------------------------------------------------------------------------------------------------
// Messages with no meaning of their own here

void CWnd::OnActivate(UINT, CWnd*, BOOL)
{
    Default();
}

void CWnd::OnCancelMode()
{
    Default();
}

void CWnd::OnCaptureChanged(CWnd*)
{
    Default();
}

void CWnd::OnChar(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnClose()
{
    Default();
}

void CWnd::OnContextMenu(CWnd*, CPoint)
{
    Default();
}

int CWnd::OnCreate(LPCREATESTRUCT)
{
    return static_cast<int>(Default());
}

void CWnd::OnDestroy()
{
    Default();
}

void CWnd::OnDropFiles(HDROP)
{
    Default();
}

void CWnd::OnEnable(BOOL)
{
    Default();
}

void CWnd::OnEndSession(BOOL)
{
    Default();
}

void CWnd::OnEnterIdle(UINT, CWnd*)
{
    Default();
}

BOOL CWnd::OnEraseBkgnd(CDC*)
{
    return static_cast<BOOL>(Default());
}

UINT CWnd::OnGetDlgCode()
{
    return static_cast<UINT>(Default());
}

void CWnd::OnGetMinMaxInfo(MINMAXINFO*)
{
    Default();
}

BOOL CWnd::OnHelpInfo(HELPINFO*)
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnInitMenuPopup(CMenu*, UINT, BOOL)
{
    Default();
}

void CWnd::OnKeyDown(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnKeyUp(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnKillFocus(CWnd*)
{
    Default();
}

void CWnd::OnLButtonDblClk(UINT, CPoint)
{
    Default();
}

void CWnd::OnLButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnLButtonUp(UINT, CPoint)
{
    Default();
}

void CWnd::OnMButtonDblClk(UINT, CPoint)
{
    Default();
}

void CWnd::OnMButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnMButtonUp(UINT, CPoint)
{
    Default();
}

void CWnd::OnMenuSelect(UINT, UINT, HMENU)
{
    Default();
}

int CWnd::OnMouseActivate(CWnd*, UINT, UINT)
{
    return static_cast<int>(Default());
}

void CWnd::OnMouseLeave()
{
    Default();
}

void CWnd::OnMouseMove(UINT, CPoint)
{
    Default();
}

BOOL CWnd::OnMouseWheel(UINT, short, CPoint)
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnMove(int, int)
{
    Default();
}

BOOL CWnd::OnNcActivate(BOOL)
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnNcCalcSize(BOOL, NCCALCSIZE_PARAMS*)
{
    Default();
}

BOOL CWnd::OnNcCreate(LPCREATESTRUCT)
{
    return static_cast<BOOL>(Default());
}

LRESULT CWnd::OnNcHitTest(CPoint)
{
    return Default();
}

void CWnd::OnNcLButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnNcPaint()
{
    Default();
}

void CWnd::OnPaint()
{
    Default();
}

BOOL CWnd::OnQueryEndSession()
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnRButtonDblClk(UINT, CPoint)
{
    Default();
}

void CWnd::OnRButtonDown(UINT, CPoint)
{
    Default();
}

void CWnd::OnRButtonUp(UINT, CPoint)
{
    Default();
}

BOOL CWnd::OnSetCursor(CWnd*, UINT, UINT)
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnSetFocus(CWnd*)
{
    Default();
}

void CWnd::OnSettingChange(UINT, LPCTSTR)
{
    Default();
}

void CWnd::OnShowWindow(BOOL, UINT)
{
    Default();
}

void CWnd::OnSize(UINT, int, int)
{
    Default();
}

void CWnd::OnStyleChanged(int, LPSTYLESTRUCT)
{
    Default();
}

void CWnd::OnSysChar(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnSysColorChange()
{
    Default();
}

void CWnd::OnSysCommand(UINT, LPARAM)
{
    Default();
}

void CWnd::OnSysKeyDown(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnSysKeyUp(UINT, UINT, UINT)
{
    Default();
}

void CWnd::OnTimer(UINT_PTR)
{
    Default();
}

void CWnd::OnWindowPosChanged(WINDOWPOS*)
{
    Default();
}

void CWnd::OnWindowPosChanging(WINDOWPOS*)
{
    Default();
}
