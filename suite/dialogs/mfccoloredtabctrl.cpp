#include "suite/dialogs/mfccoloredtabctrl.h"

#include "suite/dialogs/ctlhelp.h"

#include <array>

IMPLEMENT_DYNAMIC(CMfcColoredTabCtrl, CTabCtrl)

namespace
{

constexpr int maxTitle = 128;
constexpr int markHeight = 3; // of the line over the selected tab, at 96 dpi

int Scaled(CDC& dc, int nPixels)
{
    return ::MulDiv(nPixels, dc.GetDeviceCaps(LOGPIXELSY), 96);
}

} // namespace

BEGIN_MESSAGE_MAP(CMfcColoredTabCtrl, CTabCtrl)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_MOUSEMOVE()
ON_WM_SETFOCUS()
ON_WM_KILLFOCUS()
ON_WM_SYSCOLORCHANGE()
ON_MESSAGE(WM_MOUSELEAVE, &CMfcColoredTabCtrl::OnMouseLeave)
ON_MESSAGE(WM_UPDATEUISTATE, &CMfcColoredTabCtrl::OnUIState)
END_MESSAGE_MAP()

void CMfcColoredTabCtrl::InvalidateTab(int nTab)
{
    CRect rect;
    if (m_hWnd != nullptr && GetItemRect(nTab, &rect))
    {
        rect.InflateRect(3, 3); // the selected tab is drawn larger
        InvalidateRect(&rect, FALSE);
    }
}

BOOL CMfcColoredTabCtrl::OnEraseBkgnd(CDC*)
{
    return TRUE; // everything is painted in one step
}

// The system's control draws the body and its frame, the tabs themselves are drawn over its own.
void CMfcColoredTabCtrl::OnPaint()
{
    CPaintDC dc(this);
    CRect rectClient;
    GetClientRect(&rectClient);
    CDC dcMemory;
    CBitmap bitmap;
    dcMemory.CreateCompatibleDC(&dc);
    bitmap.CreateCompatibleBitmap(&dc, rectClient.Width() + 1, rectClient.Height() + 1);
    CBitmap* pPrevious = dcMemory.SelectObject(&bitmap);

    ::FillRect(dcMemory.m_hDC, &rectClient, ::GetSysColorBrush(COLOR_BTNFACE));
    DefWindowProc(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dcMemory.m_hDC), PRF_CLIENT);
    const int nSelected = GetCurSel();
    for (int nTab = 0; nTab < GetItemCount(); ++nTab)
    {
        if (nTab != nSelected)
        {
            DrawTab(dcMemory, nTab);
        }
    }
    if (nSelected >= 0)
    {
        DrawTab(dcMemory, nSelected);
    }
    dc.BitBlt(0, 0, rectClient.Width(), rectClient.Height(), &dcMemory, 0, 0, SRCCOPY);
    dcMemory.SelectObject(pPrevious);
}

void CMfcColoredTabCtrl::DrawTab(CDC& dc, int nTab) const
{
    std::array<char, maxTitle> title = {};
    TCITEM item = {};
    item.mask = TCIF_TEXT;
    item.pszText = title.data();
    item.cchTextMax = static_cast<int>(title.size());
    CRect rect;
    if (!GetItem(nTab, &item) || !GetItemRect(nTab, &rect))
    {
        return;
    }
    const bool bSelected = nTab == GetCurSel();
    const bool bContrast = ctlIsHighContrast();
    const COLORREF colorWindow = ::GetSysColor(COLOR_WINDOW);
    COLORREF colorBack = colorWindow;
    COLORREF colorText = ::GetSysColor(COLOR_WINDOWTEXT);
    if (bContrast)
    {
        colorBack = ::GetSysColor(bSelected ? COLOR_HIGHLIGHT : COLOR_BTNFACE);
        colorText = ::GetSysColor(bSelected ? COLOR_HIGHLIGHTTEXT : COLOR_BTNTEXT);
    }
    else if (!bSelected)
    {
        colorBack = ctlMixColors(::GetSysColor(COLOR_BTNFACE), ::GetSysColor(COLOR_HIGHLIGHT),
                                 nTab == m_nHotTab ? 22 : 10);
        colorText = ::GetSysColor(COLOR_BTNTEXT);
    }
    if (!IsWindowEnabled())
    {
        colorText = ::GetSysColor(COLOR_GRAYTEXT);
    }

    if (bSelected)
    {
        rect.InflateRect(2, 2, 2, 0);
    }
    rect.bottom += bSelected ? 1 : 0; // joins the body below
    dc.FillSolidRect(&rect, colorBack);
    const int nLine = ::GetSysColor(COLOR_BTNSHADOW);
    dc.FillSolidRect(rect.left, rect.top, rect.Width(), 1, nLine);
    dc.FillSolidRect(rect.left, rect.top, 1, rect.Height(), nLine);
    dc.FillSolidRect(rect.right - 1, rect.top, 1, rect.Height(), nLine);
    if (bSelected && !bContrast)
    {
        dc.FillSolidRect(rect.left, rect.top, rect.Width(), Scaled(dc, markHeight),
                         ::GetSysColor(COLOR_HIGHLIGHT));
    }

    const auto nState =
        static_cast<UINT>(const_cast<CMfcColoredTabCtrl*>(this)->SendMessage(WM_QUERYUISTATE));
    CRect rectText = rect;
    rectText.top += Scaled(dc, bSelected ? markHeight : 1);
    CFont* pPrevious = dc.SelectObject(GetFont());
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(colorText);
    dc.DrawText(title.data(), -1, &rectText,
                DT_CENTER | DT_VCENTER | DT_SINGLELINE |
                    ((nState & UISF_HIDEACCEL) != 0 ? UINT{DT_HIDEPREFIX} : 0U));
    dc.SelectObject(pPrevious);
    if (bSelected && ::GetFocus() == m_hWnd && (nState & UISF_HIDEFOCUS) == 0)
    {
        rectText.DeflateRect(3, 1, 3, 2);
        dc.SetTextColor(::GetSysColor(COLOR_WINDOWTEXT));
        dc.SetBkColor(colorWindow);
        dc.DrawFocusRect(&rectText);
    }
}

void CMfcColoredTabCtrl::OnMouseMove(UINT nFlags, CPoint point)
{
    TCHITTESTINFO hit = {};
    hit.pt = point;
    const int nTab = HitTest(&hit);
    if (nTab != m_nHotTab)
    {
        InvalidateTab(m_nHotTab);
        InvalidateTab(nTab);
        m_nHotTab = nTab;
        TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, m_hWnd, 0};
        ::TrackMouseEvent(&track);
    }
    CTabCtrl::OnMouseMove(nFlags, point);
}

LRESULT CMfcColoredTabCtrl::OnMouseLeave(WPARAM, LPARAM)
{
    InvalidateTab(m_nHotTab);
    m_nHotTab = -1;
    return Default();
}

LRESULT CMfcColoredTabCtrl::OnUIState(WPARAM, LPARAM)
{
    const LRESULT nResult = Default();
    Invalidate(FALSE);
    return nResult;
}

void CMfcColoredTabCtrl::OnSetFocus(CWnd* pOldWnd)
{
    CTabCtrl::OnSetFocus(pOldWnd);
    InvalidateTab(GetCurSel());
}

void CMfcColoredTabCtrl::OnKillFocus(CWnd* pNewWnd)
{
    CTabCtrl::OnKillFocus(pNewWnd);
    InvalidateTab(GetCurSel());
}

void CMfcColoredTabCtrl::OnSysColorChange()
{
    CTabCtrl::OnSysColorChange();
    Invalidate(FALSE);
}
