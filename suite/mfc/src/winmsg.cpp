// What CWnd's own message handlers do: the window's default, after the control itself where it may answer.
#include "wndaccess.h"
#include "handlemap.h"

void CWnd::OnDrawItem(int, LPDRAWITEMSTRUCT lpDrawItemStruct)
{
    CWnd* control =
        lpDrawItemStruct->CtlType != ODT_MENU ? FromHandlePermanent(lpDrawItemStruct->hwndItem) : nullptr;
    const MSG* message = GetCurrentMessage();
    if (control == nullptr ||
        !control->OnChildNotify(message->message, message->wParam, message->lParam, nullptr))
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
