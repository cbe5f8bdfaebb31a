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

// ---------------------------------------------------------------------------------------------------------
// Messages with no meaning of their own here

void CWnd::OnActivate(UINT, CWnd*, BOOL)
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

BOOL CWnd::OnEraseBkgnd(CDC*)
{
    return static_cast<BOOL>(Default());
}

void CWnd::OnGetMinMaxInfo(MINMAXINFO*)
{
    Default();
}

void CWnd::OnKillFocus(CWnd*)
{
    Default();
}

void CWnd::OnMouseLeave()
{
    Default();
}

void CWnd::OnMouseMove(UINT, CPoint)
{
    Default();
}

LRESULT CWnd::OnNcHitTest(CPoint)
{
    return Default();
}

void CWnd::OnSetFocus(CWnd*)
{
    Default();
}

void CWnd::OnSize(UINT, int, int)
{
    Default();
}

void CWnd::OnSysColorChange()
{
    Default();
}

void CWnd::OnTimer(UINT_PTR)
{
    Default();
}
