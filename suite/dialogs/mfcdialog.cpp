#include "suite/dialogs/mfcdialog.h"

#include "suite/dialogs/ctlhelp.h"
#include "suite/util/velini.h"

#include <afxpriv.h>

#include <algorithm>
#include <cstdio>

IMPLEMENT_DYNAMIC(CNSFlexDialog, CDialog)
IMPLEMENT_DYNAMIC(mfcCDialog, CNSFlexDialog)

namespace
{

constexpr char sizeSection[] = "Dialogs";

} // namespace

BEGIN_MESSAGE_MAP(CNSFlexDialog, CDialog)
ON_WM_SIZE()
ON_WM_GETMINMAXINFO()
ON_WM_NCHITTEST()
ON_WM_ERASEBKGND()
ON_WM_DESTROY()
END_MESSAGE_MAP()

CNSFlexDialog::CNSFlexDialog() : m_sizeSmallest(0, 0), m_rectGrip(0, 0, 0, 0)
{
}

CNSFlexDialog::CNSFlexDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : CDialog(nIDTemplate, pParentWnd), m_sizeSmallest(0, 0), m_rectGrip(0, 0, 0, 0)
{
}

BOOL CNSFlexDialog::OnInitDialog()
{
    const BOOL bFocus = CDialog::OnInitDialog();
    if (!m_anchors.empty())
    {
        m_layout.Start(*this, m_anchors);
        MakeResizable();
        RestoreSize();
    }
    return bFocus;
}

// Gives the dialog a frame that can be dragged and keeps its client area as the template has it. The extended frame
// style stays: without it the caption would show a program's icon, which dialogs do not have.
void CNSFlexDialog::MakeResizable()
{
    CRect rectClient;
    GetClientRect(&rectClient);
    // The extended style stays: with it the caption shows no icon, as that of every other dialog.
    ModifyStyle(DS_MODALFRAME, WS_THICKFRAME);
    CRect rectWindow(0, 0, rectClient.Width(), rectClient.Height());
    ::AdjustWindowRectEx(&rectWindow, GetStyle(), FALSE, GetExStyle());
    m_sizeSmallest = rectWindow.Size();
    SetWindowPos(nullptr, 0, 0, m_sizeSmallest.cx, m_sizeSmallest.cy,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
    m_rectGrip = GripPlace();
    if (CMenu* pMenu = GetSystemMenu(FALSE); pMenu != nullptr)
    {
        // A dialog's own system menu lacks the entry that the keyboard needs for the new frame.
        if (pMenu->GetMenuState(SC_SIZE, MF_BYCOMMAND) == static_cast<UINT>(-1))
        {
            CString strSize;
            if (strSize.LoadString(IDS_CTL_SIZE))
            {
                pMenu->InsertMenu(1, MF_BYPOSITION | MF_STRING, SC_SIZE, strSize);
            }
        }
    }
}

void CNSFlexDialog::RestoreSize()
{
    if (m_strSizeEntry.IsEmpty())
    {
        return;
    }
    int nWidth = 0;
    int nHeight = 0;
    const CString strSize = velGetIniString(sizeSection, m_strSizeEntry, "");
    if (std::sscanf(strSize.GetString(), "%9d,%9d", &nWidth, &nHeight) != 2)
    {
        return;
    }
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof monitor;
    CRect rect;
    GetWindowRect(&rect);
    if (!::GetMonitorInfo(::MonitorFromWindow(m_hWnd, MONITOR_DEFAULTTONEAREST), &monitor))
    {
        return;
    }
    const CRect rectWork(monitor.rcWork);
    nWidth = std::max<int>(m_sizeSmallest.cx, std::min<int>(nWidth, rectWork.Width()));
    nHeight = std::max<int>(m_sizeSmallest.cy, std::min<int>(nHeight, rectWork.Height()));
    SetWindowPos(nullptr, 0, 0, nWidth, nHeight, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CNSFlexDialog::OnDestroy()
{
    if (!m_strSizeEntry.IsEmpty() && m_sizeSmallest.cx > 0 && !IsIconic() && !IsZoomed())
    {
        CRect rect;
        GetWindowRect(&rect);
        CString strSize;
        strSize.Format("%d,%d", rect.Width(), rect.Height());
        velSetIniString(sizeSection, m_strSizeEntry, strSize); // a size that cannot be kept is no loss
    }
    CDialog::OnDestroy();
}

void CNSFlexDialog::OnSize(UINT nType, int cx, int cy)
{
    CDialog::OnSize(nType, cx, cy);
    if (nType != SIZE_MINIMIZED && m_sizeSmallest.cx > 0)
    {
        // The background may have been erased for the new size already, before this message.
        InvalidateRect(&m_rectGrip);
        m_layout.Arrange(*this);
        m_rectGrip = GripPlace();
        InvalidateRect(&m_rectGrip);
    }
}

void CNSFlexDialog::OnGetMinMaxInfo(MINMAXINFO* pInfo)
{
    CDialog::OnGetMinMaxInfo(pInfo);
    if (m_sizeSmallest.cx > 0)
    {
        pInfo->ptMinTrackSize = {m_sizeSmallest.cx, m_sizeSmallest.cy};
    }
}

CRect CNSFlexDialog::GripPlace() const
{
    CRect rect;
    GetClientRect(&rect);
    rect.left = rect.right - ::GetSystemMetrics(SM_CXVSCROLL);
    rect.top = rect.bottom - ::GetSystemMetrics(SM_CYHSCROLL);
    return rect;
}

LRESULT CNSFlexDialog::OnNcHitTest(CPoint point)
{
    if (m_sizeSmallest.cx > 0 && !IsZoomed())
    {
        CPoint pointClient = point;
        ScreenToClient(&pointClient);
        if (GripPlace().PtInRect(pointClient))
        {
            return HTBOTTOMRIGHT;
        }
    }
    return CDialog::OnNcHitTest(point);
}

// The grip belongs to the background: the controls draw over it.
BOOL CNSFlexDialog::OnEraseBkgnd(CDC* pDC)
{
    const BOOL bErased = CDialog::OnEraseBkgnd(pDC);
    if (m_sizeSmallest.cx > 0 && !IsZoomed())
    {
        ctlDrawGrip(m_hWnd, pDC->GetSafeHdc(), GripPlace());
    }
    return bErased;
}

BEGIN_MESSAGE_MAP(mfcCDialog, CNSFlexDialog)
ON_MESSAGE_VOID(WM_KICKIDLE, &mfcCDialog::OnKickIdle)
ON_BN_CLICKED(IDHELP, &mfcCDialog::OnHelpButton)
END_MESSAGE_MAP()

mfcCDialog::mfcCDialog() : m_nHelpID(0)
{
}

mfcCDialog::mfcCDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : CNSFlexDialog(nIDTemplate, pParentWnd), m_nHelpID(ctlHelpID(nIDTemplate))
{
}

BOOL mfcCDialog::PreTranslateMessage(MSG* pMsg)
{
    if (ctlIsHelpKey(*pMsg) && OnHelpKey(m_nHelpID))
    {
        return TRUE;
    }
    return CNSFlexDialog::PreTranslateMessage(pMsg);
}

BOOL mfcCDialog::OnHelpKey(UINT)
{
    return FALSE;
}

void mfcCDialog::OnHelpButton()
{
    OnHelpKey(m_nHelpID);
}

void mfcCDialog::UpdateControls()
{
    UpdateDialogControls(this, FALSE);
}

void mfcCDialog::OnKickIdle()
{
    UpdateControls();
}
